#include "display/DisplayInfo.h"

#include <algorithm>
#include <cmath>

#include "base/PixelBuffer.h"

namespace quillmar {
namespace {

/// A frame that claims more must not become a file of terabytes.
int pixels(double points, double scale) {
    const double value = std::round(points * scale);
    return std::isfinite(value) ? static_cast<int>(std::clamp(value, 1.0, double{PixelBuffer::maximumSide}))
                                : 1;
}

}  // namespace

PixelSize canvasSize(const DisplayInfo& display) {
    if (display.pixelSize) return *display.pixelSize;
    const double scale = display.scaleFactor > 1.0 ? display.scaleFactor : 1.0;
    return {pixels(display.frame.width, scale), pixels(display.frame.height, scale)};
}

}  // namespace quillmar

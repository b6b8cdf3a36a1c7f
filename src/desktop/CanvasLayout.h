#pragma once
#include <string>

#include "display/DisplayInfo.h"
#include "modes/ImagePresentationLayout.h"
#include "platform/PictureRendering.h"

namespace quillmar {

/// A display's canvas: what its picture is measured by.
struct Canvas {
    PixelSize size;
    double targetWidth = 1;  ///< the frame's width times the scale, before rounding
    double targetHeight = 1;

    static Canvas of(const DisplayInfo& display);
};

/// The longer side, in pixels, that a picture of the size `source` is worth decoding to: what the layout can
/// show of it, and never more than it has.
int maximumPixelSize(ImagePresentationLayout layout, const Canvas& canvas, PixelSize source);

/// A rectangle on the canvas in pixels, origin bottom left, y upwards.
struct DrawingRect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
    bool operator==(const DrawingRect&) const = default;
};
/// Where a decoded picture goes; of tiles the first, in the bottom left corner.
DrawingRect drawingRect(ImagePresentationLayout layout, PixelSize canvas, PixelSize decoded);

/// The whole composition for a picture of the size `source`. The edges of its destination are rounded to
/// whole pixels, so that none is a mixture of picture and background. An empty caption is none.
PictureComposition compositionOf(ImagePresentationLayout layout, const Canvas& canvas, RgbColor background,
                                 const std::string& caption, PixelSize source);

/// The same on a canvas whose longer side is `longestSide`, where the other one is longer.
PictureComposition scaledDown(PictureComposition composition, int longestSide);

}  // namespace quillmar

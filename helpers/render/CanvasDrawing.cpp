#include "render/CanvasDrawing.h"

#include <algorithm>

namespace quillmar {
namespace {

using Row = std::span<std::uint8_t>;

void fill(Row row, RgbColor color) {
    for (std::size_t at = 0; at < row.size(); at += pixelBytes) {
        row[at] = color.blue;
        row[at + 1] = color.green;
        row[at + 2] = color.red;
        row[at + 3] = 0xff;
    }
}

/// Repeats the first `period` bytes to the row's end.
void repeat(Row row, std::size_t period) {
    for (std::size_t at = period; at < row.size(); at += period)
        std::copy_n(row.begin(), std::min(period, row.size() - at), &row[at]);
}

}  // namespace

VisiblePart VisiblePart::of(const PixelRect& destination, PixelSize canvas) {
    const auto clamped = [](std::int64_t at, int end) {
        return static_cast<int>(std::clamp<std::int64_t>(at, 0, end));
    };
    VisiblePart part{clamped(destination.x, canvas.width), clamped(destination.y, canvas.height)};
    part.width = clamped(destination.right(), canvas.width) - part.left;
    part.height = clamped(destination.bottom(), canvas.height) - part.top;
    if (part.width == 0 || part.height == 0) part.width = part.height = 0;
    return part;
}

void drawOnCanvas(const PictureComposition& composition, const VisiblePart& part, RowSource* picture,
                  const CanvasPixels& canvas) {
    const std::size_t left = static_cast<std::size_t>(part.left) * pixelBytes;
    const std::size_t width = static_cast<std::size_t>(part.width) * pixelBytes;
    const bool hasMargins = !composition.isTiled && width < canvas.rowBytes();
    for (int y = 0; y < canvas.size.height; ++y) {
        const Row row = canvas.row(y);
        const bool showsPicture = y >= part.top && y < part.top + part.height;
        if (!showsPicture || hasMargins) fill(row, composition.background);
        if (!showsPicture) continue;
        std::ranges::copy(picture->nextRow(), row.begin() + static_cast<std::ptrdiff_t>(left));
        if (composition.isTiled) repeat(row, width);
    }
    if (!composition.isTiled || part.height == 0) return;
    // The lowest tile stands whole on the canvas's lower edge; above it come the others.
    for (int y = part.top - 1; y >= 0; --y)
        std::ranges::copy(canvas.row(y + part.height), canvas.row(y).begin());
}

}  // namespace quillmar

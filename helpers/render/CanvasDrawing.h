#pragma once
#include <span>

#include "render/PictureDecoder.h"

namespace quillmar {

/// A canvas in memory, somebody else's: rows from the top without gaps.
struct CanvasPixels {
    std::span<std::uint8_t> bytes;
    PixelSize size;

    std::size_t rowBytes() const { return static_cast<std::size_t>(size.width) * pixelBytes; }
    std::span<std::uint8_t> row(int y) const {
        return bytes.subspan(static_cast<std::size_t>(y) * rowBytes(), rowBytes());
    }
};

/// The part of a picture's destination that is on the canvas.
struct VisiblePart {
    int left = 0;  ///< on the canvas
    int top = 0;
    int width = 0;  ///< 0 when nothing of the picture is to be seen; then the height is 0 too
    int height = 0;

    static VisiblePart of(const PixelRect& destination, PixelSize canvas);
};

/// Fills the canvas with the background and the picture, of which `picture` yields the visible part's rows;
/// null when there are none.
void drawOnCanvas(const PictureComposition& composition, const VisiblePart& part, RowSource* picture,
                  const CanvasPixels& canvas);

}  // namespace quillmar

#pragma once
#include <optional>

#include "base/ByteOutput.h"
#include "linux/picture/CaptionDrawing.h"
#include "linux/picture/PictureDecoder.h"

namespace quillmar {

/// The part of a picture's destination that is on the canvas.
struct VisiblePart {
    int left = 0;  ///< on the canvas
    int top = 0;
    int width = 0;  ///< 0 when nothing of the picture is to be seen; then the height is 0 too
    int height = 0;

    static VisiblePart of(const PixelRect& destination, PixelSize canvas);
};

/// Puts background, picture and caption together, row by row from the top.
class CanvasDrawing {
public:
    /// `picture` yields the visible part's rows; nothing when there are none.
    CanvasDrawing(const PictureComposition& composition, const VisiblePart& part,
                  std::unique_ptr<RowSource> picture);

    /// The canvas as a PNG file. To be called once.
    void encode(ByteOutput& output);

private:
    bool showsPicture(int y) const;
    void drawPicture(int y);
    std::span<const std::uint8_t> pictureRow(int y);

    const PictureComposition& composition_;
    VisiblePart part_;
    std::unique_ptr<RowSource> picture_;
    std::optional<CaptionDrawing> caption_;
    Bytes background_;  ///< one row
    Bytes row_;
    Bytes tile_;  ///< the whole visible part, when its rows are needed more than once
};

}  // namespace quillmar

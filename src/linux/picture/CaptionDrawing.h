#pragma once
#include <vector>

#include "linux/picture/PictureDecoder.h"

namespace quillmar {

/// A caption as pixels: drawn once on a surface no larger than itself, then laid over the canvas's rows.
class CaptionDrawing {
public:
    /// Throws `std::runtime_error` when it cannot be drawn.
    CaptionDrawing(const PictureCaption& caption, PixelSize canvas);

    /// Lays what belongs to the canvas's row `y` over that row (three bytes a pixel).
    void blendInto(std::span<std::uint8_t> rgbRow, int y) const;
    bool covers(int y) const { return y >= top_ && y < top_ + height_; }

private:
    int left_ = 0;
    int top_ = 0;
    int width_ = 0;
    int height_ = 0;
    std::vector<std::uint32_t> pixels_;  ///< alpha, red, green, blue from the high byte, alpha multiplied in
};

}  // namespace quillmar

#pragma once
#include "base/Bytes.h"
#include "base/HexColor.h"

namespace quillmar {

/// Draws pictures. Any thread.
class PictureRendering {
public:
    virtual ~PictureRendering() = default;
    /// A PNG file of one colour, `width` by `height` pixels. Throws `std::runtime_error` for a side below 1
    /// or above 32768 and for a picture that cannot be drawn.
    virtual Bytes solidColorPng(int width, int height, RgbColor color) const = 0;
};

}  // namespace quillmar

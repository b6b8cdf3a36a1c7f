#pragma once
#include "platform/PictureRendering.h"

namespace quillmar {

/// Lays a caption over a canvas. Any thread. Throws `std::runtime_error` when it cannot be drawn.
void drawCaption(const PictureCaption& caption, PixelBuffer& canvas);

}  // namespace quillmar

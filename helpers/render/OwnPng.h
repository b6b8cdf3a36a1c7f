#pragma once
#include "render/CanvasDrawing.h"

namespace quillmar {

/// Fills the canvas from a PNG file as this program writes them: opaque, 8 bits a channel, its pixels in one
/// chunk, each row as the difference from the row above. Much quicker than reading PNG files of any kind. No
/// when the file is another or of another size; the canvas may then be written to in part. Throws
/// `PictureDecodingError` for one that is damaged.
bool loadOwnPng(int descriptor, const CanvasPixels& canvas);

}  // namespace quillmar

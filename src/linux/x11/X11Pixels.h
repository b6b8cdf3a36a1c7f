#pragma once
#include <cstdint>
#include <filesystem>

#include "base/Bytes.h"
#include "base/PixelRect.h"

struct _XDisplay;

namespace quillmar {

/// Draws the PNG file over `area` of a pixmap of the root window's kind: at its top left, clipped to it, and
/// black where the file does not reach. Throws `std::runtime_error` for a file that cannot be read and a
/// server that cannot show it.
void uploadPicture(_XDisplay* display, const std::filesystem::path& file, std::uint32_t pixmap,
                   const PixelRect& area);

/// What a root window with that background pixmap shows in `area`: rows of red, green, blue from the top.
/// Empty when the pixmap is gone or is none.
Bytes downloadedPicture(_XDisplay* display, std::uint32_t background, const PixelRect& area);

}  // namespace quillmar

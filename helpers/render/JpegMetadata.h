#pragma once
#include <cstdint>
#include <span>

namespace quillmar {

/// The orientation that EXIF data (from "Exif" on, as an APP1 marker holds it) asks for, 1 to 8; 1 when it
/// asks for none or is damaged.
int exifOrientation(std::span<const std::uint8_t> exif);

/// Whether an ICC profile calls itself sRGB, so that its pixels need no conversion.
bool isSrgbProfile(std::span<const std::uint8_t> profile);

}  // namespace quillmar

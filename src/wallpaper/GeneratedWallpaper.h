#pragma once
#include <filesystem>
#include <string>

#include "display/DisplayInfo.h"
#include "modes/ImagePresentationLayout.h"

namespace quillmar {

/// The name of a generated solid colour: the same inputs always give the same name, and different ones never.
std::string solidColorFileName(const DisplayInfo& display, PixelSize size,
                               const std::string& normalizedColor);

/// What of a source picture and its caption a generated file depends on, as a short text: where it lies, when
/// it was changed, how large it is. A file that cannot be looked at counts as one without time and size.
std::string imageFingerprint(const std::filesystem::path& source, const std::string& caption);

/// The name of a generated picture. A changed source, display or layout makes a new name, never a file that
/// is written over.
std::string imageFileName(const DisplayInfo& display, PixelSize size, ImagePresentationLayout layout,
                          const std::string& normalizedBackground, const std::string& fingerprint);

/// Whether the file is a whole, single-frame PNG of that size with 8-bit RGB or RGBA samples. Walks its
/// chunks without decoding; the name alone is never trusted. Any failure to read is a no.
bool isValidGeneratedPng(const std::filesystem::path& file, PixelSize size);

}  // namespace quillmar

#pragma once
#include <filesystem>
#include <string>

#include "display/DisplayInfo.h"

namespace quillmar {

/// Size of a display's picture in pixels, each side at least 1.
struct CanvasSize {
    int width = 1;
    int height = 1;
    bool operator==(const CanvasSize&) const = default;

    /// The display's frame times its scale, which never counts as less than 1.
    static CanvasSize of(const DisplayInfo& display);
};

/// The name of a generated solid colour: the same inputs always give the same name, and different ones never.
std::string solidColorFileName(const DisplayInfo& display, CanvasSize size,
                               const std::string& normalizedColor);

/// Whether the file is a whole, single-frame PNG of that size with 8-bit RGB or RGBA samples. Walks its
/// chunks without decoding; the name alone is never trusted. Any failure to read is a no.
bool isValidGeneratedPng(const std::filesystem::path& file, CanvasSize size);

}  // namespace quillmar

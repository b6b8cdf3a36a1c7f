#pragma once
#include <filesystem>
#include <vector>

#include "base/HexColor.h"
#include "base/PixelRect.h"

namespace quillmar {

/// One monitor's part of a picture that lies over all of them.
struct SpannedPart {
    PixelRect area;              ///< of the root window
    std::filesystem::path file;  ///< a PNG file: at the area's top left, clipped to it; empty: none
};

/// The smallest rectangle around all parts.
PixelRect boundsOf(const std::vector<SpannedPart>& parts);

/// Writes a PNG file with all parts in their places, in one step; `background` is where no picture reaches.
/// Throws `std::runtime_error` for a file that cannot be read and a target that cannot be written.
void composeSpanned(const std::vector<SpannedPart>& parts, RgbColor background,
                    const std::filesystem::path& target);

}  // namespace quillmar

#pragma once
#include <filesystem>
#include <span>
#include <stdexcept>
#include <string>

#include "modes/WallpaperMode.h"

namespace quillmar {

/// A command line that was not understood, with one sentence on why.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The mode that words such as "image", "holiday.jpg", "--layout", "fill" name. Relative paths start from
/// `folder`. Throws `UsageError`.
WallpaperMode parseWallpaperMode(std::span<const std::string> words, const std::filesystem::path& folder);

}  // namespace quillmar

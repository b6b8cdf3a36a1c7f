#pragma once
#include <filesystem>
#include <optional>

#include "base/WallTime.h"

namespace quillmar {

/// Marks a cache file as used at `time`, in its extended attributes. A file system that has none is no
/// failure: the modification date then speaks for the file.
void stampLastUsed(const std::filesystem::path& file, WallTime time);
/// When the file was stamped last; nothing where there is no stamp, or none that reads as a moment.
std::optional<WallTime> lastUsedStamp(const std::filesystem::path& file);

}  // namespace quillmar

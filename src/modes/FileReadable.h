#pragma once
#include <filesystem>

namespace quillmar {

/// Tells whether this process may read a file. A parameter where a check needs it, so that checks can be
/// tried without files.
using FileReadable = bool (*)(const std::filesystem::path& file);

/// Asks the file system. Quick: nothing is opened.
bool isReadableFile(const std::filesystem::path& file);

}  // namespace quillmar

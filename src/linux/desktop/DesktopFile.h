#pragma once
#include <filesystem>
#include <optional>

namespace quillmar {

/// Throws `std::runtime_error` with the path when there is no such file or it may not be read: a desktop that
/// is told of a file by name would only show nothing.
void requireReadable(const std::filesystem::path& file);

/// The file, when it is one that is there.
std::optional<std::filesystem::path> existingFile(const std::filesystem::path& file);

}  // namespace quillmar

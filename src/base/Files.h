#pragma once
#include <sys/types.h>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>

namespace quillmar {

class FileDescriptor;

// Whole files. Every function throws `std::system_error` with the system's reason; the path is the caller's
// to add. They wait for the disk: never call them on the main thread.

/// The file's bytes. Fails with `std::errc::file_too_large` beyond `maximumBytes`, whatever size the file
/// claims.
std::string readFile(const std::filesystem::path& file, std::size_t maximumBytes);

/// Writes all of the bytes where the open file stands.
void writeWhole(const FileDescriptor& file, std::span<const std::uint8_t> bytes);

/// Whether a written file must survive a power cut, which costs a wait for the disk itself.
enum class Durability { durable, reproducible };

/// Replaces the file in one step: whoever reads it finds the old or the new one whole, after a power cut too
/// when it is durable. Nothing is left behind on failure.
void writeFileAtomically(const std::filesystem::path& file, std::string_view bytes, mode_t mode = 0644,
                         Durability durability = Durability::durable);

/// The file that a link leads to in the end, whether it is there or not; any other path as it is.
std::filesystem::path linkTarget(std::filesystem::path file);

/// Creates the folder and its parents; folders that it makes get `mode`.
void createDirectories(const std::filesystem::path& folder, mode_t mode = 0755);

}  // namespace quillmar

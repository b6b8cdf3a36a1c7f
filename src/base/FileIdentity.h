#pragma once
#include <sys/types.h>
#include <cstdint>
#include <filesystem>
#include <optional>

struct stat;

namespace quillmar {

/// What tells a file from one that was written into it or in its place since.
struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    std::int64_t writtenAt = 0;  ///< nanoseconds since 1970
    bool operator==(const FileIdentity&) const = default;
};

FileIdentity identityOf(const struct stat& status);
/// Of what the path leads to; empty where nothing can be found there.
std::optional<FileIdentity> identityOf(const std::filesystem::path& file);

}  // namespace quillmar

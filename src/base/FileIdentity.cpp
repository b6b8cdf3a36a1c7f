#include "base/FileIdentity.h"

#include <sys/stat.h>

namespace quillmar {

FileIdentity identityOf(const struct stat& status) {
    constexpr std::int64_t nanoseconds = 1'000'000'000;
    return {status.st_dev, status.st_ino, status.st_size,
            status.st_mtim.tv_sec * nanoseconds + status.st_mtim.tv_nsec};
}

std::optional<FileIdentity> identityOf(const std::filesystem::path& file) {
    struct stat status{};
    if (::stat(file.c_str(), &status) != 0) return std::nullopt;
    return identityOf(status);
}

}  // namespace quillmar

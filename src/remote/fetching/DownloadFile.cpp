#include "remote/fetching/DownloadFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "base/Files.h"
#include "base/Uuid.h"

namespace quillmar {
namespace {

constexpr std::string_view extension = ".download";

}  // namespace

std::string downloadFileName(std::string_view prefix) {
    return std::string(prefix) + Uuid::random().string() + std::string(extension);
}

bool isDownloadFileName(std::string_view name, std::string_view prefix) {
    return name.starts_with(prefix) && name.ends_with(extension);
}

DownloadFile::DownloadFile(const std::filesystem::path& folder)
    : path_(folder / downloadFileName(downloadPrefix)),
      file_(::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600)) {
    if (!file_) throw std::system_error(errno, std::generic_category(), path_);
}

DownloadFile::~DownloadFile() { ::unlink(path_.c_str()); }

void DownloadFile::append(std::span<const std::uint8_t> bytes) const { writeWhole(file_, bytes); }

}  // namespace quillmar

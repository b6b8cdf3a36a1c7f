#include "base/AtomicFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace quillmar {
namespace {

[[noreturn]] void throwErrno() { throw std::system_error(errno, std::generic_category()); }

std::filesystem::path folderOf(const std::filesystem::path& file) {
    return file.has_parent_path() ? file.parent_path() : ".";
}

/// Makes the rename itself durable. Some file systems refuse to sync a folder, and then there is nothing to
/// do.
void syncFolder(const std::filesystem::path& folder) {
    const FileDescriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor) ::fsync(descriptor.get());
}

}  // namespace

AtomicFile::AtomicFile(std::filesystem::path file, mode_t mode, Durability durability)
    : file_(std::move(file)),
      temporary_((folderOf(file_) / ("." + file_.filename().string() + ".XXXXXX")).string()),
      durability_(durability),
      descriptor_(::mkostemp(temporary_.data(), O_CLOEXEC)) {
    if (!descriptor_) throwErrno();
    if (::fchmod(descriptor_.get(), mode) == 0) return;
    const int error = errno;
    ::unlink(temporary_.c_str());
    throw std::system_error(error, std::generic_category());
}

AtomicFile::~AtomicFile() {
    if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

void AtomicFile::append(std::span<const std::uint8_t> bytes) { writeWhole(descriptor_, bytes); }

void AtomicFile::overwrite(std::size_t offset, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t written =
            ::pwrite(descriptor_.get(), bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (written < 0 && errno != EINTR) throwErrno();
        if (written <= 0) continue;
        offset += static_cast<std::size_t>(written);
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
}

void AtomicFile::commit() {
    if (durability_ == Durability::durable && ::fsync(descriptor_.get()) != 0) throwErrno();
    // Network file systems report a failed write only here.
    if (::close(descriptor_.release()) != 0 && errno != EINTR) throwErrno();
    if (::rename(temporary_.c_str(), file_.c_str()) != 0) throwErrno();
    temporary_.clear();
    if (durability_ == Durability::durable) syncFolder(folderOf(file_));
}

}  // namespace quillmar

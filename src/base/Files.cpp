#include "base/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "base/AtomicFile.h"
#include "base/FileDescriptor.h"

namespace quillmar {
namespace {

[[noreturn]] void throwErrno() { throw std::system_error(errno, std::generic_category()); }

}  // namespace

std::string readFile(const std::filesystem::path& file, std::size_t maximumBytes) {
    // Not blocking: opening a FIFO would wait for a writer for ever.
    const FileDescriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!descriptor) throwErrno();
    struct stat status{};
    if (::fstat(descriptor.get(), &status) != 0) throwErrno();
    if (S_ISDIR(status.st_mode)) throw std::system_error(EISDIR, std::generic_category());
    if (!S_ISREG(status.st_mode)) {
        throw std::system_error(EINVAL, std::generic_category(), "not a regular file");
    }
    std::string bytes;
    bytes.reserve(
        std::min(static_cast<std::size_t>(std::max<off_t>(status.st_size, 0)) + 1, maximumBytes + 1));
    std::size_t length = 0;
    while (length <= maximumBytes) {
        bytes.resize(std::min(std::max(bytes.capacity(), length + 65536), maximumBytes + 1));
        const ssize_t count = ::read(descriptor.get(), bytes.data() + length, bytes.size() - length);
        if (count < 0) {
            if (errno == EINTR) continue;
            throwErrno();
        }
        if (count == 0) break;
        length += static_cast<std::size_t>(count);
    }
    if (length > maximumBytes) throw std::system_error(EFBIG, std::generic_category());
    bytes.resize(length);
    return bytes;
}

void writeWhole(const FileDescriptor& file, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(file.get(), bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) throwErrno();
        if (written > 0) bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
}

void writeFileAtomically(const std::filesystem::path& file, std::string_view bytes, mode_t mode,
                         Durability durability) {
    AtomicFile whole(file, mode, durability);
    whole.append(asBytes(bytes));
    whole.commit();
}

std::filesystem::path linkTarget(std::filesystem::path file) {
    constexpr int mostLinks = 40;
    for (int links = 0; links < mostLinks; ++links) {
        std::error_code isNoLink;
        const std::filesystem::path target = std::filesystem::read_symlink(file, isNoLink);
        if (isNoLink) return file;
        file = file.parent_path() / target;
    }
    throw std::system_error(ELOOP, std::generic_category());
}

void createDirectories(const std::filesystem::path& folder, mode_t mode) {
    if (::mkdir(folder.c_str(), mode) == 0) return;
    if (errno == ENOENT && folder.has_parent_path() && folder.parent_path() != folder) {
        createDirectories(folder.parent_path(), mode);
        if (::mkdir(folder.c_str(), mode) == 0) return;
    }
    if (errno != EEXIST) throwErrno();
    struct stat status{};
    if (::stat(folder.c_str(), &status) != 0) throwErrno();
    if (!S_ISDIR(status.st_mode)) throw std::system_error(ENOTDIR, std::generic_category());
}

}  // namespace quillmar

#include "base/AtomicFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <random>
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

bool isSmall(char c) { return c >= 'a' && c <= 'z'; }
bool isDigitOrCapital(char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z'); }

constexpr std::size_t randomLength = 6;

/// Whether the end of a name is one of ours: letters and digits as chance has them, but nothing that a person
/// would choose, such as "backup", "Backup", "BACKUP" or "202611".
bool isRandomEnd(std::string_view end) {
    return end.size() == randomLength &&
           std::ranges::all_of(end, [](char c) { return isSmall(c) || isDigitOrCapital(c); }) &&
           std::ranges::any_of(end, isSmall) && std::ranges::any_of(end.substr(1), isDigitOrCapital);
}

std::string randomEnd() {
    constexpr std::string_view characters = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    std::random_device random;
    std::uniform_int_distribution<std::size_t> place(0, characters.size() - 1);
    std::string end(randomLength, ' ');
    do {
        std::ranges::generate(end, [&] { return characters[place(random)]; });
    } while (!isRandomEnd(end));
    return end;
}

/// Creates a file whose name is `name` with an end of ours. Whenever the process is killed, what it leaves
/// behind is known by that.
int createTemporary(std::string& name) {
    const std::string beginning = name;
    for (;;) {
        name = beginning + randomEnd();
        const int descriptor = ::open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (descriptor >= 0 || errno != EEXIST) return descriptor;
    }
}

/// Whether it is a regular file of this user's that was last written before that moment.
bool isOwnFile(const std::filesystem::path& file, WallTime before = WallTime::max()) {
    struct stat status{};
    if (::lstat(file.c_str(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_uid != ::geteuid())
        return false;
    const auto seconds = std::chrono::floor<std::chrono::seconds>(before);
    const std::int64_t rest = std::chrono::nanoseconds(before - seconds).count();
    return std::pair<std::int64_t, std::int64_t>(status.st_mtim.tv_sec, status.st_mtim.tv_nsec) <
           std::pair<std::int64_t, std::int64_t>(seconds.time_since_epoch().count(), rest);
}

}  // namespace

AtomicFile::AtomicFile(std::filesystem::path file, mode_t mode, Durability durability)
    : file_(std::move(file)),
      temporary_((folderOf(file_) / ("." + file_.filename().string() + ".")).string()),
      durability_(durability),
      descriptor_(createTemporary(temporary_)) {
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
    finish();
    if (::rename(temporary_.c_str(), file_.c_str()) != 0) throwErrno();
    noteCommitted();
}

std::optional<FileIdentity> AtomicFile::commitOver(const std::optional<FileIdentity>& expected) {
    const FileIdentity written = finish();
    if (identityOf(file_) != expected) return std::nullopt;
    const auto renames = [this](unsigned int way) {
        return ::renameat2(AT_FDCWD, temporary_.c_str(), AT_FDCWD, file_.c_str(), way) == 0;
    };
    if (renames(expected ? RENAME_EXCHANGE : RENAME_NOREPLACE)) {
        // The two have changed places, so what was really there can still be looked at and put back.
        if (expected && identityOf(temporary_) != expected) {
            renames(RENAME_EXCHANGE);
            return std::nullopt;
        }
        if (expected) ::unlink(temporary_.c_str());
    } else if (errno == ENOENT || errno == EEXIST) {
        return std::nullopt;
    } else if ((errno != EINVAL && errno != ENOSYS) || !renames(0)) {  // not every file system knows them
        throwErrno();
    }
    noteCommitted();
    return written;
}

FileIdentity AtomicFile::finish() {
    if (durability_ == Durability::durable && ::fsync(descriptor_.get()) != 0) throwErrno();
    struct stat status{};
    if (::fstat(descriptor_.get(), &status) != 0) throwErrno();
    // Network file systems report a failed write only here.
    if (::close(descriptor_.release()) != 0 && errno != EINTR) throwErrno();
    return identityOf(status);
}

void AtomicFile::noteCommitted() {
    temporary_.clear();
    if (durability_ == Durability::durable) syncFolder(folderOf(file_));
}

void removeUnfinished(const std::filesystem::path& file) {
    const std::string prefix = "." + file.filename().string() + ".";
    std::error_code ignored;  // litter does no harm
    for (const auto& entry : std::filesystem::directory_iterator(folderOf(file), ignored)) {
        const std::string name = entry.path().filename().string();
        if (!name.starts_with(prefix) || !isRandomEnd(std::string_view(name).substr(prefix.size()))) continue;
        if (isOwnFile(entry.path())) ::unlink(entry.path().c_str());
    }
}

void removeUnfinishedIn(const std::filesystem::path& folder, WallTime before,
                        const std::function<bool(std::string_view)>& isOurs) {
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(folder, ignored)) {
        const std::string name = entry.path().filename().string();
        const std::size_t end = name.rfind('.');
        if (!name.starts_with('.') || end < 2 || !isRandomEnd(std::string_view(name).substr(end + 1)))
            continue;
        if (isOurs(std::string_view(name).substr(1, end - 1)) && isOwnFile(entry.path(), before))
            ::unlink(entry.path().c_str());
    }
}

}  // namespace quillmar

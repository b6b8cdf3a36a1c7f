#include "imports/StagedFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <vector>

#include "async/Cancellation.h"
#include "base/FileDescriptor.h"
#include "base/Files.h"
#include "base/Sha256.h"
#include "base/Text.h"
#include "imports/MediaImportError.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;
using Case = MediaImportError::Case;

constexpr std::size_t bufferBytes = 1048576;
constexpr mode_t folderMode = 0700;

[[noreturn]] void throwErrno() { throw std::system_error(errno, std::generic_category()); }

std::size_t characterCount(std::string_view utf8) {
    return static_cast<std::size_t>(std::ranges::count_if(
        utf8, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
}

std::string extensionFor(const fs::path& source, MediaImportKind kind) {
    constexpr std::size_t longest = 12;
    if (kind == MediaImportKind::pdf) return "pdf";
    std::string own = source.extension().string();
    if (!own.empty()) own.erase(0, 1);
    if (!own.empty() && isValidUtf8(own) && characterCount(own) <= longest && isAlphanumeric(own))
        return lowercased(own);
    return kind == MediaImportKind::image ? "img" : "video";
}

/// Neither a pipe nor a device nor a folder.
FileDescriptor openedSource(const StagingOrder& order, std::int64_t& size) {
    const auto path = order.source.filePath();
    struct stat status{};
    // Looked at before it is opened: to open a device may already do something.
    if (!path || ::stat(path->c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        throw MediaImportError(Case::unreadableFile, order.source);
    FileDescriptor file(::open(path->c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))
        throw MediaImportError(Case::unreadableFile, order.source);
    size = status.st_size;
    return file;
}

FileDescriptor createdStagingFile(const StagingOrder& order, const fs::path& path) {
    FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!file) throw MediaImportError::importFailed(order.source, "Could not create a staging file."_key);
    return file;
}

/// Copies to the end and returns the digest of what was copied.
std::string copied(const StagingOrder& order, const FileDescriptor& from, const FileDescriptor& to) {
    const std::int64_t limit = order.limits.maximumBytes(order.kind);
    std::vector<std::uint8_t> buffer(bufferBytes);
    std::int64_t total = 0;
    Sha256 digest;
    for (;;) {
        if (order.stop.stop_requested()) throw CancellationError();
        const ssize_t count = ::read(from.get(), buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throwErrno();
        if (count == 0) return digest.hexadecimal();
        total += count;
        // It can have grown since its size was asked for.
        if (total > limit) throw MediaImportError::fileTooLarge(order.source, limit);
        const std::span bytes(buffer.data(), static_cast<std::size_t>(count));
        digest.add(bytes);
        writeWhole(to, bytes);
    }
}

/// On the disk, so that a name for the content is never the name of half of it.
void finish(FileDescriptor file) {
    if (::fsync(file.get()) != 0) throwErrno();
    if (::close(file.release()) != 0 && errno != EINTR) throwErrno();
}

StagedCopy stagedCopy(const StagingOrder& order) {
    std::int64_t size = 0;
    const FileDescriptor source = openedSource(order, size);
    const std::int64_t limit = order.limits.maximumBytes(order.kind);
    if (size > limit) throw MediaImportError::fileTooLarge(order.source, limit);
    createDirectories(order.cacheRoot, folderMode);
    const auto capacity = order.availableCapacity(order.cacheRoot);
    if (capacity && size + order.limits.freeSpaceReserveBytes > *capacity)
        throw MediaImportError(Case::insufficientDiskSpace, order.source);
    const fs::path folder = order.cacheRoot / importFolderName(order.kind);
    const fs::path staging = order.cacheRoot / "MediaImportStaging";
    createDirectories(folder, folderMode);
    createDirectories(staging, folderMode);

    const std::string extension = extensionFor(*order.source.filePath(), order.kind);
    const fs::path path = staging / (order.id.string() + ".partial." + extension);
    FileDescriptor target = createdStagingFile(order, path);
    StagedFile file(path);
    const std::string digest = copied(order, source, target);
    finish(std::move(target));
    return {std::move(file), folder / (std::string(importPrefix) + digest + "." + extension)};
}

}  // namespace

StagedCopy copyToStaging(const StagingOrder& order) {
    try {
        return stagedCopy(order);
    } catch (const std::system_error& error) {
        throw MediaImportError::importFailed(order.source, error.code());
    }
}

void StagedFile::remove() {
    if (!path_.empty()) ::unlink(path_.c_str());
    path_.clear();
}

void StagedFile::moveTo(const fs::path& destination) {
    if (::rename(path_.c_str(), destination.c_str()) != 0) throwErrno();
    path_.clear();
    // The settings will name it, and they survive a power cut. Some file systems refuse this.
    const FileDescriptor folder(
        ::open(destination.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder) ::fsync(folder.get());
}

const char* importFolderName(MediaImportKind kind) {
    switch (kind) {
        case MediaImportKind::image: return "Images";
        case MediaImportKind::video: return "Videos";
        case MediaImportKind::pdf: return "PDFs";
    }
    return "Images";
}

bool beginsAsPDF(const fs::path& file) {
    constexpr std::string_view beginning = "%PDF-";
    const FileDescriptor opened(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    std::array<char, beginning.size()> bytes{};
    const ssize_t count = opened ? ::read(opened.get(), bytes.data(), bytes.size()) : -1;
    if (count < 0) throwErrno();
    return std::string_view(bytes.data(), static_cast<std::size_t>(count)) == beginning;
}

}  // namespace quillmar

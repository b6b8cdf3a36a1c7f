#include "storage/LastShownRows.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <system_error>

#include "base/AtomicFile.h"
#include "base/Files.h"
#include "base/Hash.h"
#include "base/Text.h"

namespace quillmar {

namespace {

/// A file as it was at a moment.
struct FileStamp {
    std::uint64_t bytes = 0;
    std::int64_t seconds = 0;
    std::int64_t nanoseconds = 0;
    bool operator==(const FileStamp&) const = default;
};

/// Before the rows, as this machine lays it out: the file never leaves it.
struct Header {
    std::array<char, 8> magic{'q', 'u', 'i', 'r', 'o', 'w', 's', '\0'};
    std::uint32_t version = 1;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::uint32_t pathBytes = 0;
    FileStamp png;
    std::array<char, LastShownRows::firstRow - 56> path{};
    std::uint64_t checksum = 0;  ///< of all before it
};
static_assert(sizeof(Header) == LastShownRows::firstRow);

std::uint64_t checksumOf(const Header& header) {
    return fnv1a64({reinterpret_cast<const char*>(&header), offsetof(Header, checksum)});
}

std::optional<FileStamp> stampOf(const std::filesystem::path& file) {
    struct stat status{};
    if (::stat(file.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    return FileStamp{static_cast<std::uint64_t>(status.st_size), status.st_mtim.tv_sec,
                     status.st_mtim.tv_nsec};
}

std::filesystem::path rowsFile(const std::filesystem::path& folder, const std::string& key) {
    return folder / (replacingNonAlphanumerics(key, '-') + ".rows");
}

bool isSound(const Header& header) {
    return header.magic == Header().magic && header.version == Header().version &&
           header.checksum == checksumOf(header) && header.pathBytes <= header.path.size() &&
           header.width >= 1 && header.height >= 1 && header.width <= PixelBuffer::maximumSide &&
           header.height <= PixelBuffer::maximumSide;
}

std::size_t rowsBytes(PixelSize size) {
    return static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height) *
           PixelBuffer::pixelBytes;
}

/// A file that others cannot change under the reader: of the user's own, and no link into somewhere else.
FileDescriptor openedOwn(const std::filesystem::path& file, struct stat& status) {
    // Not blocking: opening a FIFO would wait for a writer for ever.
    FileDescriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    const bool isOwn = descriptor && ::fstat(descriptor.get(), &status) == 0 && S_ISREG(status.st_mode) &&
                       status.st_uid == ::geteuid() && (status.st_mode & 0022) == 0;
    return isOwn ? std::move(descriptor) : FileDescriptor();
}

/// What a process that was killed has left of such a file: each is as large as a whole one.
void removeUnfinished(const std::filesystem::path& folder, const std::filesystem::path& file) {
    const std::string prefix = "." + file.filename().string() + ".";
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(folder, ignored)) {
        if (entry.path().filename().string().starts_with(prefix)) {
            std::filesystem::remove(entry.path(), ignored);
        }
    }
}

}  // namespace

void LastShownRows::write(const std::filesystem::path& folder, const std::string& key,
                          const std::filesystem::path& png, const PixelBuffer& pixels) {
    const auto stamp = stampOf(png);
    const std::string& path = png.native();
    Header header{.width = pixels.size().width,
                  .height = pixels.size().height,
                  .pathBytes = static_cast<std::uint32_t>(path.size()),
                  .png = stamp.value_or(FileStamp{})};
    if (!stamp || path.size() > header.path.size()) {
        throw std::system_error(stamp ? ENAMETOOLONG : ENOENT, std::generic_category());
    }
    path.copy(header.path.data(), path.size());
    header.checksum = checksumOf(header);
    createDirectories(folder, 0700);
    removeUnfinished(folder, rowsFile(folder, key));
    AtomicFile file(rowsFile(folder, key), 0600, Durability::reproducible);
    file.append({reinterpret_cast<const std::uint8_t*>(&header), sizeof header});
    file.append(pixels.bytes());
    file.commit();
}

void LastShownRows::remove(const std::filesystem::path& folder, const std::string& key) {
    std::error_code ignored;
    std::filesystem::remove(rowsFile(folder, key), ignored);
}

std::optional<LastShownRows> LastShownRows::open(const std::filesystem::path& folder,
                                                 const std::string& key) {
    struct stat status{};
    FileDescriptor file = openedOwn(rowsFile(folder, key), status);
    Header header;
    if (!file || ::pread(file.get(), &header, sizeof header, 0) != sizeof header || !isSound(header)) {
        return std::nullopt;
    }
    const PixelSize size{header.width, header.height};
    const std::filesystem::path png(std::string_view(header.path.data(), header.pathBytes));
    if (static_cast<std::size_t>(status.st_size) != firstRow + rowsBytes(size) ||
        stampOf(png) != header.png) {
        return std::nullopt;
    }
    return LastShownRows(std::move(file), size, png);
}

void LastShownRows::fetch() {
    mapping_ = std::make_unique<Mapping>(descriptor(), firstRow + rowsBytes(size_));
}

LastShownRows::Mapping::Mapping(int file, std::size_t bytes)
    : address(::mmap(nullptr, bytes, PROT_READ, MAP_SHARED | MAP_POPULATE, file, 0)), length(bytes) {}

LastShownRows::Mapping::~Mapping() {
    if (address != MAP_FAILED) ::munmap(address, length);
}

}  // namespace quillmar

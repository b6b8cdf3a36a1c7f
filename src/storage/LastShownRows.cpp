#include "storage/LastShownRows.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <system_error>
#include <vector>

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
    std::uint32_t version = 2;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::uint32_t pathBytes = 0;
    FileStamp png;
    std::uint64_t rowsChecksum = 0;
    std::array<char, LastShownRows::firstRow - 64> path{};
    std::uint64_t checksum = 0;  ///< of all before it
};
static_assert(sizeof(Header) == LastShownRows::firstRow);

std::uint64_t checksumOf(const Header& header) {
    return fnv1a64({reinterpret_cast<const char*>(&header), offsetof(Header, checksum)});
}

/// Finds what is not as it was written, in less time than the disk takes: eight sums side by side.
class RowsChecksum {
public:
    /// All but the last piece have a multiple of `blockBytes` bytes.
    static constexpr std::size_t blockBytes = 64;

    void add(std::span<const std::uint8_t> bytes) {
        for (; bytes.size() >= blockBytes; bytes = bytes.subspan(blockBytes)) addBlock(bytes.data());
        std::array<std::uint8_t, blockBytes> rest{};
        std::ranges::copy(bytes, rest.begin());
        if (!bytes.empty()) addBlock(rest.data());
    }
    std::uint64_t value() const {
        return fnv1a64({reinterpret_cast<const char*>(sums_.data()), sizeof sums_});
    }

private:
    void addBlock(const std::uint8_t* block) {
        for (std::size_t i = 0; i < sums_.size(); ++i) {
            std::uint64_t word = 0;
            std::memcpy(&word, block + i * sizeof word, sizeof word);
            sums_[i] = (std::rotl(sums_[i], 29) ^ word) * 0x9e3779b97f4a7c15u;
        }
    }
    std::array<std::uint64_t, blockBytes / 8> sums_{1, 2, 3, 4, 5, 6, 7, 8};
};

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

}  // namespace

void LastShownRows::write(const std::filesystem::path& folder, const std::string& key,
                          const std::filesystem::path& png, const PixelBuffer& pixels) {
    const auto stamp = stampOf(png);
    const std::string& path = png.native();
    Header header{.width = pixels.size().width,
                  .height = pixels.size().height,
                  .pathBytes = static_cast<std::uint32_t>(path.size()),
                  .png = stamp.value_or(FileStamp{})};
    RowsChecksum checksum;
    checksum.add(pixels.bytes());
    header.rowsChecksum = checksum.value();
    if (!stamp || path.size() > header.path.size()) {
        throw std::system_error(stamp ? ENAMETOOLONG : ENOENT, std::generic_category());
    }
    path.copy(header.path.data(), path.size());
    header.checksum = checksumOf(header);
    createDirectories(folder, 0700);
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
    return LastShownRows(std::move(file), size, png, header.rowsChecksum);
}

bool LastShownRows::fetch() const {
    constexpr std::size_t pieceBytes = 1 << 18;
    std::vector<std::uint8_t> piece(pieceBytes);
    RowsChecksum checksum;
    const std::size_t end = firstRow + rowsBytes(size_);
    for (std::size_t at = firstRow; at < end; at += piece.size()) {
        piece.resize(std::min(pieceBytes, end - at));
        const ssize_t count = ::pread(file_.get(), piece.data(), piece.size(), static_cast<off_t>(at));
        if (count != std::ssize(piece)) return false;  // a disk that cannot be read any more
        checksum.add(piece);
    }
    return checksum.value() == checksum_;
}

}  // namespace quillmar

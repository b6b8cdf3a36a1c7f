#include "wallpaper/GeneratedWallpaper.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

#include "base/Crc32.h"
#include "base/Enum.h"
#include "base/FileDescriptor.h"
#include "base/Hash.h"
#include "base/Text.h"

namespace quillmar {
namespace {

using ByteView = std::span<const std::uint8_t>;

constexpr std::array<std::uint8_t, 8> signature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
constexpr std::size_t chunkHeaderSize = 8;
constexpr std::size_t checksumSize = 4;
constexpr std::uint32_t headerSize = 13;

std::uint32_t bigEndian(ByteView bytes) {
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 |
           bytes[3];
}

class PngFile {
public:
    explicit PngFile(const std::filesystem::path& file)
        : file_(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
        struct stat status{};
        if (file_ && ::fstat(file_.get(), &status) == 0 && S_ISREG(status.st_mode)) {
            size_ = static_cast<std::uint64_t>(status.st_size);
        }
    }

    std::uint64_t size() const { return size_; }
    template <std::size_t N>
    std::optional<std::array<std::uint8_t, N>> read(std::uint64_t offset) const {
        std::array<std::uint8_t, N> bytes;
        const ssize_t count = ::pread(file_.get(), bytes.data(), N, static_cast<off_t>(offset));
        if (count != static_cast<ssize_t>(N)) return std::nullopt;
        return bytes;
    }

private:
    FileDescriptor file_;
    std::uint64_t size_ = 0;
};

bool isExpectedHeader(const PngFile& file, PixelSize size) {
    constexpr std::size_t chunkSize = chunkHeaderSize + headerSize + checksumSize;
    const auto start = file.read<signature.size() + chunkSize>(0);
    if (!start || !std::ranges::equal(ByteView(*start).first(signature.size()), signature)) return false;
    const ByteView chunk = ByteView(*start).subspan(signature.size());
    const ByteView typed = chunk.subspan(4, 4 + headerSize);
    if (bigEndian(chunk) != headerSize || std::memcmp(typed.data(), "IHDR", 4) != 0) return false;
    if (crc32(typed) != bigEndian(chunk.subspan(chunkHeaderSize + headerSize))) return false;
    const ByteView header = typed.subspan(4);
    constexpr std::uint8_t rgb = 2;
    constexpr std::uint8_t rgba = 6;
    return bigEndian(header) == static_cast<std::uint32_t>(size.width) &&
           bigEndian(header.subspan(4)) == static_cast<std::uint32_t>(size.height) && header[8] == 8 &&
           (header[9] == rgb || header[9] == rgba) && header[10] == 0 && header[11] == 0 && header[12] == 0;
}

/// Deflate in a zlib stream, as the header of the first two bytes says.
bool isZlibHeader(ByteView bytes) { return (bytes[0] & 0x0f) == 8 && (bytes[0] * 256 + bytes[1]) % 31 == 0; }

/// The chunks behind the header: image data in one run, no animation, the end exactly at the end of the file.
bool isWholeSingleFrame(const PngFile& file) {
    std::uint64_t offset = signature.size() + chunkHeaderSize + headerSize + checksumSize;
    enum class ImageData { ahead, running, over } data = ImageData::ahead;
    while (const auto header = file.read<chunkHeaderSize>(offset)) {
        const std::uint32_t length = bigEndian(*header);
        const std::string_view type(reinterpret_cast<const char*>(header->data()) + 4, 4);
        const std::uint64_t next = offset + chunkHeaderSize + length + checksumSize;
        if (next > file.size() || type == "acTL" || type == "fcTL") return false;
        if (type == "IEND") return length == 0 && data != ImageData::ahead && next == file.size();
        if (type == "IDAT") {
            if (data == ImageData::over) return false;
            if (data == ImageData::ahead) {
                const auto stream = file.read<2>(offset + chunkHeaderSize);
                if (length < 2 || !stream || !isZlibHeader(*stream)) return false;
            }
            data = ImageData::running;
        } else if (data == ImageData::running) {
            data = ImageData::over;
        }
        offset = next;
    }
    return false;
}

}  // namespace

std::string solidColorFileName(const DisplayInfo& display, PixelSize size,
                               const std::string& normalizedColor) {
    return fmt::format("solid-{}-{}x{}-{}.png", replacingNonAlphanumerics(display.id, '-'), size.width,
                       size.height, normalizedColor);
}

std::string imageFingerprint(const std::filesystem::path& source, const std::string& caption) {
    struct stat status{};
    std::string time;
    std::string size;
    if (::stat(source.c_str(), &status) == 0) {
        time = shortestDecimal(static_cast<double>(status.st_mtim.tv_sec) +
                               static_cast<double>(status.st_mtim.tv_nsec) / 1e9);
        size = std::to_string(status.st_size);
    }
    const std::string path = source.lexically_normal().string();
    return hexadecimal(fnv1a64(path + "|" + time + "|" + size + "|" + caption));
}

std::string imageFileName(const DisplayInfo& display, PixelSize size, ImagePresentationLayout layout,
                          const std::string& normalizedBackground, const std::string& fingerprint) {
    // A text that is no colour is in the name as it stands, and must not lead to another folder.
    // File systems take names of up to 255 bytes.
    constexpr std::size_t longestText = 64;
    std::string background = normalizedBackground.size() > longestText
                                 ? hexadecimal(fnv1a64(normalizedBackground))
                                 : normalizedBackground;
    std::ranges::replace_if(background, [](char c) { return c == '/' || c == 0; }, '-');
    return fmt::format("image-v2-{}-{}x{}-{}-{}-{}.png", replacingNonAlphanumerics(display.id, '-'),
                       size.width, size.height, enumName(layout), background, fingerprint);
}

bool isValidGeneratedPng(const std::filesystem::path& file, PixelSize size) {
    const PngFile png(file);
    return isExpectedHeader(png, size) && isWholeSingleFrame(png);
}

}  // namespace quillmar

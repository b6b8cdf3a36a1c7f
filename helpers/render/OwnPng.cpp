#include "render/OwnPng.h"

#include <isa-l/igzip_lib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

#if defined(__x86_64__) && !defined(QUILLMAR_ONE_TARGET)
#define QUILLMAR_EVERY_TARGET __attribute__((target_clones("arch=x86-64-v4", "arch=x86-64-v3", "default")))
#else
#define QUILLMAR_EVERY_TARGET
#endif

namespace quillmar {
namespace {

constexpr std::array<std::uint8_t, 8> signature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
/// Signature, the chunk of the head, and length and name of the chunk of pixels.
constexpr std::size_t headBytes = 8 + 25 + 8;
/// The checksum of the pixels and the closing chunk.
constexpr std::size_t tailBytes = 4 + 12;
constexpr std::uint8_t filterUp = 2;
/// Small enough to stay in the processor's cache between reading, inflating and drawing.
constexpr std::size_t readBytes = 64 * 1024;
constexpr std::size_t inflatedBytes = 128 * 1024;
/// A row is read in steps of more bytes than a pixel has.
constexpr std::size_t slack = 16;

typedef std::uint8_t Sixteen __attribute__((vector_size(16)));

std::uint32_t number(const std::uint8_t* bytes) {
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 |
           bytes[3];
}

/// How many bytes of pixels a file has that is of our kind and of this size, and whole as far as its lengths
/// say; nothing otherwise.
std::size_t pixelChunkBytes(int descriptor, PixelSize size) {
    struct stat status{};
    std::array<std::uint8_t, headBytes> head;
    if (::fstat(descriptor, &status) != 0 ||
        ::pread(descriptor, head.data(), head.size(), 0) != static_cast<ssize_t>(head.size()))
        return 0;
    constexpr std::array<std::uint8_t, 5> kind{8, 2, 0, 0, 0};  // bits, red green blue, no variants
    const bool isOurs =
        std::ranges::equal(std::span(head).first(8), signature) && std::memcmp(&head[12], "IHDR", 4) == 0 &&
        number(&head[16]) == static_cast<std::uint32_t>(size.width) &&
        number(&head[20]) == static_cast<std::uint32_t>(size.height) &&
        std::memcmp(&head[24], kind.data(), kind.size()) == 0 && std::memcmp(&head[37], "IDAT", 4) == 0;
    const std::size_t bytes = number(&head[33]);
    return isOurs && status.st_size == static_cast<off_t>(headBytes + bytes + tailBytes) ? bytes : 0;
}

/// Adds differences of three bytes a pixel to the row above. `differences` is readable a little beyond its
/// end. `above` may be null for the first row.
QUILLMAR_EVERY_TARGET
void addRow(const std::uint8_t* differences, const std::uint8_t* above, std::uint8_t* target, int width) {
    int x = 0;
    for (; x + 4 <= width; x += 4, differences += 12, target += 16) {
        Sixteen four;
        Sixteen base{0, 0, 0, 0xff, 0, 0, 0, 0xff, 0, 0, 0, 0xff, 0, 0, 0, 0xff};
        std::memcpy(&four, differences, sizeof four);
        const Sixteen none{};
        four = __builtin_shufflevector(four, none, 2, 1, 0, 16, 5, 4, 3, 16, 8, 7, 6, 16, 11, 10, 9, 16);
        if (above) {
            std::memcpy(&base, above, sizeof base);
            above += 16;
        }
        four += base;
        std::memcpy(target, &four, sizeof four);
    }
    for (; x < width; ++x, differences += 3, target += 4) {
        for (int channel = 0; channel < 3; ++channel)
            target[channel] =
                static_cast<std::uint8_t>(differences[2 - channel] + (above ? above[channel] : 0));
        target[3] = 0xff;
        if (above) above += 4;
    }
}

/// The pixels' chunk as inflated bytes, a piece at a time.
class Inflating {
public:
    Inflating(int descriptor, std::size_t bytes) : descriptor_(descriptor), left_(bytes), read_(readBytes) {
        isal_inflate_init(&state_);
        state_.crc_flag = ISAL_ZLIB;
    }
    /// Fills `target` as far as there are bytes and says how far that was. Throws `PictureDecodingError`.
    std::size_t inflate(std::span<std::uint8_t> target) {
        state_.next_out = target.data();
        state_.avail_out = static_cast<std::uint32_t>(target.size());
        while (state_.avail_out > 0 && state_.block_state != ISAL_BLOCK_FINISH) {
            // At the end of the file there may still be bytes inside the library.
            const bool isLast = state_.avail_in == 0 && !refill();
            const std::uint32_t before = state_.avail_out;
            if (isal_inflate(&state_) != ISAL_DECOMP_OK)
                throw PictureDecodingError("The picture is damaged.");
            if (isLast && state_.avail_out == before && state_.block_state != ISAL_BLOCK_FINISH)
                throw PictureDecodingError("The picture ends too early.");
        }
        return target.size() - state_.avail_out;
    }
    /// After the last byte: whether that was the end and the checksum holds.
    bool isComplete() {
        std::uint8_t none = 0;
        while (state_.block_state != ISAL_BLOCK_FINISH) {
            if (inflate({&none, 1}) != 0) return false;
        }
        return true;
    }

private:
    bool refill() {
        const ssize_t count = ::pread(descriptor_, read_.data(), std::min(left_, read_.size()), at_);
        if (count < 0) throw PictureDecodingError("The file cannot be read.");
        at_ += count;
        left_ -= static_cast<std::size_t>(count);
        state_.next_in = read_.data();
        state_.avail_in = static_cast<std::uint32_t>(count);
        return count > 0;
    }

    int descriptor_;
    off_t at_ = headBytes;
    std::size_t left_;
    Bytes read_;
    inflate_state state_{};
};

}  // namespace

bool loadOwnPng(int descriptor, const CanvasPixels& canvas) {
    const std::size_t bytes = pixelChunkBytes(descriptor, canvas.size);
    if (bytes == 0) return false;
    const std::size_t stored = static_cast<std::size_t>(canvas.size.width) * 3 + 1;
    const std::size_t batch = std::max<std::size_t>(inflatedBytes / stored, 1);
    Bytes rows(batch * stored + slack);
    const auto inflating = std::make_unique<Inflating>(descriptor, bytes);
    const std::uint8_t* above = nullptr;
    for (int y = 0; y < canvas.size.height;) {
        const std::size_t count = std::min(batch, static_cast<std::size_t>(canvas.size.height - y));
        if (inflating->inflate(std::span(rows).first(count * stored)) != count * stored)
            throw PictureDecodingError("The picture ends too early.");
        for (std::size_t i = 0; i < count; ++i, ++y) {
            if (rows[i * stored] != filterUp) return false;
            std::uint8_t* target = canvas.row(y).data();
            addRow(&rows[i * stored + 1], above, target, canvas.size.width);
            above = target;
        }
    }
    if (!inflating->isComplete()) throw PictureDecodingError("The picture is damaged.");
    return true;
}

}  // namespace quillmar

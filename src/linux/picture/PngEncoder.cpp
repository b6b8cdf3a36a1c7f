#include "linux/picture/PngEncoder.h"

#include <isa-l/crc.h>
#include <isa-l/igzip_lib.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <stdexcept>

#if defined(__x86_64__) && !defined(QUILLMAR_ONE_TARGET)
#define QUILLMAR_EVERY_TARGET __attribute__((target_clones("arch=x86-64-v4", "arch=x86-64-v3", "default")))
#else
#define QUILLMAR_EVERY_TARGET
#endif

namespace quillmar {

namespace {

constexpr std::array<std::uint8_t, 8> signature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
constexpr std::size_t headerChunkBytes = 25;
constexpr std::size_t pixelsAt = signature.size() + headerChunkBytes;
/// Rows are compressed in batches of about this size: single rows cost the compressor more calls than work.
constexpr std::size_t batchBytes = 256 * 1024;
constexpr std::uint8_t filterUp = 2;

typedef std::uint8_t Sixteen __attribute__((vector_size(16)));

std::array<std::uint8_t, 4> number(std::size_t value) {
    std::array<std::uint8_t, 4> bytes;
    for (std::size_t i = 0; i < 4; ++i) bytes[i] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
    return bytes;
}

/// What a row of `count` bytes differs in from the row above, which it takes the place of.
QUILLMAR_EVERY_TARGET
void filterRow(const std::uint8_t* __restrict row, std::uint8_t* __restrict above,
               std::uint8_t* __restrict difference, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        difference[i] = static_cast<std::uint8_t>(row[i] - above[i]);
        above[i] = row[i];
    }
}

/// Blue, green, red and one that is not used become red, green, blue. Writes up to four bytes beyond the end.
QUILLMAR_EVERY_TARGET
void packRow(const std::uint8_t* __restrict pixels, std::uint8_t* __restrict rgb, std::size_t count) {
    std::size_t x = 0;
    for (; x + 4 <= count; x += 4, pixels += 16, rgb += 12) {
        Sixteen four;
        std::memcpy(&four, pixels, sizeof four);
        four = __builtin_shufflevector(four, four, 2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, 3, 7, 11, 15);
        std::memcpy(rgb, &four, sizeof four);
    }
    for (; x < count; ++x, pixels += 4, rgb += 3) {
        rgb[0] = pixels[2];
        rgb[1] = pixels[1];
        rgb[2] = pixels[0];
    }
}

/// A whole chunk: `named` is its name and its content.
void appendChunk(ByteOutput& output, std::span<const std::uint8_t> named) {
    output.append(number(named.size() - 4));
    output.append(named);
    output.append(number(crc32_gzip_refl(0, named.data(), named.size())));
}

}  // namespace

struct PngEncoder::Deflater {
    Deflater() : level(ISAL_DEF_LVL1_DEFAULT) {
        isal_deflate_init(&stream);
        stream.level = 1;
        stream.level_buf = level.data();
        stream.level_buf_size = static_cast<std::uint32_t>(level.size());
        stream.gzip_flag = IGZIP_ZLIB;
    }
    isal_zstream stream;
    Bytes level;
};

PngEncoder::PngEncoder(int width, int height, ByteOutput& output)
    : output_(output), rowBytes_(static_cast<std::size_t>(std::max(width, 0)) * 3), rowsLeft_(height) {
    if (width < 1 || height < 1 || width > maximumSide || height > maximumSide) {
        throw std::runtime_error("A picture of " + std::to_string(width) + "x" + std::to_string(height) +
                                 " pixels cannot be made.");
    }
    deflater_ = std::make_unique<Deflater>();
    previous_.resize(rowBytes_);
    filtered_.resize(std::max(batchBytes, rowBytes_ + 1));
    compressed_.resize(batchBytes);

    std::array<std::uint8_t, 17> header{'I', 'H', 'D', 'R'};
    std::ranges::copy(number(static_cast<std::size_t>(width)), &header[4]);
    std::ranges::copy(number(static_cast<std::size_t>(height)), &header[8]);
    header[12] = 8;  // bits a channel
    header[13] = 2;  // red, green, blue
    output_.append(signature);
    appendChunk(output_, header);
    output_.append(number(0));  // the length, known when the chunk is complete
    appendToChunk(asBytes("IDAT"));
    chunkBytes_ = 0;
}

PngEncoder::~PngEncoder() = default;

std::uint8_t* PngEncoder::placeForRow() {
    if (rowsLeft_ < 1) throw std::logic_error("a row that the picture has no place for");
    if (filtered_.size() - used_ < rowBytes_ + 1) flush();
    std::uint8_t* row = filtered_.data() + used_;
    *row = filterUp;
    used_ += rowBytes_ + 1;
    --rowsLeft_;
    return row + 1;
}

void PngEncoder::writeRow(std::span<const std::uint8_t> rgb) {
    if (rgb.size() != rowBytes_) throw std::logic_error("a row of another length");
    filterRow(rgb.data(), previous_.data(), placeForRow(), rowBytes_);
}

void PngEncoder::writePixels(std::span<const std::uint8_t> pixels) {
    if (pixels.size() / 4 * 3 != rowBytes_) throw std::logic_error("a row of another length");
    packed_.resize(rowBytes_ + 16);
    packRow(pixels.data(), packed_.data(), rowBytes_ / 3);
    filterRow(packed_.data(), previous_.data(), placeForRow(), rowBytes_);
}

void PngEncoder::repeatRow(int count) {
    if (count > rowsLeft_) throw std::logic_error("rows that the picture has no place for");
    flush();
    const std::size_t rows =
        std::min(static_cast<std::size_t>(std::max(count, 0)), filtered_.size() / (rowBytes_ + 1));
    Bytes same(rows * (rowBytes_ + 1));
    for (std::size_t i = 0; i < rows; ++i) same[i * (rowBytes_ + 1)] = filterUp;
    rowsLeft_ -= std::max(count, 0);
    for (std::size_t left = static_cast<std::size_t>(std::max(count, 0)); left > 0;) {
        const std::size_t now = std::min(left, rows);
        compress(std::span(same).first(now * (rowBytes_ + 1)));
        left -= now;
    }
}

void PngEncoder::finish() {
    if (rowsLeft_ != 0) throw std::runtime_error("The picture is not complete.");
    compress(std::span(filtered_).first(used_), true);
    output_.append(number(checksum_));
    appendChunk(output_, asBytes("IEND"));
    output_.overwrite(pixelsAt, number(chunkBytes_));
}

void PngEncoder::flush() {
    compress(std::span(filtered_).first(used_));
    used_ = 0;
}

void PngEncoder::compress(std::span<const std::uint8_t> filtered, bool isLast) {
    isal_zstream& stream = deflater_->stream;
    stream.next_in = const_cast<std::uint8_t*>(filtered.data());  // the library only reads there
    stream.avail_in = static_cast<std::uint32_t>(filtered.size());
    stream.end_of_stream = isLast;
    do {
        stream.next_out = compressed_.data();
        stream.avail_out = static_cast<std::uint32_t>(compressed_.size());
        if (isal_deflate(&stream) != COMP_OK)
            throw std::runtime_error("The picture could not be compressed.");
        appendToChunk(std::span(compressed_).first(compressed_.size() - stream.avail_out));
    } while (stream.avail_in > 0 || stream.avail_out == 0);
}

void PngEncoder::appendToChunk(std::span<const std::uint8_t> bytes) {
    chunkBytes_ += bytes.size();
    if (chunkBytes_ > std::numeric_limits<std::int32_t>::max())
        throw std::runtime_error("The picture is too large.");
    checksum_ = crc32_gzip_refl(checksum_, bytes.data(), bytes.size());
    output_.append(bytes);
}

}  // namespace quillmar

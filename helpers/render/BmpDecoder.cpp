#include "render/BmpDecoder.h"

#include <unistd.h>

#include <array>
#include <cstring>
#include <utility>

namespace quillmar {
namespace {

constexpr std::size_t fileHeadBytes = 14;
constexpr std::size_t infoBytes = 40;

void readAt(int descriptor, std::int64_t offset, std::span<std::uint8_t> bytes) {
    if (::pread(descriptor, bytes.data(), bytes.size(), offset) != static_cast<ssize_t>(bytes.size()))
        throw PictureDecodingError("The picture ends too early.");
}

std::uint32_t number(std::span<const std::uint8_t> bytes, std::size_t at, std::size_t count) {
    std::uint32_t value = 0;
    for (std::size_t i = count; i-- > 0;) value = value << 8 | bytes[at + i];
    return value;
}

std::uint32_t pixelOf(const std::uint8_t* bgr) {
    return std::uint32_t{bgr[0]} | std::uint32_t{bgr[1]} << 8 | std::uint32_t{bgr[2]} << 16 | 0xff000000;
}

}  // namespace

class BmpDecoder::Rows final : public RowSource {
public:
    Rows(int descriptor, PixelSize size, Layout layout, const GridRegion& region)
        : descriptor_(::dup(descriptor)),
          size_(size),
          layout_(std::move(layout)),
          region_(region),
          next_(region.top),
          stored_(
              (static_cast<std::size_t>(size.width) * static_cast<std::size_t>(layout_.bitsPerPixel) + 31) /
              32 * 4),
          row_(static_cast<std::size_t>(region.width()) * pixelBytes) {
        if (descriptor_ < 0) throw PictureDecodingError("The file cannot be read.");
    }
    Rows(const Rows&) = delete;
    Rows& operator=(const Rows&) = delete;
    ~Rows() override { ::close(descriptor_); }

    std::span<const std::uint8_t> nextRow() override {
        const std::int64_t storedRow = layout_.isUpsideDown ? size_.height - 1 - next_ : next_;
        readAt(descriptor_, layout_.pixelsAt + storedRow * static_cast<std::int64_t>(stored_.size()),
               stored_);
        std::uint8_t* target = row_.data();
        for (int x = region_.left; x < region_.right; ++x, target += pixelBytes) {
            const std::uint32_t pixel = pixelAt(static_cast<std::size_t>(x));
            std::memcpy(target, &pixel, pixelBytes);
        }
        ++next_;
        return row_;
    }

private:
    std::uint32_t pixelAt(std::size_t x) const {
        const auto bits = static_cast<std::size_t>(layout_.bitsPerPixel);
        if (bits >= 24) return pixelOf(&stored_[x * bits / 8]);
        const std::size_t perByte = 8 / bits;
        const std::size_t shift = (perByte - 1 - x % perByte) * bits;
        const std::size_t index = (stored_[x / perByte] >> shift) & ((1u << bits) - 1);
        return index < layout_.palette.size() ? layout_.palette[index] : 0xff000000;
    }

    int descriptor_;
    PixelSize size_;
    Layout layout_;
    GridRegion region_;
    int next_;
    Bytes stored_;
    Bytes row_;
};

BmpDecoder::BmpDecoder(int descriptor) : descriptor_(::dup(descriptor)) {
    if (descriptor_ < 0) throw PictureDecodingError("The file cannot be read.");
    try {
        readHead();
    } catch (...) {
        ::close(descriptor_);
        throw;
    }
}

BmpDecoder::~BmpDecoder() { ::close(descriptor_); }

void BmpDecoder::readHead() {
    std::array<std::uint8_t, fileHeadBytes + infoBytes> head;
    readAt(descriptor_, 0, head);
    layout_.pixelsAt = number(head, 10, 4);
    const std::uint32_t declaredInfoBytes = number(head, 14, 4);
    const auto width = static_cast<std::int32_t>(number(head, 18, 4));
    const std::int64_t height = static_cast<std::int32_t>(number(head, 22, 4));
    layout_.bitsPerPixel = static_cast<int>(number(head, 28, 2));
    const std::uint32_t compression = number(head, 30, 4);
    layout_.isUpsideDown = height > 0;
    checkPictureSize(width, std::abs(height));
    size_ = {width, static_cast<int>(std::abs(height))};

    constexpr std::uint32_t none = 0;
    constexpr std::uint32_t masks = 3;  // of the usual order in all files that have 32 bits
    const int bits = layout_.bitsPerPixel;
    const bool isPlain =
        compression == none && (bits == 1 || bits == 4 || bits == 8 || bits == 24 || bits == 32);
    if (declaredInfoBytes < infoBytes || !(isPlain || (compression == masks && bits == 32)))
        throw PictureDecodingError("This kind of bitmap is not known.");
    if (bits > 8) return;
    const std::uint32_t most = 1u << bits;
    const std::uint32_t used = number(head, 46, 4);
    Bytes colors(std::size_t{used == 0 || used > most ? most : used} * 4);
    readAt(descriptor_, std::int64_t{fileHeadBytes} + declaredInfoBytes, colors);
    for (std::size_t i = 0; i < colors.size(); i += 4) layout_.palette.push_back(pixelOf(&colors[i]));
}

PixelGrid BmpDecoder::chooseGrid(std::int64_t, std::int64_t) {
    return {size_.width, size_.height, static_cast<double>(size_.width), static_cast<double>(size_.height)};
}

std::unique_ptr<RowSource> BmpDecoder::rows(const GridRegion& region, RgbColor) {
    return std::make_unique<Rows>(descriptor_, size_, layout_, region);
}

}  // namespace quillmar

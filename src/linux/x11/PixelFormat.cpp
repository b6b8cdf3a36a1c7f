#include "linux/x11/PixelFormat.h"

#include <bit>
#include <cstring>
#include <stdexcept>

namespace quillmar {

PixelFormat::Channel PixelFormat::channel(std::uint32_t mask) {
    const int shift = std::countr_zero(mask);
    if (mask == 0 || std::popcount(mask) > 16 || !std::has_single_bit((mask >> shift) + 1)) {
        throw std::runtime_error("The X server's colours are of a kind that cannot be drawn.");
    }
    return {shift, mask >> shift};
}

PixelFormat::PixelFormat(const Layout& layout)
    : layout_(layout),
      isPlain_(layout == Layout{}),
      red_(channel(layout.redMask)),
      green_(channel(layout.greenMask)),
      blue_(channel(layout.blueMask)) {
    if (layout.bytesPerPixel < 2 || layout.bytesPerPixel > 4) {
        throw std::runtime_error("The X server's pixels are of a size that cannot be drawn.");
    }
}

void PixelFormat::pack(std::span<const std::uint8_t> plain, std::span<std::uint8_t> packed) const {
    if (isPlain_) {
        std::memcpy(packed.data(), plain.data(), plain.size());
        return;
    }
    const int last = layout_.bytesPerPixel - 1;
    std::uint8_t* out = packed.data();
    for (std::size_t i = 0; i + 3 < plain.size(); i += 4) {
        const std::uint32_t pixel = blue_.put(plain[i]) | green_.put(plain[i + 1]) | red_.put(plain[i + 2]);
        for (int byte = 0; byte <= last; ++byte) {
            const int shift = 8 * (layout_.isLeastSignificantByteFirst ? byte : last - byte);
            *out++ = static_cast<std::uint8_t>(pixel >> shift);
        }
    }
}

void PixelFormat::unpack(std::span<const std::uint8_t> packed, std::span<std::uint8_t> rgb) const {
    const std::uint8_t* in = packed.data();
    const int last = layout_.bytesPerPixel - 1;
    for (std::size_t i = 0; i + 2 < rgb.size(); i += 3, in += layout_.bytesPerPixel) {
        if (isPlain_) {
            rgb[i] = in[2];
            rgb[i + 1] = in[1];
            rgb[i + 2] = in[0];
            continue;
        }
        std::uint32_t pixel = 0;
        for (int byte = 0; byte <= last; ++byte) {
            const int shift = 8 * (layout_.isLeastSignificantByteFirst ? byte : last - byte);
            pixel |= static_cast<std::uint32_t>(in[byte]) << shift;
        }
        rgb[i] = red_.take(pixel);
        rgb[i + 1] = green_.take(pixel);
        rgb[i + 2] = blue_.take(pixel);
    }
}

}  // namespace quillmar

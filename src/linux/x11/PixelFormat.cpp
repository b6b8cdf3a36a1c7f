#include "linux/x11/PixelFormat.h"

#include <fmt/format.h>

#include <bit>
#include <cstring>

#include "linux/x11/X11Connection.h"

namespace quillmar {

PixelFormat::Channel PixelFormat::channel(std::uint32_t mask) {
    const int shift = std::countr_zero(mask);
    if (mask == 0 || std::popcount(mask) > 16 || !std::has_single_bit((mask >> shift) + 1)) {
        throw X11Failure(DesktopPictureError::Case::refused, fmt::format("{:x}", mask));
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
        throw X11Failure(DesktopPictureError::Case::refused, fmt::format("{} bpp", 8 * layout.bytesPerPixel));
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

void PixelFormat::unpack(std::span<const std::uint8_t> packed, std::span<std::uint8_t> plain) const {
    if (isPlain_) {
        std::memcpy(plain.data(), packed.data(), plain.size());
        return;
    }
    const std::uint8_t* in = packed.data();
    const int last = layout_.bytesPerPixel - 1;
    for (std::size_t i = 0; i + 3 < plain.size(); i += 4, in += layout_.bytesPerPixel) {
        std::uint32_t pixel = 0;
        for (int byte = 0; byte <= last; ++byte) {
            const int shift = 8 * (layout_.isLeastSignificantByteFirst ? byte : last - byte);
            pixel |= static_cast<std::uint32_t>(in[byte]) << shift;
        }
        plain[i] = blue_.take(pixel);
        plain[i + 1] = green_.take(pixel);
        plain[i + 2] = red_.take(pixel);
    }
}

}  // namespace quillmar

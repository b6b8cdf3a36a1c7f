#pragma once
#include <cstdint>
#include <span>

namespace quillmar {

/// How a window server lays out the pixels of a true-colour picture.
class PixelFormat {
public:
    struct Layout {
        int bytesPerPixel = 4;  ///< 2, 3 or 4
        bool isLeastSignificantByteFirst = true;
        std::uint32_t redMask = 0xff0000;
        std::uint32_t greenMask = 0x00ff00;
        std::uint32_t blueMask = 0x0000ff;
        bool operator==(const Layout&) const = default;
    };

    /// Throws `X11Failure` for a layout that cannot be drawn.
    explicit PixelFormat(const Layout& layout);

    int bytesPerPixel() const { return layout_.bytesPerPixel; }
    /// Whether blue, green, red, unused in this order of bytes is just what the server has.
    bool isPlain() const { return isPlain_; }
    /// Four bytes each (blue, green, red, unused) to the server's pixels.
    void pack(std::span<const std::uint8_t> plain, std::span<std::uint8_t> packed) const;
    /// The server's pixels to four bytes each, as many as there is room for.
    void unpack(std::span<const std::uint8_t> packed, std::span<std::uint8_t> plain) const;

private:
    struct Channel {
        int shift;
        std::uint32_t maximum;
        std::uint32_t put(std::uint8_t value) const { return (value * maximum + 127) / 255 << shift; }
        std::uint8_t take(std::uint32_t pixel) const {
            const std::uint32_t value = pixel >> shift & maximum;
            return static_cast<std::uint8_t>((value * 255 + maximum / 2) / maximum);
        }
    };
    static Channel channel(std::uint32_t mask);

    Layout layout_;
    bool isPlain_;
    Channel red_;
    Channel green_;
    Channel blue_;
};

}  // namespace quillmar

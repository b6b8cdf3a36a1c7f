#include "linux/x11/Edid.h"

#include <algorithm>
#include <array>

namespace quillmar {

namespace {

constexpr std::size_t blockBytes = 128;
constexpr std::array<std::uint8_t, 8> header{0x00, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0x00};
constexpr std::size_t firstDescriptorAt = 54;
constexpr std::size_t descriptorBytes = 18;
constexpr std::size_t descriptorCount = 4;
constexpr std::uint8_t serialTextTag = 0xff;
constexpr std::uint8_t monitorNameTag = 0xfc;

/// Three letters of five bits each, A being 1.
std::string makerOf(std::span<const std::uint8_t> block) {
    const unsigned packed = static_cast<unsigned>(block[8]) << 8 | block[9];
    std::string maker;
    for (const int shift : {10, 5, 0}) {
        const unsigned letter = packed >> shift & 0x1f;
        maker += letter >= 1 && letter <= 26 ? static_cast<char>('A' + letter - 1) : '?';
    }
    return maker;
}

std::string textOf(std::span<const std::uint8_t> descriptor) {
    std::string text;
    for (const std::uint8_t byte : descriptor.subspan(5)) {
        if (byte == '\n') break;
        if (byte >= 0x20 && byte < 0x7f) text += static_cast<char>(byte);
    }
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace

std::optional<Edid> parseEdid(std::span<const std::uint8_t> bytes) {
    if (bytes.size() < blockBytes || !std::ranges::equal(bytes.first(header.size()), header))
        return std::nullopt;
    Edid edid;
    edid.maker = makerOf(bytes);
    edid.product = static_cast<std::uint16_t>(bytes[10] | bytes[11] << 8);
    edid.serialNumber = static_cast<std::uint32_t>(bytes[12]) | static_cast<std::uint32_t>(bytes[13]) << 8 |
                        static_cast<std::uint32_t>(bytes[14]) << 16 |
                        static_cast<std::uint32_t>(bytes[15]) << 24;
    for (std::size_t i = 0; i < descriptorCount; ++i) {
        const auto descriptor = bytes.subspan(firstDescriptorAt + i * descriptorBytes, descriptorBytes);
        if (descriptor[0] != 0 || descriptor[1] != 0 || descriptor[2] != 0) continue;  // a timing
        if (descriptor[3] == serialTextTag) edid.serialText = textOf(descriptor);
        if (descriptor[3] == monitorNameTag) edid.monitorName = textOf(descriptor);
    }
    return edid;
}

}  // namespace quillmar

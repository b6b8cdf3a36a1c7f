#include "render/JpegMetadata.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

namespace quillmar {
namespace {

using ByteView = std::span<const std::uint8_t>;

/// Reads numbers at offsets that come from the data itself: what lies outside is nothing.
class Numbers {
public:
    Numbers(ByteView bytes, bool isBigEndian) : bytes_(bytes), isBigEndian_(isBigEndian) {}

    std::optional<std::uint32_t> at(std::size_t offset, std::size_t count) const {
        if (offset > bytes_.size() || bytes_.size() - offset < count) return std::nullopt;
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < count; ++i)
            value = value << 8 | bytes_[offset + (isBigEndian_ ? i : count - 1 - i)];
        return value;
    }

private:
    ByteView bytes_;
    bool isBigEndian_;
};

bool startsWith(ByteView bytes, std::string_view text) {
    return bytes.size() >= text.size() &&
           std::ranges::equal(bytes.first(text.size()), text, {}, {},
                              [](char c) { return static_cast<std::uint8_t>(c); });
}

}  // namespace

int exifOrientation(ByteView exif) {
    using namespace std::string_view_literals;
    if (!startsWith(exif, "Exif\0\0"sv)) return 1;
    const ByteView tiff = exif.subspan(6);
    if (!startsWith(tiff, "MM") && !startsWith(tiff, "II")) return 1;
    const Numbers numbers(tiff, tiff[0] == 'M');
    const std::size_t directory = numbers.at(4, 4).value_or(0);
    const std::size_t entries = numbers.at(directory, 2).value_or(0);
    constexpr std::size_t entryBytes = 12;
    constexpr std::uint32_t orientationTag = 0x0112;
    constexpr std::uint32_t shortNumber = 3;
    for (std::size_t i = 0; i < entries; ++i) {
        const std::size_t entry = directory + 2 + i * entryBytes;
        const auto tag = numbers.at(entry, 2);
        if (!tag) return 1;
        if (tag != orientationTag || numbers.at(entry + 2, 2) != shortNumber) continue;
        const std::uint32_t value = numbers.at(entry + 8, 2).value_or(1);
        return value >= 1 && value <= 8 ? static_cast<int>(value) : 1;
    }
    return 1;
}

bool isSrgbProfile(ByteView profile) {
    const Numbers numbers(profile, true);
    constexpr std::size_t tableAt = 128;
    constexpr std::size_t entryBytes = 12;
    const std::uint32_t description = 0x64657363;  // "desc"
    const std::size_t tags = std::min<std::size_t>(numbers.at(tableAt, 4).value_or(0), 100);
    for (std::size_t i = 0; i < tags; ++i) {
        const std::size_t entry = tableAt + 4 + i * entryBytes;
        if (numbers.at(entry, 4) != description) continue;
        const std::size_t offset = numbers.at(entry + 4, 4).value_or(0);
        const std::size_t length = numbers.at(entry + 8, 4).value_or(0);
        if (offset > profile.size() || profile.size() - offset < length) return false;
        std::string text;  // older profiles have plain characters here, newer ones two bytes for each
        std::ranges::copy_if(profile.subspan(offset, length), std::back_inserter(text),
                             [](std::uint8_t byte) { return byte != 0; });
        return text.contains("sRGB");
    }
    return false;
}

}  // namespace quillmar

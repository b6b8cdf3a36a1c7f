#include "base/HexColor.h"

#include <charconv>

#include "base/Text.h"

namespace quillmar {
namespace {

std::string_view withoutHash(std::string_view text) {
    std::string_view plain = trimmed(text);
    if (plain.starts_with('#')) plain.remove_prefix(1);
    return plain;
}

}  // namespace

std::string normalizedHexColor(std::string_view text) { return uppercased(withoutHash(text)); }

std::optional<RgbColor> parseHexColor(std::string_view sixDigits) {
    if (sixDigits.size() != 6 || sixDigits.starts_with('-')) return std::nullopt;
    std::uint32_t value = 0;
    const char* last = sixDigits.data() + sixDigits.size();
    const auto [end, error] = std::from_chars(sixDigits.data(), last, value, 16);
    if (error != std::errc() || end != last) return std::nullopt;
    return RgbColor{static_cast<std::uint8_t>(value >> 16), static_cast<std::uint8_t>(value >> 8),
                    static_cast<std::uint8_t>(value)};
}

bool isHexColor(std::string_view text) { return parseHexColor(withoutHash(text)).has_value(); }

}  // namespace quillmar

#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillmar {

/// An opaque colour, 8 bits a channel.
struct RgbColor {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    bool operator==(const RgbColor&) const = default;
};

/// A user's colour text in its plain form: trimmed, without one leading "#", in upper case.
/// A text that is no colour comes out the same way; nothing is judged here.
std::string normalizedHexColor(std::string_view text);
/// Reads exactly six hexadecimal digits.
std::optional<RgbColor> parseHexColor(std::string_view sixDigits);
/// Whether a user's text is a six-digit colour: trimmed, with or without one leading "#", in either case.
bool isHexColor(std::string_view text);

}  // namespace quillmar

#include "remote/fetching/ServiceText.h"

#include <array>
#include <charconv>
#include <optional>

#include "base/Text.h"

namespace quillmar {
namespace {

constexpr std::size_t maximumBytes = 1024;
/// Longer than the name of every entity that is known here.
constexpr std::size_t longestEntity = 10;

/// The ones that texts about pictures hold; a fragment in UTF-8 has no need of others.
constexpr auto entities = std::to_array<std::pair<std::string_view, std::string_view>>({
    {"amp", "&"},    {"lt", "<"},     {"gt", ">"},     {"quot", "\""},  {"apos", "'"},   {"nbsp", " "},
    {"copy", "©"},   {"ndash", "–"},  {"mdash", "—"},  {"lsquo", "‘"},  {"rsquo", "’"},  {"ldquo", "“"},
    {"rdquo", "”"},  {"hellip", "…"}, {"middot", "·"}, {"bull", "•"},   {"deg", "°"},    {"eacute", "é"},
    {"egrave", "è"}, {"aacute", "á"}, {"oacute", "ó"}, {"iacute", "í"}, {"ntilde", "ñ"}, {"auml", "ä"},
    {"ouml", "ö"},   {"uuml", "ü"},   {"ccedil", "ç"}, {"atilde", "ã"},
});

std::string utf8(std::uint32_t scalar) {
    const auto byte = [](std::uint32_t bits) { return static_cast<char>(bits); };
    if (scalar < 0x80) return {byte(scalar)};
    if (scalar < 0x800) return {byte(0xc0 | scalar >> 6), byte(0x80 | (scalar & 0x3f))};
    if (scalar < 0x10000) {
        return {byte(0xe0 | scalar >> 12), byte(0x80 | (scalar >> 6 & 0x3f)), byte(0x80 | (scalar & 0x3f))};
    }
    return {byte(0xf0 | scalar >> 18), byte(0x80 | (scalar >> 12 & 0x3f)), byte(0x80 | (scalar >> 6 & 0x3f)),
            byte(0x80 | (scalar & 0x3f))};
}

/// What stands between "&" and ";" means; nothing for what is no entity.
std::optional<std::string> meaningOf(std::string_view entity) {
    for (const auto& [name, text] : entities) {
        if (entity == name) return std::string(text);
    }
    if (!entity.starts_with('#')) return std::nullopt;
    entity.remove_prefix(1);
    const bool isHexadecimal = entity.starts_with('x') || entity.starts_with('X');
    if (isHexadecimal) entity.remove_prefix(1);
    std::uint32_t scalar = 0;
    const char* const end = entity.data() + entity.size();
    const auto [stop, failure] = std::from_chars(entity.data(), end, scalar, isHexadecimal ? 16 : 10);
    const bool isSurrogate = scalar >= 0xd800 && scalar < 0xe000;
    if (failure != std::errc() || stop != end || isSurrogate || scalar > 0x10ffff) return std::nullopt;
    return utf8(scalar);
}

/// Bytes of the control character that valid UTF-8 begins with: one of a terminal, of lines or of the
/// direction of writing; 0 for any other.
std::size_t controlLengthAt(std::string_view text) {
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    if (at(0) < 0x20 || at(0) == 0x7f) return 1;
    if (at(0) == 0xc2 && at(1) < 0xa0) return 2;
    const bool isOfLines = at(0) == 0xe2 && at(1) == 0x80 && at(2) >= 0xa8 && at(2) <= 0xae;
    const bool isOfDirection = at(0) == 0xe2 && at(1) == 0x81 && at(2) >= 0xa6 && at(2) <= 0xa9;
    return isOfLines || isOfDirection ? 3 : 0;
}

bool isHTMLBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string withoutTags(std::string_view fragment) {
    std::string text;
    while (!fragment.empty()) {
        const std::size_t tag = fragment.find('<');
        text += fragment.substr(0, tag);
        if (tag == std::string_view::npos) break;
        const std::size_t end = fragment.find('>', tag);
        if (end == std::string_view::npos) break;
        // "<br>" parts words, "<b>" does not.
        const bool isBreak = fragment.substr(tag, 3) == "<br" || fragment.substr(tag, 3) == "</p";
        if (isBreak) text += ' ';
        fragment.remove_prefix(end + 1);
    }
    return text;
}

}  // namespace

std::string boundedText(std::string_view text) {
    std::string bounded = repairedUtf8(text);
    if (bounded.size() > maximumBytes) {
        std::size_t end = maximumBytes;
        while ((bounded[end] & 0xc0) == 0x80) --end;
        bounded.resize(end);
    }
    for (std::size_t i = 0; i < bounded.size(); ++i) {
        const std::size_t length = controlLengthAt(std::string_view(bounded).substr(i));
        if (length > 0) bounded.replace(i, length, " ");
    }
    return std::string(trimmed(bounded));
}

std::string textOfHTML(std::string_view fragment) {
    const std::string plain = withoutTags(fragment);
    std::string text;
    for (std::size_t i = 0; i < plain.size(); ++i) {
        const std::size_t end = plain[i] == '&' ? plain.find(';', i) : std::string::npos;
        const auto meaning = end != std::string::npos && end - i <= longestEntity
                                 ? meaningOf(std::string_view(plain).substr(i + 1, end - i - 1))
                                 : std::nullopt;
        if (meaning) i = end;
        const std::string piece = meaning ? *meaning : plain.substr(i, 1);
        const bool isBlank = piece.size() == 1 && isHTMLBlank(piece.front());
        if (!isBlank) {
            text += piece;
        } else if (!text.empty() && text.back() != ' ') {
            text += ' ';
        }
    }
    return std::string(trimmed(text));
}

std::string captionOf(std::initializer_list<std::string_view> parts) {
    std::string caption;
    for (const std::string_view part : parts) {
        if (part.empty()) continue;
        if (!caption.empty()) caption += "  •  ";
        caption += part;
    }
    return caption;
}

}  // namespace quillmar

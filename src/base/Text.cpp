#include "base/Text.h"

#include <glib.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <memory>

namespace quillmar {
namespace {

struct Scalar {
    gunichar value;
    std::size_t length;
    bool isValid;
};

/// The scalar that begins the text; one byte of no scalar where the bytes are not UTF-8.
Scalar firstScalar(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    if (lead < 0x80) return {lead, 1, true};
    const gunichar value = g_utf8_get_char_validated(text.data(), static_cast<gssize>(text.size()));
    if (value == static_cast<gunichar>(-1) || value == static_cast<gunichar>(-2)) return {0, 1, false};
    return {value, static_cast<std::size_t>(g_unichar_to_utf8(value, nullptr)), true};
}

template <class Visit>
void forEachScalar(std::string_view text, Visit visit) {
    while (!text.empty()) {
        const Scalar scalar = firstScalar(text);
        visit(scalar, text.substr(0, scalar.length));
        text.remove_prefix(scalar.length);
    }
}

void append(std::string& text, gunichar scalar) {
    std::array<char, 6> bytes{};
    text.append(bytes.data(), static_cast<std::size_t>(g_unichar_to_utf8(scalar, bytes.data())));
}

bool isBlank(gunichar c) { return g_unichar_isspace(c) || c == 0x0b || c == 0x85; }

/// Scalar by scalar: the whole-text functions follow the process locale, and a file name's extension must not
/// change its meaning under a Turkish one.
std::string mapped(std::string_view text, gunichar (*change)(gunichar)) {
    std::string result;
    result.reserve(text.size());
    forEachScalar(text, [&](const Scalar& scalar, std::string_view bytes) {
        if (scalar.isValid) {
            append(result, change(scalar.value));
        } else {
            result.append(bytes);
        }
    });
    return result;
}

/// Decomposed, so that an accent can be left out of the first comparison.
std::u32string decomposed(std::string_view text) {
    const std::string valid = repairedUtf8(text);
    const std::unique_ptr<char, decltype(&g_free)> normal(
        g_utf8_normalize(valid.c_str(), static_cast<gssize>(valid.size()), G_NORMALIZE_DEFAULT), &g_free);
    std::u32string scalars;
    if (normal) {
        forEachScalar(normal.get(), [&](const Scalar& scalar, std::string_view) { scalars += scalar.value; });
    }
    return scalars;
}

/// Blanks, then punctuation, symbols, digits, letters: the order in which file managers show them.
int classRank(gunichar c) {
    if (isBlank(c)) return 0;
    switch (g_unichar_type(c)) {
        case G_UNICODE_CONNECT_PUNCTUATION:
        case G_UNICODE_DASH_PUNCTUATION:
        case G_UNICODE_CLOSE_PUNCTUATION:
        case G_UNICODE_FINAL_PUNCTUATION:
        case G_UNICODE_INITIAL_PUNCTUATION:
        case G_UNICODE_OTHER_PUNCTUATION:
        case G_UNICODE_OPEN_PUNCTUATION: return 1;
        case G_UNICODE_CURRENCY_SYMBOL:
        case G_UNICODE_MODIFIER_SYMBOL:
        case G_UNICODE_MATH_SYMBOL:
        case G_UNICODE_OTHER_SYMBOL: return 2;
        default: break;
    }
    if (g_unichar_isdigit(c)) return 3;
    return 4;
}

int sign(auto left, auto right) { return left < right ? -1 : left > right ? 1 : 0; }

/// A run of digits as a number of any length: its digits without leading zeros.
std::u32string takeNumber(std::u32string_view& text) {
    std::u32string digits;
    std::size_t length = 0;
    while (length < text.size() && g_unichar_isdigit(text[length])) {
        const auto digit = static_cast<char32_t>(g_unichar_digit_value(text[length++]));
        if (digit != 0 || !digits.empty()) digits += digit;
    }
    text.remove_prefix(length);
    return digits;
}

int compareNumbers(const std::u32string& left, const std::u32string& right) {
    if (left.size() != right.size()) return sign(left.size(), right.size());
    return sign(left.compare(right), 0);
}

// GLib's own collation follows the process's locale: on a bare system it is the order of bytes, and how the
// pictures of a slideshow follow each other would depend on how the program was started.

/// One level of the comparison: digits by value, any other scalar by class, then by `key`.
int compareLevel(std::u32string_view left, std::u32string_view right, gunichar (*key)(gunichar)) {
    while (!left.empty() && !right.empty()) {
        if (g_unichar_isdigit(left.front()) && g_unichar_isdigit(right.front())) {
            const std::u32string leftNumber = takeNumber(left);
            if (const int order = compareNumbers(leftNumber, takeNumber(right))) return order;
            continue;
        }
        if (const int order = sign(classRank(left.front()), classRank(right.front()))) return order;
        if (const int order = sign(key(left.front()), key(right.front()))) return order;
        left.remove_prefix(1);
        right.remove_prefix(1);
    }
    return sign(left.size(), right.size());
}

std::u32string withoutMarks(std::u32string text) {
    std::erase_if(text, [](char32_t c) { return g_unichar_ismark(c) != 0; });
    return text;
}

/// Small letters come before their capitals when nothing else tells two names apart.
gunichar smallFirst(gunichar c) { return g_unichar_isupper(c) ? g_unichar_tolower(c) * 2 + 1 : c * 2; }

}  // namespace

std::string_view trimmed(std::string_view text) {
    while (!text.empty()) {
        const Scalar scalar = firstScalar(text);
        if (!scalar.isValid || !isBlank(scalar.value)) break;
        text.remove_prefix(scalar.length);
    }
    while (!text.empty()) {
        std::size_t start = text.size() - 1;
        while (start > 0 && (static_cast<unsigned char>(text[start]) & 0xc0) == 0x80) --start;
        const Scalar scalar = firstScalar(text.substr(start));
        if (!scalar.isValid || start + scalar.length != text.size() || !isBlank(scalar.value)) break;
        text.remove_suffix(scalar.length);
    }
    return text;
}

std::string lowercased(std::string_view text) { return mapped(text, g_unichar_tolower); }
std::string uppercased(std::string_view text) { return mapped(text, g_unichar_toupper); }

bool isValidUtf8(std::string_view text) {
    // GLib takes U+0000 for an error, so what lies between is what is asked about.
    std::size_t nul = text.find('\0');
    for (; nul != std::string_view::npos; nul = text.find('\0')) {
        if (!g_utf8_validate_len(text.data(), nul, nullptr)) return false;
        text.remove_prefix(nul + 1);
    }
    return g_utf8_validate_len(text.data(), text.size(), nullptr);
}

std::string repairedUtf8(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    forEachScalar(text, [&](const Scalar& scalar, std::string_view bytes) {
        result.append(scalar.isValid ? bytes : "\xef\xbf\xbd");
    });
    return result;
}

bool isAlphanumeric(std::string_view text) {
    bool holds = true;
    forEachScalar(text, [&](const Scalar& scalar, std::string_view) {
        const auto type = scalar.isValid ? g_unichar_type(scalar.value) : G_UNICODE_UNASSIGNED;
        const bool isNumber = type == G_UNICODE_DECIMAL_NUMBER || type == G_UNICODE_LETTER_NUMBER ||
                              type == G_UNICODE_OTHER_NUMBER;
        holds = holds && scalar.isValid && (g_unichar_isalpha(scalar.value) || isNumber);
    });
    return holds;
}

std::string replacingNonAlphanumerics(std::string_view text, char replacement) {
    std::string result;
    result.reserve(text.size());
    forEachScalar(text, [&](const Scalar& scalar, std::string_view bytes) {
        if (scalar.isValid && (isAlphanumeric(bytes) || g_unichar_ismark(scalar.value))) {
            result.append(bytes);
        } else {
            result += replacement;
        }
    });
    return result;
}

int localizedStandardCompare(std::string_view left, std::string_view right) {
    const std::u32string leftScalars = decomposed(left);
    const std::u32string rightScalars = decomposed(right);
    const auto compareBy = [](const std::u32string& l, const std::u32string& r, gunichar (*key)(gunichar)) {
        return compareLevel(l, r, key);
    };
    if (const int order =
            compareBy(withoutMarks(leftScalars), withoutMarks(rightScalars), g_unichar_tolower)) {
        return order;
    }
    if (const int order = compareBy(leftScalars, rightScalars, g_unichar_tolower)) return order;
    if (const int order = compareBy(leftScalars, rightScalars, smallFirst)) return order;
    // "1" and "01" are left: the shorter spelling first, then plain bytes, so that no two names are equal.
    if (left.size() != right.size()) return sign(left.size(), right.size());
    return sign(left.compare(right), 0);
}

std::string shortestDecimal(double value) {
    // Plain digits where a person would write them; to_chars alone would turn 100000 into 1e+05.
    const double magnitude = std::abs(value);
    const bool isPlain = magnitude == 0 || (magnitude >= 1e-4 && magnitude < 1e16);
    std::array<char, 64> buffer{};
    const auto [end, error] =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                      isPlain ? std::chars_format::fixed : std::chars_format::scientific);
    std::string text(buffer.data(), end);
    if (std::isfinite(value) && text.find_first_of(".e") == std::string::npos) text += ".0";
    return text;
}

}  // namespace quillmar

#include "base/JsonOutput.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <nlohmann/json.hpp>

#include "base/Text.h"

namespace quillmar::json {
namespace {

template <class Integer>
void appendInteger(std::string& text, Integer value) {
    std::array<char, 24> digits{};
    text.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr);
}

constexpr bool isPlain(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x20 && byte < 0x80 && c != '"' && c != '\\';
}

void appendEscaped(std::string& text, char c) {
    constexpr std::string_view digits = "0123456789abcdef";
    switch (c) {
        case '"': text += "\\\""; return;
        case '\\': text += "\\\\"; return;
        case '\b': text += "\\b"; return;
        case '\f': text += "\\f"; return;
        case '\n': text += "\\n"; return;
        case '\r': text += "\\r"; return;
        case '\t': text += "\\t"; return;
        default: break;
    }
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20) {
        text += "\\u00";
        text += digits[byte >> 4];
        text += digits[byte & 0x0f];
    } else {
        text += c;
    }
}

}  // namespace

void Output::natural(std::uint64_t value) { appendInteger(text_, value); }
void Output::integer(std::int64_t value) { appendInteger(text_, value); }

void Output::real(double value) {
    // Most numbers of a document are small and whole.
    const auto whole = static_cast<std::int64_t>(std::clamp(value, -1e9, 1e9));
    if (whole != 0 && static_cast<double>(whole) == value) {
        appendInteger(text_, whole);
        text_ += ".0";
    } else {
        text_ += nlohmann::json(value).dump();
    }
}

bool Output::text(std::string_view value) {
    const bool needsCare = !std::ranges::all_of(value, isPlain);
    if (needsCare && !isValidUtf8(value)) return false;
    text_ += '"';
    if (needsCare) {
        for (const char c : value) appendEscaped(text_, c);
    } else {
        text_ += value;
    }
    text_ += '"';
    return true;
}

void Output::key(std::string_view key) {
    beginPart();
    text_ += '"';
    text_ += key;
    text_ += isPretty_ ? "\": " : "\":";
}

bool Output::anyKey(std::string_view key) {
    if (!isValidUtf8(key)) return false;
    beginPart();
    const bool isWritten = text(key);
    text_ += isPretty_ ? ": " : ":";
    return isWritten;
}

void Output::begin(char bracket) {
    text_ += bracket;
    ++depth_;
    isFirstPart_ = true;
}

void Output::beginPart() {
    if (!isFirstPart_) text_ += ',';
    isFirstPart_ = false;
    newLine();
}

void Output::end(char bracket) {
    --depth_;
    if (!isFirstPart_) newLine();
    isFirstPart_ = false;
    text_ += bracket;
}

void Output::newLine() {
    if (!isPretty_) return;
    text_ += '\n';
    text_.append(2 * depth_, ' ');
}

}  // namespace quillmar::json

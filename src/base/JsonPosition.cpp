#include "base/JsonPosition.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace quillmar::json {
namespace {

/// Walks through a sound document without making anything of it.
class Walk {
public:
    explicit Walk(std::string_view document) : document_(document) { skip(); }

    std::size_t at() const { return at_; }
    /// Steps to the value of the key, or of the number where the value is an array; stays where there is
    /// none.
    bool enter(std::string_view key, std::size_t index, bool isIndex) {
        const std::size_t outside = at_;
        if (next() != (isIndex ? '[' : '{')) return false;
        step();
        for (std::size_t i = 0; at_ < document_.size() && next() != ']' && next() != '}'; ++i) {
            bool isWanted = isIndex && i == index;
            if (!isIndex) {
                const std::size_t end = endOfJsonText(document_, at_);
                isWanted = document_.substr(at_ + 1, end - at_ - 1) == key;
                at_ = end;
                step();
                step();  // the colon
            }
            if (isWanted) return true;
            skipValue();
            if (next() == ',') step();
        }
        at_ = outside;
        return false;
    }

private:
    char next() const { return at_ < document_.size() ? document_[at_] : '\0'; }
    void skip() { at_ = std::min(document_.find_first_not_of(" \t\r\n\xef\xbb\xbf", at_), document_.size()); }
    void step() {
        ++at_;
        skip();
    }
    void skipValue() {
        int depth = 0;
        while (at_ < document_.size()) {
            const char c = next();
            if (depth == 0 && (c == ',' || c == ']' || c == '}')) return;
            if (c == '[' || c == '{') ++depth;
            if (c == ']' || c == '}') --depth;
            if (c == '"') at_ = endOfJsonText(document_, at_);
            step();
        }
    }

    std::string_view document_;
    std::size_t at_ = 0;
};

}  // namespace

JsonPosition positionAt(std::string_view text, std::size_t byte) {
    const std::string_view before = text.substr(0, byte);
    const std::size_t lineStart = before.rfind('\n') + 1;  // 0 where there is no line feed
    return {static_cast<std::size_t>(std::ranges::count(before, '\n')) + 1, before.size() - lineStart + 1};
}

JsonPosition positionOf(std::string_view document, std::string_view place) {
    Walk walk(document);
    while (!place.empty()) {
        const bool isIndex = place.front() == '[';
        if (isIndex || place.front() == '.') place.remove_prefix(1);
        const std::size_t end = std::min(place.find_first_of(isIndex ? "]" : ".["), place.size());
        std::size_t index = 0;
        std::from_chars(place.data(), place.data() + end, index);
        if (!walk.enter(place.substr(0, end), index, isIndex)) break;
        place.remove_prefix(std::min(end + (isIndex ? 1 : 0), place.size()));
    }
    return positionAt(document, walk.at());
}

std::size_t endOfJsonText(std::string_view document, std::size_t start) {
    for (std::size_t i = start + 1;;) {
        const std::size_t quote = document.find('"', i);
        if (quote == std::string_view::npos) return document.size();
        const std::size_t last = document.find_last_not_of('\\', quote - 1);
        // A quote behind an odd number of backslashes is part of the text.
        if ((quote - 1 - last) % 2 == 0) return quote;
        i = quote + 1;
    }
}

}  // namespace quillmar::json

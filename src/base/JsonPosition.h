#pragma once
#include <cstddef>
#include <string_view>

namespace quillmar::json {

/// A place in a text as editors count: lines, and bytes within a line, both from 1.
struct JsonPosition {
    std::size_t line = 1;
    std::size_t column = 1;
    bool operator==(const JsonPosition&) const = default;
};

JsonPosition positionAt(std::string_view text, std::size_t byte);

/// Where the value at the place "wallpaper.displays[1].mode" begins in a sound document; where there is none,
/// the innermost one around it.
JsonPosition positionOf(std::string_view document, std::string_view place);

/// The closing quote of the JSON text whose opening quote is at `start`; the document's end where there is
/// none.
std::size_t endOfJsonText(std::string_view document, std::size_t start);

}  // namespace quillmar::json

#pragma once
#include <array>
#include <span>
#include <string_view>

namespace quillmar {

/// One text with its translation.
struct StringTableRow {
    std::string_view english;
    std::string_view translation;
};

/// The Portuguese texts, in ascending byte order of their English key.
std::span<const StringTableRow> portugueseStringTable();

}  // namespace quillmar

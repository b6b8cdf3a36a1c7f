#pragma once
#include <algorithm>
#include <functional>
#include <ranges>

namespace quillmar {

/// Whether one of the range's elements, or what the projection says of it, is the value.
template <std::ranges::input_range Range, class Value, class Projection = std::identity>
bool isAmong(const Value& value, Range&& range, Projection projection = {}) {
    return std::ranges::find(range, value, std::move(projection)) != std::ranges::end(range);
}

}  // namespace quillmar

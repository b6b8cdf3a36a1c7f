#pragma once
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

namespace quillmar {

/// What the compiler calls a value: "... [value = quillmar::Kind::image]", and
/// "... [value = (quillmar::Kind)18]" where no case has it.
template <auto value>
constexpr std::string_view compilersText() {
    return __PRETTY_FUNCTION__;
}

// Variables, not functions, so that each is found out once.

/// The name of an enumeration's case as the source spells it; empty when no case has that value.
template <auto value>
inline constexpr std::string_view caseName = [] {
    std::string_view text = compilersText<value>();
    const std::string_view mark = "value = ";
    text.remove_suffix(1);
    text.remove_prefix(text.rfind(mark) + mark.size());
    return text.starts_with('(') ? std::string_view() : text.substr(text.rfind(':') + 1);
}();

/// How many cases an enumeration has whose cases run from 0 without gaps.
template <class E, std::size_t counted = 0>
constexpr std::size_t caseCount() {
    if constexpr (caseName<static_cast<E>(counted)>.empty()) {
        return counted;
    } else {
        return caseCount<E, counted + 1>();
    }
}

/// The names of all cases, in order.
template <class E>
inline constexpr auto caseNames = []<std::size_t... I>(std::index_sequence<I...>) {
    return std::array<std::string_view, sizeof...(I)>{caseName<static_cast<E>(I)>...};
}(std::make_index_sequence<caseCount<E>()>{});

}  // namespace quillmar

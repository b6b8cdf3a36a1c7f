#pragma once
#include <array>
#include <concepts>
#include <cstddef>
#include <optional>
#include <string_view>
#include <type_traits>

namespace quillmar {

/// An enumeration whose cases run from 0 without gaps and whose `enumNames(E)`, found beside it, lists their
/// names in that order.
template <class E>
concept NamedEnum = std::is_enum_v<E> && requires { enumNames(E{}); };

template <NamedEnum E>
constexpr std::string_view enumName(E value) {
    return enumNames(E{})[static_cast<std::size_t>(value)];
}

template <NamedEnum E>
constexpr std::optional<E> enumFromName(std::string_view name) {
    constexpr auto names = enumNames(E{});
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i] == name) return static_cast<E>(i);
    }
    return std::nullopt;
}

/// Every case, in order.
template <NamedEnum E>
constexpr auto allCases() {
    constexpr std::size_t count = enumNames(E{}).size();
    std::array<E, count> cases{};
    for (std::size_t i = 0; i < count; ++i) cases[i] = static_cast<E>(i);
    return cases;
}

}  // namespace quillmar

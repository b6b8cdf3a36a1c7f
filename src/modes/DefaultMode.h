#pragma once
#include <concepts>
#include <cstddef>
#include <type_traits>
#include <utility>
#include <variant>

namespace quillmar {

/// The mode of a kind with the settings that a new one starts with. Kinds are the indices of the mode's
/// cases.
template <class Mode, class Kind>
Mode makeDefaultMode(Kind kind) {
    Mode mode;
    const auto set = [&]<std::size_t I>(std::integral_constant<std::size_t, I>) {
        using Settings = std::variant_alternative_t<I, typename Mode::Value>;
        if constexpr (requires {
                          { Settings::standard() } -> std::same_as<Settings>;
                      }) {
            mode.value.template emplace<I>(Settings::standard());
        } else {
            mode.value.template emplace<I>();
        }
    };
    [&]<std::size_t... I>(std::index_sequence<I...>) {
        ((I == static_cast<std::size_t>(kind) ? set(std::integral_constant<std::size_t, I>{}) : void()), ...);
    }(std::make_index_sequence<std::variant_size_v<typename Mode::Value>>{});
    return mode;
}

/// Whether a variant has a case for the type.
template <class Type, class Variant>
inline constexpr bool holdsCase = false;
template <class Type, class... Cases>
inline constexpr bool holdsCase<Type, std::variant<Cases...>> = (std::is_same_v<Type, Cases> || ...);

}  // namespace quillmar

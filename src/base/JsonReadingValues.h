#pragma once
// How enumerations, containers, unions and records are read: the templates that `JsonReading.h` declares.
#include "base/JsonReading.h"

namespace quillmar::json {

template <NamedEnum E>
void read(const nlohmann::json& json, E& value, const Place& place) {
    static constexpr auto names = enumNames(E{});
    value = static_cast<E>(detail::indexOfName(json, names, place));
}

template <class T>
void read(const nlohmann::json& json, std::vector<T>& value, const Place& place) {
    const std::size_t count = detail::elementCount(json, place);
    value.clear();
    value.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        T element = blank<T>();
        read(detail::element(json, i), element, place[i]);
        value.push_back(std::move(element));
    }
}

template <NamedEnum E>
void read(const nlohmann::json& json, std::set<E>& value, const Place& place) {
    std::vector<E> elements;
    read(json, elements, place);
    value = std::set<E>(elements.begin(), elements.end());
}

/// A map whose key is an enumeration is a flat array that alternates key and value.
template <NamedEnum K, class V>
void read(const nlohmann::json& json, std::map<K, V>& value, const Place& place) {
    const std::size_t count = detail::elementCount(json, place);
    if (count % 2 != 0) place.fail("expected pairs of key and value, found an odd number of elements");
    value.clear();
    for (std::size_t i = 0; i < count; i += 2) {
        K key{};
        read(detail::element(json, i), key, place[i]);
        V element = blank<V>();
        read(detail::element(json, i + 1), element, place[i + 1]);
        value.insert_or_assign(key, std::move(element));
    }
}

template <class V>
void read(const nlohmann::json& json, std::map<std::string, V>& value, const Place& place) {
    value.clear();
    detail::forEachMember(json, place, [&](const std::string& key, const nlohmann::json& member) {
        V element = blank<V>();
        read(member, element, place[key]);
        value.insert_or_assign(key, std::move(element));
    });
}

template <TaggedUnion T>
void read(const nlohmann::json& json, T& value, const Place& place) {
    using Cases = typename T::Value;
    static constexpr auto names = T::caseNames();
    static_assert(names.size() == std::variant_size_v<Cases>);
    const auto [index, content] = detail::onlyCase(json, names, place);
    const Place casePlace = place[names[index]];
    const auto readCase = [&]<std::size_t I>(std::integral_constant<std::size_t, I>) {
        using Payload = std::variant_alternative_t<I, Cases>;
        Payload payload = blank<Payload>();
        if constexpr (!std::is_same_v<Payload, std::monostate>) {
            const Place payloadPlace = casePlace["_0"];
            read(detail::payload(*content, casePlace), payload, payloadPlace);
        } else {
            detail::expectObject(*content, casePlace);
        }
        value.value = Cases(std::in_place_index<I>, std::move(payload));
    };
    [&]<std::size_t... I>(std::index_sequence<I...>) {
        ((index == I ? readCase(std::integral_constant<std::size_t, I>{}) : void()), ...);
    }(std::make_index_sequence<std::variant_size_v<Cases>>{});
}

template <Record T>
void read(const nlohmann::json& json, T& value, const Place& place) {
    Reader reader(json, place);
    T::describe(value, reader);
}

}  // namespace quillmar::json

#pragma once
// Reads records and what they are made of.
#include <cstdint>
#include <functional>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "base/Bytes.h"
#include "base/Enum.h"
#include "base/JsonShapes.h"
#include "base/Uuid.h"
#include "base/WallTime.h"

namespace quillmar::json {

void read(const nlohmann::json& json, bool& value, const Place& place);
void read(const nlohmann::json& json, int& value, const Place& place);
void read(const nlohmann::json& json, std::int64_t& value, const Place& place);
void read(const nlohmann::json& json, std::uint32_t& value, const Place& place);
void read(const nlohmann::json& json, std::uint64_t& value, const Place& place);
void read(const nlohmann::json& json, double& value, const Place& place);
void read(const nlohmann::json& json, std::string& value, const Place& place);
void read(const nlohmann::json& json, Uuid& value, const Place& place);
void read(const nlohmann::json& json, Url& value, const Place& place);
void read(const nlohmann::json& json, Bytes& value, const Place& place);
void read(const nlohmann::json& json, WallTime& value, const Place& place);

// What a document holds, asked where the whole of the JSON library is known: it takes seconds to compile.
namespace detail {
void expectObject(const nlohmann::json& json, const Place& place);
/// The number of an array's elements; fails for what is no array.
std::size_t elementCount(const nlohmann::json& json, const Place& place);
const nlohmann::json& element(const nlohmann::json& array, std::size_t index);
using MemberVisit = std::function<void(const std::string& key, const nlohmann::json& value)>;
/// Visits an object's members sorted by key; fails for what is no object.
void forEachMember(const nlohmann::json& json, const Place& place, const MemberVisit& visit);
/// The key's value, nothing when it is absent.
const nlohmann::json* find(const nlohmann::json& object, std::string_view key);
bool isNull(const nlohmann::json& json);
bool isObject(const nlohmann::json& json);
/// Nothing when it is no text.
std::optional<std::string> textOf(const nlohmann::json& json);
/// Index of the name within `names`; fails with the list of the names.
std::size_t indexOfName(const nlohmann::json& json, std::span<const std::string_view> names,
                        const Place& place);
/// The one known key of a tagged union and its position within `names`.
std::pair<std::size_t, const nlohmann::json*> onlyCase(const nlohmann::json& json,
                                                       std::span<const std::string_view> names,
                                                       const Place& place);
/// What a case of a tagged union holds.
const nlohmann::json& payload(const nlohmann::json& json, const Place& place);
}  // namespace detail

template <NamedEnum E>
void read(const nlohmann::json& json, E& value, const Place& place);
template <class T>
void read(const nlohmann::json& json, std::vector<T>& value, const Place& place);
template <NamedEnum E>
void read(const nlohmann::json& json, std::set<E>& value, const Place& place);
template <NamedEnum K, class V>
void read(const nlohmann::json& json, std::map<K, V>& value, const Place& place);
template <class V>
void read(const nlohmann::json& json, std::map<std::string, V>& value, const Place& place);
template <TaggedUnion T>
void read(const nlohmann::json& json, T& value, const Place& place);
template <Record T>
void read(const nlohmann::json& json, T& value, const Place& place);

/// Reads the keys that a record's `describe` names, in that order; the first failure throws.
class Reader {
public:
    Reader(const nlohmann::json& object, const Place& place) : object_(object), place_(place) {
        detail::expectObject(object, place);
    }

    template <class T>
    Reader& required(std::string_view key, T& value) {
        const Place place = place_[key];
        const nlohmann::json* found = detail::find(object_, key);
        if (!found) place.fail("missing key");
        read(*found, value, place);
        return *this;
    }
    template <class T>
    Reader& optional(std::string_view key, std::optional<T>& value) {
        value.reset();
        const nlohmann::json* found = detail::find(object_, key);
        if (found && !detail::isNull(*found)) {
            T present = blank<T>();
            read(*found, present, place_[key]);
            value = std::move(present);
        }
        return *this;
    }

private:
    const nlohmann::json& object_;
    const Place& place_;
};

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

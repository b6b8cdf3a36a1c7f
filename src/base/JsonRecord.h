#pragma once
// Records on JSON. A record says its keys once, in
//     static void describe(auto& self, auto& io) { io.required("key", self.field).optional("other",
//     self.other); }
// and this file reads and writes it. Include it only in the .cpp files that read or write documents: it pulls
// the whole JSON library in.
#include <concepts>
#include <map>
#include <nlohmann/json.hpp>
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
#include "base/JsonError.h"
#include "base/Url.h"
#include "base/Uuid.h"
#include "base/WallTime.h"

namespace quillmar::json {

using Value = nlohmann::json;

/// A place in a document, chained on the stack; only a failure turns it into text.
class Place {
public:
    Place() = default;
    Place operator[](std::string_view key) const { return Place(this, key, 0); }
    Place operator[](std::size_t index) const { return Place(this, {}, index); }
    std::string text() const;
    [[noreturn]] void fail(std::string reason) const { throw JsonRecordError(text(), std::move(reason)); }

private:
    Place(const Place* up, std::string_view key, std::size_t index) : up_(up), key_(key), index_(index) {}
    const Place* up_ = nullptr;
    std::string_view key_;
    std::size_t index_ = 0;
};

class Reader;
class Writer;

template <class T>
concept Record = requires(T& record, Reader& reader) { T::describe(record, reader); };

/// One of several shapes: `value` holds a case's payload, `caseNames()` the cases' names in the variant's
/// order. A payload without fields (`std::monostate`) is coded as an empty object, any other under the key
/// "_0".
template <class T>
concept TaggedUnion = requires(T& union_) {
    std::variant_size_v<typename T::Value>;
    { union_.value } -> std::convertible_to<const typename T::Value&>;
    T::caseNames();
};

/// Parses a text of at most 64 MiB and 256 levels. Throws `JsonRecordError` for what is not JSON in UTF-8.
Value parse(std::string_view text);
/// Keys sorted, two blanks a level, one line feed at the end.
std::string prettyText(const Value& value);
/// Keys sorted, on one line, without a line feed.
std::string compactText(const Value& value);

void read(const Value& json, bool& value, const Place& place);
void read(const Value& json, int& value, const Place& place);
void read(const Value& json, std::int64_t& value, const Place& place);
void read(const Value& json, std::uint32_t& value, const Place& place);
void read(const Value& json, std::uint64_t& value, const Place& place);
void read(const Value& json, double& value, const Place& place);
void read(const Value& json, std::string& value, const Place& place);
void read(const Value& json, Uuid& value, const Place& place);
void read(const Value& json, Url& value, const Place& place);
void read(const Value& json, Bytes& value, const Place& place);
void read(const Value& json, WallTime& value, const Place& place);

Value write(bool value, const Place&);
Value write(int value, const Place&);
Value write(std::int64_t value, const Place&);
Value write(std::uint32_t value, const Place&);
Value write(std::uint64_t value, const Place&);
/// Fails for what is not finite: JSON has no such number.
Value write(double value, const Place& place);
/// Fails for what is not UTF-8.
Value write(const std::string& value, const Place& place);
Value write(const Uuid& value, const Place&);
Value write(const Url& value, const Place&);
Value write(const Bytes& value, const Place&);
Value write(const WallTime& value, const Place&);

namespace detail {
const Value& expectObject(const Value& json, const Place& place);
const Value& expectArray(const Value& json, const Place& place);
/// Index of the name within `names`; fails with the list of the names.
std::size_t indexOfName(const Value& json, std::span<const std::string_view> names, const Place& place);
/// The one known key of a tagged union and its position within `names`.
std::pair<std::size_t, const Value*> onlyCase(const Value& json, std::span<const std::string_view> names,
                                              const Place& place);
const Value& payload(const Value& json, const Place& place);
/// The key's value; null and absent are the same to a caller that allows absence.
const Value* find(const Value& object, std::string_view key);
}  // namespace detail

template <NamedEnum E>
void read(const Value& json, E& value, const Place& place);
template <class T>
void read(const Value& json, std::vector<T>& value, const Place& place);
template <NamedEnum E>
void read(const Value& json, std::set<E>& value, const Place& place);
template <NamedEnum K, class V>
void read(const Value& json, std::map<K, V>& value, const Place& place);
template <class V>
void read(const Value& json, std::map<std::string, V>& value, const Place& place);
template <TaggedUnion T>
void read(const Value& json, T& value, const Place& place);
template <Record T>
void read(const Value& json, T& value, const Place& place);

template <NamedEnum E>
Value write(E value, const Place&);
template <class T>
Value write(const std::vector<T>& value, const Place& place);
template <NamedEnum E>
Value write(const std::set<E>& value, const Place& place);
template <NamedEnum K, class V>
Value write(const std::map<K, V>& value, const Place& place);
template <class V>
Value write(const std::map<std::string, V>& value, const Place& place);
template <TaggedUnion T>
Value write(const T& value, const Place& place);
template <Record T>
Value write(const T& value, const Place& place);

/// A value of a type that may have no default constructor, to be filled by `read`.
template <class T>
T blank() {
    if constexpr (std::is_same_v<T, Url>) {
        return Url::fromFilePath("/");
    } else {
        return T{};
    }
}

/// Reads the keys that a record's `describe` names, in that order; the first failure throws.
class Reader {
public:
    Reader(const Value& object, const Place& place)
        : object_(detail::expectObject(object, place)), place_(place) {}

    template <class T>
    Reader& required(std::string_view key, T& value) {
        const Place place = place_[key];
        const Value* found = detail::find(object_, key);
        if (!found) place.fail("missing key");
        read(*found, value, place);
        return *this;
    }
    template <class T>
    Reader& optional(std::string_view key, std::optional<T>& value) {
        value.reset();
        const Value* found = detail::find(object_, key);
        if (found && !found->is_null()) {
            T present = blank<T>();
            read(*found, present, place_[key]);
            value = std::move(present);
        }
        return *this;
    }

private:
    const Value& object_;
    const Place& place_;
};

/// Writes the keys that a record's `describe` names; an absent optional leaves no key behind.
class Writer {
public:
    explicit Writer(const Place& place) : place_(place) {}

    template <class T>
    Writer& required(std::string_view key, const T& value) {
        object_.emplace(key, write(value, place_[key]));
        return *this;
    }
    template <class T>
    Writer& optional(std::string_view key, const std::optional<T>& value) {
        return value ? required(key, *value) : *this;
    }
    Value take() { return std::move(object_); }

private:
    const Place& place_;
    Value object_ = Value::object();
};

template <NamedEnum E>
void read(const Value& json, E& value, const Place& place) {
    static constexpr auto names = enumNames(E{});
    value = static_cast<E>(detail::indexOfName(json, names, place));
}

template <class T>
void read(const Value& json, std::vector<T>& value, const Place& place) {
    detail::expectArray(json, place);
    value.clear();
    value.reserve(json.size());
    for (std::size_t i = 0; i < json.size(); ++i) {
        T element = blank<T>();
        read(json[i], element, place[i]);
        value.push_back(std::move(element));
    }
}

template <NamedEnum E>
void read(const Value& json, std::set<E>& value, const Place& place) {
    std::vector<E> elements;
    read(json, elements, place);
    value = std::set<E>(elements.begin(), elements.end());
}

/// A map whose key is an enumeration is a flat array that alternates key and value.
template <NamedEnum K, class V>
void read(const Value& json, std::map<K, V>& value, const Place& place) {
    detail::expectArray(json, place);
    if (json.size() % 2 != 0) place.fail("expected pairs of key and value, found an odd number of elements");
    value.clear();
    for (std::size_t i = 0; i < json.size(); i += 2) {
        K key{};
        read(json[i], key, place[i]);
        V element = blank<V>();
        read(json[i + 1], element, place[i + 1]);
        value.insert_or_assign(key, std::move(element));
    }
}

template <class V>
void read(const Value& json, std::map<std::string, V>& value, const Place& place) {
    detail::expectObject(json, place);
    value.clear();
    for (const auto& item : json.items()) {
        V element = blank<V>();
        read(item.value(), element, place[item.key()]);
        value.insert_or_assign(item.key(), std::move(element));
    }
}

template <TaggedUnion T>
void read(const Value& json, T& value, const Place& place) {
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
void read(const Value& json, T& value, const Place& place) {
    Reader reader(json, place);
    T::describe(value, reader);
}

template <NamedEnum E>
Value write(E value, const Place&) {
    return Value(std::string(enumName(value)));
}

template <class T>
Value write(const std::vector<T>& value, const Place& place) {
    Value array = Value::array();
    for (std::size_t i = 0; i < value.size(); ++i) array.push_back(write(value[i], place[i]));
    return array;
}

template <NamedEnum E>
Value write(const std::set<E>& value, const Place& place) {
    return write(std::vector<E>(value.begin(), value.end()), place);
}

template <NamedEnum K, class V>
Value write(const std::map<K, V>& value, const Place& place) {
    Value array = Value::array();
    for (const auto& [key, element] : value) {
        array.push_back(write(key, place));
        array.push_back(write(element, place[array.size()]));
    }
    return array;
}

template <class V>
Value write(const std::map<std::string, V>& value, const Place& place) {
    Value object = Value::object();
    for (const auto& [key, element] : value) {
        object.emplace(write(key, place).template get<std::string>(), write(element, place[key]));
    }
    return object;
}

template <TaggedUnion T>
Value write(const T& value, const Place& place) {
    const std::string name(T::caseNames()[value.value.index()]);
    const Place casePlace = place[name];
    const Place payloadPlace = casePlace["_0"];
    Value content = Value::object();
    std::visit(
        [&]<class Payload>(const Payload& payload) {
            if constexpr (!std::is_same_v<Payload, std::monostate>) {
                content.emplace("_0", write(payload, payloadPlace));
            }
        },
        value.value);
    Value object = Value::object();
    object.emplace(name, std::move(content));
    return object;
}

template <Record T>
Value write(const T& value, const Place& place) {
    Writer writer(place);
    T::describe(value, writer);
    return writer.take();
}

/// Reads a record from a document's text. Throws `JsonRecordError`.
template <class T>
T decode(std::string_view text) {
    T value = blank<T>();
    read(parse(text), value, Place());
    return value;
}

/// The record as a document's text: sorted, pretty. Throws `JsonRecordError` for what JSON cannot hold.
template <class T>
std::string encode(const T& value) {
    return prettyText(write(value, Place()));
}

}  // namespace quillmar::json

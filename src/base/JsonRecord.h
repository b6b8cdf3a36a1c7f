#pragma once
// Records on JSON. A record says its keys once, in
//     static void describe(auto& self, auto& io) { io.required("key", self.field).optional("other",
//     self.other); }
// and this file reads and writes it. Include it only in the .cpp files that read or write documents: reading
// and writing are templates.
#include <concepts>
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
#include "base/JsonError.h"
#include "base/JsonOutput.h"
#include "base/Url.h"
#include "base/Uuid.h"
#include "base/WallTime.h"

namespace quillmar::json {

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

void write(Output& output, bool value, const Place&);
void write(Output& output, int value, const Place&);
void write(Output& output, std::int64_t value, const Place&);
void write(Output& output, std::uint32_t value, const Place&);
void write(Output& output, std::uint64_t value, const Place&);
/// Fails for what is not finite: JSON has no such number.
void write(Output& output, double value, const Place& place);
/// Fails for what is not UTF-8.
void write(Output& output, std::string_view value, const Place& place);
void write(Output& output, const std::string& value, const Place& place);
void write(Output& output, const Uuid& value, const Place&);
void write(Output& output, const Url& value, const Place&);
void write(Output& output, const Bytes& value, const Place&);
void write(Output& output, const WallTime& value, const Place&);

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

template <NamedEnum E>
void write(Output& output, E value, const Place&);
template <class T>
void write(Output& output, const std::vector<T>& value, const Place& place);
template <NamedEnum E>
void write(Output& output, const std::set<E>& value, const Place& place);
template <NamedEnum K, class V>
void write(Output& output, const std::map<K, V>& value, const Place& place);
template <class V>
void write(Output& output, const std::map<std::string, V>& value, const Place& place);
template <class T>
void write(Output& output, const std::optional<T>& value, const Place& place);
template <TaggedUnion T>
void write(Output& output, const T& value, const Place& place);
template <Record T>
void write(Output& output, const T& value, const Place& place);

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

/// Collects the keys that a record's `describe` names, to be written in their order; an absent optional
/// leaves no key behind. The fields outlive the writer.
class Writer {
public:
    explicit Writer(Output& output) : output_(output), first_(output.pendingFields().size()) {}

    template <class T>
    Writer& required(std::string_view key, const T& value) {
        output_.pendingFields().push_back(
            {key, &value, [](Output& output, const void* field, const Place& place) {
                 write(output, *static_cast<const T*>(field), place);
             }});
        return *this;
    }
    template <class T>
    Writer& required(std::string_view key, const T&& value) = delete;
    template <class T>
    Writer& optional(std::string_view key, const std::optional<T>& value) {
        return value ? required(key, *value) : *this;
    }
    /// Writes what was collected as one object.
    void finish(const Place& place);

private:
    Output& output_;
    std::size_t first_;
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

template <NamedEnum E>
void write(Output& output, E value, const Place& place) {
    write(output, enumName(value), place);
}

template <class T>
void write(Output& output, const std::vector<T>& value, const Place& place) {
    output.beginArray();
    for (std::size_t i = 0; i < value.size(); ++i) {
        output.element();
        write(output, value[i], place[i]);
    }
    output.endArray();
}

template <NamedEnum E>
void write(Output& output, const std::set<E>& value, const Place& place) {
    write(output, std::vector<E>(value.begin(), value.end()), place);
}

template <NamedEnum K, class V>
void write(Output& output, const std::map<K, V>& value, const Place& place) {
    output.beginArray();
    std::size_t index = 0;
    for (const auto& [key, element] : value) {
        output.element();
        write(output, key, place[index++]);
        output.element();
        write(output, element, place[index++]);
    }
    output.endArray();
}

template <class V>
void write(Output& output, const std::map<std::string, V>& value, const Place& place) {
    output.beginObject();
    for (const auto& [key, element] : value) {
        if (!output.anyKey(key)) place.fail("the text is not UTF-8");
        write(output, element, place[key]);
    }
    output.endObject();
}

/// An optional that its record requires: the key is there in any case, an absent value is a null.
template <class T>
void write(Output& output, const std::optional<T>& value, const Place& place) {
    if (value) {
        write(output, *value, place);
    } else {
        output.null();
    }
}

template <TaggedUnion T>
void write(Output& output, const T& value, const Place& place) {
    static constexpr auto names = T::caseNames();
    const std::string_view name = names[value.value.index()];
    const Place casePlace = place[name];
    output.beginObject();
    output.key(name);
    output.beginObject();
    std::visit(
        [&]<class Payload>(const Payload& payload) {
            if constexpr (!std::is_same_v<Payload, std::monostate>) {
                output.key("_0");
                write(output, payload, casePlace["_0"]);
            }
        },
        value.value);
    output.endObject();
    output.endObject();
}

template <Record T>
void write(Output& output, const T& value, const Place& place) {
    Writer writer(output);
    T::describe(value, writer);
    writer.finish(place);
}

/// Parses a text of at most 64 MiB and 256 levels and hands out the document, which lasts as long as the
/// call; of a key that is given twice, the last counts. Throws `JsonRecordError` for what is not JSON in
/// UTF-8.
void parse(std::string_view text, const std::function<void(const nlohmann::json& document)>& read);

/// Reads a record from a document's text. Throws `JsonRecordError`.
template <class T>
T decode(std::string_view text) {
    T value = blank<T>();
    parse(text, [&](const nlohmann::json& document) { read(document, value, Place()); });
    return value;
}

/// The record as a document's text: keys sorted, pretty, one line feed at the end. Throws `JsonRecordError`
/// for what JSON cannot hold.
template <class T>
std::string encode(const T& value, std::size_t expectedBytes = 0) {
    Output output(Layout::pretty, expectedBytes);
    write(output, value, Place());
    return output.take() + "\n";
}

/// As `encode`, on one line, without a line feed.
template <class T>
std::string encodeCompact(const T& value) {
    Output output(Layout::compact);
    write(output, value, Place());
    return output.take();
}

}  // namespace quillmar::json

#pragma once
// How enumerations, containers, unions and records are written: the templates that `JsonWriting.h` declares.
#include "base/JsonWriting.h"

namespace quillmar::json {

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

}  // namespace quillmar::json

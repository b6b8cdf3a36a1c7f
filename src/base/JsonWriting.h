#pragma once
// Writes records and what they are made of.
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "base/Bytes.h"
#include "base/Enum.h"
#include "base/JsonOutput.h"
#include "base/JsonShapes.h"
#include "base/Uuid.h"
#include "base/WallTime.h"

namespace quillmar::json {

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

}  // namespace quillmar::json

#include "base/JsonWritingValues.h"  // IWYU pragma: export

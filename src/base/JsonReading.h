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

}  // namespace quillmar::json

#include "base/JsonReadingValues.h"  // IWYU pragma: export

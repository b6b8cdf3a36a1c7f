#pragma once
// What the reading and the writing of records share.
#include <concepts>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "base/JsonError.h"
#include "base/Url.h"

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

/// A value of a type that may have no default constructor, to be filled by `read`.
template <class T>
T blank() {
    if constexpr (std::is_same_v<T, Url>) {
        return Url::fromFilePath("/");
    } else {
        return T{};
    }
}

}  // namespace quillmar::json

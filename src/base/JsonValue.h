#pragma once
// A JSON document in memory, made to be read once into records: all of it lies in one arena.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <memory_resource>
#include <span>
#include <string_view>

namespace quillmar::json {

struct Member;

/// One value of a document. A small handle, valid as long as its `Document`.
class Value {
public:
    enum class Kind : std::uint8_t { null, boolean, natural, negative, real, text, array, object };

    Value() = default;
    explicit Value(bool value) : kind_(Kind::boolean), boolean_(value) {}
    /// A whole number; those from 0 are `natural`.
    explicit Value(std::uint64_t value) : kind_(Kind::natural), natural_(value) {}
    explicit Value(std::int64_t value) : kind_(Kind::negative), negative_(value) {}
    explicit Value(double value) : kind_(Kind::real), real_(value) {}
    explicit Value(std::string_view text)
        : kind_(Kind::text), size_(static_cast<std::uint32_t>(text.size())), text_(text.data()) {}
    explicit Value(std::span<const Value> elements)
        : kind_(Kind::array),
          size_(static_cast<std::uint32_t>(elements.size())),
          elements_(elements.data()) {}
    /// `members` are sorted by key, each key once.
    explicit Value(std::span<const Member> members);

    Kind kind() const { return kind_; }
    bool isNull() const { return kind_ == Kind::null; }
    /// Each is asked only of a value of that kind.
    bool boolean() const { return boolean_; }
    std::uint64_t natural() const { return natural_; }
    std::int64_t negative() const { return negative_; }
    double real() const { return real_; }
    std::string_view text() const { return {text_, size_}; }
    std::span<const Value> elements() const { return {elements_, size_}; }
    std::span<const Member> members() const;

private:
    Kind kind_ = Kind::null;
    std::uint32_t size_ = 0;
    union {
        bool boolean_;
        std::uint64_t natural_ = 0;
        std::int64_t negative_;
        double real_;
        const char* text_;
        const Value* elements_;
        const Member* members_;
    };
};

struct Member {
    std::string_view key;
    Value value;
};

inline Value::Value(std::span<const Member> members)
    : kind_(Kind::object), size_(static_cast<std::uint32_t>(members.size())), members_(members.data()) {}
inline std::span<const Member> Value::members() const { return {members_, size_}; }

/// A parsed document: owns every value of it, and needs the text no longer.
class Document {
public:
    using Arena = std::pmr::monotonic_buffer_resource;

    Document(std::unique_ptr<Arena> arena, Value root) : arena_(std::move(arena)), root_(root) {}
    const Value& root() const { return root_; }

private:
    std::unique_ptr<Arena> arena_;
    Value root_;
};

/// Parses a text of at most 64 MiB and 256 levels; of a key that is given twice, the last counts. Throws
/// `JsonRecordError` for what is not JSON in UTF-8.
Document parse(std::string_view text);

}  // namespace quillmar::json

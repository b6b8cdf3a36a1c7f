#include "base/JsonValue.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <vector>

#include "base/JsonError.h"

namespace quillmar::json {
namespace {

constexpr std::size_t maximumBytes = 64u << 20;
constexpr std::size_t maximumDepth = 256;

/// Takes the parser's events and lays the document out in the arena. What is still open waits on two stacks,
/// so that the elements of an array and the members of an object end up side by side.
class Builder {
public:
    explicit Builder(Document::Arena& arena) : arena_(arena) {}

    Value root() const { return root_; }

    bool null() { return add(Value()); }
    bool boolean(bool value) { return add(Value(value)); }
    bool number_integer(std::int64_t value) { return add(Value(value)); }
    bool number_unsigned(std::uint64_t value) { return add(Value(value)); }
    bool number_float(double value, const std::string&) { return add(Value(value)); }
    bool string(const std::string& text) { return add(Value(kept(text))); }
    bool binary(nlohmann::json::binary_t&) { return false; }

    bool start_object(std::size_t) { return open({true, members_.size()}); }
    bool key(const std::string& key) {
        members_.push_back({kept(key), Value()});
        return true;
    }
    bool end_object() {
        const std::size_t first = close().first;
        sortMembersFrom(first);
        return add(Value(moved(members_, first)));
    }
    bool start_array(std::size_t) { return open({false, elements_.size()}); }
    bool end_array() {
        const std::size_t first = close().first;
        return add(Value(moved(elements_, first)));
    }
    [[noreturn]] bool parse_error(std::size_t, const std::string&, const nlohmann::json::exception& error) {
        if (const auto* atByte = dynamic_cast<const nlohmann::json::parse_error*>(&error)) {
            throw JsonRecordError("",
                                  fmt::format("the document is not valid JSON (at byte {})", atByte->byte));
        }
        // a number that no machine number can hold
        throw JsonRecordError("", "the document is not valid JSON");
    }

private:
    struct Level {
        bool isObject;
        std::size_t first;
    };

    /// Reading a record recurses with the document, so a hostile one is refused.
    bool open(Level level) {
        if (levels_.size() == maximumDepth) throw JsonRecordError("", "the document is nested too deeply");
        levels_.push_back(level);
        return true;
    }

    Level close() {
        const Level level = levels_.back();
        levels_.pop_back();
        return level;
    }

    bool add(Value value) {
        if (levels_.empty()) {
            root_ = value;
        } else if (levels_.back().isObject) {
            members_.back().value = value;
        } else {
            elements_.push_back(value);
        }
        return true;
    }

    std::string_view kept(std::string_view text) {
        if (text.empty()) return "";
        auto* copy = static_cast<char*>(arena_.allocate(text.size(), 1));
        std::ranges::copy(text, copy);
        return {copy, text.size()};
    }

    template <class T>
    std::span<const T> moved(std::vector<T>& stack, std::size_t first) {
        const std::size_t count = stack.size() - first;
        if (count == 0) return {};
        auto* copy = static_cast<T*>(arena_.allocate(count * sizeof(T), alignof(T)));
        std::uninitialized_copy_n(stack.begin() + static_cast<std::ptrdiff_t>(first), count, copy);
        stack.resize(first);
        return {copy, count};
    }

    void sortMembersFrom(std::size_t first) {
        const std::span members = std::span(members_).subspan(first);
        const auto isAfter = [](const Member& one, const Member& next) { return one.key >= next.key; };
        if (std::ranges::adjacent_find(members, isAfter) == members.end()) return;
        std::map<std::string_view, Value> sorted;
        for (const Member& member : members) sorted.insert_or_assign(member.key, member.value);
        members_.resize(first);
        for (const auto& [key, value] : sorted) members_.push_back({key, value});
    }

    Document::Arena& arena_;
    Value root_;
    std::vector<Level> levels_;
    std::vector<Value> elements_;
    std::vector<Member> members_;
};

}  // namespace

Document parse(std::string_view text) {
    if (text.size() > maximumBytes) throw JsonRecordError("", "the document is too large");
    auto arena = std::make_unique<Document::Arena>(text.size() + 1024);
    Builder builder(*arena);
    nlohmann::json::sax_parse(text, &builder);
    return {std::move(arena), builder.root()};
}

}  // namespace quillmar::json

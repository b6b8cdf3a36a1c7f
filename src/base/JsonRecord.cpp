#include "base/JsonRecord.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "base/Text.h"

namespace quillmar::json {
namespace {

constexpr std::size_t maximumBytes = 64u << 20;
constexpr int maximumDepth = 256;

/// Reading a record recurses with the document, so a hostile one is refused before it is parsed.
bool isTooDeep(std::string_view text) {
    int depth = 0;
    bool inString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (inString) {
            if (c == '\\') {
                ++i;
            } else if (c == '"') {
                inString = false;
            }
        } else if (c == '"') {
            inString = true;
        } else if (c == '{' || c == '[') {
            if (++depth > maximumDepth) return true;
        } else if (c == '}' || c == ']') {
            --depth;
        }
    }
    return false;
}

std::string described(const Value& json) {
    switch (json.type()) {
        case Value::value_t::null: return "null";
        case Value::value_t::object: return "an object";
        case Value::value_t::array: return "an array";
        case Value::value_t::string: return "a text";
        case Value::value_t::boolean: return json.get<bool>() ? "true" : "false";
        default: return "the number " + json.dump();
    }
}

/// A value as it stands in the document, short enough for an alert.
std::string quoted(const Value& json) {
    constexpr std::size_t maximumLength = 60;
    std::string text = json.dump();
    if (text.size() <= maximumLength) return text;
    std::size_t end = maximumLength;
    while ((static_cast<unsigned char>(text[end]) & 0xc0) == 0x80) --end;
    return text.substr(0, end) + "…";
}

void expect(bool holds, std::string_view what, const Value& json, const Place& place) {
    if (!holds) place.fail(fmt::format("expected {}, found {}", what, described(json)));
}

const std::string& text(const Value& json, std::string_view what, const Place& place) {
    expect(json.is_string(), what, json, place);
    return json.get_ref<const std::string&>();
}

template <class T>
void readInteger(const Value& json, T& value, const Place& place) {
    if (json.is_number_unsigned()) {
        const auto number = json.get<std::uint64_t>();
        expect(std::in_range<T>(number), "a number in range", json, place);
        value = static_cast<T>(number);
    } else if (json.is_number_integer()) {
        const auto number = json.get<std::int64_t>();
        expect(std::in_range<T>(number), "a number in range", json, place);
        value = static_cast<T>(number);
    } else {
        expect(json.is_number_float(), "a whole number", json, place);
        // Other writers may spell a whole number with a fraction of zero. 2^53 is where doubles lose units.
        const double number = json.get<double>();
        const bool isWhole = std::trunc(number) == number && std::abs(number) <= 9007199254740992.0;
        expect(isWhole && std::in_range<T>(static_cast<std::int64_t>(number)), "a whole number", json, place);
        value = static_cast<T>(number);
    }
}

template <class T, class Parse>
void readParsed(const Value& json, T& value, const Place& place, std::string_view what, Parse parseText) {
    auto parsed = parseText(text(json, what, place));
    if (!parsed) place.fail(fmt::format("expected {}, found {}", what, quoted(json)));
    value = std::move(*parsed);
}

}  // namespace

std::string Place::text() const {
    if (!up_) return {};
    const std::string before = up_->text();
    if (key_.data() == nullptr) return fmt::format("{}[{}]", before, index_);
    return before.empty() ? std::string(key_) : fmt::format("{}.{}", before, key_);
}

Value parse(std::string_view text) {
    if (text.size() > maximumBytes) throw JsonRecordError("", "the document is too large");
    if (isTooDeep(text)) throw JsonRecordError("", "the document is nested too deeply");
    try {
        return Value::parse(text);
    } catch (const Value::parse_error& error) {
        throw JsonRecordError("", fmt::format("the document is not valid JSON (at byte {})", error.byte));
    } catch (const Value::exception&) {  // a number that no machine number can hold
        throw JsonRecordError("", "the document is not valid JSON");
    }
}

std::string prettyText(const Value& value) { return value.dump(2) + "\n"; }
std::string compactText(const Value& value) { return value.dump(); }

void read(const Value& json, bool& value, const Place& place) {
    expect(json.is_boolean(), "true or false", json, place);
    value = json.get<bool>();
}
void read(const Value& json, int& value, const Place& place) { readInteger(json, value, place); }
void read(const Value& json, std::int64_t& value, const Place& place) { readInteger(json, value, place); }
void read(const Value& json, std::uint32_t& value, const Place& place) { readInteger(json, value, place); }
void read(const Value& json, std::uint64_t& value, const Place& place) { readInteger(json, value, place); }
void read(const Value& json, double& value, const Place& place) {
    expect(json.is_number(), "a number", json, place);
    value = json.get<double>();
}
void read(const Value& json, std::string& value, const Place& place) { value = text(json, "a text", place); }
void read(const Value& json, Uuid& value, const Place& place) {
    readParsed(json, value, place, "a UUID", [](const std::string& t) { return Uuid::parse(t); });
}
void read(const Value& json, Url& value, const Place& place) {
    readParsed(json, value, place, "a URL", [](const std::string& t) { return Url::parse(t); });
}
void read(const Value& json, Bytes& value, const Place& place) {
    readParsed(json, value, place, "Base64 text", [](const std::string& t) { return base64Decoded(t); });
}
void read(const Value& json, WallTime& value, const Place& place) {
    readParsed(json, value, place, "an ISO 8601 date", [](const std::string& t) { return parseISO8601(t); });
}

Value write(bool value, const Place&) { return value; }
Value write(int value, const Place&) { return value; }
Value write(std::int64_t value, const Place&) { return value; }
Value write(std::uint32_t value, const Place&) { return value; }
Value write(std::uint64_t value, const Place&) { return value; }
Value write(double value, const Place& place) {
    if (!std::isfinite(value)) place.fail("the number is not finite");
    return value;
}
Value write(const std::string& value, const Place& place) {
    if (!isValidUtf8(value)) place.fail("the text is not UTF-8");
    return value;
}
Value write(const Uuid& value, const Place&) { return value.string(); }
Value write(const Url& value, const Place&) { return value.string(); }
Value write(const Bytes& value, const Place&) { return base64Encoded(value); }
Value write(const WallTime& value, const Place&) { return iso8601(value); }

namespace detail {

const Value& expectObject(const Value& json, const Place& place) {
    expect(json.is_object(), "an object", json, place);
    return json;
}
const Value& expectArray(const Value& json, const Place& place) {
    expect(json.is_array(), "an array", json, place);
    return json;
}

std::size_t indexOfName(const Value& json, std::span<const std::string_view> names, const Place& place) {
    const std::string& name = text(json, "a text", place);
    const auto found = std::ranges::find(names, name);
    if (found == names.end()) {
        place.fail(fmt::format("expected one of {}, found {}", fmt::join(names, ", "), quoted(json)));
    }
    return static_cast<std::size_t>(found - names.begin());
}

std::pair<std::size_t, const Value*> onlyCase(const Value& json, std::span<const std::string_view> names,
                                              const Place& place) {
    expectObject(json, place);
    std::pair<std::size_t, const Value*> found{0, nullptr};
    std::size_t count = 0;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (const Value* content = find(json, names[i])) {
            found = {i, content};
            ++count;
        }
    }
    if (count != 1) place.fail("Invalid number of keys found, expected one.");
    return found;
}

const Value& payload(const Value& json, const Place& place) {
    const Value* found = find(expectObject(json, place), "_0");
    if (!found) place["_0"].fail("missing key");
    return *found;
}

const Value* find(const Value& object, std::string_view key) {
    const auto found = object.find(key);
    return found == object.end() ? nullptr : &*found;
}

}  // namespace detail
}  // namespace quillmar::json

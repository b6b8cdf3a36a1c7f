#include "base/JsonRecord.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace quillmar::json {
namespace {

std::string described(const Value& json) {
    const auto number = [](const auto& value) { return "the number " + encodeCompact(value); };
    switch (json.kind()) {
        case Value::Kind::null: return "null";
        case Value::Kind::boolean: return json.boolean() ? "true" : "false";
        case Value::Kind::natural: return number(json.natural());
        case Value::Kind::negative: return number(json.negative());
        case Value::Kind::real: return number(json.real());
        case Value::Kind::text: return "a text";
        case Value::Kind::array: return "an array";
        case Value::Kind::object: return "an object";
    }
    return {};
}

/// A text as it stands in the document, short enough for an alert.
std::string quoted(std::string_view value) {
    constexpr std::size_t maximumLength = 60;
    std::string text = encodeCompact(std::string(value));
    if (text.size() <= maximumLength) return text;
    std::size_t end = maximumLength;
    while ((static_cast<unsigned char>(text[end]) & 0xc0) == 0x80) --end;
    return text.substr(0, end) + "…";
}

void expect(bool holds, std::string_view what, const Value& json, const Place& place) {
    if (!holds) place.fail(fmt::format("expected {}, found {}", what, described(json)));
}

std::string_view text(const Value& json, std::string_view what, const Place& place) {
    expect(json.kind() == Value::Kind::text, what, json, place);
    return json.text();
}

template <class T>
void readInteger(const Value& json, T& value, const Place& place) {
    if (json.kind() == Value::Kind::natural) {
        expect(std::in_range<T>(json.natural()), "a number in range", json, place);
        value = static_cast<T>(json.natural());
    } else if (json.kind() == Value::Kind::negative) {
        expect(std::in_range<T>(json.negative()), "a number in range", json, place);
        value = static_cast<T>(json.negative());
    } else {
        expect(json.kind() == Value::Kind::real, "a whole number", json, place);
        // Other writers may spell a whole number with a fraction of zero. 2^53 is where doubles lose units.
        const double number = json.real();
        const bool isWhole = std::trunc(number) == number && std::abs(number) <= 9007199254740992.0;
        expect(isWhole && std::in_range<T>(static_cast<std::int64_t>(number)), "a whole number", json, place);
        value = static_cast<T>(number);
    }
}

template <class T, class Parse>
void readParsed(const Value& json, T& value, const Place& place, std::string_view what, Parse parseText) {
    const std::string_view given = text(json, what, place);
    auto parsed = parseText(given);
    if (!parsed) place.fail(fmt::format("expected {}, found {}", what, quoted(given)));
    value = std::move(*parsed);
}

}  // namespace

std::string Place::text() const {
    if (!up_) return {};
    const std::string before = up_->text();
    if (key_.data() == nullptr) return fmt::format("{}[{}]", before, index_);
    return before.empty() ? std::string(key_) : fmt::format("{}.{}", before, key_);
}

void read(const Value& json, bool& value, const Place& place) {
    expect(json.kind() == Value::Kind::boolean, "true or false", json, place);
    value = json.boolean();
}
void read(const Value& json, int& value, const Place& place) { readInteger(json, value, place); }
void read(const Value& json, std::int64_t& value, const Place& place) { readInteger(json, value, place); }
void read(const Value& json, std::uint32_t& value, const Place& place) { readInteger(json, value, place); }
void read(const Value& json, std::uint64_t& value, const Place& place) { readInteger(json, value, place); }
void read(const Value& json, double& value, const Place& place) {
    switch (json.kind()) {
        case Value::Kind::natural: value = static_cast<double>(json.natural()); break;
        case Value::Kind::negative: value = static_cast<double>(json.negative()); break;
        default: expect(json.kind() == Value::Kind::real, "a number", json, place); value = json.real();
    }
}
void read(const Value& json, std::string& value, const Place& place) { value = text(json, "a text", place); }
void read(const Value& json, Uuid& value, const Place& place) {
    readParsed(json, value, place, "a UUID", [](std::string_view t) { return Uuid::parse(t); });
}
void read(const Value& json, Url& value, const Place& place) {
    readParsed(json, value, place, "a URL", [](std::string_view t) { return Url::parse(t); });
}
void read(const Value& json, Bytes& value, const Place& place) {
    readParsed(json, value, place, "Base64 text", [](std::string_view t) { return base64Decoded(t); });
}
void read(const Value& json, WallTime& value, const Place& place) {
    readParsed(json, value, place, "an ISO 8601 date", [](std::string_view t) { return parseISO8601(t); });
}

void write(Output& output, bool value, const Place&) { output.boolean(value); }
void write(Output& output, int value, const Place&) { output.integer(value); }
void write(Output& output, std::int64_t value, const Place&) { output.integer(value); }
void write(Output& output, std::uint32_t value, const Place&) { output.natural(value); }
void write(Output& output, std::uint64_t value, const Place&) { output.natural(value); }
void write(Output& output, double value, const Place& place) {
    if (!std::isfinite(value)) place.fail("the number is not finite");
    output.real(value);
}
void write(Output& output, std::string_view value, const Place& place) {
    if (!output.text(value)) place.fail("the text is not UTF-8");
}
void write(Output& output, const std::string& value, const Place& place) {
    write(output, std::string_view(value), place);
}
void write(Output& output, const Uuid& value, const Place& place) { write(output, value.string(), place); }
void write(Output& output, const Url& value, const Place& place) { write(output, value.string(), place); }
void write(Output& output, const Bytes& value, const Place& place) {
    write(output, base64Encoded(value), place);
}
void write(Output& output, const WallTime& value, const Place& place) {
    write(output, iso8601(value), place);
}

namespace detail {

std::span<const Member> members(const Value& json, const Place& place) {
    expect(json.kind() == Value::Kind::object, "an object", json, place);
    return json.members();
}
std::span<const Value> elements(const Value& json, const Place& place) {
    expect(json.kind() == Value::Kind::array, "an array", json, place);
    return json.elements();
}

std::size_t indexOfName(const Value& json, std::span<const std::string_view> names, const Place& place) {
    const std::string_view name = text(json, "a text", place);
    const auto found = std::ranges::find(names, name);
    if (found == names.end()) {
        place.fail(fmt::format("expected one of {}, found {}", fmt::join(names, ", "), quoted(name)));
    }
    return static_cast<std::size_t>(found - names.begin());
}

std::pair<std::size_t, const Value*> onlyCase(const Value& json, std::span<const std::string_view> names,
                                              const Place& place) {
    std::pair<std::size_t, const Value*> found{0, nullptr};
    std::size_t count = 0;
    for (const Member& member : members(json, place)) {
        const auto name = std::ranges::find(names, member.key);
        if (name == names.end()) continue;
        found = {static_cast<std::size_t>(name - names.begin()), &member.value};
        ++count;
    }
    if (count != 1) place.fail("Invalid number of keys found, expected one.");
    return found;
}

const Value& payload(const Value& json, const Place& place) {
    const Value* found = find(members(json, place), "_0");
    if (!found) place["_0"].fail("missing key");
    return *found;
}

const Value* find(std::span<const Member> object, std::string_view key) {
    const auto found = std::ranges::lower_bound(object, key, {}, &Member::key);
    return found == object.end() || found->key != key ? nullptr : &found->value;
}

}  // namespace detail

void Writer::finish(const Place& place) {
    std::vector<PendingField>& fields = output_.pendingFields();
    const std::size_t end = fields.size();
    std::ranges::sort(std::span(fields).subspan(first_), {}, &PendingField::key);
    output_.beginObject();
    for (std::size_t i = first_; i < end; ++i) {
        const PendingField field = fields[i];  // a record within this one lets the stack grow
        output_.key(field.key);
        field.write(output_, field.value, place[field.key]);
    }
    output_.endObject();
    fields.resize(first_);
}
}  // namespace quillmar::json

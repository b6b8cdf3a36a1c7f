#include "base/JsonRecord.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

// The library would check every value against itself at each move, a tenth of the time that a document takes.
#define JSON_ASSERT(condition)
#include <nlohmann/json.hpp>

#include "base/JsonPosition.h"

namespace quillmar::json {
namespace {

std::string described(const nlohmann::json& json) {
    if (json.is_number()) return "the number " + json.dump();
    if (json.is_string()) return "a text";
    if (json.is_array()) return "an array";
    return json.is_object() ? "an object" : json.dump();
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

void expect(bool holds, std::string_view what, const nlohmann::json& json, const Place& place) {
    if (!holds) place.fail(fmt::format("expected {}, found {}", what, described(json)));
}

std::string_view text(const nlohmann::json& json, std::string_view what, const Place& place) {
    expect(json.is_string(), what, json, place);
    return json.get_ref<const std::string&>();
}

template <class T>
void readInteger(const nlohmann::json& json, T& value, const Place& place) {
    const auto takeInRange = [&](auto number) {
        expect(std::in_range<T>(number), "a number in range", json, place);
        value = static_cast<T>(number);
    };
    if (json.is_number_unsigned()) {
        takeInRange(json.get<std::uint64_t>());
    } else if (json.is_number_integer()) {
        takeInRange(json.get<std::int64_t>());
    } else {
        expect(json.is_number(), "a whole number", json, place);
        // Other writers may spell a whole number with a fraction of zero. 2^53 is where doubles lose units.
        const double number = json.get<double>();
        const bool isWhole = std::trunc(number) == number && std::abs(number) <= 9007199254740992.0;
        expect(isWhole && std::in_range<T>(static_cast<std::int64_t>(number)), "a whole number", json, place);
        value = static_cast<T>(number);
    }
}

template <class T, class Parse>
void readParsed(const nlohmann::json& json, T& value, const Place& place, std::string_view what,
                Parse parseText) {
    const std::string_view given = text(json, what, place);
    auto parsed = parseText(given);
    if (!parsed) place.fail(fmt::format("expected {}, found {}", what, quoted(given)));
    value = std::move(*parsed);
}

/// Whether brackets that are open at one time are few enough. Told before parsing: a hostile text of nothing
/// else becomes a document of a hundred times its size.
bool isNestedTooDeeply(std::string_view text) {
    constexpr int maximumDepth = 256;
    int depth = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        switch (text[i]) {
            case '[':
            case '{':
                if (++depth > maximumDepth) return true;
                break;
            case ']':
            case '}': --depth; break;
            case '"': i = endOfJsonText(text, i); break;
            default: break;
        }
    }
    return false;
}

nlohmann::json parsed(std::string_view text) {
    constexpr std::size_t maximumBytes = 16u << 20;  // becomes a document of a quarter of a gigabyte
    if (text.size() > maximumBytes) throw JsonRecordError("", "the document is too large");
    if (isNestedTooDeeply(text)) throw JsonRecordError("", "the document is nested too deeply");
    try {
        return nlohmann::json::parse(text);
    } catch (const nlohmann::json::parse_error& error) {
        const auto [line, column] = positionAt(text, error.byte == 0 ? 0 : error.byte - 1);
        throw JsonRecordError(
            "", fmt::format("the document is not valid JSON (line {}, column {})", line, column));
    } catch (const nlohmann::json::out_of_range&) {
        throw JsonRecordError(
            "", "the document is not valid JSON: it has a number that no machine number can hold");
    }
}

}  // namespace

void parse(std::string_view text, const std::function<void(const nlohmann::json&)>& read) {
    read(parsed(text));
}

std::string Place::text() const {
    if (!up_) return {};
    const std::string before = up_->text();
    if (key_.data() == nullptr) return fmt::format("{}[{}]", before, index_);
    return before.empty() ? std::string(key_) : fmt::format("{}.{}", before, key_);
}

void read(const nlohmann::json& json, bool& value, const Place& place) {
    expect(json.is_boolean(), "true or false", json, place);
    value = json.get<bool>();
}
void read(const nlohmann::json& json, int& value, const Place& place) { readInteger(json, value, place); }
void read(const nlohmann::json& json, std::int64_t& value, const Place& place) {
    readInteger(json, value, place);
}
void read(const nlohmann::json& json, std::uint32_t& value, const Place& place) {
    readInteger(json, value, place);
}
void read(const nlohmann::json& json, std::uint64_t& value, const Place& place) {
    readInteger(json, value, place);
}
void read(const nlohmann::json& json, double& value, const Place& place) {
    expect(json.is_number(), "a number", json, place);
    value = json.get<double>();
}
void read(const nlohmann::json& json, std::string& value, const Place& place) {
    value = text(json, "a text", place);
}
void read(const nlohmann::json& json, Uuid& value, const Place& place) {
    readParsed(json, value, place, "a UUID", [](std::string_view t) { return Uuid::parse(t); });
}
void read(const nlohmann::json& json, Url& value, const Place& place) {
    readParsed(json, value, place, "a URL", [](std::string_view t) { return Url::parse(t); });
}
void read(const nlohmann::json& json, Bytes& value, const Place& place) {
    readParsed(json, value, place, "Base64 text", [](std::string_view t) { return base64Decoded(t); });
}
void read(const nlohmann::json& json, WallTime& value, const Place& place) {
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

void expectObject(const nlohmann::json& json, const Place& place) {
    expect(json.is_object(), "an object", json, place);
}

std::size_t elementCount(const nlohmann::json& json, const Place& place) {
    expect(json.is_array(), "an array", json, place);
    return json.size();
}

const nlohmann::json& element(const nlohmann::json& array, std::size_t index) { return array[index]; }

void forEachMember(const nlohmann::json& json, const Place& place, const MemberVisit& visit) {
    expectObject(json, place);
    for (const auto& [key, value] : json.items()) visit(key, value);
}

const nlohmann::json* find(const nlohmann::json& object, std::string_view key) {
    const auto found = object.find(key);
    return found == object.end() ? nullptr : &*found;
}

bool isObject(const nlohmann::json& json) { return json.is_object(); }

std::optional<std::string> textOf(const nlohmann::json& json) {
    return json.is_string() ? std::optional(json.get<std::string>()) : std::nullopt;
}

bool isNull(const nlohmann::json& json) { return json.is_null(); }

std::size_t indexOfName(const nlohmann::json& json, std::span<const std::string_view> names,
                        const Place& place) {
    const std::string_view name = text(json, "a text", place);
    const auto found = std::ranges::find(names, name);
    if (found == names.end()) {
        place.fail(fmt::format("expected one of {}, found {}", fmt::join(names, ", "), quoted(name)));
    }
    return static_cast<std::size_t>(found - names.begin());
}

std::pair<std::size_t, const nlohmann::json*> onlyCase(const nlohmann::json& json,
                                                       std::span<const std::string_view> names,
                                                       const Place& place) {
    expectObject(json, place);
    std::pair<std::size_t, const nlohmann::json*> only{0, nullptr};
    std::size_t count = 0;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const nlohmann::json* found = find(json, names[i]);
        if (!found) continue;
        only = {i, found};
        ++count;
    }
    if (count != 1) place.fail("Invalid number of keys found, expected one.");
    return only;
}

const nlohmann::json& payload(const nlohmann::json& json, const Place& place) {
    expectObject(json, place);
    const nlohmann::json* found = find(json, "_0");
    if (!found) place["_0"].fail("missing key");
    return *found;
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

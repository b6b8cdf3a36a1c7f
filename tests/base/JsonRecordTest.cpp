#include "base/JsonRecord.h"

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

using namespace testing;

namespace quillmar {
namespace {

enum class Tone { dark, light };
constexpr auto enumNames(Tone) { return std::to_array<std::string_view>({"dark", "light"}); }

struct Picture {
    std::optional<Url> url;
    Tone tone = Tone::dark;
    bool operator==(const Picture&) const = default;
    static void describe(auto& self, auto& io) { io.optional("url", self.url).required("tone", self.tone); }
};

struct Choice {
    using Value = std::variant<std::monostate, Picture, std::string>;
    Value value;
    static constexpr auto caseNames() {
        return std::to_array<std::string_view>({"disabled", "picture", "caption"});
    }
    bool operator==(const Choice&) const = default;
};

struct Everything {
    int number = 0;
    std::uint64_t large = 0;
    double length = 0;
    bool isOn = false;
    std::string text;
    Uuid id;
    Bytes bytes;
    WallTime time;
    std::vector<Choice> choices;
    std::map<Tone, Choice> byTone;
    std::map<std::string, std::vector<int>> byName;
    std::optional<int> maybe;
    bool operator==(const Everything&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("number", self.number).required("large", self.large).required("length", self.length);
        io.required("isOn", self.isOn).required("text", self.text).required("id", self.id);
        io.required("bytes", self.bytes).required("time", self.time).required("choices", self.choices);
        io.required("byTone", self.byTone).required("byName", self.byName).optional("maybe", self.maybe);
    }
};

Everything sample() {
    Everything record;
    record.number = -7;
    record.large = std::numeric_limits<std::uint64_t>::max();
    record.length = 0.1;
    record.isOn = true;
    record.text = "é \"\\/\n\U0001f5bc";
    record.id = *Uuid::parse("6ba7b810-9dad-11d1-80b4-00c04fd430c8");
    record.bytes = {0, 255};
    record.time = *parseISO8601("2026-05-04T09:30:00Z");
    record.choices = {Choice{}, Choice{Picture{Url::parse("file:///a%20b"), Tone::light}}, Choice{"hello"}};
    record.byTone = {{Tone::light, Choice{"l"}}, {Tone::dark, Choice{}}};
    record.byName = {{"", {}}, {"a b", {1, 2}}};
    return record;
}

template <class Record>
std::string failure(const std::string& text) {
    try {
        (void)json::decode<Record>(text);
        return "read";
    } catch (const JsonRecordError& error) {
        return error.what();
    }
}

/// A document of `Everything` whose one key has been given another value; without a value the key is gone.
std::string documentWith(const std::string& key, const std::string& value) {
    auto document = nlohmann::json::parse(json::encode(sample()));
    if (value.empty()) {
        document.erase(key);
    } else {
        document[key] = nlohmann::json::parse(value);
    }
    return document.dump();
}

TEST(JsonRecordTest, everythingSurvivesARoundTrip) {
    const std::string text = json::encode(sample());
    EXPECT_EQ(json::decode<Everything>(text), sample());
    EXPECT_EQ(json::encode(json::decode<Everything>(text)), text);
    EXPECT_THAT(text, HasSubstr("\"text\": \"é \\\"\\\\/\\n\U0001f5bc\""));
    EXPECT_THAT(text, Not(HasSubstr("maybe")));
}

TEST(JsonRecordTest, shapesAreWrittenAsOtherBuildsReadThem) {
    EXPECT_EQ(json::encode(Picture{}), "{\n  \"tone\": \"dark\"\n}\n");
    const auto compact = [](const auto& value) { return json::encodeCompact(value); };
    EXPECT_EQ(compact(Choice{}), R"({"disabled":{}})");
    EXPECT_EQ(compact(Choice{"x"}), R"({"caption":{"_0":"x"}})");
    EXPECT_EQ(compact(std::map<Tone, Picture>{{Tone::light, {}}}), R"(["light",{"tone":"dark"}])");
    EXPECT_EQ(compact(std::map<Tone, Picture>{}), "[]");
}

TEST(JsonRecordTest, numbersAndTextsAreSpelledAsOtherWritersSpellThem) {
    const std::vector<double> numbers = {0.0,  -0.0, 1.0,   -2.0,     0.1,  1e9,    1e9 + 1, -123456.75,
                                         1e15, 1e16, 1e300, 4.9e-324, 1e-5, 0.0001, 1.0 / 3, 2147483648.0};
    for (const double number : numbers) EXPECT_EQ(json::encodeCompact(number), nlohmann::json(number).dump());
    std::string everyByte;
    for (char c = 0; c < 0x7f; ++c) everyByte += c;
    for (const std::string& text : {everyByte, std::string("\x7f é \U0001f5bc"), std::string()}) {
        EXPECT_EQ(json::encodeCompact(text), nlohmann::json(text).dump());
        EXPECT_EQ(json::decode<std::string>(json::encode(text)), text);
        EXPECT_EQ(json::encodeCompact(std::map<std::string, int>{{text, 1}}),
                  nlohmann::json({{text, 1}}).dump());
    }
}

TEST(JsonRecordTest, aFailureNamesItsPlaceAndReason) {
    struct Row {
        std::string key, value, text;
    };
    const std::vector<Row> rows = {
        {"number", "", "number: missing key"},
        {"number", "null", "number: expected a whole number, found null"},
        {"number", "\"1\"", "number: expected a whole number, found a text"},
        {"number", "1.5", "number: expected a whole number, found the number 1.5"},
        {"number", "2147483648", "number: expected a number in range, found the number 2147483648"},
        {"number", "1e300", "number: expected a whole number, found the number 1e+300"},
        {"number", "4294967296.0", "number: expected a whole number, found the number 4294967296.0"},
        {"large", "-1", "large: expected a number in range, found the number -1"},
        {"large", "1e22", "large: expected a whole number, found the number 1e+22"},
        {"length", "true", "length: expected a number, found true"},
        {"isOn", "1", "isOn: expected true or false, found the number 1"},
        {"text", "[]", "text: expected a text, found an array"},
        {"id", "\"6ba7\"", "id: expected a UUID, found \"6ba7\""},
        {"bytes", "\"Zm8\"", "bytes: expected Base64 text, found \"Zm8\""},
        {"time", "\"today\"", "time: expected an ISO 8601 date, found \"today\""},
        {"choices", "{}", "choices: expected an array, found an object"},
        {"choices", "[{\"disabled\":{}}, {}]", "choices[1]: Invalid number of keys found, expected one."},
        {"choices", R"([{"disabled":{}, "caption":{"_0":"x"}}])",
         "choices[0]: Invalid number of keys found, expected one."},
        {"choices", R"([{"video":{"_0":{}}}])", "choices[0]: Invalid number of keys found, expected one."},
        {"choices", R"([{"picture":{}}])", "choices[0].picture._0: missing key"},
        {"choices", R"([{"picture":{"_0":{"tone":"zoom"}}}])",
         "choices[0].picture._0.tone: expected one of dark, light, found \"zoom\""},
        {"choices", R"([{"picture":{"_0":{"tone":"dark","url":""}}}])",
         "choices[0].picture._0.url: expected a URL, found \"\""},
        {"choices", R"([{"disabled":null}])", "choices[0].disabled: expected an object, found null"},
        {"byTone", "{}", "byTone: expected an array, found an object"},
        {"byTone", "[\"dark\"]", "byTone: expected pairs of key and value, found an odd number of elements"},
        {"byTone", R"(["grey",{"disabled":{}}])", "byTone[0]: expected one of dark, light, found \"grey\""},
        {"byTone", R"(["dark",{"caption":{"_0":1}}])",
         "byTone[1].caption._0: expected a text, found the number 1"},
        {"byName", R"({"a b":[1,"2"]})", "byName.a b[1]: expected a whole number, found a text"},
        {"maybe", "\"x\"", "maybe: expected a whole number, found a text"},
    };
    for (const Row& row : rows) EXPECT_EQ(failure<Everything>(documentWith(row.key, row.value)), row.text);
}

TEST(JsonRecordTest, whatOtherWritersMaySpellDifferentlyIsRead) {
    for (const auto& [key, value] : std::vector<std::pair<std::string, std::string>>{
             {"number", "-3.0"},
             {"length", "2"},
             {"maybe", "null"},
             {"unknown", "[{}]"},
             {"choices", R"([{"disabled":{"more":1}, "added":{}}])"}}) {
        EXPECT_EQ(failure<Everything>(documentWith(key, value)), "read") << key;
    }
    EXPECT_EQ(failure<Picture>("\xef\xbb\xbf{\"tone\":\"dark\"}"), "read");
    // Unsorted keys, and one given twice: the last counts.
    EXPECT_EQ((json::decode<std::map<std::string, int>>(R"({"b":"x","c":3,"a":1,"b":2})")),
              (std::map<std::string, int>{{"a", 1}, {"b", 2}, {"c", 3}}));
}

TEST(JsonRecordTest, longValuesAreCutInMessages) {
    std::string value(59, 'x');
    value += "éééé";
    EXPECT_EQ(failure<Picture>("{\"tone\":\"" + value + "\"}"),
              "tone: expected one of dark, light, found \"" + std::string(59, 'x') + "…");
}

TEST(JsonRecordTest, hostileAndBrokenTextsAreRefused) {
    EXPECT_EQ(failure<Picture>(""), "the document is not valid JSON (line 1, column 1)");
    EXPECT_EQ(failure<Picture>("{\"tone\":\"dark\"} x"),
              "the document is not valid JSON (line 1, column 17)");
    EXPECT_EQ(failure<Picture>("{\"tone\":\"\xff\"}"), "the document is not valid JSON (line 1, column 10)");
    EXPECT_EQ(failure<Picture>("{\"tone\":1e999}"),
              "the document is not valid JSON: it has a number that no machine number can hold");
    EXPECT_EQ(failure<Picture>("[]"), "expected an object, found an array");
    EXPECT_EQ(failure<Picture>(std::string(100'000, '[')), "the document is nested too deeply");
    const std::string deep = std::string(300, '[') + std::string(300, ']');
    EXPECT_EQ(failure<Picture>("{\"tone\":" + deep + "}"), "the document is nested too deeply");
    EXPECT_EQ(failure<Picture>(R"({"tone":"dark","x":"\"[\\","y":"\\\")" + std::string(300, '[') + "\"}"),
              "read");
    EXPECT_EQ(failure<Picture>(std::string((16u << 20) + 1, ' ')), "the document is too large");
}

TEST(JsonRecordTest, whatJsonCannotHoldIsRefusedWithItsPlace) {
    const auto writeFailure = [](auto change) -> std::string {
        Everything record = sample();
        change(record);
        try {
            return json::encode(record);
        } catch (const JsonRecordError& error) {
            return error.what();
        }
    };
    EXPECT_EQ(writeFailure([](Everything& r) { r.length = std::nan(""); }),
              "length: the number is not finite");
    EXPECT_EQ(writeFailure([](Everything& r) { r.length = -INFINITY; }), "length: the number is not finite");
    EXPECT_EQ(writeFailure([](Everything& r) { r.choices[2] = Choice{"\xff"}; }),
              "choices[2].caption._0: the text is not UTF-8");
    EXPECT_EQ(writeFailure([](Everything& r) { r.byTone[Tone::dark] = Choice{"\xff"}; }),
              "byTone[1].caption._0: the text is not UTF-8");
    EXPECT_EQ(writeFailure([](Everything& r) { r.byName["\xff"]; }), "byName: the text is not UTF-8");
}

}  // namespace
}  // namespace quillmar

#include <fstream>

#include "base/BundleInfo.h"
#include "base/Bytes.h"
#include "base/Hash.h"
#include "base/HexColor.h"
#include "base/SemanticVersion.h"
#include "base/Uuid.h"
#include "base/WallTime.h"

using namespace testing;

namespace quillmar {
namespace {

TEST(UuidTest, namesGiveThePublishedVersion5Values) {
    const Uuid dns = *Uuid::parse("6ba7b810-9dad-11d1-80b4-00c04fd430c8");
    EXPECT_EQ(Uuid::fromName(dns, "www.example.com").lowercaseString(),
              "2ed6657d-e927-568b-95e1-2665a8aea6a2");
    EXPECT_EQ(Uuid::fromName(dns, "python.org").string(), "886313E1-3B8A-5372-9B90-0C9AEE199E5D");
    EXPECT_NE(Uuid::fromName(dns, "a"), Uuid::fromName(Uuid(), "a"));
}

TEST(UuidTest, readsOneFormInEitherCase) {
    EXPECT_EQ(Uuid::parse("6BA7B810-9dad-11D1-80b4-00C04FD430C8")->string(),
              "6BA7B810-9DAD-11D1-80B4-00C04FD430C8");
    for (const char* text : {"", "6ba7b8109dad11d180b400c04fd430c8", "{6ba7b810-9dad-11d1-80b4-00c04fd430c8}",
                             "6ba7b810-9dad-11d1-80b4-00c04fd430cg", "6ba7b810-9dad-11d1-80b4-00c04fd430c8 ",
                             "6ba7b8-109dad-11d1-80b4-00c04fd430c8"}) {
        EXPECT_FALSE(Uuid::parse(text)) << text;
    }
    const std::string random = Uuid::random().string();
    EXPECT_EQ(random[14], '4');
    EXPECT_NE(random, Uuid::random().string());
}

TEST(BytesTest, base64IsStrict) {
    for (const std::string& text :
         std::vector<std::string>{"", "f", "fo", "foo", std::string("\0\xff\x80", 3)}) {
        const auto bytes = asBytes(text);
        EXPECT_EQ(base64Decoded(base64Encoded(bytes)), Bytes(bytes.begin(), bytes.end()));
    }
    EXPECT_EQ(base64Encoded(asBytes("fo")), "Zm8=");
    for (const char* text : {"Zm8", "Zm9=", "Zm8=\n", "Zm 8", "Zm8-", "=Zm8", "Zm8=Zm8=", "===="}) {
        EXPECT_FALSE(base64Decoded(text)) << text;
    }
    EXPECT_FALSE(base64Decoded(std::string_view("Zm8=\0\0\0\0", 8)));
}

TEST(HashTest, givesThePublishedValues) {
    EXPECT_EQ(hexadecimal(fnv1a64("")), "cbf29ce484222325");
    EXPECT_EQ(hexadecimal(fnv1a64("foobar")), "85944171f73967e8");
    EXPECT_EQ(hexadecimal(0x0f), "f");
}

TEST(HexColorTest, judgesAUsersTextAfterNormalisingIt) {
    for (const char* text : {"#a1B2c3", "a1b2c3", " \u00a0#A1B2C3\n"}) {
        EXPECT_TRUE(isHexColor(text)) << text;
        EXPECT_EQ(normalizedHexColor(text), "A1B2C3");
    }
    for (const char* text : {"", "#", "##a1b2c3", "#a1b2c", "a1b2c3d", "-1b2c3", "+1b2c3", "0x1234", "a1 2c3",
                             "# a1b2c3", "ａ1b2c"}) {
        EXPECT_FALSE(isHexColor(text)) << text;
    }
    EXPECT_EQ(parseHexColor("0180ff"), (RgbColor{1, 128, 255}));
    EXPECT_EQ(parseHexColor("#180ff"), std::nullopt);
    EXPECT_EQ(normalizedHexColor(" #no colour "), "NO COLOUR");
}

TEST(WallTimeTest, readsIso8601InAnyZone) {
    const WallTime moment = *parseISO8601("2026-05-04T09:30:00Z");
    EXPECT_EQ(secondsSince1970(moment), 1777887000);
    for (const char* same :
         {"2026-05-04T09:30:00.000000Z", "2026-05-04T10:30:00+01:00", "2026-05-03T22:00:00-1130"}) {
        EXPECT_EQ(parseISO8601(same), moment) << same;
    }
    EXPECT_EQ(*parseISO8601("2026-05-04T09:30:00.2500009Z") - moment, std::chrono::milliseconds(250));
    EXPECT_EQ(iso8601(*parseISO8601("1969-12-31T23:59:59.9Z")), "1969-12-31T23:59:59Z");
    EXPECT_EQ(iso8601WithFraction(moment + std::chrono::microseconds(250'999)), "2026-05-04T09:30:00.250Z");
    EXPECT_EQ(wallTimeSince1970(-0.25), *parseISO8601("1969-12-31T23:59:59.75Z"));
}

TEST(WallTimeTest, refusesWhatIsNoMoment) {
    for (const char* text :
         {"", "2026-05-04", "2026-05-04T09:30:00", "2026-05-04 09:30:00Z", "2026-02-30T00:00:00Z",
          "2026-13-01T00:00:00Z", "2026-05-04T24:00:00Z", "2026-05-04T09:60:00Z", "2026-05-04T09:30:00.Z",
          "2026-05-04T09:30:00Zx", "2026-05-04T09:30:00+25:00", "2026-5-4T09:30:00Z"}) {
        EXPECT_FALSE(parseISO8601(text)) << text;
    }
}

TEST(SemanticVersionTest, areOrderedByPrecedenceAndReadInOneForm) {
    const char* rising[] = {
        "0.9.99",       "1.0.0-2",    "1.0.0-11", "1.0.0-alpha", "1.0.0-alpha.1", "1.0.0-alpha.beta",
        "1.0.0-beta.2", "1.0.0-rc.1", "1.0.0",    "1.2.0",       "1.10.0",        "18446744073709551616.0.0"};
    for (std::size_t i = 1; i < std::size(rising); ++i) {
        const auto lower = SemanticVersion::parse(rising[i - 1]), higher = SemanticVersion::parse(rising[i]);
        ASSERT_TRUE(lower && higher) << rising[i];
        EXPECT_LT(*lower, *higher) << rising[i];
    }
    EXPECT_EQ(SemanticVersion::parse("1.2.0+7"), SemanticVersion::parse("1.2.0+8"));
    for (const char* text : {"", "1", "1.2", "1.2.3.4", "v1.2.3", "01.2.3", "1.2.3-", "1.2.3-01",
                             "1.2.3-a..b", "1.2.3+", "1.2.3 ", "-1.2.3", "1.2.x"}) {
        EXPECT_FALSE(SemanticVersion::parse(text)) << text;
    }
}

TEST(BundleInfoTest, emptyKeysCountAsAbsent) {
    const BundleInfo bundle({{"CFBundleIdentifier", ""},
                             {"QuillmarSemanticVersion", ""},
                             {"CFBundleName", "Q"},
                             {"CFBundleShortVersionString", "1.2.3"}});
    EXPECT_EQ(bundle.identifier(), std::nullopt);
    EXPECT_EQ(bundle.semanticVersion("unknown"), "1.2.3");
    EXPECT_EQ(bundle.displayName(), "Q");
    EXPECT_EQ(BundleInfo().semanticVersion("unknown"), "unknown");
    EXPECT_EQ(BundleInfo().displayName(), "Quillmar");
}

TEST(BundleInfoTest, aFileThatCannotBeReadSaysWhichAndWhy) {
    const auto file = std::filesystem::path(TempDir()) / "Info.json";
    const auto failure = [&](std::string_view content) -> std::string {
        std::ofstream(file) << content;
        try {
            return "read " + BundleInfo::load(file).displayName();
        } catch (const std::runtime_error& error) {
            return error.what();
        }
    };
    EXPECT_EQ(failure(R"({"CFBundleName": "Q"})"), "read Q");
    EXPECT_EQ(failure(R"({"CFBundleVersion": 1})"),
              file.string() + ": CFBundleVersion: expected a text, found the number 1");
    std::filesystem::remove(file);
    EXPECT_THROW(BundleInfo::load(file), std::runtime_error);
}

}  // namespace
}  // namespace quillmar

#include "base/Text.h"

#include <limits>

using namespace testing;

namespace quillmar {
namespace {

TEST(TextTest, trimmingTakesUnicodeBlanksFromBothEndsOnly) {
    EXPECT_EQ(trimmed(" \t\r\n\v a b \u00a0\u2003\u2028\u0085"), "a b");
    EXPECT_EQ(trimmed("\u3000"), "");
    EXPECT_EQ(trimmed(" \xff "), "\xff");
    EXPECT_EQ(trimmed("\xa0"), "\xa0");  // the end of a blank's bytes alone is no blank
}

TEST(TextTest, caseChangesFollowUnicodeAndLeaveBrokenBytesAlone) {
    EXPECT_EQ(lowercased("ÁÇ Image.JPG\xff"), "áç image.jpg\xff");
    EXPECT_EQ(uppercased("ção i\xc3"), "ÇÃO I\xc3");
}

TEST(TextTest, utf8IsCheckedAndRepaired) {
    const std::string withNul("a\0é", 4);
    EXPECT_TRUE(isValidUtf8(withNul));
    EXPECT_TRUE(isValidUtf8("\U0001f5bc"));
    for (const std::string broken : {"\xff", "a\xc3", "\xed\xa0\x80", "\xc0\xaf"})
        EXPECT_FALSE(isValidUtf8(broken));
    EXPECT_FALSE(isValidUtf8(std::string("a\0\xff", 3)));
    EXPECT_EQ(repairedUtf8("a\xff\xc3z"), "a\ufffd\ufffdz");
    EXPECT_TRUE(isValidUtf8(repairedUtf8("\xf0\x9f\x96")));
}

TEST(TextTest, alphanumericMeansLettersAndNumbersOfAnyScript) {
    for (const char* text : {"", "jpeg2", "ção", "½", "日本"}) EXPECT_TRUE(isAlphanumeric(text)) << text;
    for (const char* text : {"tar.gz", "a b", "é_", "\xff"}) EXPECT_FALSE(isAlphanumeric(text)) << text;
    EXPECT_EQ(replacingNonAlphanumerics("DP-1/é:e\u0301\xff", '-'), "DP-1-é-e\u0301-");
}

TEST(TextTest, fileNamesAreOrderedAsAPersonReadsThem) {
    const std::vector<std::string> ordered = {
        " a", "_a",        "+a",         "\xff",   "1",
        "01", "2",         "10",         "010",    "99999999999999999999999",
        "a",  "a2",        "A2b",        "a10",    "âb",
        "b",  "B",         "B c",        "b-c",    "b0c",
        "bc", "IMG 9.jpg", "img 10.jpg", "résumé", "Resumes",
        "z"};
    for (std::size_t i = 0; i < ordered.size(); ++i) {
        for (std::size_t j = 0; j < ordered.size(); ++j) {
            const int order = localizedStandardCompare(ordered[i], ordered[j]);
            EXPECT_EQ(order < 0, i < j) << ordered[i] << " | " << ordered[j];
            EXPECT_EQ(order > 0, i > j) << ordered[i] << " | " << ordered[j];
        }
    }
}

TEST(TextTest, decimalsAreShortAndAlwaysHaveAFraction) {
    const std::vector<std::pair<double, std::string>> rows = {{0, "0.0"},
                                                              {-0.0, "-0.0"},
                                                              {3, "3.0"},
                                                              {0.25, "0.25"},
                                                              {0.1 + 0.2, "0.30000000000000004"},
                                                              {100000, "100000.0"},
                                                              {1777887000.5, "1777887000.5"},
                                                              {0.0001, "0.0001"},
                                                              {1e16, "1e+16"},
                                                              {5e-324, "5e-324"},
                                                              {-1.5e-7, "-1.5e-07"}};
    for (const auto& [value, text] : rows) {
        EXPECT_EQ(shortestDecimal(value), text);
        EXPECT_EQ(std::stod(shortestDecimal(value == 5e-324 ? 0 : value)), value == 5e-324 ? 0 : value);
    }
    EXPECT_EQ(shortestDecimal(std::numeric_limits<double>::infinity()), "inf");
}

}  // namespace
}  // namespace quillmar

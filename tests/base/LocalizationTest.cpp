#include "base/Localization.h"

using namespace testing;

namespace quillmar {
namespace {

struct SampleError : AppLocalizableError {
    std::string message(GeneralLanguage language) const override {
        return language == GeneralLanguage::portuguese ? "pt-PT message" : "en message";
    }
};

TEST(LocalizationTest, argumentsReplaceTheirMarksInOrder) {
    const auto english = GeneralLanguage::english;
    EXPECT_EQ(localized("%@ has %lld of %lld"_key, english, {"Ana", 2, std::int64_t{9'000'000'000}}),
              "Ana has 2 of 9000000000");
    EXPECT_EQ(localized("%@ and %@"_key, english, {"%@", "%lld"}), "%@ and %lld");
    EXPECT_EQ(localized("%@ and %@"_key, english, {"one"}), "one and %@");
    EXPECT_EQ(localized("100% of %l"_key, english, {"unused"}), "100% of %l");
}

TEST(LocalizationTest, aTextWithoutTranslationStaysEnglish) {
    EXPECT_EQ(localized("no such text %@"_key, GeneralLanguage::portuguese, {1}), "no such text 1");
}

TEST(LocalizationTest, theFirstLanguageThatIsSpokenIsPreferred) {
    const auto preferred = [](std::vector<std::string> list) { return preferredLanguage(list); };
    EXPECT_EQ(preferred({"de_DE", "pt_BR", "en"}), GeneralLanguage::portuguese);
    EXPECT_EQ(preferred({"PT"}), GeneralLanguage::portuguese);
    EXPECT_EQ(preferred({"en-GB", "pt"}), GeneralLanguage::english);
    EXPECT_EQ(preferred({"fr"}), GeneralLanguage::english);
    EXPECT_EQ(preferred({}), GeneralLanguage::english);
}

TEST(LocalizationTest, onlyOwnErrorsSpeakTheUsersLanguage) {
    const SampleError own;
    EXPECT_EQ(errorText(own, GeneralLanguage::portuguese), "pt-PT message");
    EXPECT_STREQ(own.what(), "en message");
    EXPECT_EQ(errorText(std::make_exception_ptr(own), GeneralLanguage::portuguese), "pt-PT message");
    EXPECT_EQ(errorText(std::runtime_error("plain"), GeneralLanguage::portuguese), "plain");
}

}  // namespace
}  // namespace quillmar

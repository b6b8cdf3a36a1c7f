#include "display/OutputIdentities.h"

#include <gmock/gmock.h>

#include <map>

#include "base/Text.h"

namespace quillmar {
namespace {

constexpr const char* twin = "edid:DEL-a0c1-00000000-";
constexpr const char* other = "edid:DEL-a0c1-00000009-";

/// What is plugged in at one moment, and who each of them must be: the same letter is the same identity in
/// all moments of a story, another letter another one.
struct Moment {
    std::vector<PluggedMonitor> monitors;
    std::string_view identities;
};
struct Story {
    const char* name;
    std::vector<Moment> moments;
};

class OutputIdentitiesTest : public testing::TestWithParam<Story> {};

TEST_P(OutputIdentitiesTest, nobodysIdentityChangesThroughOthers) {
    std::map<char, Uuid> named;
    OutputIdentities identities;
    for (const auto& [monitors, expected] : GetParam().moments) {
        const auto uuids = identities.identify(monitors);
        ASSERT_EQ(uuids.size(), expected.size());
        for (std::size_t i = 0; i < uuids.size(); ++i) {
            const auto [known, isNew] = named.emplace(expected[i], uuids[i]);
            EXPECT_EQ(uuids[i], known->second) << expected[i] << " in " << expected;
            const auto alike = std::ranges::count(named, uuids[i], &std::pair<const char, Uuid>::second);
            EXPECT_EQ(alike, 1) << expected[i] << " in " << expected;
        }
        // Every moment could be the first of a new session.
        const OutputIdentities readBack(identities.text());
        EXPECT_EQ(readBack, identities);
        identities = readBack;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Stories, OutputIdentitiesTest,
    testing::Values(
        Story{"moved", {{{{"DP-1", other}}, "a"}, {{{"HDMI-1", twin}, {"DP-2", other}}, "ba"}}},
        Story{"newcomer",
              {{{{"DP-2", twin}}, "a"}, {{{"DP-1", twin}, {"DP-2", twin}}, "ba"}, {{{"DP-1", twin}}, "b"}}},
        Story{"reversed",
              {{{{"DP-1", twin}, {"DP-2", twin}}, "ab"},
               {{}, ""},
               {{{"DP-2", twin}}, "b"},
               {{{"DP-2", twin}, {"DP-1", twin}}, "ba"}}},
        Story{"both moved",
              {{{{"DP-1", twin}, {"DP-2", twin}}, "ab"},
               {{{"DP-5", twin}, {"DP-6", twin}}, "ab"},
               {{{"DP-5", twin}, {"DP-6", twin}, {"DP-2", twin}}, "abc"}}},
        Story{"silent", {{{{"VGA-1", ""}, {"VGA-2", ""}}, "ab"}, {{{"VGA-2", ""}, {"VGA-1", twin}}, "bc"}}}),
    [](const auto& info) { return replacingNonAlphanumerics(info.param.name, '_'); });

TEST(OutputIdentitiesTest, theFirstOfItsKindHasTheIdentityThatOldSettingsKnow) {
    OutputIdentities identities;
    EXPECT_EQ(identities.identify({{"DP-1", other}, {"DP-2", ""}}),
              (std::vector{*Uuid::parse("29e8ad26-d2cc-5de2-9587-004e33b36059"),
                           *Uuid::parse("8b699087-fad3-542f-82b3-ec49ea767516")}));
}

TEST(OutputIdentitiesTest, whatMakesNoSenseIsForgotten) {
    const std::string good = "6f1d0c5e-924b-4c39-a857-2ed3840b71f6\tDP-1\tedid:x\n";
    for (const std::string& text : {good, "nonsense\n\n\t\t\n" + good + "6f1d0c5e\tDP-1\ty", good + good,
                                    good + "6f1d0c5e-924b-4c39-a857-2ed3840b71f7\tDP-1"}) {
        EXPECT_EQ(OutputIdentities(text).text(), good) << text;
    }
}

}  // namespace
}  // namespace quillmar

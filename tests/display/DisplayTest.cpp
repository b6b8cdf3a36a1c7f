#include "display/DisplayService.h"
#include "display/DisplayTopologySnapshot.h"
#include "fakes/FakeScreens.h"

namespace quillmar {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;
using Candidate = DisplayIdentityResolver::Candidate;

const Uuid a = Uuid::parse("AAAAAAAA-0000-0000-0000-000000000001").value();
const Uuid b = Uuid::parse("BBBBBBBB-0000-0000-0000-000000000002").value();

std::map<std::uint32_t, std::string> resolve(std::vector<Candidate> candidates) {
    return DisplayIdentityResolver::resolve(candidates);
}

TEST(DisplayIdentityResolverTest, onlyADisplayThatIsOneOfAKindHasAnIdentity) {
    const auto idOfA = Pair(1, "display:aaaaaaaa-0000-0000-0000-000000000001");
    EXPECT_THAT(resolve({{1, a}, {2, std::nullopt}}), ElementsAre(idOfA));
    EXPECT_THAT(resolve({{1, a}, {2, b}, {3, b}}), ElementsAre(idOfA)) << "two of one UUID";
    EXPECT_THAT(resolve({{1, a}, {0, b}}), ElementsAre(idOfA)) << "no runtime ID";
    EXPECT_THAT(resolve({{1, a}, {2, b}, {2, std::nullopt}}), ElementsAre(idOfA)) << "a runtime ID twice";
    EXPECT_THAT(resolve({{1, a}, {1, b}}), ElementsAre());
}

TEST(DisplayServiceTest, displaysComeInTheOrderOfTheScreensWithoutThoseThatHaveNoIdentity) {
    FakeScreens screens;
    screens.add(
        {.number = 7, .uuid = b, .localizedName = "Left", .frame = {0, 0, 1920, 1080}, .scaleFactor = 2});
    screens.add({.number = 8, .uuid = std::nullopt, .localizedName = "Beamer"});
    screens.add({.number = 9, .uuid = a, .localizedName = "Right", .frame = {1920, 0, 1280, 1024}});
    screens.primary = 9;
    const DisplayService service(screens);
    const auto displays = service.displays();
    ASSERT_EQ(displays.size(), 2u);
    EXPECT_EQ(displays[0].localizedName, "Left");
    EXPECT_FALSE(displays[0].isMain);
    EXPECT_EQ(displays[1].id, "display:aaaaaaaa-0000-0000-0000-000000000001");
    EXPECT_TRUE(displays[1].isMain);
    EXPECT_EQ(service.screen(displays[1].id)->number, 9u);
    EXPECT_FALSE(service.screen("display:gone"));
}

TEST(DisplayTopologySnapshotTest, onlyIdentityPlaceAndScaleMakeTheTopology) {
    const DisplayInfo left{"display:a", "Left", {0, 0, 800, 600}, {0, 0, 800, 570}, 1, true};
    const DisplayInfo right{"display:b", "Right", {800, 0, 800, 600}, {800, 0, 800, 600}, 1, false};
    const auto snapshot = [](std::vector<DisplayInfo> displays) {
        return DisplayTopologySnapshot::of(displays);
    };
    const auto before = snapshot({left, right});
    EXPECT_EQ(snapshot({right, left}), before) << "another order";

    const auto changed = [&](auto change) {
        DisplayInfo other = left;
        change(other);
        return snapshot({other, right}) != before;
    };
    EXPECT_FALSE(changed([](DisplayInfo& d) { d.visibleFrame.height = 500; }));
    EXPECT_FALSE(changed([](DisplayInfo& d) { d.isMain = false; }));
    EXPECT_FALSE(changed([](DisplayInfo& d) { d.localizedName = "Renamed"; }));
    EXPECT_TRUE(changed([](DisplayInfo& d) { d.frame.x = -1; }));
    EXPECT_TRUE(changed([](DisplayInfo& d) { d.scaleFactor = 2; }));
    EXPECT_NE(snapshot({right}), before);
}

}  // namespace
}  // namespace quillmar

#include "base/Enum.h"
#include "modes/LockScreenSettings.h"
#include "modes/ManagedScreensaverSettings.h"
#include "modes/WallpaperSettings.h"

using namespace testing;

namespace quillmar {
namespace {

std::optional<double> interval(const WallpaperMode& mode) {
    const auto seconds = mode.rotationInterval();
    return seconds ? std::optional(seconds->count()) : std::nullopt;
}

TEST(ModesTest, kindsOfOneNameShareTheirSettings) {
    for (const auto kind : allCases<LockScreenModeKind>()) {
        const LockScreenMode mode = LockScreenMode::defaultMode(kind);
        EXPECT_EQ(enumName(mode.kind()), enumName(kind));
        EXPECT_EQ(mode.wallpaperMode(),
                  WallpaperMode::defaultMode(*enumFromName<WallpaperModeKind>(enumName(kind))));
    }
    for (const auto kind : allCases<ManagedScreensaverModeKind>()) {
        const auto wallpaper = ManagedScreensaverMode::defaultMode(kind).wallpaperMode();
        const auto sameName = enumFromName<WallpaperModeKind>(enumName(kind));
        EXPECT_EQ(wallpaper ? std::optional(wallpaper->kind()) : std::nullopt, sameName) << enumName(kind);
        if (sameName) EXPECT_EQ(title(kind), title(*sameName));
    }
}

TEST(ModesTest, theRotationIntervalFollowsTheMode) {
    const std::vector<std::pair<WallpaperMode, std::optional<double>>> rows = {
        {{}, {}},
        {{SolidColorPresentationSettings{}}, {}},
        {{MatrixPresentationSettings{}}, {}},
        {{SlideshowPresentationSettings{.rotationIntervalSeconds = 5}}, 5},
        {{APODSettings{}}, 1800},
        {{APODSettings{.switchPeriodically = true, .rotationIntervalSeconds = 5}}, 5},
        {{NasaEpicSettings{}}, 7200},
        {{NasaEpicSettings{.presentation = NasaEpicPresentation::rotateThroughDays}}, 30},
        {{WallhavenSettings{}}, {}},
        {{WallhavenSettings{.switchAutomatically = true}}, 14400},
        {{UnsplashSettings{.switchAutomatically = true}}, 3600},
        {{MuseumsSettings{.switchAutomatically = true}}, 3600},
        {{BingSettings{}}, 1800},
        {{WindowsSpotlightSettings{}}, 86399},
        {{HexellsPresentationSettings{}}, 60},
        {{HexellsPresentationSettings{.changesAutomatically = false}}, {}},
    };
    for (const auto& [mode, seconds] : rows) EXPECT_EQ(interval(mode), seconds) << enumName(mode.kind());
}

TEST(DisplayEntriesTest, theWayBackToAKindForgetsNothing) {
    const WallpaperMode image{ImagePresentationSettings{.backgroundHexColor = "#010203"}};
    DisplayWallpaperSettings entry{.displayID = "a", .mode = image};
    entry.selectMode(WallpaperModeKind::image);
    EXPECT_THAT(entry.savedModes, IsEmpty());

    entry.selectMode(WallpaperModeKind::disabled);
    EXPECT_EQ(entry.mode, WallpaperMode{});
    entry.selectMode(WallpaperModeKind::image);
    EXPECT_EQ(entry.mode, image);
    EXPECT_THAT(entry.savedModes, ElementsAre(Pair(WallpaperModeKind::image, image)));

    entry.selectMode(WallpaperModeKind::solidColor);
    const WallpaperMode solid{SolidColorPresentationSettings{}};
    EXPECT_EQ(entry.mode, solid);
    entry.selectMode(WallpaperModeKind::image);
    EXPECT_EQ(entry.mode, image);
    EXPECT_THAT(entry.savedModes, UnorderedElementsAre(Pair(WallpaperModeKind::image, image),
                                                       Pair(WallpaperModeKind::solidColor, solid)));
}

TEST(DisplayEntriesTest, aChangedModeReplacesTheSavedOneOnlyWhenItIsLeft) {
    DisplayManagedScreensaverSettings entry{.displayID = "a",
                                            .mode = {ShadertoyScreensaverSettings{"first"}}};
    entry.transition.durationSeconds = 3;
    entry.selectKind(ManagedScreensaverModeKind::disabled);
    entry.selectKind(ManagedScreensaverModeKind::shadertoy);
    const ManagedScreensaverMode changed{ShadertoyScreensaverSettings{"second"}};
    entry.mode = changed;
    EXPECT_NE(entry.savedModes.at(ManagedScreensaverModeKind::shadertoy), changed);
    entry.selectKind(ManagedScreensaverModeKind::stopwatch);
    EXPECT_EQ(entry.savedModes.at(ManagedScreensaverModeKind::shadertoy), changed);
    EXPECT_EQ(entry.transition.durationSeconds, 3);
}

TEST(DisplayEntriesTest, onlyDisplaysWithoutAnEntryGetOne) {
    LockScreenSettings settings{{{"gone", {BingSettings{}}}, {"b", {BingSettings{}}}}};
    const LockScreenSettings before = settings;
    const std::vector<std::string> connected = {"c", "b", "a"};
    settings.ensureEntries(connected);
    EXPECT_THAT(settings.displays,
                ElementsAre(before.displays[0], before.displays[1], DisplayLockScreenSettings{"c"},
                            DisplayLockScreenSettings{"a"}));
}

}  // namespace
}  // namespace quillmar

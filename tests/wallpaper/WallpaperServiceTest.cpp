#include "wallpaper/WallpaperService.h"

#include <fstream>

#include "async/TaskScope.h"
#include "fakes/FakeDesktopPicture.h"
#include "fakes/FakeExecutors.h"
#include "fakes/FakePictureRendering.h"
#include "fakes/FakeRemoteImageProvider.h"
#include "fakes/FakeScreens.h"
#include "fakes/TaskOutcome.h"
#include "fakes/TemporaryFolder.h"
#include "fakes/VirtualLoop.h"
#include "modes/WallpaperApplicationError.h"
#include "storage/LastUsedStamp.h"
#include "wallpaper/GeneratedWallpaper.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;

struct WallpaperServiceTest : ::testing::Test {
    VirtualLoop loop;
    VirtualWallClock clock{loop};
    TemporaryFolder folder;
    fs::path cache = folder.path() / "Cache/GeneratedWallpapers";
    FakeScreens screens;
    DisplayService displays{screens};
    FakeDesktopPicture desktop;
    FakePictureRendering rendering;
    WallpaperApplicationGate gate;
    HeldExecutor executor;
    WallpaperRenderer renderer{cache, rendering, clock};
    CacheFileProtection cacheFiles;
    FakeRemoteImageProvider remoteImages{cacheFiles};
    WallpaperService service{displays, desktop,    gate,         renderer,
                             executor, cacheFiles, remoteImages, [](std::size_t) { return std::size_t{0}; }};
    TaskScope tasks{loop};

    void SetUp() override {
        screens.plugIn(1, {0, 0, 1920, 1080});
        screens.plugIn(2, {1920, 0, 1280, 1024});
    }
    WallpaperApplyRequest solid(std::size_t display, std::string color) {
        return {displays.displays().at(display),
                WallpaperMode{SolidColorPresentationSettings{std::move(color)}}};
    }
    /// Runs the task as far as it goes; what it gives by then goes to `result`.
    template <class T>
    std::string run(Task<T> task, T* result = nullptr) {
        const auto outcome = outcomeOf(loop, tasks, std::move(task));
        if (result && outcome->value) *result = *outcome->value;
        return outcome->text;
    }
    template <class T>
    std::string runToEnd(Task<T> task, T* result = nullptr) {
        executor.runsAtOnce = true;
        const std::string text = run(std::move(task), result);
        executor.runsAtOnce = false;
        return text;
    }
    std::string shown(std::uint32_t screen) const {
        const auto found = desktop.shown.find(screen);
        return found == desktop.shown.end() ? "" : found->second.filename().string();
    }
    std::string gone(std::uint32_t screen) const {
        return "The display with ID " + FakeScreens::displayID(screen) + " is no longer connected.";
    }
};

TEST_F(WallpaperServiceTest, aColourIsRenderedForItsDisplayAloneAndUsedAgain) {
    EXPECT_EQ(runToEnd(service.apply(solid(0, " #1f6f8b "))), "done");
    EXPECT_EQ(shown(1), "solid-display-00000000-0000-0000-0000-000000000001-1920x1080-1F6F8B.png");
    EXPECT_EQ(shown(2), "");
    EXPECT_EQ(runToEnd(service.apply(solid(0, "1F6F8B"))), "done");
    EXPECT_EQ(rendering.rendered, 1);
    EXPECT_EQ(desktop.setCount, 2);
    EXPECT_TRUE(desktop.options[1].empty());
}

TEST_F(WallpaperServiceTest, whatCannotBeShownIsNamed) {
    EXPECT_EQ(run(service.apply(solid(0, "#12345"))), "#12345 is not a valid six-digit hex color.");
    EXPECT_EQ(run(service.apply({displays.displays()[0], WallpaperMode{ColorFaderPresentationSettings{}}})),
              "Add at least two colors to the color fader.");
    rendering.fails = true;
    EXPECT_EQ(runToEnd(service.apply(solid(0, "#123456"))),
              "Quillmar could not render the solid color image.");
    EXPECT_EQ(desktop.setCount, 0);
}

TEST_F(WallpaperServiceTest, aCacheThatCannotBeMadeOrWrittenIsNamedWithItsPlaceAndReason) {
    std::ofstream(folder.path() / "Cache") << "a file in the way";
    EXPECT_EQ(runToEnd(service.apply(solid(0, "#123456"))),
              "Quillmar could not create its wallpaper cache at " + cache.string() + ": Not a directory.");
    fs::remove(folder.path() / "Cache");
    const std::string name = solidColorFileName(displays.displays()[0], {1920, 1080}, "123456");
    fs::create_directories(cache / name);
    EXPECT_EQ(runToEnd(service.apply(solid(0, "#123456"))),
              "Quillmar could not save the generated wallpaper at " + (cache / name).string() +
                  ": Is a directory.");
}

TEST_F(WallpaperServiceTest, aDisplayThatIsUnpluggedWhileItsPictureIsRenderedFailsAlone) {
    const WallpaperApplyRequest request = solid(0, "#123456");
    const auto outcome = outcomeOf(loop, tasks, service.apply(request));
    screens.unplug(1);
    executor.releaseAll();
    loop.settle();
    EXPECT_EQ(outcome->text, gone(1));
    EXPECT_EQ(desktop.setCount, 0);
    EXPECT_EQ(run(service.apply(request)), gone(1)) << "not even rendered";
    EXPECT_EQ(executor.heldCount(), 0u);
}

TEST_F(WallpaperServiceTest, aRequestWhoseOwnerDiesDuringTheRenderSetsNothing) {
    {
        TaskScope owner(loop);
        owner.start(service.apply(solid(0, "#123456")));
        loop.settle();
    }
    executor.releaseAll();
    loop.settle();
    EXPECT_EQ(desktop.setCount, 0);
}

TEST_F(WallpaperServiceTest, underTheLockScreenThePictureIsRenderedButNotSet) {
    gate.isLockScreenOverrideActive = true;
    EXPECT_EQ(runToEnd(service.apply(solid(0, "#123456"))),
              "The wallpaper request was skipped while the Lock Screen override was active.");
    EXPECT_EQ(rendering.rendered, 1);
    EXPECT_EQ(desktop.setCount, 0);
}

TEST_F(WallpaperServiceTest, preparingTouchesNothingAndThePreparedIsSetWithoutRendering) {
    PreparedWallpaperApplication prepared;
    EXPECT_EQ(runToEnd(service.prepare(solid(1, "#123456")), &prepared), "done");
    EXPECT_EQ(desktop.setCount, 0);
    EXPECT_EQ(run(service.applyPrepared(prepared)), "done");
    EXPECT_EQ(shown(2), "solid-display-00000000-0000-0000-0000-000000000002-1280x1024-123456.png");
}

TEST_F(WallpaperServiceTest, aDisabledDisplayKeepsWhatItShows) {
    desktop.shown[1] = "/home/ana/holiday.jpg";
    EXPECT_EQ(run(service.apply({displays.displays()[0], WallpaperMode{}})), "done");
    EXPECT_EQ(desktop.shown[1], "/home/ana/holiday.jpg");
}

TEST_F(WallpaperServiceTest, aCapturedDesktopComesBackWithItsOptions) {
    EXPECT_THROW(service.captureDesktop(FakeScreens::displayID(1)), WallpaperApplicationError);
    desktop.shown[1] = "/home/ana/holiday.jpg";
    desktop.options[1] = {{"style", "zoom"}};
    const auto snapshot = service.captureDesktop(FakeScreens::displayID(1));
    runToEnd(service.apply(solid(0, "#123456")));
    EXPECT_TRUE(desktop.options[1].empty());
    service.restoreDesktop(snapshot);
    EXPECT_EQ(desktop.shown[1], "/home/ana/holiday.jpg");
    EXPECT_EQ(desktop.options[1].at("style"), "zoom");
    screens.unplug(1);
    EXPECT_THROW(service.restoreDesktop(snapshot), WallpaperApplicationError);
}

TEST_F(WallpaperServiceTest, nothingInTheCacheCanBeSweptWhileAPictureIsPrepared) {
    const fs::path other = cache / "other.png";
    const auto canSweepOther = [&] {
        fs::create_directories(cache);
        std::ofstream(other) << "x";
        return cacheFiles.removeIfFree(resolvedPath(other));
    };
    for (const bool fails : {false, true}) {
        rendering.fails = fails;
        const std::string color = fails ? "#222222" : "#111111";
        const auto prepared = outcomeOf(loop, tasks, service.prepare(solid(0, color)));
        EXPECT_EQ(prepared->text, "waiting");
        EXPECT_FALSE(canSweepOther());
        executor.releaseAll();
        loop.settle();
        EXPECT_TRUE(canSweepOther()) << "whether it fails or not";
        ASSERT_EQ(prepared->value.has_value(), !fails);
        if (fails) continue;
        const fs::path picture = resolvedPath(prepared->value->image->image);
        EXPECT_FALSE(cacheFiles.removeIfFree(picture)) << "its own lease took over";
        prepared->value.reset();
        EXPECT_TRUE(cacheFiles.removeIfFree(picture));
    }
}

TEST_F(WallpaperServiceTest, whatIsRecalledIsKeptToo) {
    const fs::path last = cache / "last.png";
    fs::create_directories(cache);
    std::ofstream(last) << "x";
    desktop.remembered = {{1, last}, {2, last}};
    gate.isLockScreenOverrideActive = true;
    service.recallDesktop(FakeScreens::displayID(1));
    EXPECT_TRUE(desktop.shown.empty());
    gate.isLockScreenOverrideActive = false;
    service.recallDesktop(FakeScreens::displayID(1));
    service.recallDesktop("display:unplugged");
    EXPECT_EQ(shown(1), "last.png");
    EXPECT_EQ(shown(2), "");
    EXPECT_FALSE(cacheFiles.removeIfFree(resolvedPath(last)));
}

TEST_F(WallpaperServiceTest, theFileThatADisplayShowsIsKeptUntilAnotherIsSetOnThatDisplay) {
    runToEnd(service.apply(solid(0, "#111111")));
    const fs::path first = resolvedPath(desktop.shown[1]);
    runToEnd(service.apply(solid(1, "#222222")));
    EXPECT_FALSE(cacheFiles.removeIfFree(first)) << "the other display's is another matter";
    desktop.refuses(1, "no");
    runToEnd(service.apply(solid(0, "#333333")));
    EXPECT_FALSE(cacheFiles.removeIfFree(first)) << "it is still shown";
    desktop.accepts(1);
    std::optional<WallpaperDesktopSnapshot> snapshot = service.captureDesktop(FakeScreens::displayID(1));
    runToEnd(service.apply(solid(0, "#333333")));
    EXPECT_FALSE(cacheFiles.removeIfFree(first)) << "the way back needs it";
    snapshot.reset();
    EXPECT_TRUE(cacheFiles.removeIfFree(first));
}

struct WallpaperServiceRemoteTest : WallpaperServiceTest {
    void SetUp() override {
        WallpaperServiceTest::SetUp();
        remoteImages.image = resolvedPath(folder.path()) / "remote-1.jpg";
        std::ofstream(remoteImages.image) << "x";
    }
    WallpaperApplyRequest remote(WallpaperApplyReason reason = WallpaperApplyReason::userInitiated) {
        WindowsSpotlightSettings settings;
        settings.layout = ImagePresentationLayout::stretch;
        return {displays.displays()[0], WallpaperMode{settings}, reason};
    }
};

TEST_F(WallpaperServiceRemoteTest, aServicesPictureIsDrawnAsItsModeSaysAndWithItsCaption) {
    remoteImages.caption = "NASA EPIC";
    EXPECT_EQ(runToEnd(service.apply(remote())), "done");
    EXPECT_EQ(rendering.lastSource, remoteImages.image);
    EXPECT_EQ(rendering.lastComposition.destination, (PixelRect{0, 0, 1920, 1080}));
    ASSERT_TRUE(rendering.lastComposition.caption);
    EXPECT_EQ(rendering.lastComposition.caption->text, "NASA EPIC");
    runToEnd(service.apply(remote(WallpaperApplyReason::rotation)));
    EXPECT_THAT(
        remoteImages.calls,
        ::testing::ElementsAre("windowsSpotlight " + FakeScreens::displayID(1) + " stays wallpaper",
                               "windowsSpotlight " + FakeScreens::displayID(1) + " advances wallpaper"));
}

TEST_F(WallpaperServiceRemoteTest, aServiceThatFailsLeavesTheDesktopAlone) {
    remoteImages.failure = std::make_exception_ptr(std::runtime_error("no network"));
    EXPECT_EQ(runToEnd(service.apply(remote())), "no network");
    EXPECT_EQ(desktop.setCount, 0);
}

TEST_F(WallpaperServiceRemoteTest, theSourceIsKeptWhileItIsRenderedAndLongerOnlyWhenItIsToBeRemembered) {
    const fs::path source = remoteImages.image;
    const auto prepared = outcomeOf(loop, tasks, service.prepare(remote()));
    EXPECT_EQ(prepared->text, "waiting");
    EXPECT_FALSE(cacheFiles.removeIfFree(source));
    executor.releaseAll();
    loop.settle();
    EXPECT_FALSE(prepared->value.value().image->selectionLease);
    remoteImages.selection = WindowsSpotlightSelection{.imageURL = Url::fromFilePath(source)};
    WallpaperApplyOutcome outcome;
    EXPECT_EQ(runToEnd(service.apply(remote()), &outcome), "done");
    EXPECT_EQ(outcome.windowsSpotlightSelection, remoteImages.selection);
    EXPECT_FALSE(cacheFiles.removeIfFree(source));
    outcome = {};
    EXPECT_TRUE(cacheFiles.removeIfFree(source));
}

TEST_F(WallpaperServiceRemoteTest, aDisplayThatIsUnpluggedWhileItsServiceAnswersFailsAlone) {
    remoteImages.hold();
    const auto outcome = outcomeOf(loop, tasks, service.apply(remote()));
    screens.unplug(1);
    executor.runsAtOnce = true;
    remoteImages.letThrough();
    loop.settle();
    EXPECT_EQ(outcome->text, gone(1));
    EXPECT_EQ(desktop.setCount, 0);
}

}  // namespace
}  // namespace quillmar

#include "remote/RemoteImageResolver.h"

#include <fstream>

#include "RemoteServiceFixture.h"
#include "fakes/FakeExecutors.h"
#include "fakes/TaskOutcome.h"
#include "fakes/TemporaryFolder.h"

namespace quillmar {
namespace {

struct RemoteImageResolverTest : RemoteServiceFixture {
    TemporaryFolder cache;
    InlineExecutor files;
    CacheFileProtection cacheFiles;
    RemoteImageResolver resolver{{web, services, clock, files, cacheFiles, cache.path(), random}};
    DisplayInfo display{.id = "display:a"};
    TaskScope tasks{loop};

    auto wallpaper(WallpaperMode mode) {
        return outcomeOf(
            loop, tasks,
            resolver.resolveImage(std::move(mode), display, true, RemoteImagePresentation::wallpaper));
    }
    auto screensaver(ManagedScreensaverMode mode) {
        return outcomeOf(loop, tasks, resolver.resolveScreensaverImage(std::move(mode), display, true));
    }
};

TEST_F(RemoteImageResolverTest, aModeOfNoServiceHasNoPictureOfOne) {
    const std::string unusable = " mode did not return an image matching the selected options.";
    EXPECT_EQ(wallpaper({SolidColorPresentationSettings{}})->text, "the selected wallpaper" + unusable);
    EXPECT_EQ(screensaver({ImagePresentationSettings{}})->text, "the selected screensaver" + unusable);
    EXPECT_EQ(screensaver({StopwatchScreensaverSettings{}})->text, "the selected screensaver" + unusable);
    EXPECT_TRUE(web.requests.empty());
}

TEST_F(RemoteImageResolverTest, aScreensaverGoesThroughAFilmOfItsOwn) {
    const NasaEpicSettings film{.presentation = NasaEpicPresentation::rotateThroughDays};
    web.answers("/api/natural", {R"([{"image": "e1", "date": "2024-06-05 07:00:00"},
        {"image": "e2", "date": "2024-06-05 08:00:00"}])"});
    EXPECT_EQ(wallpaper({film})->value->image.filename(), "e1.jpg");
    EXPECT_EQ(screensaver({film})->value->image.filename(), "e1.jpg");
    EXPECT_EQ(wallpaper({film})->value->image.filename(), "e2.jpg");
}

TEST_F(RemoteImageResolverTest, nothingInTheCacheIsSweptBetweenADownloadAndItsUse) {
    const auto canSweep = [this] {
        const auto file = resolvedPath(cache.path()) / "other.jpg";
        std::ofstream(file) << "x";
        return cacheFiles.removeIfFree(file);
    };
    web.answers("/HPImageArchive", {R"({"images": [{"url": "/p.jpg"}]})"});
    web.hold("/p.jpg");
    const auto outcome = wallpaper({BingSettings{}});
    EXPECT_FALSE(canSweep());
    web.letThrough();
    loop.settle();
    EXPECT_EQ(outcome->value->cacheLease.path(), "/cache/p.jpg");
    EXPECT_TRUE(canSweep()) << "the picture has a lease of its own";
}

}  // namespace
}  // namespace quillmar

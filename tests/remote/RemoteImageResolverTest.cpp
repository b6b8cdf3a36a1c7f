#include "remote/RemoteImageResolver.h"

#include <fstream>

#include "RemoteServiceFixture.h"
#include "fakes/FakeExecutors.h"
#include "fakes/TaskOutcome.h"
#include "fakes/TemporaryFolder.h"
#include "remote/fetching/ServiceText.h"

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

TEST_F(RemoteImageResolverTest, whoAsksOneServiceAtOnceIsServedInTurnAndNoOtherServiceWaits) {
    const MuseumsSettings museum{.sources = {MuseumsSource::clevelandMuseum}};
    random = [](std::size_t) { return 0; };
    RemoteImageResolver fresh({web, services, clock, files, cacheFiles, cache.path(), random});
    web.answers("/api/artworks/", {R"({"data":[
        {"id":1,"share_license_status":"CC0","images":{"web":{"url":"https://i/1"}}},
        {"id":2,"share_license_status":"CC0","images":{"web":{"url":"https://i/2"}}}]})"});
    web.answers("/HPImageArchive", {R"({"images": [{"url": "/p.jpg"}]})"});
    web.hold("/api/artworks/");
    const auto ask = [&](const char* id, WallpaperMode mode, TaskScope& scope) {
        return outcomeOf(
            loop, scope,
            fresh.resolveImage(std::move(mode), {.id = id}, true, RemoteImagePresentation::wallpaper));
    };
    TaskScope impatient(loop);
    const auto first = ask("a", {museum}, tasks);
    const auto leaves = ask("b", {museum}, impatient);
    const auto last = ask("c", {museum}, tasks);
    EXPECT_EQ(ask("b", {BingSettings{}}, tasks)->text, "done") << "while the museums hang";
    impatient.cancelAll();
    loop.settle();
    EXPECT_EQ(leaves->text, "cancelled");
    EXPECT_EQ(last->text, "waiting");
    web.letThrough();
    loop.settle();
    EXPECT_EQ(first->value->image.filename(), "1");
    EXPECT_EQ(last->value->image.filename(), "2") << "the first one's choice is known by now";
    EXPECT_EQ(asked().size(), 2u) << "and its list";
}

TEST_F(RemoteImageResolverTest, picturesAreAsWideAsTheDisplayHasPixels) {
    display.frame.width = 1280;
    display.scaleFactor = 1.5;
    web.answers("/photos/random",
                {R"({"urls": {"full": "https://i/f"}, "user": {}, "links": {"download_location": ""}})"});
    web.answers("/apod-basic",
                {R"([{"date": "2026-05-04", "hdurl": "https://i/h", "media_type": "image"}])"});
    wallpaper({UnsplashSettings{}});
    wallpaper({APODSettings{}});
    EXPECT_THAT(downloaded(), testing::Each(testing::EndsWith("w=1920")));
}

TEST_F(RemoteImageResolverTest, textsOfServicesAreShortAndHarmless) {
    const std::string many(2000, 'a');
    web.answers("/HPImageArchive",
                {R"({"images": [{"url": "/p.jpg", "title": "L\u001b[31mred\u0085\u202e", "copyright": "é)" +
                 many + R"("}]})"});
    web.answers(
        "/selection",
        {R"({"batchrsp": {"items": [{"item": "{\"ad\": {\"landscapeImage\": {\"asset\": \"https://i/a\"}, \"title\": \"A\\nB\"}}"}]}})"});
    const auto bing = wallpaper({BingSettings{}})->value;
    EXPECT_EQ(bing->credit.title, "L [31mred");
    EXPECT_EQ(bing->sourceDescription, "é" + many.substr(0, 1022));
    EXPECT_LE(bing->overlayCaption->size(), 1024u);
    EXPECT_EQ(wallpaper({WindowsSpotlightSettings{}})->value->windowsSpotlightSelection->sourceDescription,
              "A B");
}

TEST(ServiceTextTest, aFragmentOfHTMLIsReadAsAPageShowsIt) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"<a href=\"x\">Ann</a> &amp;\n  <b>B</b>ob<br/>&copy;&#8217;&#xe9;", "Ann & Bob ©’é"},
        {"AT&T &unknown; &#xd800; &#1114112; &", "AT&T &unknown; &#xd800; &#1114112; &"},
        {"open <a", "open"},
        {"&lt;b&gt;&nbsp;", "<b>"},
    };
    for (const auto& [fragment, text] : rows) EXPECT_EQ(textOfHTML(fragment), text);
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

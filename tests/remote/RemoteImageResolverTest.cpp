#include "remote/RemoteImageResolver.h"

#include <fstream>

#include "RemoteServiceFixture.h"
#include "fakes/FakeExecutors.h"
#include "fakes/TaskOutcome.h"
#include "fakes/TemporaryFolder.h"
#include "remote/fetching/ServiceText.h"

namespace quillmar {
namespace {

using namespace ::testing;

NasaEpicSettings filmOf(int days) {
    return {.presentation = NasaEpicPresentation::rotateThroughDays, .recentDays = days};
}
const std::string photo =
    R"({"urls": {"full": "https://i/f"}, "user": {}, "links": {"download_location": "https://x/told"}})";

struct RemoteImageResolverTest : RemoteServiceFixture {
    TemporaryFolder cache;
    InlineExecutor files;
    CacheFileProtection cacheFiles;
    RemoteImageResolver resolver{{web, services, clock, files, cacheFiles, cache.path(), random}};
    DisplayInfo display{.id = "display:a"};
    TaskScope tasks{loop};

    RemoteImageResolverTest() { draws.assign(100, 0); }
    auto ask(DisplayInfo who, WallpaperMode mode, TaskScope& scope) {
        return outcomeOf(
            loop, scope,
            resolver.resolveImage(std::move(mode), std::move(who), true, RemoteImagePresentation::wallpaper));
    }
    auto wallpaper(WallpaperMode mode) { return ask(display, std::move(mode), tasks); }
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
    const NasaEpicSettings film = filmOf(1);
    web.answers("/api/natural", {R"([{"image": "e1", "date": "2024-06-05 07:00:00"},
        {"image": "e2", "date": "2024-06-05 08:00:00"}])"});
    EXPECT_EQ(wallpaper({film})->value->image.filename(), "e1.jpg");
    EXPECT_EQ(screensaver({film})->value->image.filename(), "e1.jpg");
    EXPECT_EQ(wallpaper({film})->value->image.filename(), "e2.jpg");
}

TEST_F(RemoteImageResolverTest, whoAsksOneServiceAtOnceIsServedInTurnAndNoOtherServiceWaits) {
    const MuseumsSettings museum{.sources = {MuseumsSource::clevelandMuseum}};
    web.answers("/api/artworks/", {R"({"data":[
        {"id":1,"share_license_status":"CC0","images":{"web":{"url":"https://i/1"}}},
        {"id":2,"share_license_status":"CC0","images":{"web":{"url":"https://i/2"}}}]})"});
    web.answers("/HPImageArchive", {R"({"images": [{"url": "/p.jpg"}]})"});
    web.hold("/api/artworks/");
    TaskScope impatient(loop);
    const auto first = ask({.id = "a"}, {museum}, tasks);
    const auto leaves = ask({.id = "b"}, {museum}, impatient);
    const auto last = ask({.id = "c"}, {museum}, tasks);
    EXPECT_EQ(ask({.id = "b"}, {BingSettings{}}, tasks)->text, "done") << "while the museums hang";
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

TEST_F(RemoteImageResolverTest, cancelledNoServiceAsksForAnythingMore) {
    web.answers("/available", {R"(["2024-06-04", "2024-06-05"])"});
    web.answers("/date/", {R"([{"image": "e", "date": "2024-06-05 07:00:00"}])"});
    web.answers("/v1.1/search", {R"({"objectIDs":[1,2,3]})"});
    web.answers("/v1/objects/", {R"({"objectID":1,"isPublicDomain":false,"primaryImage":""})"});
    web.answers("/search/collection", {R"({"orderedItems":["https://x/w1","https://x/w12"]})"});
    web.answers("example/w1", {R"({"id":"w"})"});
    web.answers("/photos/random", {photo});
    const auto museums = [](MuseumsSource source) {
        return MuseumsSettings{.sources = {source, MuseumsSource::smithsonian}};
    };
    const std::vector<std::pair<WallpaperMode, std::string>> rows = {
        {{APODSettings{}}, "date_to=260408"},
        {{APODSettings{.switchPeriodically = true}}, "apod-basic/100101"},
        {{filmOf(2)}, "/date/2024-06-05"},
        {{museums(MuseumsSource::metropolitanMuseum)}, "/v1/objects/"},
        {{museums(MuseumsSource::rijksmuseum)}, "example/w1"},
        {{museums(MuseumsSource::smkDenmark)}, "/art/search/"},
        {{UnsplashSettings{}}, "/told"},
    };
    for (const auto& [mode, part] : rows) {
        for (const bool isAnswered : {false, true}) {
            if (isAnswered && part == "/told") continue;  // nothing but the picture comes after it
            TaskScope scope(loop);
            web.hold(part);
            const auto outcome = ask(display, mode, scope);
            loop.advance(std::chrono::seconds(2));
            const std::size_t count = web.requests.size();
            EXPECT_THAT(web.requests.back().url, HasSubstr(part));
            if (isAnswered) web.letThrough();
            scope.cancelAll();
            loop.advance(std::chrono::seconds(2));
            EXPECT_EQ(outcome->text, "cancelled") << part;
            EXPECT_THAT(web.requests, SizeIs(count)) << part;
            web.letThrough();
        }
    }
    EXPECT_THAT(web.downloads, IsEmpty());
}

TEST_F(RemoteImageResolverTest, anAnswerWithoutAPictureIsAFailureThatNamesItsServiceAndNoKey) {
    const WallpaperMode bing{BingSettings{}}, spotlight{WindowsSpotlightSettings{}},
        wallhaven{WallhavenSettings{}};
    const WallpaperMode unsplash{UnsplashSettings{}}, latest{NasaEpicSettings{}}, film{filmOf(1)};
    const std::string none = " did not return an image matching the selected options.";
    const std::string links = R"("links": {"download_location": "KEY"})";
    const std::vector<std::tuple<WallpaperMode, std::string, std::string>> rows = {
        {bing, R"({"images": []})", "Bing" + none},
        {bing, R"({"images": [{"url": "no url"}]})", "Bing" + none},
        {bing, R"({"images": [{"copyright": "c"}]})", "Bing: images[0].url: missing key"},
        {spotlight, R"({"batchrsp": {"ver": "1.0"}})", "Windows Spotlight" + none},
        {spotlight, R"({"batchrsp": {"items": []}})", "Windows Spotlight" + none},
        {spotlight, spotlightAnswer("", "no url"), "Windows Spotlight" + none},
        {spotlight, R"({"batchrsp": {"items": [{"item": "{}"}]}})", "Windows Spotlight: ad: missing key"},
        {wallhaven, R"({"data": []})", "Wallhaven" + none},
        {wallhaven, R"({"data": [{"path": "not a url"}]})", "Wallhaven" + none},
        {wallhaven, "<html>", "Wallhaven: the document is not valid JSON"},
        {unsplash, R"({"urls": {"full": "no url"}, "user": {}, )" + links + "}", "Unsplash" + none},
        {unsplash, R"({"errors": ["KEY"]})", "Unsplash: urls: missing key"},
        {unsplash, R"({"urls": {"full": "KEY"}, "links": ["KEY"]})", "Unsplash: links: expected an object"},
        {latest, "[]", "NASA EPIC" + none},
        {film, R"([{"image": "", "date": "2024-06-05 07:08:59"}])", "NASA EPIC" + none},
        {film, "null", "NASA EPIC: expected an array, found null"},
    };
    for (const auto& [mode, answer, text] : rows) {
        web.answers(".example/", {answer});
        std::string said = wallpaper(mode)->text;
        if (const auto at = said.find(" returned an unexpected response ("); at != said.npos)
            said.replace(at, 34, ": ");
        EXPECT_THAT(said, AllOf(StartsWith(text), Not(HasSubstr("KEY"))));
    }
    EXPECT_THAT(web.downloads, IsEmpty());
}

TEST_F(RemoteImageResolverTest, picturesAreAsWideAsTheDisplayHasPixels) {
    display.frame.width = 1280;
    display.scaleFactor = 1.5;
    web.answers("/photos/random", {photo});
    web.answers("/apod-basic",
                {R"([{"date": "2026-05-04", "hdurl": "https://i/h", "media_type": "image"}])"});
    wallpaper({UnsplashSettings{}});
    wallpaper({APODSettings{}});
    EXPECT_THAT(downloaded(), Each(EndsWith("w=1920")));
}

TEST_F(RemoteImageResolverTest, textsOfServicesAreShortAndHarmless) {
    const std::string many(2000, 'a');
    web.answers("/HPImageArchive",
                {R"({"images": [{"url": "/p.jpg", "title": "L\u001b[31mred\u0085\u202e", "copyright": "é)" +
                 many + R"("}]})"});
    web.answers("/selection", {spotlightAnswer(R"(, \"title\": \"A\\nB\")")});
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

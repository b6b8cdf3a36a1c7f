#include <fstream>

#include "RemoteServiceFixture.h"
#include "fakes/FakeExecutors.h"
#include "fakes/TemporaryFolder.h"
#include "remote/services/BingService.h"
#include "remote/services/WindowsSpotlightService.h"
#include "storage/LastUsedStamp.h"

namespace quillmar {
namespace {

using namespace ::testing;
using namespace std::chrono_literals;

struct BingServiceTest : RemoteServiceFixture {
    BingService service{web, services.bing, services.bingWeb};
};

TEST_F(BingServiceTest, thePictureOfTheDayIsRelativeToTheWebHost) {
    const Table rows = {
        {R"("url": "/th?id=OHR.Lake_1.jpg&pid=hp")", "https://bingweb.example/th?id=OHR.Lake_1.jpg&pid=hp"},
        {R"("url": "https://cdn.example/p.jpg", "copyright": "")", "https://cdn.example/p.jpg"},
        {R"("url": "/p.jpg", "urlbase": "/th?id=b")", "https://bingweb.example/th?id=b_UHD.jpg"}};
    for (const auto& [image, url] : rows) {
        web.answers("/HPImageArchive",
                    {R"({"images": [{)" + image + R"(, "title": "Lake"}, {"url": "/second"}]})"});
        const RemotePicture picture = resolved(service.resolve({.market = "pt-pt"})).picture;
        EXPECT_EQ(picture.overlayCaption, "Lake");
        EXPECT_EQ(picture.sourceDescription, image.contains("copyright") ? std::optional("") : std::nullopt);
        EXPECT_THAT(downloaded(), ElementsAre(url));
        EXPECT_THAT(asked(), ElementsAre("/HPImageArchive.aspx?format=js&idx=0&n=1&mkt=pt-pt"));
    }
    EXPECT_EQ(resolved(service.resolve({.showsCopyright = false})).picture.overlayCaption, std::nullopt);
}

struct WindowsSpotlightServiceTest : RemoteServiceFixture {
    TemporaryFolder folder;
    InlineExecutor files;
    WindowsSpotlightService service{web, services.windowsSpotlight, clock, files};
    std::filesystem::path file = folder.path() / "old.jpg";

    /// Applied an hour ago, for two hours.
    WindowsSpotlightSettings remembering() {
        std::ofstream(file) << "picture";
        stampLastUsed(file, clock.now() - 1h);
        return {.locale = "de-DE",
                .rotationIntervalSeconds = 7200,
                .lastSelection =
                    WindowsSpotlightSelection{Url::fromFilePath(file), "Old", "de-DE", clock.now() - 1h}};
    }
};

TEST_F(WindowsSpotlightServiceTest, aNewPictureOfTheCountryIsRememberedAsNotYetShown) {
    const std::string others = R"(, \"title\": \"Lake\", \"iconHoverText\": \"A lake\", \"copyright\": )";
    const std::vector<std::tuple<std::string, std::string, std::string, std::optional<std::string>>> rows = {
        {"de-DE", "DE", others + R"(\"© Ann\")", "© Ann"},
        {"zh-Hant-tw", "TW", others + "null", "A lake"},
        {"pt", "PT", R"(, \"title\": \"Lake\")", "Lake"},
        {"-", "US", "", std::nullopt},
    };
    for (const auto& [locale, country, texts, credit] : rows) {
        web.answers("/selection", {spotlightAnswer(texts)});
        const RemotePicture picture = resolved(service.resolve({.locale = locale}, false)).picture;
        EXPECT_EQ(picture.image, "/cache/new.jpg");
        EXPECT_EQ(picture.sourceDescription, credit);
        EXPECT_EQ(picture.overlayCaption, credit);
        EXPECT_EQ(picture.windowsSpotlightSelection,
                  (WindowsSpotlightSelection{Url::fromFilePath("/cache/new.jpg"), credit, locale, {}}));
        EXPECT_THAT(web.requests.back().headers, ElementsAre(Pair("User-Agent", "Mozilla/5.0")));
        EXPECT_THAT(asked(), ElementsAre("/v4/api/selection?placement=88000820&bcnt=1&country=" + country +
                                         "&locale=" + locale + "&fmt=json"));
    }
}

TEST_F(WindowsSpotlightServiceTest, thePictureThatWasAppliedComesAgainWithinItsInterval) {
    const auto ago = [this](WallTime::duration age) {
        return [this, age](auto& settings) { settings.lastSelection->appliedAt = clock.now() - age; };
    };
    const auto at = [](Url url) { return [url](auto& settings) { settings.lastSelection->imageURL = url; }; };
    using Change = std::function<void(WindowsSpotlightSettings&)>;
    const std::vector<std::tuple<std::string, bool, Change>> rows = {
        {"within", true, [](auto&) {}},
        {"the next one is wanted", false, [](auto&) {}},
        {"a moment before the end", true, ago(2h - 1us)},
        {"at the end", false, ago(2h)},
        {"another locale", false, [](auto& settings) { settings.locale = "de-AT"; }},
        {"never shown", false, [](auto& settings) { settings.lastSelection->appliedAt.reset(); }},
        {"none", false, [](auto& settings) { settings.lastSelection.reset(); }},
        {"swept away", false, at(Url::fromFilePath(folder.path() / "gone.jpg"))},
        {"no file", false, at(*Url::parse("https://h/old.jpg"))},
    };
    web.answers("/selection", {spotlightAnswer("")});
    for (const auto& [name, isReused, change] : rows) {
        WindowsSpotlightSettings settings = remembering();
        change(settings);
        const RemotePicture picture =
            resolved(service.resolve(settings, name == "the next one is wanted")).picture;
        EXPECT_EQ(picture.image, isReused ? file : "/cache/new.jpg") << name;
        EXPECT_THAT(asked(), SizeIs(isReused ? 0 : 1)) << name;
        if (!isReused) continue;
        EXPECT_EQ(picture.sourceDescription, "Old");
        EXPECT_EQ(picture.windowsSpotlightSelection, settings.lastSelection);
        if (lastUsedStamp(file)) EXPECT_EQ(lastUsedStamp(file), clock.now());
    }
}

}  // namespace
}  // namespace quillmar

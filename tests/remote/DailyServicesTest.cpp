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
        {"/th?id=OHR.Lake_1.jpg&pid=hp", "https://bingweb.example/th?id=OHR.Lake_1.jpg&pid=hp"},
        {"th?id=1", "https://bingweb.example/th?id=1"},
        {"https://cdn.example/p.jpg", "https://cdn.example/p.jpg"}};
    for (const auto& [reference, url] : rows) {
        web.answers("/HPImageArchive",
                    {R"({"images": [{"url": ")" + reference + R"("}, {"url": "/second"}]})"});
        EXPECT_EQ(resolved(service.resolve({.market = "pt-pt"})).picture.sourceDescription, std::nullopt);
        EXPECT_THAT(downloaded(), ElementsAre(url));
        EXPECT_THAT(asked(), ElementsAre("/HPImageArchive.aspx?format=js&idx=0&n=1&mkt=pt-pt"));
    }
    web.answers("/HPImageArchive",
                {R"({"images": [{"url": "/p.jpg", "urlbase": "/th?id=b", "copyright": "© Ann"}]})"});
    EXPECT_EQ(resolved(service.resolve({})).picture.sourceDescription, "© Ann");
    EXPECT_THAT(downloaded(), ElementsAre("https://bingweb.example/th?id=b_UHD.jpg"));
}

TEST_F(BingServiceTest, anAnswerWithoutAPictureIsAFailure) {
    const std::string unusable = "Bing did not return an image matching the selected options.";
    expectFailures({{R"({"images": []})", unusable},
                    {R"({"images": [{"url": "no url"}]})", unusable},
                    {R"({"images": [{"copyright": "c"}]})",
                     "Bing returned an unexpected response (images[0].url: missing key)."},
                    {"<html>", "Bing returned an unexpected response"}},
                   [this] { return service.resolve({}); });
}

std::string spotlightAnswer(const std::string& texts, const std::string& asset = "https://i/new.jpg") {
    const std::string ad =
        R"({\"ad\": {\"landscapeImage\": {\"asset\": \")" + asset + R"(\"})" + texts + "}}";
    return R"({"batchrsp": {"items": [{"item": ")" + ad + R"("}]}})";
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
    struct Row {
        std::string locale;
        std::string country;
        std::string texts;
        std::optional<std::string> credit;
    };
    const std::string others = R"(, \"title\": \"Lake\", \"iconHoverText\": \"A lake\", \"copyright\": )";
    const std::vector<Row> rows = {
        {"de-DE", "DE", others + R"(\"© Ann\")", "© Ann"},
        {"zh-Hant-tw", "TW", others + "null", "A lake"},
        {"pt", "PT", R"(, \"title\": \"Lake\")", "Lake"},
        {"-", "US", "", std::nullopt},
    };
    for (const Row& row : rows) {
        web.answers("/selection", {spotlightAnswer(row.texts)});
        const RemotePicture picture = resolved(service.resolve({.locale = row.locale}, false)).picture;
        EXPECT_EQ(picture.image, "/cache/new.jpg");
        EXPECT_EQ(picture.sourceDescription, row.credit);
        const WindowsSpotlightSelection selection{
            Url::fromFilePath("/cache/new.jpg"), row.credit, row.locale, {}};
        EXPECT_EQ(picture.windowsSpotlightSelection, selection);
        EXPECT_THAT(web.requests.back().headers, ElementsAre(Pair("User-Agent", "Mozilla/5.0")));
        EXPECT_THAT(asked(), ElementsAre("/v4/api/selection?placement=88000820&bcnt=1&country=" +
                                         row.country + "&locale=" + row.locale + "&fmt=json"));
    }
}

TEST_F(WindowsSpotlightServiceTest, anAnswerWithoutAPictureIsAFailure) {
    const std::string unusable = "Windows Spotlight did not return an image matching the selected options.";
    expectFailures({{R"({"batchrsp": {"items": []}})", unusable},
                    {spotlightAnswer("", "no url"), unusable},
                    {spotlightAnswer("", ""), unusable},
                    {R"({"batchrsp": {"ver": "1.0"}})", unusable},
                    {R"({"batchrsp": {"errors": [{"code": 2000}]}})", unusable},
                    {R"({"batchrsp": {"items": [{"item": {}}]}})", "batchrsp.items[0].item: expected a text"},
                    {R"({"batchrsp": {"items": [{"item": "{}"}]}})",
                     "Windows Spotlight returned an unexpected response (ad: missing key)."}},
                   [this] { return service.resolve({}, false); });
}

TEST_F(WindowsSpotlightServiceTest, thePictureThatWasAppliedComesAgainWithinItsInterval) {
    struct Row {
        std::string name;
        bool isReused;
        std::function<void(WindowsSpotlightSettings&)> change;
        bool advances = false;
    };
    const auto ago = [this](WallTime::duration age) {
        return [this, age](auto& settings) { settings.lastSelection->appliedAt = clock.now() - age; };
    };
    const auto at = [](Url url) { return [url](auto& settings) { settings.lastSelection->imageURL = url; }; };
    const std::vector<Row> rows = {
        {"within", true, [](auto&) {}},
        {"the next one is wanted", false, [](auto&) {}, true},
        {"a moment before the end", true, ago(2h - 1us)},
        {"at the end", false, ago(2h)},
        {"another locale", false, [](auto& settings) { settings.locale = "de-AT"; }},
        {"never shown", false, [](auto& settings) { settings.lastSelection->appliedAt.reset(); }},
        {"none", false, [](auto& settings) { settings.lastSelection.reset(); }},
        {"swept away", false, at(Url::fromFilePath(folder.path() / "gone.jpg"))},
        {"no file", false, at(*Url::parse("https://h/old.jpg"))},
    };
    web.answers("/selection", {spotlightAnswer("")});
    for (const Row& row : rows) {
        WindowsSpotlightSettings settings = remembering();
        row.change(settings);
        const RemotePicture picture = resolved(service.resolve(settings, row.advances)).picture;
        EXPECT_EQ(picture.image, row.isReused ? file : "/cache/new.jpg") << row.name;
        EXPECT_THAT(asked(), SizeIs(row.isReused ? 0 : 1)) << row.name;
        if (!row.isReused) continue;
        EXPECT_EQ(picture.sourceDescription, "Old");
        EXPECT_EQ(picture.windowsSpotlightSelection, settings.lastSelection);
        if (lastUsedStamp(file)) EXPECT_EQ(lastUsedStamp(file), clock.now());
    }
}

}  // namespace
}  // namespace quillmar

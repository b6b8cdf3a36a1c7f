#include "RemoteServiceFixture.h"
#include "remote/services/UnsplashService.h"
#include "remote/services/WallhavenService.h"

namespace quillmar {
namespace {

using namespace ::testing;

struct WallhavenServiceTest : RemoteServiceFixture {
    WallhavenService service{web, services.wallhaven, random};
};

TEST_F(WallhavenServiceTest, aSearchAsksForWhatIsChosenAndForNothingElse) {
    using Mode = WallhavenResolutionMode;
    const std::string usual = "categories=100&purity=100&sorting=random&order=desc";
    const std::vector<std::pair<WallhavenSettings, std::string>> rows = {
        {{}, usual},
        {{.includeGeneral = false,
          .includeAnime = true,
          .includePeople = true,
          .includeSafe = false,
          .includeSketchy = true,
          .includeNSFW = true,
          .apiKey = " K&1\n",
          .searchQuery = " mountain lake\n",
          .sorting = WallhavenSorting::toplist,
          .order = WallhavenOrder::ascending,
          .topRange = WallhavenTopRange::sixMonths,
          .color = "0066cc",
          .resolutionMode = Mode::exactly,
          .resolution = "1920x1080",
          .exactResolutions = {"1600x900", "2560x1440"},
          .ratios = {"16x9", "16x10"}},
         "categories=011&purity=011&sorting=toplist&order=asc&q=mountain%20lake&colors=0066cc"
         "&resolutions=1600x900,2560x1440&ratios=16x9,16x10&topRange=6M&apikey=K%261"},
        {{.apiKey = " \n", .searchQuery = "\t", .color = ""}, usual},
        {{.resolutionMode = Mode::atleast, .resolution = "1920x1080"}, usual + "&atleast=1920x1080"},
        {{.resolutionMode = Mode::atleast, .exactResolutions = {"1600x900"}}, usual},
        {{.resolutionMode = Mode::exactly, .resolution = "1920x1080"}, usual},
        {{.resolution = "1920x1080", .exactResolutions = {"1600x900"}}, usual},
    };
    for (const auto& [settings, query] : rows) {
        EXPECT_EQ(wallhavenRequest(services.wallhaven.host, settings).string(),
                  "https://wallhaven.example/api/v1/search?" + query);
    }
}

TEST_F(WallhavenServiceTest, chanceChoosesAmongThePicturesThatWereFound) {
    web.answers("/search", {R"({"data": [{"path": "https://w/a.jpg", "short_url": "https://w/s"},
        {"path": "https://w/b.jpg", "short_url": null}], "meta": {}})"});
    draws = {1, 0};
    EXPECT_EQ(resolved(service.resolve({})).picture.sourceDescription, "Wallhaven");
    EXPECT_EQ(resolved(service.resolve({})).picture.sourceDescription, "https://w/s");
    EXPECT_THAT(downloaded(), ElementsAre("https://w/b.jpg", "https://w/a.jpg"));
    EXPECT_THAT(bounds, ElementsAre(2, 2));
}

TEST_F(WallhavenServiceTest, anAnswerWithoutAPictureIsAFailure) {
    const std::string unusable = "Wallhaven did not return an image matching the selected options.";
    draws = {0, 0};
    expectFailures({{R"({"data": []})", unusable},
                    {R"({"data": [{"path": "not a url"}]})", unusable},
                    {R"({"data": [{"path": ""}]})", unusable},
                    {R"({"data": [{"path": null}]})", "data[0].path: expected a text"},
                    {R"({"error": ""})", "Wallhaven returned an unexpected response (data: missing key)."}},
                   [this] { return service.resolve({}); });
}

struct UnsplashServiceTest : RemoteServiceFixture {
    UnsplashService service{web, services.unsplash};
};

TEST_F(UnsplashServiceTest, aPhotographIsAskedForAsTheFilterAndTheDisplaySayAndItsUseIsTold) {
    struct Row {
        UnsplashFilter filter;
        std::string item;
        std::string urls;
        double width;
        std::string image;
    };
    const std::string raw = R"("raw": "https://i/r?id=1", "full": "https://i/f")";
    const std::vector<Row> rows = {
        {UnsplashFilter::topic, "topics=nature", raw, 2559.5, "r?id=1&auto=format&fit=max&w=2560"},
        {UnsplashFilter::user, "username=ann%26bob", raw, 1920.4, "r?id=1&auto=format&fit=max&w=1920"},
        {UnsplashFilter::search, "query=blue%20sea", R"("full": "https://i/f")", 0,
         "f?auto=format&fit=max&w=1"},
    };
    UnsplashSettings settings{
        .accessKey = " KEY\n", .topicSlug = " nature ", .username = "ann&bob", .searchQuery = "blue sea\n"};
    const std::string rest =
        R"("user": {}, "links": {"download_location": "https://unsplash.example/told"}})";
    for (const Row& row : rows) {
        settings.filter = row.filter;
        web.answers("/photos/random", {R"({"urls": {)" + row.urls + "}, " + rest});
        EXPECT_EQ(failure(service.resolve(settings, row.width)), "");  // though the telling is a 404
        for (const auto& request : web.requests) {
            EXPECT_THAT(request.headers,
                        ElementsAre(Pair("Accept-Version", "v1"), Pair("Authorization", "Client-ID KEY")));
        }
        EXPECT_THAT(asked(), ElementsAre("/photos/random?orientation=landscape&" + row.item, "/told"));
        EXPECT_THAT(downloaded(), ElementsAre("https://i/" + row.image));
    }
    EXPECT_EQ(cancelledAt("/told", false, service.resolve(settings, 1)), "cancelled");
    EXPECT_THAT(downloaded(), IsEmpty());
}

TEST_F(UnsplashServiceTest, theCreditSaysWhatIsThereAndWhoseItIs) {
    const std::string described = R"("description": "Lake", "alt_description": "Water", "user": )";
    const std::string otherwise = R"("description": null, "alt_description": "Water", "user": )";
    const Table rows = {
        {described + R"({"name": "Ann"})", "Lake — Ann"},
        {otherwise + R"({"name": "Ann"})", "Water — Ann"},
        {R"("user": {"name": "Ann"})", "Unsplash photo — Ann"},
        {described + R"({"name": null})", "Lake"},
        {otherwise + "{}", "Water"},
        {R"("user": {})", "Unsplash"},
    };
    const std::string before = R"({"urls": {"full": ""}, "links": {"download_location": ""}, )";
    for (const auto& [texts, credit] : rows) EXPECT_EQ(parseUnsplash(before + texts + "}").credit, credit);
}

TEST_F(UnsplashServiceTest, anAnswerOfAnotherShapeIsAFailureThatNeverShowsTheKey) {
    const std::string links = R"("links": {"download_location": "KEY"})";
    const std::string unusable = "Unsplash did not return an image matching the selected options.";
    expectFailures(
        {{R"({"urls": {"full": "no url"}, "user": {}, )" + links + "}", unusable},
         {R"({"errors": ["KEY"]})", "urls: missing key"},
         {R"({"urls": {"raw": "KEY"}})", "urls.full: missing key"},
         {R"({"urls": {"full": "KEY"}, "links": ["KEY"]})", "links: expected an object, found an array"},
         {R"({"urls": {"full": "f"}, "user": null, )" + links + "}", "user: expected an object, found"},
         {R"("KEY")", "expected an object, found a text"}},
        [this] { return service.resolve({.accessKey = "KEY"}, 1); });
}

}  // namespace
}  // namespace quillmar

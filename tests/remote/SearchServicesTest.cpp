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
        {{false,
          true,
          true,
          false,
          true,
          true,
          " K&1\n",
          " mountain lake\n",
          WallhavenSorting::toplist,
          WallhavenOrder::ascending,
          WallhavenTopRange::sixMonths,
          "0066cc",
          Mode::exactly,
          "1920x1080",
          {"1600x900", "2560x1440"},
          {"16x9", "16x10"}},
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

struct UnsplashServiceTest : RemoteServiceFixture {
    UnsplashService service{web, services.unsplash};
};

TEST_F(UnsplashServiceTest, aPhotographIsAskedForAsTheFilterAndTheDisplaySayAndItsUseIsTold) {
    const std::string raw = R"("raw": "https://i/r?id=1", "full": "https://i/f")";
    const std::vector<std::tuple<UnsplashFilter, std::string, std::string, double, std::string>> rows = {
        {UnsplashFilter::topic, "topics=nature", raw, 2559.5, "r?id=1&auto=format&fit=max&w=2560"},
        {UnsplashFilter::user, "username=ann%26bob", raw, 1920.4, "r?id=1&auto=format&fit=max&w=1920"},
        {UnsplashFilter::search, "query=blue%20sea", R"("full": "https://i/f")", 0,
         "f?auto=format&fit=max&w=1"},
    };
    UnsplashSettings settings{
        .accessKey = " KEY\n", .topicSlug = " nature ", .username = "ann&bob", .searchQuery = "blue sea\n"};
    const std::string rest =
        R"("user": {}, "links": {"download_location": "https://unsplash.example/told"}})";
    for (const auto& [filter, item, urls, width, image] : rows) {
        settings.filter = filter;
        web.answers("/photos/random", {R"({"urls": {)" + urls + "}, " + rest});
        EXPECT_EQ(failure(service.resolve(settings, width)), "");  // though the telling is a 404
        for (const auto& request : web.requests) {
            EXPECT_THAT(request.headers,
                        ElementsAre(Pair("Accept-Version", "v1"), Pair("Authorization", "Client-ID KEY")));
        }
        EXPECT_THAT(asked(), ElementsAre("/photos/random?orientation=landscape&" + item, "/told"));
        EXPECT_THAT(downloaded(), ElementsAre("https://i/" + image));
    }
}

TEST_F(UnsplashServiceTest, theCreditSaysWhatIsThereAndWhoseItIs) {
    const std::string described = R"("description": "Lake", "alt_description": "Water", "user": )";
    const std::string otherwise = R"("description": null, "alt_description": "Water", "user": )";
    const std::vector<std::array<std::string, 3>> rows = {
        {described + R"({"name": "Ann"})", "Lake — Ann", "Lake  •  Ann  •  Unsplash"},
        {otherwise + R"({"name": "Ann"})", "Water — Ann", "Water  •  Ann  •  Unsplash"},
        {R"("user": {"name": "Ann"})", "Unsplash photo — Ann", "Ann  •  Unsplash"},
        {described + R"({"name": null})", "Lake", "Lake  •  Unsplash"},
        {R"("user": {})", "Unsplash", "Unsplash"},
    };
    for (const auto& [texts, credit, caption] : rows) {
        web.answers(
            "/photos/random",
            {R"({"urls": {"full": "https://i/f"}, "links": {"download_location": "", "html": "https://p"}, )" +
             texts + "}"});
        const RemotePicture picture = resolved(service.resolve({}, 1)).picture;
        EXPECT_EQ(picture.sourceDescription, credit);
        EXPECT_EQ(picture.overlayCaption, caption);
        EXPECT_EQ(picture.credit.sourceURL, "https://p");
        EXPECT_EQ(resolved(service.resolve({.showsAttribution = false}, 1)).picture.overlayCaption,
                  std::nullopt);
    }
}

}  // namespace
}  // namespace quillmar

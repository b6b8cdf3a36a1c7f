#include "remote/services/MuseumsService.h"

#include <fmt/format.h>

#include <numeric>

#include "RemoteServiceFixture.h"

namespace quillmar {
namespace {

using namespace ::testing;
using enum MuseumsSource;
using enum MuseumsArtworkCategory;

TEST(MuseumRequestTest, eachMuseumIsAskedInItsOwnWords) {
    const auto request = [](MuseumsSource source, std::optional<MuseumsArtworkCategory> category = {}) {
        return museumRequest(*Url::parse("https://h"), {source, category, " my key "}).string().substr(9);
    };
    const std::string artInstitute =
        "/api/v1/artworks/"
        "search?params=%7B%22query%22:%7B%22bool%22:%7B%22must%22:%5B%7B%22term%22:%7B%22is_public_domain%22:"
        "true%7D%7D,%7B%22exists%22:%7B%22field%22:%22image_id%22%7D%7D%5D,%22should%22:%5B%7B%22match%22:%"
        "7B%22classification_titles%22:%22drawing%20print%22%7D%7D,%7B%22match%22:%7B%22artwork_type_title%"
        "22:%22drawing%20print%22%7D%7D%5D,%22minimum_should_match%22:1%7D%7D%7D&limit=100&fields=id,title,"
        "image_id,artist_title";
    const std::string smk = "&filters=%5Bhas_image:true%5D,%5Bpublic_domain:true%5D&offset=0&rows=100";
    const std::vector<std::pair<std::string, std::string>> rows = {
        {request(artInstituteChicago, drawingsAndPrints), artInstitute},
        {request(metropolitanMuseum),
         "/public/collection/v1.1/search?hasImages=true&isPublicDomain=true&q=art&offset=0&limit=100"},
        {request(rijksmuseum, drawingsAndPrints), "/search/collection?imageAvailable=true&type=print"},
        {request(clevelandMuseum, photography),
         "/api/artworks/?has_image=1&limit=100&skip=0&type=Photograph"},
        {request(smkDenmark), "/api/v1/art/search/?keys=*" + smk},
        {request(smkDenmark, paintings), "/api/v1/art/search/?keys=painting" + smk},
        {request(smithsonian),
         "/openaccess/api/v1.0/search?q=art%20AND%20online_media_type:Images&api_key=my%20key&start=0&"
         "rows=100"},
    };
    for (const auto& [url, expected] : rows) EXPECT_EQ(url, expected);
}

std::vector<std::string> told(const std::vector<MuseumArtwork>& artworks) {
    std::vector<std::string> texts;
    for (const auto& artwork : artworks) {
        texts.push_back(artwork.identity + " " + artwork.title + " " + artwork.imageURL.string());
        for (const auto& detail : {artwork.artist, artwork.page, artwork.licence}) {
            if (detail) texts.back() += " | " + *detail;
        }
    }
    return texts;
}

TEST(MuseumAnswersTest, onlyFreeWorksWithAPictureCount) {
    EXPECT_THAT(
        told(parseArtInstitute(R"({"data":[{"id":1,"title":"A","image_id":"x","artist_title":"Ann"},
        {"id":2,"image_id":null},{"id":3,"title":"","image_id":"y z","artist_title":null}],
        "config":{"iiif_url":"https://i/iiif/2/","website_url":"http://web"}})")),
        ElementsAre(
            "artic:1 A https://i/iiif/2/x/full/1686,/0/default.jpg | Ann | http://web/artworks/1 | CC0",
            "artic:3 Untitled https://i/iiif/2/y%20z/full/1686,/0/default.jpg | http://web/artworks/3 | "
            "CC0"));
    EXPECT_THAT(parseArtInstitute(R"({"data":[{"id":1,"image_id":"x"}],"config":{"iiif_url":"no url"}})"),
                IsEmpty());

    const auto met = [](const char* isFree, const std::string& images) {
        const auto artwork = parseMetropolitanObject(
            fmt::format(R"({{"objectID":7,"isPublicDomain":{},{},"title":null,"artistDisplayName":""}})",
                        isFree, images));
        return artwork ? told({*artwork})[0] : "none";
    };
    const std::string image = R"("primaryImage":"https://i/7")";
    EXPECT_EQ(met("true", image), "met:7 Untitled https://i/7 | CC0");
    EXPECT_EQ(met("true", image + R"(,"primaryImageLarge":"https://i/l")"),
              "met:7 Untitled https://i/l | CC0");
    EXPECT_EQ(met("false", image), "none");
    EXPECT_EQ(met("true", R"("primaryImage":"")"), "none");
    EXPECT_THAT(parseMetropolitanSearch(R"({"total":0,"objectIDs":null})"), IsEmpty());

    EXPECT_THAT(told(parseCleveland(R"({"data":[
        {"id":1,"title":"A","share_license_status":"CC0","images":{"web":{"url":"https://i/w"},"print":{"url":"https://i/p","width":"3400"}},
         "url":"https://page/1","creators":[{"description":"Ann"}]},
        {"id":2,"title":"B","share_license_status":"CC0","images":{"web":{"url":"https://i/w"},"print":null},"creators":[]},
        {"id":3,"title":"C","share_license_status":"cc0","images":{"web":{"url":"https://i/w"}}},
        {"id":4,"title":"D","share_license_status":"CC0"},
        {"id":5,"title":"E","share_license_status":"CC0","images":{"web":{"url":"no url"}}}]})")),
                ElementsAre("cleveland:1 A https://i/p | Ann | https://page/1 | CC0",
                            "cleveland:2 B https://i/w | CC0"));

    EXPECT_THAT(told(parseSMK(R"({"items":[
        {"id":"1","titles":[{"title":"A"}],"public_domain":true,"image_iiif_id":"https://i/1","image_thumbnail":"https://t/1","rights":"PD"},
        {"id":"2","titles":[{"title":null}],"object_number":"KMS2","public_domain":true,"image_thumbnail":"https://t/2","frontend_url":"javascript:x"},
        {"id":"3","titles":[],"public_domain":true,"image_iiif_id":"no url","image_thumbnail":"https://t/3"},
        {"id":"4","public_domain":false,"image_thumbnail":"https://t/4"},{"id":"5","image_thumbnail":"https://t/5"},
        {"id":"6","public_domain":true}]})")),
                ElementsAre("smk:1 A https://i/1/full/2000,/0/default.jpg | PD", "smk:2 KMS2 https://t/2",
                            "smk:3 Untitled https://t/3"));

    EXPECT_THAT(told(parseSmithsonian(R"({"response":{"rows":[
        {"id":"1","title":"A","content":{"descriptiveNonRepeating":{"record_link":"https://page/1","online_media":{"media":[
            {"content":"https://i/sound","type":"Sound","usage":{"access":"CC0"}},
            {"content":"https://i/closed","type":"Images","usage":{"access":"Usage conditions apply"}},
            {"content":"https://i/1","type":"High-res IMAGE","usage":{"access":"cc0"}}]}}}},
        {"id":"2","title":"B","content":{}},
        {"id":"3","title":"C","content":{"descriptiveNonRepeating":{"online_media":{"media":[{"content":"https://i/3"}]}}}}]}})")),
                ElementsAre("smithsonian:1 A https://i/1 | https://page/1 | CC0"));
}

struct MuseumsServiceTest : RemoteServiceFixture {
    MuseumsService museums{web, services, clock,
                           [this](std::size_t bound) { return chance ? chance(bound) : 0; }};
    std::function<std::size_t(std::size_t)> chance;

    /// Cleveland, with works of these numbers.
    static std::string works(std::vector<int> numbers) {
        std::string rows;
        for (const int number : numbers) {
            rows += fmt::format(
                R"({}{{"id":{},"title":"W{}","share_license_status":"CC0","images":{{"web":{{"url":"https://i/{}"}}}}}})",
                rows.empty() ? "" : ",", number, number, number);
        }
        return "{\"data\":[" + rows + "]}";
    }
    static std::string worksTo(int end) {
        std::vector<int> numbers(static_cast<std::size_t>(end));
        std::iota(numbers.begin(), numbers.end(), 0);
        return works(std::move(numbers));
    }
    static MuseumsSettings of(std::set<MuseumsSource> sources) { return {.sources = std::move(sources)}; }
    Outcome on(const std::string& display, MuseumsSettings settings = of({clevelandMuseum}),
               RemoteImagePresentation presentation = RemoteImagePresentation::wallpaper) {
        // The Metropolitan is asked slowly.
        const auto within = std::chrono::seconds(settings.sources.contains(metropolitanMuseum) ? 10 : 0);
        return resolved(museums.resolve(std::move(settings), {presentation, display}), within);
    }
    /// The museums' lists are forgotten, what was shown is not.
    void dayPasses() { clock.set(clock.now() + std::chrono::days(2)); }
};

TEST_F(MuseumsServiceTest, aWorkIsCreditedAndItsListServesADay) {
    web.answers("/api/artworks/", {works({1, 2})});
    RemotePicture picture = on("A").picture;
    EXPECT_EQ(picture.sourceDescription, "W1 — Cleveland Museum of Art");
    EXPECT_EQ(picture.overlayCaption, "W1  •  Cleveland Museum of Art");
    EXPECT_EQ(picture.credit, (PictureCredit{.title = "W1", .licence = "CC0"}));
    EXPECT_THAT(web.limits, ElementsAre(20971520));
    loop.advance(std::chrono::seconds(86399));
    on("A");
    EXPECT_THAT(asked(), SizeIs(1));
    loop.advance(std::chrono::seconds(1));
    MuseumsSettings quiet = of({clevelandMuseum});
    quiet.showsArtworkInformation = false;
    EXPECT_EQ(on("A", quiet).picture.overlayCaption, std::nullopt);
    EXPECT_THAT(asked(), SizeIs(1));
    EXPECT_THAT(downloaded(), ElementsAre("https://i/1", "https://i/2", "https://i/1"));
}

TEST_F(MuseumsServiceTest, noWorkIsOnTwoDisplaysAndNoneComesBackSoonerThanItMust) {
    web.answers("/api/artworks/", {works({1, 2, 3})});
    for (const char* display : {"A", "B", "A", "A", "B", "A"}) on(display);
    EXPECT_THAT(downloaded(), ElementsAre("https://i/1", "https://i/2", "https://i/3", "https://i/1",
                                          "https://i/3", "https://i/2"))
        << "the fourth repeats since the second display has the only other one";
    dayPasses();
    web.answers("/api/artworks/", {works({2})});
    EXPECT_EQ(on("B").failure,
              "Cleveland Museum of Art did not return an image matching the selected options.");
    EXPECT_THAT(asked(), SizeIs(2));
    EXPECT_EQ(on("B", of({clevelandMuseum}), RemoteImagePresentation::screensaver).failure, "")
        << "what a wallpaper shows may be on a screensaver elsewhere";
}

TEST_F(MuseumsServiceTest, aWorkThatComesAgainTakesOnePlaceInTheMemory) {
    for (const int number : {9, 1}) {
        web.answers("/api/artworks/", {works({number})});
        for (int i = 0; i < 64; ++i) on("A");
        dayPasses();
    }
    web.answers("/api/artworks/", {works({9, 5}), worksTo(66)});
    EXPECT_EQ(on("A").picture.credit.title, "W5");
    dayPasses();
    for (int i = 0; i < 62; ++i) on("A");
    EXPECT_EQ(on("A").picture.credit.title, "W9")
        << "the sixty-fifth work forgot it: it comes before the last new one";
}

TEST_F(MuseumsServiceTest, aPictureThatDoesNotComeCostsItsWorkAndThreeCostTheMuseumsTurn) {
    for (const char* part : {"i/1", "i/2", "i/3"}) web.downloadFails(part);
    web.answers("/api/artworks/", {works({1, 2, 4}), works({1, 2, 3, 5})});
    EXPECT_EQ(on("A").failure, "");
    dayPasses();
    EXPECT_EQ(on("A").failure, "Quillmar could not download the image from Cleveland Museum of Art.");
    EXPECT_THAT(downloaded(), SizeIs(6));
}

TEST_F(MuseumsServiceTest, aListIsCutAtItsBoundAndAnEmptyOneIsNotKept) {
    web.answers("/api/artworks/", {works({}), worksTo(129)});
    EXPECT_THAT(on("A").failure, HasSubstr("did not return an image"));
    chance = [](std::size_t bound) { return bound - 1; };
    EXPECT_EQ(on("A").picture.credit.title, "W127");
}

TEST_F(MuseumsServiceTest, ofSeventeenListsTheOneThatWasUsedLongestAgoIsForgotten) {
    web.answers("/openaccess/",
                {R"({"response":{"rows":[{"id":"1","content":{"descriptiveNonRepeating":{"online_media":
        {"media":[{"content":"https://i/1","type":"Images","usage":{"access":"CC0"}}]}}}}]}})"});
    const auto withKey = [&](int number) {
        MuseumsSettings settings = of({smithsonian});
        settings.smithsonianAPIKey = "key" + std::to_string(number);
        loop.advance(std::chrono::seconds(1));
        return on("A", settings).failure;
    };
    for (int number = 0; number < 16; ++number) EXPECT_EQ(withKey(number), "");
    withKey(0);
    EXPECT_THAT(asked(), SizeIs(16)) << "each key has its list";
    withKey(16);
    withKey(0);
    EXPECT_THAT(asked(), SizeIs(1));
    withKey(1);
    EXPECT_THAT(asked(), SizeIs(1));
}

TEST_F(MuseumsServiceTest, aMuseumThatFailsCostsItsTurnAndTheLastFailureIsTheOneToHear) {
    web.answers("/api/artworks/", {works({1})});
    web.answersStatus("/api/v1/art/search/", 503);
    web.answers("/api/v1/artworks/search", {R"({"data":null})"});
    EXPECT_EQ(on("A", of({artInstituteChicago, smkDenmark, clevelandMuseum})).failure, "");
    for (const auto& request : web.requests) {
        const bool isArtInstitute = request.url.contains("artinstitute");
        EXPECT_EQ(request.headers.contains("AIC-User-Agent"), isArtInstitute);
    }
    web.answersStatus("/api/artworks/", 404);
    dayPasses();
    asked();
    EXPECT_THAT(on("B", of({artInstituteChicago, smkDenmark, clevelandMuseum})).failure,
                HasSubstr("Art Institute of Chicago returned an unexpected response (data: "));
    EXPECT_THAT(asked(), ElementsAre(StartsWith("/api/artworks/"), StartsWith("/api/v1/art/"),
                                     StartsWith("/api/v1/artworks/")))
        << "in the order of chance";
    EXPECT_EQ(on("A", of({smkDenmark})).failure, "SMK Denmark returned HTTP 503.");
    EXPECT_EQ(on("A", of({})).failure,
              "the enabled museums did not return an image matching the selected options.");
    MuseumsSettings noCategory = of({clevelandMuseum});
    noCategory.useAllCategories = false;
    noCategory.categories.clear();
    dayPasses();
    asked();
    on("A", noCategory);
    EXPECT_THAT(asked(), ElementsAre("/api/artworks/?has_image=1&limit=100&skip=0"));
}

TEST_F(MuseumsServiceTest, theMetropolitanIsAskedTwiceASecondForTwelveObjectsAtMost) {
    web.answers("/v1/search", {R"({"objectIDs":[1,2,3,4,5,6,7,8,9,10,11,12,13,14]})"});
    web.answers("/v1/objects/",
                {R"({"objectID":5,"isPublicDomain":false,"primaryImage":"","title":"A"})",
                 R"({"message":"not a valid object"})",
                 R"({"objectID":6,"isPublicDomain":true,"primaryImage":"https://i/6","title":"B"})"});
    web.answersStatus("/v1/objects/4", 404);
    TaskScope tasks(loop);
    Outcome outcome;
    tasks.spawn(keep(museums.resolve(of({metropolitanMuseum}), {}), &outcome));
    for (std::size_t count = 1; count <= 14; ++count) {
        loop.settle();
        EXPECT_THAT(web.requests, SizeIs(count));
        loop.advance(std::chrono::milliseconds(499));
        EXPECT_THAT(web.requests, SizeIs(count));
        loop.advance(std::chrono::milliseconds(1));
    }
    EXPECT_EQ(outcome.picture.sourceDescription, "B — The Metropolitan Museum of Art");
    const auto requests = asked();
    EXPECT_THAT(requests[1], StartsWith("/public/collection/v1/search?")) << "the newer one is not there";
    EXPECT_THAT(requests[2], EndsWith("/objects/2")) << "as chance ordered them";
    dayPasses();
    web.answersStatus("/v1/objects/3", 403);
    web.answers("/api/artworks/", {works({1})});
    EXPECT_EQ(on("A", of({metropolitanMuseum})).failure, "The Metropolitan Museum of Art returned HTTP 403.");
    EXPECT_THAT(asked(), SizeIs(4)) << "and nothing more";
    EXPECT_EQ(on("A", of({metropolitanMuseum, clevelandMuseum})).failure, "");
}

TEST_F(MuseumsServiceTest, theRijksmuseumLeadsOverThreeRecordsOfItsOwnHostToAPicture) {
    web.answers("/search/collection", {R"({"orderedItems":[{"id":"no url"},null,{},"https://id/w0",
        {"id":"https://id/w1"},"https://id/lost","https://id/long"]})"});
    web.answers("example/w1", {R"({"id":"https://id/w1","identified_by":[{},"Milk",{"content":"No"}],
        "shows":[{},"https://id/v"]})"});
    web.answers("example/w0", {R"({"id":"w0","shows":["https://id/lost"]})"});
    web.answers("example/v",
                {R"({"id":"v","digitally_shown_by":[{"id":"https://id/d?x=1"},"https://id/no"]})"});
    web.answers(
        "example/d",
        {R"({"id":"d","access_point":[{"id":"no url"},{"id":"https://i/abc/full/max/0/default.jpg"}]})"});
    web.answers(
        "example/long",
        {R"({"id":"l","shows":["https://id/long2"]})", R"({"id":"l","shows":["https://id/long3"]})",
         R"({"id":"l","shows":["https://id/long4"]})", R"({"id":"l","access_point":["https://i/l"]})"});
    const RemotePicture picture = on("A", of({rijksmuseum})).picture;
    EXPECT_EQ(picture.sourceDescription, "Milk — Rijksmuseum");
    EXPECT_EQ(picture.credit.sourceURL, "https://id/w1");
    EXPECT_THAT(downloaded(), ElementsAre("https://i/abc/full/2000,/0/default.jpg"));
    std::string way;
    for (const std::string& text : asked()) way += text.substr(0, text.find("_profile=la-framed")) + " ";
    EXPECT_EQ(
        way,
        "/search/collection?imageAvailable=true /w1? /v? /d?x=1& /lost? /long? /long2? /long3? /w0? /lost? ");
    EXPECT_EQ(rijksmuseumArtwork({.id = "1"}, *Url::parse("https://i/x.jpg")).imageURL.string(),
              "https://i/x.jpg");
}

}  // namespace
}  // namespace quillmar

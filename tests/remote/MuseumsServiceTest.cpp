#include "remote/services/MuseumsService.h"

#include <fmt/format.h>

#include "remote/RemoteServiceFixture.h"

namespace quillmar {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using enum MuseumsSource;

TEST(MuseumRequestTest, eachMuseumIsAskedInItsOwnWords) {
    const auto request = [](MuseumsSource source, std::optional<MuseumsArtworkCategory> category = {}) {
        return museumRequest(*Url::parse("https://h"), {source, category, " my key "}).string();
    };
    const auto params = [](const std::string& text) {
        return "https://h/api/v1/artworks/search?params=" + text;
    };
    const std::string must =
        "%7B%22query%22:%7B%22bool%22:%7B%22must%22:%5B%7B%22term%22:%7B%22is_public_domain%22:true%7D%7D,%"
        "7B%"
        "22exists%22:%7B%22field%22:%22image_id%22%7D%7D%5D";
    const std::vector<std::pair<std::string, std::string>> rows = {
        {request(artInstituteChicago), params(must + "%7D%7D%7D&limit=100&fields=id,title,image_id")},
        {request(artInstituteChicago, MuseumsArtworkCategory::drawingsAndPrints),
         params(
             must +
             ",%22should%22:%5B%7B%22match%22:%7B%22classification_titles%22:%22drawing%20print%22%7D%7D,%7B%"
             "22match%22:%7B%22artwork_type_title%22:%22drawing%20print%22%7D%7D%5D,%22minimum_should_match%"
             "22:1%7D%7D%7D&limit=100&fields=id,title,image_id")},
        {request(metropolitanMuseum), "https://h/public/collection/v1/search?hasImages=true&q=art"},
        {request(metropolitanMuseum, MuseumsArtworkCategory::paintings),
         "https://h/public/collection/v1/search?hasImages=true&q=painting"},
        {request(rijksmuseum), "https://h/search/collection?imageAvailable=true"},
        {request(rijksmuseum, MuseumsArtworkCategory::drawingsAndPrints),
         "https://h/search/collection?imageAvailable=true&type=print"},
        {request(clevelandMuseum), "https://h/api/artworks/?has_image=1&limit=100&skip=0"},
        {request(clevelandMuseum, MuseumsArtworkCategory::photography),
         "https://h/api/artworks/?has_image=1&limit=100&skip=0&type=Photograph"},
        {request(smkDenmark), "https://h/api/v1/art/search/?keys=*&has_image=true&offset=0&rows=100"},
        {request(smkDenmark, MuseumsArtworkCategory::sculpture),
         "https://h/api/v1/art/search/?keys=sculpture&has_image=true&offset=0&rows=100"},
        {request(smithsonian),
         "https://h/openaccess/api/v1.0/"
         "search?q=art%20AND%20online_media_type:Images&api_key=my%20key&start=0&"
         "rows=100"},
    };
    for (const auto& [url, expected] : rows) EXPECT_EQ(url, expected);
}

std::vector<std::string> told(const std::vector<MuseumArtwork>& artworks) {
    std::vector<std::string> texts;
    for (const auto& artwork : artworks) {
        texts.push_back(artwork.identity + " " + artwork.title + " " + artwork.imageURL.string());
    }
    return texts;
}

TEST(MuseumAnswersTest, onlyFreeWorksWithAPictureCount) {
    EXPECT_THAT(
        told(parseArtInstitute(R"({"data":[{"id":1,"title":"A","image_id":"x"},{"id":2,"image_id":null},
        {"id":3,"title":"","image_id":"y z"}],"config":{"iiif_url":"https://i/iiif/2/"}})")),
        ElementsAre("artic:1 A https://i/iiif/2/x/full/1686,/0/default.jpg",
                    "artic:3 Untitled https://i/iiif/2/y%20z/full/1686,/0/default.jpg"));
    EXPECT_THAT(parseArtInstitute(R"({"data":[{"id":1,"image_id":"x"}],"config":{"iiif_url":"no url"}})"),
                IsEmpty());

    const auto met = [](const char* isFree, const char* image) {
        return parseMetropolitanObject(fmt::format(
            R"({{"objectID":7,"isPublicDomain":{},"primaryImageLarge":"{}","title":null}})", isFree, image));
    };
    EXPECT_EQ(told({*met("true", "https://i/7.jpg")})[0], "met:7 Untitled https://i/7.jpg");
    EXPECT_EQ(met("false", "https://i/7.jpg"), std::nullopt);
    EXPECT_EQ(met("true", ""), std::nullopt);
    EXPECT_THAT(parseMetropolitanSearch(R"({"total":0,"objectIDs":null})"), IsEmpty());

    EXPECT_THAT(told(parseCleveland(R"({"data":[
        {"id":1,"title":"A","share_license_status":"CC0","images":{"web":{"url":"https://i/w"},"print":{"url":"https://i/p"}}},
        {"id":2,"title":"B","share_license_status":"CC0","images":{"web":{"url":"https://i/w"},"print":null}},
        {"id":3,"title":"C","share_license_status":"cc0","images":{"web":{"url":"https://i/w"}}},
        {"id":4,"title":"D","share_license_status":"CC0"},
        {"id":5,"title":"E","share_license_status":"CC0","images":{"web":{"url":"no url"}}}]})")),
                ElementsAre("cleveland:1 A https://i/p", "cleveland:2 B https://i/w"));

    EXPECT_THAT(told(parseSMK(R"({"items":[
        {"id":"1","titles":[{"title":"A"}],"public_domain":true,"image_iiif_id":"https://i/1","image_thumbnail":"https://t/1"},
        {"id":"2","titles":[{"title":null}],"object_number":"KMS2","public_domain":true,"image_thumbnail":"https://t/2"},
        {"id":"3","titles":[],"public_domain":true,"image_iiif_id":"no url","image_thumbnail":"https://t/3"},
        {"id":"4","public_domain":false,"image_thumbnail":"https://t/4"},{"id":"5","image_thumbnail":"https://t/5"},
        {"id":"6","public_domain":true}]})")),
                ElementsAre("smk:1 A https://i/1/full/2000,/0/default.jpg", "smk:2 KMS2 https://t/2",
                            "smk:3 Untitled https://t/3"));

    EXPECT_THAT(told(parseSmithsonian(R"({"response":{"rows":[
        {"id":"1","title":"A","content":{"descriptiveNonRepeating":{"online_media":{"media":[
            {"content":"https://i/sound","type":"Sound","usage":{"access":"CC0"}},
            {"content":"https://i/closed","type":"Images","usage":{"access":"Usage conditions apply"}},
            {"content":"https://i/1","type":"High-res IMAGE","usage":{"access":"cc0"}}]}}}},
        {"id":"2","title":"B","content":{}},
        {"id":"3","title":"C","content":{"descriptiveNonRepeating":{"online_media":{"media":[{"content":"https://i/3"}]}}}}]}})")),
                ElementsAre("smithsonian:1 A https://i/1"));
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
    static MuseumsSettings of(std::set<MuseumsSource> sources) { return {.sources = std::move(sources)}; }
    Outcome on(const std::string& display, MuseumsSettings settings = of({clevelandMuseum})) {
        return resolved(museums.resolve(std::move(settings), {RemoteImagePresentation::wallpaper, display}));
    }
};

TEST_F(MuseumsServiceTest, aWorkIsCreditedAndItsListServesADay) {
    web.answers("/api/artworks/", {works({1, 2})});
    const Outcome outcome = on("A");
    EXPECT_EQ(outcome.picture.sourceDescription, "W1 — Cleveland Museum of Art");
    EXPECT_EQ(outcome.picture.overlayCaption, std::nullopt);
    EXPECT_THAT(web.limits, ElementsAre(20971520));
    loop.advance(std::chrono::seconds(86399));
    on("A");
    EXPECT_THAT(asked(), SizeIs(1));
    loop.advance(std::chrono::seconds(1));
    on("A");
    EXPECT_THAT(asked(), SizeIs(1));
    EXPECT_THAT(downloaded(), ElementsAre("https://i/1", "https://i/2", "https://i/1"));
}

TEST_F(MuseumsServiceTest, noWorkIsOnTwoDisplaysAndNoneComesBackSoonerThanItMust) {
    web.answers("/api/artworks/", {works({1, 2, 3})});
    for (const char* display : {"A", "B", "A", "A", "B", "A"}) on(display);
    EXPECT_THAT(downloaded(), ElementsAre("https://i/1", "https://i/2", "https://i/3", "https://i/1",
                                          "https://i/3", "https://i/2"))
        << "the fourth repeats since the second display has the only other one";
    web.answers("/openaccess/", {R"({"response":{"rows":[]}})"});
    clock.set(clock.now() + std::chrono::days(2));
    web.answers("/api/artworks/", {works({2})});
    EXPECT_EQ(on("B").failure,
              "Cleveland Museum of Art did not return an image matching the selected options.");
    EXPECT_THAT(asked(), SizeIs(2));
}

TEST_F(MuseumsServiceTest, theSixtyFifthWorkForgetsTheFirst) {
    std::vector<int> numbers(66);
    for (int i = 0; i < 66; ++i) numbers[static_cast<std::size_t>(i)] = i;
    web.answers("/api/artworks/", {works(numbers)});
    for (int i = 0; i < 65; ++i) on("A");
    EXPECT_EQ(on("A").picture.sourceDescription, "W0 — Cleveland Museum of Art")
        << "the first is as good as new, before the one that was never shown";
}

TEST_F(MuseumsServiceTest, aListIsCutAtItsBoundAndAnEmptyOneIsNotKept) {
    std::vector<int> numbers(129);
    for (int i = 0; i < 129; ++i) numbers[static_cast<std::size_t>(i)] = i;
    web.answers("/api/artworks/", {works({}), works(numbers)});
    EXPECT_THAT(on("A").failure, HasSubstr("did not return an image"));
    std::vector<std::size_t> asked;
    chance = [&](std::size_t bound) {
        asked.push_back(bound);
        return bound - 1;
    };
    EXPECT_EQ(on("A").picture.sourceDescription, "W127 — Cleveland Museum of Art");
    EXPECT_EQ(asked.back(), 128u);
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
    web.downloadFails("https://i/1");
    asked();
    EXPECT_EQ(on("B", of({clevelandMuseum})).failure,
              "Cleveland Museum of Art did not return an image matching the selected options.");
    EXPECT_EQ(on("A", of({clevelandMuseum})).failure,
              "Quillmar could not download the image from Cleveland Museum of Art.");
    EXPECT_EQ(on("A", of({smkDenmark})).failure, "SMK Denmark returned HTTP 503.");
    EXPECT_EQ(on("A", of({})).failure,
              "the enabled museums did not return an image matching the selected options.");
    MuseumsSettings noCategory = of({clevelandMuseum});
    noCategory.useAllCategories = false;
    noCategory.categories.clear();
    clock.set(clock.now() + std::chrono::days(2));
    asked();
    on("A", noCategory);
    EXPECT_THAT(asked(), ElementsAre("/api/artworks/?has_image=1&limit=100&skip=0"));
}

TEST_F(MuseumsServiceTest, theMetropolitanIsAskedForTwelveObjectsAtMost) {
    web.answers("/v1/search", {R"({"objectIDs":[1,2,3,4,5,6,7,8,9,10,11,12,13,14]})"});
    web.answers("/v1/objects/",
                {R"({"objectID":5,"isPublicDomain":false,"primaryImageLarge":"","title":"A"})",
                 R"({"objectID":6,"isPublicDomain":true,"primaryImageLarge":"https://i/6","title":"B"})"});
    EXPECT_EQ(on("A", of({metropolitanMuseum})).picture.sourceDescription,
              "B — The Metropolitan Museum of Art");
    EXPECT_THAT(asked(), SizeIs(13));
    clock.set(clock.now() + std::chrono::days(2));
    web.answers("/v1/objects/", {R"({"message":"not a valid object"})"});
    EXPECT_THAT(on("A", of({metropolitanMuseum})).failure, HasSubstr("objectID: missing key"));
    EXPECT_THAT(asked(), SizeIs(2)) << "the first that fails ends the search";
}

TEST_F(MuseumsServiceTest, theRijksmuseumLeadsOverThreeRecordsOfItsOwnHostToAPicture) {
    std::string items;
    for (int i = 0; i < 10; ++i)
        items += fmt::format(R"({}{{"id":"https://id.elsewhere/w{}"}})", i ? "," : "", i);
    web.answers("/search/collection", {R"({"orderedItems":[{"id":"no url"},)" + items + "]}"});
    web.answers(
        "example/w",
        {R"({"id":"https://id.elsewhere/w","identified_by":[{},{"content":"Milk"}],"shows":[{"id":"https://id.elsewhere/v"}]})"});
    web.answers("example/v", {R"({"id":"v","digitally_shown_by":[{"id":"https://id.elsewhere/d?x=1"}]})",
                              R"({"id":"v"})"});
    web.answers(
        "example/d",
        {R"({"id":"d","access_point":[{"id":"no url"},{"id":"https://i/abc/full/max/0/default.jpg"}]})"});
    EXPECT_EQ(on("A", of({rijksmuseum})).picture.sourceDescription, "Milk — Rijksmuseum");
    EXPECT_THAT(downloaded(), ElementsAre("https://i/abc/full/2000,/0/default.jpg"));
    const auto requests = asked();
    ASSERT_THAT(requests, SizeIs(1 + 3 + 7 * 2)) << "the other seven end without a picture";
    EXPECT_THAT(requests[1], HasSubstr("?_profile=la-framed"));
    EXPECT_EQ(requests[3], "/d?x=1&_profile=la-framed");
    EXPECT_EQ(rijksmuseumArtwork({.id = "1"}, *Url::parse("https://i/x.jpg")).imageURL.string(),
              "https://i/x.jpg");
}

TEST_F(MuseumsServiceTest, cancelledInAnyLoopNobodyElseIsAsked) {
    chance = [](std::size_t bound) { return bound - 1; };  // the order stays
    web.answers("/search/collection", {R"({"orderedItems":[{"id":"https://x/w1"},{"id":"https://x/w2"}]})"});
    web.answers("/v1/search", {R"({"objectIDs":[1,2,3]})"});
    web.answers("/v1/objects/",
                {R"({"objectID":1,"isPublicDomain":false,"primaryImageLarge":"","title":""})"});
    web.answers("example/w", {R"({"id":"w"})"});
    for (const bool isAnswered : {false, true}) {
        for (const auto& [source, part] :
             std::vector<std::pair<MuseumsSource, std::string>>{{metropolitanMuseum, "/v1/objects/"},
                                                                {rijksmuseum, "example/w"},
                                                                {smkDenmark, "/art/search/"}}) {
            clock.set(clock.now() + std::chrono::days(2));
            EXPECT_EQ(cancelledAt(part, isAnswered,
                                  museums.resolve(of({source, smithsonian}),
                                                  {RemoteImagePresentation::wallpaper, "A"})),
                      "cancelled")
                << part;
            for (const std::string& request : asked())
                EXPECT_THAT(request, ::testing::Not(HasSubstr("/openaccess/")));
        }
    }
}

}  // namespace
}  // namespace quillmar

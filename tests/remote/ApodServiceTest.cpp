#include "remote/services/ApodService.h"

#include <fmt/format.h>

#include "RemoteServiceFixture.h"

namespace quillmar {
namespace {

using namespace ::testing;

const std::string unusable = "NASA APOD did not return an image matching the selected options.";

std::string item(std::string_view date, std::string_view mediaType = "image", std::string_view name = "of") {
    return fmt::format(
        R"({{"date": "{}", "title": "{} {}", "url": "http://page/", "hdurl": "http://i/p.jpg", "media_type": "{}"}})",
        date, name, date, mediaType);
}
std::string list(const std::string& items) { return "[" + items + "]"; }

struct ApodServiceTest : RemoteServiceFixture {
    ApodService service{web, services, clock, random};

    Task<RemotePicture> latest() { return service.resolve({}, 1920); }
    Task<RemotePicture> anyDay() { return service.resolve({.switchPeriodically = true}, 1920); }
    /// Starts and ends of the windows that were asked for.
    std::string windows() {
        std::string ranges;
        for (const std::string& text : asked()) {
            if (text != "/wp-json/wp/v2/apod-basic?per_page=1") ranges += text.substr(25) + ";";
        }
        return ranges;
    }
    static std::string window(const std::string& start, const std::string& end) {
        return "?date_from=" + start + "&date_to=" + end + "&per_page=25;";
    }
};

TEST_F(ApodServiceTest, thePictureIsTheFullOneOrOfTheDisplaysWidthAndNeverThePageOrALogo) {
    using enum ApodInterface::Kind;
    // Address, large address; what is taken of them now without and with HD, and what was before.
    const std::vector<std::array<std::string, 6>> rows = {
        {"http://h/u", "HTTPS://h/hd?a=b", "HTTPS://h/hd?a=b&w=1920", "HTTPS://h/hd?a=b", "http://h/u",
         "HTTPS://h/hd?a=b"},
        {"", "https://h/catalogo.jpg", "https://h/catalogo.jpg?w=1920", "https://h/catalogo.jpg",
         "https://h/catalogo.jpg", "https://h/catalogo.jpg"},
        {"https://h/u", "ftp://h/hd", "none", "none", "https://h/u", "https://h/u"},
        {"//h/u", "https:///hd", "none", "none", "none", "none"},
        {"https://h/u", "https://h/NASA_Logo-web.png", "none", "none", "https://h/u", "https://h/u"},
    };
    for (const auto& row : rows) {
        const APODItem day{.date = "", .url = row[0], .hdurl = row[1], .mediaType = "image"};
        for (std::size_t i = 0; i < 4; ++i) {
            const auto picture =
                ApodInterface(i < 2 ? current : former, services.apod).image(day, i % 2 == 1, 1919.6);
            EXPECT_EQ(picture ? picture->string() : "none", row[i + 2]);
        }
    }
}

TEST_F(ApodServiceTest, aDayWithoutAPictureLeadsToTheNewestOneOfTheDaysBeforeIt) {
    const Table rows = {
        {list(item("2020-03-03", "image", "first") + "," + item("2020-03-02")), ""},
        {list(item("2026-05-02", "video")), window("260407", "260501")},
        {list(item("2026-05-02", "Image")), window("260407", "260501")},
        {R"([{"date": "2024-03-01", "hdurl": null, "media_type": "image"}])", window("240205", "240229")},
        {list(item("yesterday", "video")), window("260409", "260503")},
        {R"([{"media_type": "image"}])", window("260409", "260503")},
        {"[]", window("260409", "260503")},
        {"<html>", window("260409", "260503")},
        {list(item("2010-01-10", "video")), window("100101", "100109")},
        {list(item("9999-01-10", "video")), window("260410", "260504")},
    };
    web.answers("apod-basic?date_from",
                {list(item("2020-03-01") + "," + item("2020-03-03", "image", "first") + "," +
                      item("2020-03-03") + "," + item("2020-03-04", "video") +
                      R"(, {"date": "2020-03-06", "hdurl": "https:///", "media_type": "image"})")});
    for (const auto& [today, range] : rows) {
        web.answers("/apod-basic", {today});
        const Outcome outcome = resolved(latest());
        EXPECT_EQ(outcome.picture.sourceDescription, "first 2020-03-03") << outcome.failure << today;
        EXPECT_EQ(windows(), range) << today;
    }
}

TEST_F(ApodServiceTest, theWindowsGoBackOverDaysThatAreNotThereToTheFirstDay) {
    web.answers("date_to=260408", {list(item("2010-01-01"))});
    EXPECT_EQ(resolved(latest()).picture.sourceDescription, "of 2010-01-01");
    EXPECT_EQ(windows(), window("260409", "260503") + window("260315", "260408"));
    web.answers("/apod-basic", {list(item("2010-02-15", "video"))});
    web.answers("apod-basic?date_from", {list(item("2009-12-31"))});
    EXPECT_EQ(failure(latest()), unusable);
    EXPECT_EQ(windows(), window("100121", "100214") + window("100101", "100120"));
}

TEST_F(ApodServiceTest, anyOtherAnswerEndsTheWalk) {
    web.answers("/apod-basic", {list(item("2026-05-04", "video"))});
    web.answers("apod-basic?date_from", {"{}"});
    EXPECT_EQ(failure(latest()),
              "NASA APOD returned an unexpected response (expected an array, found an object).");
    web.answers("/100101", {"null"});
    draws = {0, 0, 0, 0};
    EXPECT_THAT(failure(anyDay()), HasSubstr("NASA APOD returned an unexpected response"));
    asked();
    for (const int status : {503, 403, 410}) {
        const std::string refusal = fmt::format("NASA APOD returned HTTP {}.", status);
        for (const char* part : {"/apod-basic", "/100101"}) web.answersStatus(part, status);
        EXPECT_EQ(failure(latest()), refusal);
        EXPECT_EQ(failure(anyDay()), refusal);
        EXPECT_THAT(asked(), SizeIs(2));
    }
}

TEST_F(ApodServiceTest, aRandomDayLiesBetweenTheFirstOneAndYesterday) {
    web.answers("/100101", {item("2010-01-01", "IMAGE"), item("2010-01-01", "video")});
    web.answers("/260503", {item("2026-05-03", "video"), item("2026-05-03")});
    draws = {5966, 5966, 0, 0, 1, 0, 2, 0, 3, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(resolved(anyDay()).picture.sourceDescription, "of 2026-05-03");
    EXPECT_EQ(resolved(anyDay()).picture.sourceDescription, "of 2010-01-01");
    EXPECT_THAT(bounds, Each(5967));
    EXPECT_THAT(asked(), ElementsAre("/wp-json/wp/v2/apod-basic/260503", "/wp-json/wp/v2/apod-basic/260503",
                                     "/wp-json/wp/v2/apod-basic/100101"));
    EXPECT_EQ(failure(anyDay()), unusable);  // films, and days that are not there
    EXPECT_THAT(asked(), SizeIs(6));
    clock.set(std::chrono::sys_days(std::chrono::year(2009) / 6 / 1));
    EXPECT_EQ(failure(anyDay()), unusable);
    EXPECT_THAT(asked(), Each(EndsWith("/100101")));
}

TEST_F(ApodServiceTest, whereItIsNamedTheFormerHostIsAskedAfterAFailureAndItAloneGetsTheKey) {
    services.apodArchive = Url::parse("https://apodarchive.example");
    ApodService both(web, services, clock, random);
    web.answers("/planetary/apod?api_key=KEY", {item("2026-05-04", "video")});
    web.answers("/planetary/apod?api_key=KEY&start_date", {list(item("2026-04-04"))});
    EXPECT_EQ(resolved(both.resolve({.apiKey = " KEY\n"}, 1)).picture.sourceDescription, "of 2026-04-04");
    const auto requests = asked();
    EXPECT_EQ(requests.back(), "/planetary/apod?api_key=KEY&start_date=2026-04-04&end_date=2026-05-03");
    EXPECT_EQ(requests[requests.size() - 2], "/planetary/apod?api_key=KEY");
    EXPECT_EQ(std::ranges::count_if(requests, [](const auto& text) { return text.contains("KEY"); }), 2);
}

}  // namespace
}  // namespace quillmar

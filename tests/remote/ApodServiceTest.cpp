#include "remote/services/ApodService.h"

#include <fmt/format.h>

#include "RemoteServiceFixture.h"

namespace quillmar {
namespace {

using namespace ::testing;

const std::string unusable = "NASA APOD did not return an image matching the selected options.";

std::string item(std::string_view date, std::string_view mediaType = "image", std::string_view name = "of") {
    return fmt::format(R"({{"date": "{}", "title": "{} {}", "url": "http://i/p.jpg", "media_type": "{}"}})",
                       date, name, date, mediaType);
}

struct ApodServiceTest : RemoteServiceFixture {
    ApodService service{web, services.apod, clock, random};

    Task<RemotePicture> latest() { return service.resolve({.apiKey = " KEY\n"}); }
    Task<RemotePicture> anyDay() { return service.resolve({.apiKey = "KEY", .switchPeriodically = true}); }
    /// Starts and ends of the windows that were asked for.
    std::string windows() {
        std::string ranges;
        for (const std::string& text : asked()) {
            if (text != "/planetary/apod?api_key=KEY") ranges += text.substr(27) + ";";
        }
        return ranges;
    }
    static std::string window(const std::string& start, const std::string& end) {
        return "&start_date=" + start + "&end_date=" + end + ";";
    }
};

TEST_F(ApodServiceTest, theFirstAddressThatTheWebKnowsIsTaken) {
    const std::vector<std::array<std::string, 4>> rows = {
        {"http://h/u", "HTTPS://h/hd", "http://h/u", "HTTPS://h/hd"},
        {"", "https://h/hd", "https://h/hd", "https://h/hd"},
        {"https://h/u", "ftp://h/hd", "https://h/u", "https://h/u"},
        {"//h/u", "https:///hd", "none", "none"},
    };
    for (const auto& [url, hdurl, plain, hd] : rows) {
        const APODItem day{.date = "", .url = url, .hdurl = hdurl, .mediaType = "image"};
        const auto taken = [&](bool useHDImage) {
            const auto candidate = candidateImageURL(day, useHDImage);
            return candidate ? candidate->string() : "none";
        };
        EXPECT_EQ(taken(false), plain);
        EXPECT_EQ(taken(true), hd);
    }
}

TEST_F(ApodServiceTest, aDayWithoutAPictureLeadsToTheNewestOneOfTheThirtyDaysBeforeIt) {
    const Table rows = {
        {item("2020-03-03", "image", "first"), ""},
        {item("2026-05-02", "video"), window("2026-04-02", "2026-05-01")},
        {item("2026-05-02", "Image"), window("2026-04-02", "2026-05-01")},
        {R"({"date": "2024-03-01", "hdurl": null, "media_type": "image"})",
         window("2024-01-31", "2024-02-29")},
        {item("yesterday", "video"), window("2026-04-04", "2026-05-03")},
        {R"({"media_type": "image"})", window("2026-04-04", "2026-05-03")},
        {"<html>", window("2026-04-04", "2026-05-03")},
        {item("2010-01-10", "video"), window("2010-01-01", "2010-01-09")},
        {item("9999-01-10", "video"), window("2026-04-05", "2026-05-04")},
    };
    web.answers("&start_date",
                {"[" + item("2020-03-01") + "," + item("2020-03-03", "image", "first") + "," +
                 item("2020-03-03") + "," + item("2020-03-04", "video") + "," + item("2020-03-05", "IMAGE") +
                 R"(, {"date": "2020-03-06", "url": "https:///", "media_type": "image"}])"});
    for (const auto& [today, range] : rows) {
        web.answers("/apod", {today});
        const Outcome outcome = resolved(latest());
        EXPECT_EQ(outcome.picture.sourceDescription, "first 2020-03-03") << outcome.failure << today;
        EXPECT_EQ(windows(), range) << today;
    }
}

TEST_F(ApodServiceTest, theWindowsGoBackOverDaysThatAreNotThereToTheFirstDay) {
    web.answers("end_date=2026-04-03", {"[" + item("2010-01-01") + "]"});
    EXPECT_EQ(resolved(latest()).picture.sourceDescription, "of 2010-01-01");
    EXPECT_EQ(windows(), window("2026-04-04", "2026-05-03") + window("2026-03-05", "2026-04-03"));
    web.answers("/apod", {item("2010-02-15", "video")});
    web.answers("start_date", {"[" + item("2009-12-31") + "]"});
    EXPECT_EQ(failure(latest()), unusable);
    EXPECT_EQ(windows(), window("2010-01-16", "2010-02-14") + window("2010-01-01", "2010-01-15"));
}

TEST_F(ApodServiceTest, anyOtherAnswerEndsTheWalk) {
    web.answers("/apod", {item("2026-05-04", "video")});
    web.answers("start_date", {"{}"});
    EXPECT_EQ(failure(latest()), "expected an array, found an object");
    web.answers("&date=", {"null"});
    draws = {0, 0};
    EXPECT_EQ(failure(anyDay()), "expected an object, found null");
    web.answersStatus("/apod", 503);
    EXPECT_EQ(failure(latest()), "NASA APOD returned HTTP 503.");
    EXPECT_EQ(failure(anyDay()), "NASA APOD returned HTTP 503.");
    EXPECT_THAT(asked(), SizeIs(5));
}

TEST_F(ApodServiceTest, aRandomDayLiesBetweenTheFirstOneAndYesterday) {
    web.answers("&date=2010-01-01", {item("2010-01-01", "IMAGE"), item("2010-01-01", "video")});
    web.answers("&date=2026-05-03", {item("2026-05-03", "video"), item("2026-05-03")});
    draws = {5966, 5966, 0, 0, 1, 0, 2, 0, 3, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(resolved(anyDay()).picture.sourceDescription, "of 2026-05-03");
    EXPECT_EQ(resolved(anyDay()).picture.sourceDescription, "of 2010-01-01");
    EXPECT_THAT(bounds, Each(5967));
    EXPECT_THAT(asked(), ElementsAre("/planetary/apod?api_key=KEY&date=2026-05-03",
                                     "/planetary/apod?api_key=KEY&date=2026-05-03",
                                     "/planetary/apod?api_key=KEY&date=2010-01-01"));
    EXPECT_EQ(failure(anyDay()), unusable);  // films, and days that are not there
    EXPECT_THAT(asked(), SizeIs(6));
    clock.set(std::chrono::sys_days(std::chrono::year(2009) / 6 / 1));
    EXPECT_EQ(failure(anyDay()), unusable);
    EXPECT_THAT(asked(), Each(EndsWith("&date=2010-01-01")));
}

TEST_F(ApodServiceTest, cancelledTheWalksAskForNothingMore) {
    draws = {5, 5};
    for (const bool isAnswered : {false, true}) {
        EXPECT_EQ(cancelledAt("&date=", isAnswered, anyDay()), "cancelled");
        EXPECT_THAT(asked(), SizeIs(1));
        EXPECT_EQ(cancelledAt("end_date=2026-04-03", isAnswered, latest()), "cancelled");
        EXPECT_THAT(asked(), SizeIs(3));
    }
}

}  // namespace
}  // namespace quillmar

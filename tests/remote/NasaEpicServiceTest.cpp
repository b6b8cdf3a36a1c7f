#include "remote/services/NasaEpicService.h"

#include <fmt/format.h>

#include "RemoteServiceFixture.h"

namespace quillmar {
namespace {

using namespace ::testing;
using namespace std::chrono_literals;

const std::string unusable = "NASA EPIC did not return an image matching the selected options.";

/// A day's list of observations, "e0507" for the fifth of June at seven.
std::string day(const std::vector<std::string>& names) {
    std::string list;
    for (const std::string& name : names) {
        list += fmt::format(R"({}{{"image": "{}", "date": "2024-06-{} {}:00:00"}})", list.empty() ? "" : ",",
                            name, name.substr(1, 2), name.substr(3));
    }
    return "[" + list + "]";
}

struct NasaEpicServiceTest : RemoteServiceFixture {
    NasaEpicService service{web, services.epic, services.epicArchive, clock};
    NasaEpicSettings film{.presentation = NasaEpicPresentation::rotateThroughDays};
    RemoteImageSelectionContext here{RemoteImagePresentation::wallpaper, "display:a"};

    /// The observation that comes next, or the same again without `advances`.
    std::string shown(bool advances = true) {
        const Outcome outcome = resolved(service.resolve(film, here, advances));
        return outcome.failure.empty() ? outcome.picture.image.stem().string() : outcome.failure;
    }
};

TEST_F(NasaEpicServiceTest, whatHasNoNameOrNoMomentIsLeftOut) {
    const auto observations = NasaEpicAPI::parseDay(R"([
        {"image": "late", "date": "2024-06-05 23:59:59"}, {"image": " ", "date": "2024-06-05 01:00:00"},
        {"image": "t", "date": "2024-06-05T01:00:00"},    {"image": "t", "date": "2024-06-05 1:00:00"},
        {"image": "t", "date": "2024-06-05 01:00:00 "},   {"image": "t", "date": "2024-06-31 01:00:00"},
        {"image": "t", "date": "2024-06-05 24:00:00"},    {"image": " early\n", "date": "2024-06-05 00:00:00"}])");
    ASSERT_THAT(observations, SizeIs(2));
    EXPECT_EQ(observations[0].identifier, " early\n");
    EXPECT_EQ(observations[1].capturedAt - observations[0].capturedAt, 24h - 1s);
    EXPECT_THAT(NasaEpicAPI::parseAvailableDays(
                    R"(["2023-12-31", "2024-02-30", "2024-1-5", "2024-02-29", "", "2024-02-29 "])"),
                ElementsAre("2024-02-29", "2023-12-31"));
}

TEST_F(NasaEpicServiceTest, theLatestObservationHasItsArchiveAddressAndCaption) {
    NasaEpicSettings settings;
    web.answers("/api/", {R"([{"image": "epic 2", "date": "2024-06-05 07:08:59"}, )"
                          R"({"image": "epic 1", "date": "2024-06-04 23:00:00"}])"});
    RemotePicture picture = resolved(service.resolve(settings, here, true)).picture;
    EXPECT_EQ(picture.overlayCaption, "NASA EPIC  •  2024-06-05 07:08 UTC  •  Imagery: NASA EPIC Team");
    settings.imageProduct = NasaEpicImageProduct::enhanced;
    settings.usesFullResolutionPNG = true;
    settings.showsCreditAndObservationTime = false;
    picture = resolved(service.resolve(settings, here, true)).picture;
    EXPECT_EQ(picture.overlayCaption, std::nullopt);
    EXPECT_EQ(picture.sourceDescription, "NASA EPIC");
    EXPECT_EQ(picture.credit.title, "NASA EPIC 2024-06-05 07:08 UTC");
    EXPECT_THAT(asked(), ElementsAre("/api/natural", "/api/enhanced"));
    EXPECT_THAT(downloaded(),
                ElementsAre("https://epicarchive.example/archive/natural/2024/06/05/jpg/epic%202.jpg",
                            "https://epicarchive.example/archive/enhanced/2024/06/05/png/epic%202.png"));
}

TEST_F(NasaEpicServiceTest, theFilmOfTheNewestDayRunsRoundFromItsOldestObservation) {
    web.answers("/api/natural", {day({"e0509", "e0507", "e0508"})});
    web.downloadFails("e0508");
    const std::string broken = "Quillmar could not download the image from NASA EPIC.";
    const std::vector<std::pair<bool, std::string>> rows = {
        {true, "e0507"}, {false, "e0507"}, {true, broken}, {false, broken}, {true, "e0509"}, {true, "e0507"},
    };
    for (const auto& [advances, name] : rows) EXPECT_EQ(shown(advances), name);
    EXPECT_THAT(asked(), ElementsAre("/api/natural"));
}

TEST_F(NasaEpicServiceTest, theFilmOfSeveralDaysIsMadeOfThoseThatAnswer) {
    film.recentDays = 3;
    web.answers("/available", {R"(["2024-06-01", "2024-06-04", "2024-06-03", "2024-06-05"])"});
    web.answers("/date/2024-06-05", {day({"e0507", "e0506"})});
    web.answers("/date/2024-06-04", {"<html>"});
    web.answers("/date/2024-06-03", {day({"e0307"})});
    for (const std::string name : {"e0307", "e0506", "e0507", "e0307"}) EXPECT_EQ(shown(), name);
    EXPECT_THAT(asked(), ElementsAre("/api/natural/available", "/api/natural/date/2024-06-05",
                                     "/api/natural/date/2024-06-04", "/api/natural/date/2024-06-03"));
    film.recentDays = 9;
    EXPECT_EQ(shown(), "e0307");
    EXPECT_THAT(asked(), SizeIs(5));
    web.answersStatus("/date/2024-06-05", 500);
    film.recentDays = 2;
    EXPECT_EQ(shown(), unusable);
    web.answersStatus("/available", 404);
    EXPECT_EQ(shown(), "NASA EPIC returned HTTP 404.");
}

TEST_F(NasaEpicServiceTest, aSequenceServesItsContextAndSettingsForTwoHours) {
    web.answers("/api/", {day({"e0507", "e0508"})});
    const std::vector<std::pair<std::function<void()>, std::string>> rows = {
        {[] {}, "e0507"},
        {[this] { film.showsCreditAndObservationTime = false; }, "e0508"},
        {[this] { resolved(service.resolve({}, here, true)); }, "e0507"},
        {[this] { here.displayID = "display:b"; }, "e0507"},
        {[this] { here = {RemoteImagePresentation::screensaver, "display:a"}; }, "e0507"},
        {[this] { here.presentation = RemoteImagePresentation::wallpaper; }, "e0508"},
        {[this] { loop.advance(7199s); }, "e0507"},
        {[this] { loop.advance(1s); }, "e0507"},
        {[this] { film.imageProduct = NasaEpicImageProduct::enhanced; }, "e0507"},
        {[this] { film.usesFullResolutionPNG = true; }, "e0507"},
        {[] {}, "e0508"},
    };
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i].first();
        EXPECT_EQ(shown(), rows[i].second) << "row " << i;
    }
    EXPECT_THAT(asked(), SizeIs(7));
}

}  // namespace
}  // namespace quillmar

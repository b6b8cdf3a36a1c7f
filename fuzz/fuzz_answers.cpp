// Whatever a picture service answers is a value within its bounds, or a `JsonRecordError`. Built once for
// each parser: the macro PARSER names it.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "base/JsonError.h"
#include "remote/fetching/ServiceText.h"
#include "remote/services/ApodInterface.h"
#include "remote/services/BingService.h"
#include "remote/services/MuseumAnswers.h"
#include "remote/services/NasaEpicService.h"
#include "remote/services/UnsplashService.h"
#include "remote/services/WallhavenService.h"
#include "remote/services/WindowsSpotlightService.h"

namespace quillmar {
namespace {

void require(bool condition) {
    if (!condition) std::abort();
}

const Url host = *Url::parse("https://service.example");
const ApodInterface apodNow(ApodInterface::Kind::current, {"NASA APOD", host});
const ApodInterface apodBefore(ApodInterface::Kind::former, {"NASA APOD", host});

void checkItem(const APODItem& item) {
    for (const auto* from : {&apodNow, &apodBefore}) {
        for (const bool usesHD : {false, true}) {
            const auto url = from->image(item, usesHD, 1920);
            require(!url || (url->scheme().starts_with("http") && !url->host().empty()));
        }
    }
    for (const auto& text : {item.title, item.credit, item.copyright}) {
        require(boundedText(textOfHTML(text.value_or(""))).size() <= 1024);
    }
}
void checkArtworks(const std::vector<MuseumArtwork>& artworks) {
    for (const MuseumArtwork& artwork : artworks) {
        require(artwork.identity.starts_with(identityPrefix(artwork.source)) && !artwork.title.empty());
        require(Url::parse(artwork.imageURL.string()).has_value());
    }
}

[[maybe_unused]] void apod(std::string_view json) { checkItem(parseAPODItem(json)); }
[[maybe_unused]] void apodWindow(std::string_view json) {
    const auto items = parseAPODItems(json);
    std::ranges::for_each(items, checkItem);
    const auto newest = apodNow.newestPicture(items);
    require(!newest || (newest->mediaType == "image" && newest->date >= "2010-01-01"));
}
[[maybe_unused]] void wallhaven(std::string_view json) { parseWallhaven(json); }
[[maybe_unused]] void unsplash(std::string_view json) { require(!parseUnsplash(json).credit.empty()); }
[[maybe_unused]] void bing(std::string_view json) { parseBing(json); }
[[maybe_unused]] void spotlight(std::string_view json) { parseSpotlight(json); }
[[maybe_unused]] void epicDay(std::string_view json) {
    const auto observations = NasaEpicAPI::parseDay(json);
    require(std::ranges::is_sorted(observations, {}, &NasaEpicObservation::capturedAt));
    for (const auto& observation : observations) {
        require(NasaEpicAPI::imageURL(host, observation, {}).path().starts_with("/archive/natural/"));
        NasaEpicAPI::caption(observation);
    }
}
[[maybe_unused]] void epicDays(std::string_view json) {
    const auto days = NasaEpicAPI::parseAvailableDays(json);
    require(std::ranges::is_sorted(days, std::ranges::greater()));
    for (const std::string& day : days) require(day.size() == 10);
}
[[maybe_unused]] void artInstitute(std::string_view json) { checkArtworks(parseArtInstitute(json)); }
[[maybe_unused]] void metropolitanSearch(std::string_view json) { parseMetropolitanSearch(json); }
[[maybe_unused]] void metropolitanObject(std::string_view json) {
    if (const auto artwork = parseMetropolitanObject(json)) checkArtworks({*artwork});
}
[[maybe_unused]] void rijksmuseumSearch(std::string_view json) { parseRijksmuseumSearch(json); }
[[maybe_unused]] void rijksmuseumRecord(std::string_view json) {
    const RijksmuseumRecord record = parseRijksmuseumRecord(json);
    if (record.imageURL) checkArtworks({rijksmuseumArtwork(record, *record.imageURL)});
}
[[maybe_unused]] void cleveland(std::string_view json) { checkArtworks(parseCleveland(json)); }
[[maybe_unused]] void smk(std::string_view json) { checkArtworks(parseSMK(json)); }
[[maybe_unused]] void smithsonian(std::string_view json) { checkArtworks(parseSmithsonian(json)); }

}  // namespace
}  // namespace quillmar

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        quillmar::PARSER({reinterpret_cast<const char*>(data), size});
    } catch (const quillmar::JsonRecordError&) {
    }
    return 0;
}

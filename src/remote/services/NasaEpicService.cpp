#include "remote/services/NasaEpicService.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <tuple>

#include "base/CalendarDay.h"
#include "base/JsonRecord.h"
#include "base/Text.h"
#include "base/UrlEditing.h"
#include "remote/fetching/ServiceText.h"
#include "remote/services/ServiceAnswer.h"

namespace quillmar {
namespace {

using Error = RemoteImageProviderError;

constexpr std::chrono::seconds sequenceLife{7200};

struct Response {
    std::string image;
    std::string date;
    static void describe(auto& self, auto& io) {
        io.required("image", self.image).required("date", self.date);
    }
};

/// Reads "2026-05-04 09:30:00" in UTC and nothing else.
std::optional<WallTime> parseMoment(std::string_view text) {
    constexpr std::string_view form = "dddd-dd-dd dd:dd:dd";
    if (text.size() != form.size()) return std::nullopt;
    for (std::size_t i = 0; i < form.size(); ++i) {
        const bool isDigit = text[i] >= '0' && text[i] <= '9';
        if (form[i] == 'd' ? !isDigit : text[i] != form[i]) return std::nullopt;
    }
    const auto number = [&](std::size_t at) { return (text[at] - '0') * 10 + (text[at + 1] - '0'); };
    const auto day = parseCalendarDay(text.substr(0, 10));
    if (!day || number(11) > 23 || number(14) > 59 || number(17) > 59) return std::nullopt;
    return WallTime(std::chrono::sys_days(*day)) + std::chrono::hours(number(11)) +
           std::chrono::minutes(number(14)) + std::chrono::seconds(number(17));
}

void sortByTime(std::vector<NasaEpicObservation>& observations) {
    std::ranges::sort(observations, {}, [](const NasaEpicObservation& observation) {
        return std::tie(observation.capturedAt, observation.identifier);
    });
}

}  // namespace

std::vector<NasaEpicObservation> NasaEpicAPI::parseDay(std::string_view json) {
    std::vector<NasaEpicObservation> observations;
    for (Response& response : json::decode<std::vector<Response>>(json)) {
        const auto moment = parseMoment(response.date);
        if (!moment || trimmed(response.image).empty()) continue;
        observations.push_back({std::move(response.image), *moment});
    }
    sortByTime(observations);
    return observations;
}

std::vector<std::string> NasaEpicAPI::parseAvailableDays(std::string_view json) {
    auto days = json::decode<std::vector<std::string>>(json);
    std::erase_if(days, [](const std::string& day) { return !parseMoment(day + " 00:00:00"); });
    std::ranges::sort(days, std::ranges::greater());
    return days;
}

Url NasaEpicAPI::imageURL(const Url& archiveHost, const NasaEpicObservation& observation,
                          const NasaEpicSettings& settings) {
    const std::chrono::year_month_day day(std::chrono::floor<std::chrono::days>(observation.capturedAt));
    const char* const format = settings.usesFullResolutionPNG ? "png" : "jpg";
    return appendingPath(
        archiveHost, fmt::format("/archive/{}/{:04d}/{:02d}/{:02d}/{}/{}.{}", enumName(settings.imageProduct),
                                 static_cast<int>(day.year()), static_cast<unsigned>(day.month()),
                                 static_cast<unsigned>(day.day()), format,
                                 escapedPathComponent(observation.identifier), format));
}

std::string NasaEpicAPI::momentText(const NasaEpicObservation& observation) {
    const auto minute = std::chrono::floor<std::chrono::minutes>(observation.capturedAt);
    const auto day = std::chrono::floor<std::chrono::days>(minute);
    const std::chrono::hh_mm_ss clock(minute - day);
    return fmt::format("{} {:02d}:{:02d} UTC", calendarDayText(day), clock.hours().count(),
                       clock.minutes().count());
}

std::string NasaEpicAPI::caption(const NasaEpicObservation& observation) {
    return captionOf({"NASA EPIC", momentText(observation), "Imagery: NASA EPIC Team"});
}

Task<RemotePicture> NasaEpicService::resolve(NasaEpicSettings settings, RemoteImageSelectionContext context,
                                             bool advancesSelection) {
    std::optional<NasaEpicObservation> observation;
    if (settings.presentation == NasaEpicPresentation::latestObservation) {
        observation = (co_await newestDay(settings)).back();
    } else {
        observation = co_await nextInSequence(settings, std::move(context), advancesSelection);
    }
    const Url url = NasaEpicAPI::imageURL(archiveHost_, *observation, settings);
    RemotePicture picture{.image = co_await fetching_.downloadImage(service_, url),
                          .sourceDescription = service_.name,
                          .credit = {.title = service_.name + " " + NasaEpicAPI::momentText(*observation),
                                     .author = "NASA EPIC Team",
                                     .sourceURL = service_.host.string()}};
    if (settings.showsCreditAndObservationTime) picture.overlayCaption = NasaEpicAPI::caption(*observation);
    co_return picture;
}

Task<NasaEpicObservation> NasaEpicService::nextInSequence(NasaEpicSettings settings,
                                                          RemoteImageSelectionContext context,
                                                          bool advancesSelection) {
    const auto fingerprint = NasaEpicSequenceFingerprint::of(settings);
    const auto found = nasaEpicSequenceByContext_.find(context);
    if (found != nasaEpicSequenceByContext_.end()) {
        NasaEpicSequenceState& state = found->second;
        const bool isUsable =
            state.fingerprint == fingerprint && clock_.now() - state.loadedAt < sequenceLife;
        if (isUsable) {
            if (advancesSelection) state.index = (state.index + 1) % state.observations.size();
            co_return state.observations[state.index];
        }
    }
    Observations observations =
        settings.recentDays == 1 ? co_await newestDay(settings) : co_await recentDays(settings);
    NasaEpicObservation oldest = observations.front();
    nasaEpicSequenceByContext_.insert_or_assign(
        std::move(context), NasaEpicSequenceState{fingerprint, std::move(observations), 0, clock_.now()});
    co_return oldest;
}

/// At least one.
Task<NasaEpicService::Observations> NasaEpicService::newestDay(NasaEpicSettings settings) {
    Observations observations = understood(service_, NasaEpicAPI::parseDay,
                                           co_await fetching_.fetchMetadata(service_, address(settings, "")));
    if (observations.empty()) throw Error(Error::Case::noUsableImage, service_.name);
    co_return observations;
}

/// At least one, of all days that answer.
Task<NasaEpicService::Observations> NasaEpicService::recentDays(NasaEpicSettings settings) {
    std::vector<std::string> days =
        understood(service_, NasaEpicAPI::parseAvailableDays,
                   co_await fetching_.fetchMetadata(service_, address(settings, "/available")));
    const auto wanted = static_cast<std::size_t>(std::max(settings.recentDays, 0));
    if (days.size() > wanted) days.resize(wanted);
    Observations all;
    for (const std::string& day : days) {
        co_await throwIfCancelled();
        try {
            const auto ofDay = NasaEpicAPI::parseDay(
                co_await fetching_.fetchMetadata(service_, address(settings, "/date/" + day)));
            all.insert(all.end(), ofDay.begin(), ofDay.end());
        } catch (const CancellationError&) {
            throw;
        } catch (const std::exception&) {
            // The other days make a film too.
        }
    }
    sortByTime(all);
    if (all.empty()) throw Error(Error::Case::noUsableImage, service_.name);
    co_return all;
}

Url NasaEpicService::address(const NasaEpicSettings& settings, const std::string& rest) const {
    return appendingPath(service_.host, fmt::format("/api/{}{}", enumName(settings.imageProduct), rest));
}

}  // namespace quillmar

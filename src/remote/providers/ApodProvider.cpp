#include "remote/providers/ApodProvider.h"

#include <algorithm>

#include "base/CalendarDay.h"
#include "base/JsonRecord.h"
#include "base/Text.h"
#include "base/UrlEditing.h"
#include "remote/fetching/RemoteImageProviderError.h"

namespace quillmar {
namespace {

using std::chrono::days;
using std::chrono::sys_days;
using Error = RemoteImageProviderError;

constexpr sys_days firstDay = std::chrono::year(2010) / 1 / 1;
constexpr int randomAttempts = 6;
constexpr days windowLength{30};

sys_days dayOf(WallTime time) { return std::chrono::floor<days>(time); }
std::string textOf(sys_days day) { return calendarDayText(day); }

bool isPicture(const APODItem& item) { return item.mediaType == "image"; }

std::optional<APODItem> parsedOrNothing(const std::string& json) {
    try {
        return parseAPODItem(json);
    } catch (const JsonRecordError&) {
        return std::nullopt;  // the days before it will do
    }
}

}  // namespace

APODItem parseAPODItem(std::string_view json) { return json::decode<APODItem>(json); }
std::vector<APODItem> parseAPODWindow(std::string_view json) {
    return json::decode<std::vector<APODItem>>(json);
}

std::optional<Url> candidateImageURL(const APODItem& item, bool useHDImage) {
    const auto webAddress = [](const std::optional<std::string>& text) -> std::optional<Url> {
        auto url = text ? Url::parse(*text) : std::nullopt;
        if (!url || (url->scheme() != "http" && url->scheme() != "https") || url->host().empty()) return {};
        return url;
    };
    auto first = webAddress(useHDImage ? item.hdurl : item.url);
    return first ? first : webAddress(useHDImage ? item.url : item.hdurl);
}

std::optional<APODItem> newestPicture(const std::vector<APODItem>& items, bool useHDImage) {
    const APODItem* newest = nullptr;
    for (const APODItem& item : items) {
        if (!isPicture(item) || item.date < textOf(firstDay) || !candidateImageURL(item, useHDImage))
            continue;
        if (!newest || item.date > newest->date) newest = &item;
    }
    if (!newest) return std::nullopt;
    return *newest;
}

std::optional<APODDateRange> APODDateRange::endingAt(sys_days end) {
    if (end < firstDay) return std::nullopt;
    return APODDateRange{std::max(end - windowLength + days(1), firstDay), end};
}

Task<RemotePicture> ApodProvider::resolve(APODSettings settings) {
    APODItem item =
        settings.switchPeriodically ? co_await randomItem(settings) : co_await latestItem(settings);
    const Url url = *candidateImageURL(item, settings.useHDImage);
    co_return RemotePicture{.image = co_await fetching_.downloadImage(service_, url),
                            .sourceDescription = std::move(item.title)};
}

Task<APODItem> ApodProvider::randomItem(APODSettings settings) {
    for (int attempt = 0; attempt < randomAttempts; ++attempt) {
        co_await throwIfCancelled();
        const auto json =
            co_await fetch(appendingQueryItems(request(settings), {{"date", textOf(randomDay())}}));
        if (!json) continue;
        APODItem item = parseAPODItem(*json);
        const bool isImage = lowercased(item.mediaType) == "image";
        if (isImage && candidateImageURL(item, settings.useHDImage)) co_return item;
    }
    throw Error(Error::Case::noUsableImage, service_.name);
}

sys_days ApodProvider::randomDay() const {
    const sys_days last = dayOf(clock_.now()) - days(1);
    if (last < firstDay) return firstDay;
    const auto count = static_cast<std::size_t>((last - firstDay).count()) + 1;
    return std::min(firstDay + days(randomIndex_(count)), last);
}

Task<APODItem> ApodProvider::latestItem(APODSettings settings) {
    const auto json = co_await fetch(request(settings));
    auto item = json ? parsedOrNothing(*json) : std::nullopt;
    if (item && isPicture(*item) && candidateImageURL(*item, settings.useHDImage)) co_return *item;
    const sys_days today = dayOf(clock_.now());
    const auto date = item ? parseCalendarDay(item->date) : std::nullopt;
    // A day far ahead would be walked back from through thousands of empty windows.
    const sys_days anchor = date ? std::min(sys_days(*date), today + days(1)) : today;
    co_return co_await latestBefore(std::move(settings), anchor);
}

Task<APODItem> ApodProvider::latestBefore(APODSettings settings, sys_days anchor) {
    auto range = APODDateRange::endingAt(anchor - days(1));
    for (; range; range = APODDateRange::endingAt(range->start - days(1))) {
        co_await throwIfCancelled();
        const auto json = co_await fetch(appendingQueryItems(
            request(settings), {{"start_date", textOf(range->start)}, {"end_date", textOf(range->end)}}));
        if (!json) continue;
        if (auto newest = newestPicture(parseAPODWindow(*json), settings.useHDImage)) co_return *newest;
    }
    throw Error(Error::Case::noUsableImage, service_.name);
}

Task<std::optional<std::string>> ApodProvider::fetch(Url url) {
    try {
        co_return co_await fetching_.fetchMetadata(service_, std::move(url));
    } catch (const Error& error) {
        if (error.errorCase() != Error::Case::httpStatus || error.number() != 404) throw;
        co_return std::nullopt;
    }
}

Url ApodProvider::request(const APODSettings& settings) const {
    return appendingQueryItems(appendingPath(service_.host, "/planetary/apod"),
                               {{"api_key", std::string(trimmed(settings.apiKey))}});
}

}  // namespace quillmar

#include "remote/services/ApodService.h"

#include <algorithm>

#include "base/CalendarDay.h"
#include "base/Text.h"
#include "remote/fetching/ServiceText.h"
#include "remote/services/ServiceAnswer.h"

namespace quillmar {
namespace {

using std::chrono::days;
using std::chrono::sys_days;
using Error = RemoteImageProviderError;

constexpr int randomAttempts = 6;

sys_days dayOf(WallTime time) { return std::chrono::floor<days>(time); }

std::optional<std::string> plain(const std::optional<std::string>& fragment) {
    return fragment ? unlessBlank(textOfHTML(*fragment)) : std::nullopt;
}

PictureCredit creditOf(const APODItem& item) {
    const auto rights = plain(item.copyright);
    const auto author = plain(item.credit);
    const bool saysSo = rights && (rights->starts_with("©") || lowercased(*rights).starts_with("copyright"));
    return {.title = plain(item.title),
            .author = author ? author : rights,
            .sourceURL = webAddressText(item.permalink),
            .licence = rights && !saysSo ? "© " + *rights : rights};
}

}  // namespace

ApodService::ApodService(RemoteImageFetching& fetching, const RemoteServices& services,
                         const WallClock& clock, RandomIndex randomIndex)
    : fetching_(fetching),
      current_(ApodInterface::Kind::current, services.apod),
      clock_(clock),
      randomIndex_(std::move(randomIndex)) {
    if (!services.apodArchive) return;
    former_.emplace(ApodInterface::Kind::former, RemoteService{services.apod.name, *services.apodArchive});
}

Task<RemotePicture> ApodService::resolve(APODSettings settings, double widthInPixels) {
    try {
        co_return co_await resolveThrough(current_, settings, widthInPixels);
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception&) {
        if (!former_) throw;  // else the other one may still have it
    }
    co_return co_await resolveThrough(*former_, std::move(settings), widthInPixels);
}

Task<RemotePicture> ApodService::resolveThrough(Interface from, APODSettings settings, double widthInPixels) {
    const APODItem item = settings.switchPeriodically ? co_await randomItem(from, settings)
                                                      : co_await latestItem(from, settings);
    const Url url = *from.image(item, settings.useHDImage, widthInPixels);
    RemotePicture picture{.image = co_await fetching_.downloadImage(from.service(), url),
                          .credit = creditOf(item)};
    const PictureCredit& credit = picture.credit;
    picture.sourceDescription = credit.title;
    if (settings.showsInformation) {
        picture.overlayCaption =
            captionOf({credit.title.value_or(""), credit.author.value_or(""), from.service().name});
    }
    co_return picture;
}

Task<APODItem> ApodService::randomItem(Interface from, APODSettings settings) {
    for (int attempt = 0; attempt < randomAttempts; ++attempt) {
        co_await throwIfCancelled();
        const auto json = co_await fetch(from, from.dayRequest(settings, randomDay()));
        if (!json) continue;
        APODItem item = understood(from.service(), parseAPODItem, *json);
        if (lowercased(item.mediaType) == "image" && from.image(item, true, 1)) co_return item;
    }
    throw Error(Error::Case::noUsableImage, from.service().name);
}

sys_days ApodService::randomDay() const {
    constexpr sys_days firstDay = ApodInterface::firstDay;
    const sys_days last = dayOf(clock_.now()) - days(1);
    if (last < firstDay) return firstDay;
    const auto count = static_cast<std::size_t>((last - firstDay).count()) + 1;
    return std::min(firstDay + days(randomIndex_(count)), last);
}

Task<APODItem> ApodService::latestItem(Interface from, APODSettings settings) {
    std::optional<APODItem> item;
    if (const auto json = co_await fetch(from, from.newestRequest(settings))) {
        try {
            item = from.parseNewest(*json);
        } catch (const JsonRecordError&) {
            // The days before it will do.
        }
    }
    if (item && item->mediaType == "image" && from.image(*item, true, 1)) co_return *std::move(item);
    const sys_days today = dayOf(clock_.now());
    const auto date = item ? parseCalendarDay(item->date) : std::nullopt;
    // A day far ahead would be walked back from through thousands of empty windows.
    const sys_days anchor = date ? std::min(sys_days(*date), today + days(1)) : today;
    co_return co_await latestBefore(from, std::move(settings), anchor);
}

Task<APODItem> ApodService::latestBefore(Interface from, APODSettings settings, sys_days anchor) {
    auto range = from.windowEndingAt(anchor - days(1));
    for (; range; range = from.windowEndingAt(range->start - days(1))) {
        co_await throwIfCancelled();
        const auto json = co_await fetch(from, from.windowRequest(settings, *range));
        if (!json) continue;
        if (auto newest = from.newestPicture(understood(from.service(), parseAPODItems, *json))) {
            co_return *std::move(newest);
        }
    }
    throw Error(Error::Case::noUsableImage, from.service().name);
}

Task<std::optional<std::string>> ApodService::fetch(Interface from, Url url) {
    try {
        co_return co_await fetching_.fetchMetadata(from.service(), std::move(url));
    } catch (const Error& error) {
        if (error.errorCase() != Error::Case::httpStatus || error.number() != 404) throw;
        co_return std::nullopt;
    }
}

}  // namespace quillmar

#pragma once
#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "async/WallClock.h"
#include "base/RandomIndex.h"
#include "modes/DailyImageSettings.h"
#include "remote/fetching/RemoteImageFetching.h"
#include "remote/providers/RemotePicture.h"

namespace quillmar {

/// What the service says of a day.
struct APODItem {
    std::string date;  ///< "2026-05-04"
    std::optional<std::string> title;
    std::optional<std::string> url;
    std::optional<std::string> hdurl;
    std::string mediaType;

    static void describe(auto& self, auto& io) {
        io.required("date", self.date)
            .optional("title", self.title)
            .optional("url", self.url)
            .optional("hdurl", self.hdurl)
            .required("media_type", self.mediaType);
    }
};
/// Throw `JsonRecordError`.
APODItem parseAPODItem(std::string_view json);
std::vector<APODItem> parseAPODWindow(std::string_view json);

/// The picture of a day; nothing when it has none with a web address.
std::optional<Url> candidateImageURL(const APODItem& item, bool useHDImage);
/// The newest of the items that are pictures; nothing when none is.
std::optional<APODItem> newestPicture(const std::vector<APODItem>& items, bool useHDImage);

/// Days of the calendar in UTC, both ends inside.
struct APODDateRange {
    std::chrono::sys_days start;
    std::chrono::sys_days end;
    bool operator==(const APODDateRange&) const = default;

    /// Thirty days that end at `end`, none before the service's first; nothing when no day is left.
    static std::optional<APODDateRange> endingAt(std::chrono::sys_days end);
};

/// The astronomy picture of the day: today's, else the newest one before it, or one of a random day. Main
/// thread.
class ApodProvider {
public:
    ApodProvider(RemoteImageFetching& fetching, RemoteService service, const WallClock& clock,
                 RandomIndex randomIndex)
        : fetching_(fetching),
          service_(std::move(service)),
          clock_(clock),
          randomIndex_(std::move(randomIndex)) {}

    Task<RemotePicture> resolve(APODSettings settings);

private:
    Task<APODItem> randomItem(APODSettings settings);
    Task<APODItem> latestItem(APODSettings settings);
    Task<APODItem> latestBefore(APODSettings settings, std::chrono::sys_days anchor);
    /// Nothing when there is no such day.
    Task<std::optional<std::string>> fetch(Url url);
    Url request(const APODSettings& settings) const;
    std::chrono::sys_days randomDay() const;

    RemoteImageFetching& fetching_;
    const RemoteService service_;
    const WallClock& clock_;
    RandomIndex randomIndex_;
};

}  // namespace quillmar

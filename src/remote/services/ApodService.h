#pragma once
#include "async/WallClock.h"
#include "base/RandomIndex.h"
#include "remote/fetching/RemoteImageFetching.h"
#include "remote/services/ApodInterface.h"
#include "remote/services/RemotePicture.h"

namespace quillmar {

/// The astronomy picture of the day: today's, else the newest one before it, or one of a random day. Main
/// thread.
class ApodService {
public:
    /// `services` are read here and not kept.
    ApodService(RemoteImageFetching& fetching, const RemoteServices& services, const WallClock& clock,
                RandomIndex randomIndex);

    /// `widthInPixels` of the display, before rounding.
    Task<RemotePicture> resolve(APODSettings settings, double widthInPixels);

private:
    using Interface = const ApodInterface&;  ///< a member, which outlives the tasks
    Task<RemotePicture> resolveThrough(Interface from, APODSettings settings, double widthInPixels);
    Task<APODItem> randomItem(Interface from, APODSettings settings);
    Task<APODItem> latestItem(Interface from, APODSettings settings);
    Task<APODItem> latestBefore(Interface from, APODSettings settings, std::chrono::sys_days anchor);
    /// Nothing when there is no such day.
    Task<std::optional<std::string>> fetch(Interface from, Url url);
    std::chrono::sys_days randomDay() const;

    RemoteImageFetching& fetching_;
    const ApodInterface current_;
    std::optional<ApodInterface> former_;
    const WallClock& clock_;
    RandomIndex randomIndex_;
};

}  // namespace quillmar

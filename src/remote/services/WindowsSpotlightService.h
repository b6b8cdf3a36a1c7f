#pragma once
#include <optional>
#include <string>
#include <string_view>

#include "async/Executor.h"
#include "async/WallClock.h"
#include "modes/DailyImageSettings.h"
#include "remote/fetching/RemoteImageFetching.h"
#include "remote/services/RemotePicture.h"

namespace quillmar {

struct SpotlightImage {
    std::string asset;
    std::optional<std::string> title;
    std::optional<std::string> copyright;
    std::optional<std::string> credit;  ///< the first of what it says of itself
};
/// The first picture of an answer; nothing when it has none. Throws `JsonRecordError`.
std::optional<SpotlightImage> parseSpotlight(std::string_view json);
Url spotlightRequest(const Url& host, const std::string& locale);

/// Whether the picture that was applied last is still the one to show at `now`, as far as the settings tell.
bool isCurrentSelection(const WindowsSpotlightSettings& settings, WallTime now);

/// The pictures of the Windows lock screen. Main thread; files are looked at on the executor.
class WindowsSpotlightService {
public:
    WindowsSpotlightService(RemoteImageFetching& fetching, RemoteService service, const WallClock& clock,
                            Executor& files)
        : fetching_(fetching), service_(std::move(service)), clock_(clock), files_(files) {}
    /// Without `advancesSelection` the picture that was applied last comes again for as long as its interval.
    Task<RemotePicture> resolve(WindowsSpotlightSettings settings, bool advancesSelection);

private:
    Task<std::optional<RemotePicture>> remembered(WindowsSpotlightSettings settings);

    RemoteImageFetching& fetching_;
    const RemoteService service_;
    const WallClock& clock_;
    Executor& files_;
};

}  // namespace quillmar

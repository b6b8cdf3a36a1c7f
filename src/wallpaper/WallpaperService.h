#pragma once
#include <map>

#include "async/Executor.h"
#include "display/DisplayService.h"
#include "platform/DesktopPicture.h"
#include "remote/RemoteImageProvider.h"
#include "wallpaper/StaticPicture.h"
#include "wallpaper/WallpaperApplicationGate.h"
#include "wallpaper/WallpaperRequests.h"

namespace quillmar {

/// Turns a request into what the display shows, and is the one place that sets desktop pictures for
/// wallpapers. It knows neither queues nor settings. Main thread; renders run on the executor.
class WallpaperService final : public WallpaperTransactionOperationApplying {
public:
    WallpaperService(const DisplayService& displays, DesktopPicturing& desktop,
                     const WallpaperApplicationGate& gate, const WallpaperRenderer& renderer,
                     Executor& renderExecutor, const CacheFileProtection& cacheFiles,
                     RemoteImageProvider& remoteImages, RandomIndex randomIndex)
        : displays_(displays),
          desktop_(desktop),
          gate_(gate),
          renderer_(renderer),
          renderExecutor_(renderExecutor),
          cacheFiles_(cacheFiles),
          remoteImages_(remoteImages),
          randomIndex_(std::move(randomIndex)) {}

    Task<WallpaperApplyOutcome> apply(WallpaperApplyRequest request) override;
    Task<PreparedWallpaperApplication> prepare(WallpaperApplyRequest request) override;
    Task<WallpaperApplyOutcome> applyPrepared(PreparedWallpaperApplication application) override;
    WallpaperDesktopSnapshot captureDesktop(const std::string& displayID) override;
    void restoreDesktop(const WallpaperDesktopSnapshot& snapshot) override;
    /// Shows again what the display showed last, where the desktop has forgotten it: until its picture is
    /// there.
    void recallDesktop(const std::string& displayID);
    /// Renders the request's picture into the cache without touching the desktop.
    Task<PreparedWallpaperImage> prepareImage(WallpaperApplyRequest request);

private:
    Task<PreparedWallpaperImage> prepareRemoteImage(WallpaperApplyRequest request);
    Screen screenOf(const std::string& displayID) const;
    CacheFileLease leaseOfCache() const { return {cacheFiles_, renderer_.cacheDirectory(), true}; }
    std::optional<CacheFileLease> leaseOf(const std::optional<WindowsSpotlightSelection>& selection) const;
    void setDesktop(const std::filesystem::path& image, const Screen& screen,
                    const DesktopImageOptions& options);

    const DisplayService& displays_;
    DesktopPicturing& desktop_;
    const WallpaperApplicationGate& gate_;
    const WallpaperRenderer& renderer_;
    Executor& renderExecutor_;
    const CacheFileProtection& cacheFiles_;
    RemoteImageProvider& remoteImages_;
    RandomIndex randomIndex_;
    std::map<std::string, CacheFileLease> desktopLeases_;  ///< by display: on the file that it shows
};

}  // namespace quillmar

#pragma once
#include <functional>
#include <map>

#include "async/TaskLock.h"
#include "remote/RemoteImageProvider.h"
#include "remote/services/ApodService.h"
#include "remote/services/BingService.h"
#include "remote/services/MuseumsService.h"
#include "remote/services/NasaEpicService.h"
#include "remote/services/UnsplashService.h"
#include "remote/services/WallhavenService.h"
#include "remote/services/WindowsSpotlightService.h"

namespace quillmar {

/// The one place that asks picture services. Who asks the same service waits in line, so that what one
/// display got is remembered before the next one chooses; no service holds up another. What is remembered
/// lives as long as the resolver. Main thread.
class RemoteImageResolver final : public RemoteImageProvider {
public:
    /// What the resolver is made of; all of it outlives it.
    struct Parts {
        RemoteImageFetching& fetching;
        const RemoteServices& services;
        const WallClock& clock;
        Executor& files;
        const CacheFileProtection& cacheFiles;
        std::filesystem::path cacheDirectory;  ///< where `fetching` puts its pictures
        RandomIndex randomIndex;
    };
    explicit RemoteImageResolver(Parts parts);
    /// Is awaited with each picture that was found. Replaces the former one.
    void setFoundHandler(std::function<Task<void>(std::filesystem::path image)> handler) {
        foundHandler_ = std::move(handler);
    }

    Task<ResolvedRemoteImage> resolveImage(WallpaperMode mode, DisplayInfo display, bool advancesSelection,
                                           RemoteImagePresentation presentation) override;
    Task<ResolvedRemoteImage> resolveScreensaverImage(ManagedScreensaverMode mode, DisplayInfo display,
                                                      bool advancesSelection) override;

private:
    struct Request {
        const DisplayInfo* display;
        bool advancesSelection;
        RemoteImagePresentation presentation;
        std::string unusableText;  ///< names a mode that is none of a service

        RemoteImageSelectionContext context() const { return {presentation, display->id}; }
        double widthInPixels() const { return display->frame.width * display->scaleFactor; }
    };
    Task<ResolvedRemoteImage> resolve(WallpaperMode mode, Request request);

    Task<RemotePicture> picture(const APODSettings& settings, const Request& request);
    Task<RemotePicture> picture(const NasaEpicSettings& settings, const Request& request);
    Task<RemotePicture> picture(const WallhavenSettings& settings, const Request& request);
    Task<RemotePicture> picture(const UnsplashSettings& settings, const Request& request);
    Task<RemotePicture> picture(const BingSettings& settings, const Request& request);
    Task<RemotePicture> picture(const WindowsSpotlightSettings& settings, const Request& request);
    Task<RemotePicture> picture(const MuseumsSettings& settings, const Request& request);
    Task<RemotePicture> picture(const auto& settingsOfNoService, const Request& request);

    const CacheFileProtection& cacheFiles_;
    const std::filesystem::path cacheDirectory_;
    std::function<Task<void>(std::filesystem::path)> foundHandler_;
    std::map<WallpaperModeKind, TaskLock> lines_;
    ApodService apod_;
    NasaEpicService nasaEpic_;
    WallhavenService wallhaven_;
    UnsplashService unsplash_;
    BingService bing_;
    WindowsSpotlightService windowsSpotlight_;
    MuseumsService museums_;
};

}  // namespace quillmar

#pragma once
#include "remote/RemoteImageProvider.h"
#include "remote/providers/ApodProvider.h"
#include "remote/providers/BingProvider.h"
#include "remote/providers/MuseumsProvider.h"
#include "remote/providers/NasaEpicProvider.h"
#include "remote/providers/UnsplashProvider.h"
#include "remote/providers/WallhavenProvider.h"
#include "remote/providers/WindowsSpotlightProvider.h"

namespace quillmar {

/// The one place that asks picture services. What it remembers of them lives as long as it does. Main
/// thread.
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
    ApodProvider apod_;
    NasaEpicProvider nasaEpic_;
    WallhavenProvider wallhaven_;
    UnsplashProvider unsplash_;
    BingProvider bing_;
    WindowsSpotlightProvider windowsSpotlight_;
    MuseumsProvider museums_;
};

}  // namespace quillmar

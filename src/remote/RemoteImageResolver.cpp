#include "remote/RemoteImageResolver.h"

#include "remote/fetching/RemoteImageProviderError.h"
#include "remote/fetching/ServiceText.h"

namespace quillmar {
namespace {

using Error = RemoteImageProviderError;

Error unusable(const std::string& what) { return {Error::Case::noUsableImage, what}; }

/// What strangers wrote goes into the settings, onto terminals and onto the screen from here on.
void boundTexts(RemotePicture& picture) {
    PictureCredit& credit = picture.credit;
    std::vector<std::optional<std::string>*> texts{
        &picture.sourceDescription, &picture.overlayCaption, &credit.title, &credit.author,
        &credit.sourceURL,          &credit.licence};
    if (picture.windowsSpotlightSelection) {
        texts.push_back(&picture.windowsSpotlightSelection->sourceDescription);
    }
    for (auto* text : texts) {
        if (*text) *text = boundedText(**text);
    }
    if (picture.overlayCaption && picture.overlayCaption->empty()) picture.overlayCaption.reset();
}

}  // namespace

RemoteImageResolver::RemoteImageResolver(Parts parts)
    : cacheFiles_(parts.cacheFiles),
      cacheDirectory_(std::move(parts.cacheDirectory)),
      apod_(parts.fetching, parts.services, parts.clock, parts.randomIndex),
      nasaEpic_(parts.fetching, parts.services.epic, parts.services.epicArchive, parts.clock),
      wallhaven_(parts.fetching, parts.services.wallhaven, parts.randomIndex),
      unsplash_(parts.fetching, parts.services.unsplash),
      bing_(parts.fetching, parts.services.bing, parts.services.bingWeb),
      windowsSpotlight_(parts.fetching, parts.services.windowsSpotlight, parts.clock, parts.files),
      museums_(parts.fetching, parts.services, parts.clock, parts.randomIndex) {}

Task<ResolvedRemoteImage> RemoteImageResolver::resolveImage(WallpaperMode mode, DisplayInfo display,
                                                            bool advancesSelection,
                                                            RemoteImagePresentation presentation) {
    co_return co_await resolve(std::move(mode),
                               {&display, advancesSelection, presentation, "the selected wallpaper mode"});
}

Task<ResolvedRemoteImage> RemoteImageResolver::resolveScreensaverImage(ManagedScreensaverMode mode,
                                                                       DisplayInfo display,
                                                                       bool advancesSelection) {
    Request request{&display, advancesSelection, RemoteImagePresentation::screensaver,
                    "the selected screensaver mode"};
    auto wallpaperMode = mode.wallpaperMode();
    if (!wallpaperMode) throw unusable(request.unusableText);
    co_return co_await resolve(*std::move(wallpaperMode), std::move(request));
}

Task<RemotePicture> RemoteImageResolver::picture(const auto&, const Request& request) {
    throw unusable(request.unusableText);
}

Task<ResolvedRemoteImage> RemoteImageResolver::resolve(WallpaperMode mode, Request request) {
    // The folder's, until the file's own: a sweep must not come between a download and its use.
    std::optional<CacheFileLease> folderLease(std::in_place, cacheFiles_, cacheDirectory_, true);
    const auto turn = co_await lines_[mode.kind()].acquire();
    RemotePicture found =
        co_await std::visit([&](const auto& settings) { return picture(settings, request); }, mode.value);
    CacheFileLease fileLease(cacheFiles_, found.image);
    folderLease.reset();
    if (foundHandler_) co_await foundHandler_(found.image);
    boundTexts(found);
    co_return ResolvedRemoteImage{std::move(fileLease),
                                  std::move(found.image),
                                  std::move(found.sourceDescription),
                                  std::move(found.overlayCaption),
                                  std::move(found.windowsSpotlightSelection),
                                  std::move(found.credit)};
}

Task<RemotePicture> RemoteImageResolver::picture(const APODSettings& settings, const Request& request) {
    return apod_.resolve(settings, request.widthInPixels());
}
Task<RemotePicture> RemoteImageResolver::picture(const NasaEpicSettings& settings, const Request& request) {
    return nasaEpic_.resolve(settings, request.context(), request.advancesSelection);
}
Task<RemotePicture> RemoteImageResolver::picture(const WallhavenSettings& settings, const Request&) {
    return wallhaven_.resolve(settings);
}
Task<RemotePicture> RemoteImageResolver::picture(const UnsplashSettings& settings, const Request& request) {
    return unsplash_.resolve(settings, request.widthInPixels());
}
Task<RemotePicture> RemoteImageResolver::picture(const BingSettings& settings, const Request&) {
    return bing_.resolve(settings);
}
Task<RemotePicture> RemoteImageResolver::picture(const WindowsSpotlightSettings& settings,
                                                 const Request& request) {
    return windowsSpotlight_.resolve(settings, request.advancesSelection);
}
Task<RemotePicture> RemoteImageResolver::picture(const MuseumsSettings& settings, const Request& request) {
    return museums_.resolve(settings, request.context());
}

}  // namespace quillmar

#include "wallpaper/WallpaperService.h"

#include "modes/WallpaperApplicationError.h"

namespace quillmar {
namespace {

using Error = WallpaperApplicationError;

void throwIfInvalid(const WallpaperMode& mode) {
    if (const auto error = mode.validationError()) throw Error(*error);
}

}  // namespace

Task<WallpaperApplyOutcome> WallpaperService::apply(WallpaperApplyRequest request) {
    const CacheFileLease cacheLease = leaseOfCache();
    screenOf(request.display.id);
    throwIfInvalid(request.mode);
    if (isStaticKind(request.mode.kind())) {
        PreparedWallpaperImage image = co_await prepareImage(request);
        co_return co_await applyPrepared({std::move(request), std::move(image)});
    }
    if (request.mode.kind() == WallpaperModeKind::disabled) co_return WallpaperApplyOutcome{};
    throw Error(Error::Case::unsupportedMode);
}

Task<PreparedWallpaperApplication> WallpaperService::prepare(WallpaperApplyRequest request) {
    const CacheFileLease cacheLease = leaseOfCache();
    screenOf(request.display.id);
    throwIfInvalid(request.mode);
    if (!isStaticKind(request.mode.kind()))
        co_return PreparedWallpaperApplication{std::move(request), std::nullopt};
    PreparedWallpaperImage image = co_await prepareImage(request);
    co_return PreparedWallpaperApplication{std::move(request), std::move(image)};
}

Task<PreparedWallpaperImage> WallpaperService::prepareImage(WallpaperApplyRequest request) {
    // The folder's, until the file's own: a sweep must not come between a render and its use.
    const CacheFileLease cacheLease = leaseOfCache();
    throwIfInvalid(request.mode);
    if (isRemote(request.mode.kind())) co_return co_await prepareRemoteImage(std::move(request));
    StaticPicture picture = co_await renderExecutor_.run(
        [mode = request.mode, display = request.display, renderer = renderer_, random = randomIndex_] {
            return renderStaticPicture(mode, display, renderer, random);
        });
    CacheFileLease imageLease(cacheFiles_, picture.image);
    co_return PreparedWallpaperImage{
        .cacheLease = std::move(imageLease),
        .image = std::move(picture.image),
        .selectedSlideshowImageURL = std::move(picture.selectedSlideshowImageURL)};
}

Task<PreparedWallpaperImage> WallpaperService::prepareRemoteImage(WallpaperApplyRequest request) {
    const auto presentation = request.mode.imagePresentation();
    if (!presentation) throw Error(Error::Case::unsupportedMode);
    const ResolvedRemoteImage source = co_await remoteImages_.resolveImage(
        request.mode, request.display, request.reason == WallpaperApplyReason::rotation,
        request.presentation);
    std::filesystem::path image =
        co_await renderExecutor_.run([file = source.image, caption = source.overlayCaption.value_or(""),
                                      look = *presentation, display = request.display, renderer = renderer_] {
            return renderer.image(file, look.layout, look.backgroundHexColor, caption, display);
        });
    CacheFileLease imageLease(cacheFiles_, image);
    co_return PreparedWallpaperImage{.selectionLease = leaseOf(source.windowsSpotlightSelection),
                                     .cacheLease = std::move(imageLease),
                                     .image = std::move(image),
                                     .windowsSpotlightSelection = source.windowsSpotlightSelection};
}

Task<WallpaperApplyOutcome> WallpaperService::applyPrepared(PreparedWallpaperApplication application) {
    if (!application.image) co_return co_await apply(std::move(application.request));
    const PreparedWallpaperImage& prepared = *application.image;
    // Looked up only now: the display may have gone while its picture was rendered.
    setDesktop(prepared.image, screenOf(application.request.display.id), {});
    co_return WallpaperApplyOutcome{leaseOf(prepared.windowsSpotlightSelection),
                                    prepared.selectedSlideshowImageURL, prepared.windowsSpotlightSelection};
}

WallpaperDesktopSnapshot WallpaperService::captureDesktop(const std::string& displayID) {
    const Screen screen = screenOf(displayID);
    const auto image = desktop_.captureDesktopImage(screen);
    if (!image) throw Error(Error::Case::desktopSnapshotUnavailable, displayID);
    return {displayID, *image, desktop_.desktopImageOptions(screen), CacheFileLease(cacheFiles_, *image)};
}

void WallpaperService::restoreDesktop(const WallpaperDesktopSnapshot& snapshot) {
    setDesktop(snapshot.image, screenOf(snapshot.displayID), snapshot.options);
}

void WallpaperService::recallDesktop(const std::string& displayID) {
    const auto screen = displays_.screen(displayID);
    if (!screen || gate_.isLockScreenOverrideActive) return;
    desktop_.recallDesktopImage(*screen);
    if (const auto shown = desktop_.desktopImage(*screen))
        desktopLeases_.insert_or_assign(displayID, CacheFileLease(cacheFiles_, *shown));
}

Screen WallpaperService::screenOf(const std::string& displayID) const {
    auto screen = displays_.screen(displayID);
    if (!screen) throw Error(Error::Case::unavailableDisplay, displayID);
    return *std::move(screen);
}

void WallpaperService::setDesktop(const std::filesystem::path& image, const Screen& screen,
                                  const DesktopImageOptions& options) {
    if (gate_.isLockScreenOverrideActive) throw Error(Error::Case::suppressedWhileLocked);
    CacheFileLease lease(cacheFiles_, image);
    desktop_.setDesktopImage(image, screen, options);
    for (const ConnectedDisplay& display : displays_.connectedDisplays()) {
        if (display.screen != screen) continue;
        desktopLeases_.insert_or_assign(display.info.id, std::move(lease));
        return;
    }
}

std::optional<CacheFileLease> WallpaperService::leaseOf(
    const std::optional<WindowsSpotlightSelection>& selection) const {
    const auto file = selection ? selection->imageURL.filePath() : std::nullopt;
    if (!file) return std::nullopt;
    return CacheFileLease(cacheFiles_, *file);
}

}  // namespace quillmar

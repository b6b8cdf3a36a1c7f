#include "wallpaper/WallpaperService.h"

#include "modes/WallpaperApplicationError.h"

namespace quillmar {
namespace {

using Error = WallpaperApplicationError;

void throwIfInvalid(const WallpaperMode& mode) {
    if (const auto error = mode.validationError()) throw Error(*error);
}

/// Whether a mode becomes one picture that is set as the desktop's.
bool isStatic(WallpaperModeKind kind) {
    switch (kind) {
        case WallpaperModeKind::solidColor:
        case WallpaperModeKind::image:
        case WallpaperModeKind::slideshow:
        case WallpaperModeKind::apod:
        case WallpaperModeKind::nasaEpic:
        case WallpaperModeKind::wallhaven:
        case WallpaperModeKind::unsplash:
        case WallpaperModeKind::bing:
        case WallpaperModeKind::windowsSpotlight:
        case WallpaperModeKind::museums: return true;
        default: return false;
    }
}

}  // namespace

Task<WallpaperApplyOutcome> WallpaperService::apply(WallpaperApplyRequest request) {
    screenOf(request.display.id);
    throwIfInvalid(request.mode);
    if (isStatic(request.mode.kind())) {
        PreparedWallpaperImage image = co_await prepareImage(request);
        co_return co_await applyPrepared({std::move(request), std::move(image)});
    }
    if (request.mode.kind() == WallpaperModeKind::disabled) co_return WallpaperApplyOutcome{};
    throw Error(Error::Case::unsupportedMode);
}

Task<PreparedWallpaperApplication> WallpaperService::prepare(WallpaperApplyRequest request) {
    screenOf(request.display.id);
    throwIfInvalid(request.mode);
    if (!isStatic(request.mode.kind()))
        co_return PreparedWallpaperApplication{std::move(request), std::nullopt};
    PreparedWallpaperImage image = co_await prepareImage(request);
    co_return PreparedWallpaperApplication{std::move(request), std::move(image)};
}

Task<PreparedWallpaperImage> WallpaperService::prepareImage(WallpaperApplyRequest request) {
    throwIfInvalid(request.mode);
    const auto* solid = std::get_if<SolidColorPresentationSettings>(&request.mode.value);
    if (!solid) throw Error(Error::Case::unsupportedMode);
    PreparedWallpaperImage prepared;
    prepared.image = co_await renderExecutor_.run(
        [renderer = renderer_, color = solid->hexColor, display = request.display] {
            return renderer.solidColor(color, display);
        });
    co_return prepared;
}

Task<WallpaperApplyOutcome> WallpaperService::applyPrepared(PreparedWallpaperApplication application) {
    if (!application.image) co_return co_await apply(std::move(application.request));
    const PreparedWallpaperImage& prepared = *application.image;
    // Looked up only now: the display may have gone while its picture was rendered.
    setDesktop(prepared.image, screenOf(application.request.display.id), {});
    co_return WallpaperApplyOutcome{prepared.selectedSlideshowImageURL, prepared.windowsSpotlightSelection};
}

WallpaperDesktopSnapshot WallpaperService::captureDesktop(const std::string& displayID) {
    const Screen screen = screenOf(displayID);
    const auto image = desktop_.desktopImage(screen);
    if (!image) throw Error(Error::Case::desktopSnapshotUnavailable, displayID);
    return {displayID, *image, desktop_.desktopImageOptions(screen)};
}

void WallpaperService::restoreDesktop(const WallpaperDesktopSnapshot& snapshot) {
    setDesktop(snapshot.image, screenOf(snapshot.displayID), snapshot.options);
}

Screen WallpaperService::screenOf(const std::string& displayID) const {
    auto screen = displays_.screen(displayID);
    if (!screen) throw Error(Error::Case::unavailableDisplay, displayID);
    return *std::move(screen);
}

void WallpaperService::setDesktop(const std::filesystem::path& image, const Screen& screen,
                                  const DesktopImageOptions& options) {
    if (gate_.isLockScreenOverrideActive) throw Error(Error::Case::suppressedWhileLocked);
    desktop_.setDesktopImage(image, screen, options);
}

}  // namespace quillmar

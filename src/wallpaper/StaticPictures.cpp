#include "wallpaper/StaticPictures.h"

#include "modes/WallpaperApplicationError.h"
#include "storage/SecurityScopedFileLease.h"

namespace quillmar {
namespace {

using Error = WallpaperApplicationError;

/// A picture that stays on the desktop until another takes its place.
class StaticPicturePresentation final : public WallpaperPresentation {
public:
    StaticPicturePresentation(const StaticPictures::Services& services, std::string displayID,
                              StaticPictures::Prepared prepared)
        : services_(services), displayID_(std::move(displayID)), prepared_(std::move(prepared)) {}
    ~StaticPicturePresentation() override { keepPicture(); }

    Task<WallpaperApplyOutcome> present() override {
        if (services_.gate.isLockScreenOverrideActive) throw Error(Error::Case::suppressedWhileLocked);
        co_await services_.desktop.set(displayID_, {prepared_.picture.file, prepared_.picture.pixels});
        keepPicture();
        co_return std::move(prepared_.outcome);
    }

private:
    /// Behind the showing, and also where it was not to be shown after all: what was made is not made twice.
    void keepPicture() {
        SharedPixels pixels = std::exchange(prepared_.picture.pixels, nullptr);
        if (pixels && std::exchange(prepared_.picture.isNew, false)) {
            services_.writer.writeBehind(prepared_.picture.file, std::move(pixels));
        }
    }

    const StaticPictures::Services& services_;
    std::string displayID_;
    StaticPictures::Prepared prepared_;
};

}  // namespace

bool StaticPictures::presents(WallpaperModeKind kind) const { return isStill(kind); }

Task<std::unique_ptr<WallpaperPresentation>> StaticPictures::prepare(WallpaperApplyRequest request) {
    std::string displayID = request.display.id;
    co_return std::make_unique<StaticPicturePresentation>(services_, std::move(displayID),
                                                          co_await prepareImage(std::move(request)));
}

Task<StaticPictures::Prepared> StaticPictures::prepareImage(WallpaperApplyRequest request) {
    // The folder's, until the file's own: a sweep must not come between the making of a picture and its use.
    const CacheFileLease cacheLease(services_.cacheFiles, services_.renderer.cacheDirectory(), true);
    if (const auto error = request.mode.validationError()) throw Error(*error);
    if (const auto* color = std::get_if<SolidColorPresentationSettings>(&request.mode.value)) {
        co_return Prepared{co_await services_.renderer.solidColor(color->hexColor, request.display), {}};
    }
    if (isRemote(request.mode.kind())) co_return co_await fromService(std::move(request));
    co_return co_await fromFile(std::move(request));
}

Task<StaticPictures::Prepared> StaticPictures::fromFile(WallpaperApplyRequest request) {
    const auto look = request.mode.imagePresentation();
    if (!look) throw Error(Error::Case::unsupportedMode);
    const PictureSource source = co_await services_.executor.run(
        [mode = request.mode, random = services_.randomIndex]() -> PictureSource {
            if (const auto* image = std::get_if<ImagePresentationSettings>(&mode.value)) {
                return pictureSource(*image);
            }
            if (const auto* slideshow = std::get_if<SlideshowPresentationSettings>(&mode.value)) {
                return pictureSource(*slideshow, random);
            }
            throw Error(Error::Case::unsupportedMode);
        });
    Prepared prepared{.picture = co_await services_.renderer.image(
                          source.file, look->layout, look->backgroundHexColor, "", request.display),
                      .outcome = {}};
    prepared.outcome.selectedSlideshowImageURL = source.selectedSlideshowImageURL;
    co_return prepared;
}

Task<StaticPictures::Prepared> StaticPictures::fromService(WallpaperApplyRequest request) {
    const auto look = request.mode.imagePresentation();
    if (!look) throw Error(Error::Case::unsupportedMode);
    const ResolvedRemoteImage source = co_await services_.remoteImages.resolveImage(
        request.mode, request.display, request.reason == WallpaperApplyReason::rotation,
        request.presentation);
    Prepared prepared{
        .picture = co_await services_.renderer.image(source.image, look->layout, look->backgroundHexColor,
                                                     source.overlayCaption.value_or(""), request.display),
        .outcome = {}};
    prepared.outcome.selectionLease = leaseOf(source.windowsSpotlightSelection);
    prepared.outcome.windowsSpotlightSelection = source.windowsSpotlightSelection;
    co_return prepared;
}

std::optional<CacheFileLease> StaticPictures::leaseOf(
    const std::optional<WindowsSpotlightSelection>& selection) const {
    const auto file = selection ? selection->imageURL.filePath() : std::nullopt;
    if (!file) return std::nullopt;
    return CacheFileLease(services_.cacheFiles, *file);
}

}  // namespace quillmar

#include "wallpaper/StaticPictures.h"

#include "modes/WallpaperApplicationError.h"
#include "storage/SecurityScopedFileLease.h"

namespace quillmar {
namespace {

using Error = WallpaperApplicationError;

/// Of a slideshow, one after the other, until the change is given up; the next one goes on behind them.
constexpr std::size_t maximumUnreadable = 16;
/// Answers of a service that are in the trash until it is taken to have no other.
constexpr int maximumBanned = 8;

/// The picture of a request's mode.
ShownPicture pictureOf(const WallpaperApplyRequest& request, const std::filesystem::path& file,
                       const ImagePresentation& look) {
    return {.kind = request.mode.kind(),
            .fileURL = Url::fromFilePath(file),
            .layout = look.layout,
            .backgroundHexColor = look.backgroundHexColor};
}

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
    if (request.again) co_return co_await again(*request.again, request.display);
    if (const auto* color = std::get_if<SolidColorPresentationSettings>(&request.mode.value)) {
        co_return co_await again({.color = color->hexColor}, request.display);
    }
    if (isRemote(request.mode.kind())) co_return co_await fromService(std::move(request));
    if (request.mode.kind() == WallpaperModeKind::slideshow)
        co_return co_await fromSlideshow(std::move(request));
    co_return co_await fromFile(std::move(request));
}

Task<StaticPictures::Prepared> StaticPictures::fromFile(WallpaperApplyRequest request) {
    const auto look = request.mode.imagePresentation();
    if (!look) throw Error(Error::Case::unsupportedMode);
    const auto* image = std::get_if<ImagePresentationSettings>(&request.mode.value);
    if (!image) throw Error(Error::Case::unsupportedMode);
    const PictureSource source =
        co_await services_.executor.run([settings = *image] { return pictureSource(settings); });
    Prepared prepared{.picture = co_await services_.renderer.image(
                          source.file, look->layout, look->backgroundHexColor, "", request.display),
                      .outcome = {}};
    prepared.outcome.shown = pictureOf(request, source.file, *look);
    co_return prepared;
}

/// One file that is no picture must not end the show: it is passed over.
Task<StaticPictures::Prepared> StaticPictures::fromSlideshow(WallpaperApplyRequest request) {
    const auto look = request.mode.imagePresentation();
    auto slideshow = std::get<SlideshowPresentationSettings>(request.mode.value);
    WallpaperApplyOutcome outcome;
    UnreadablePictures passedOver;
    for (;;) {
        const PictureSource source = co_await nextOf(slideshow, passedOver);
        std::exception_ptr failure;
        try {
            GeneratedPicture picture = co_await services_.renderer.image(
                source.file, look->layout, look->backgroundHexColor, "", request.display);
            outcome.selectedSlideshowImageURL = source.selectedSlideshowImageURL;
            outcome.shown = pictureOf(request, source.file, *look);
            co_return Prepared{std::move(picture), std::move(outcome)};
        } catch (const CancellationError&) {
            throw;
        } catch (const std::exception&) {
            failure = std::current_exception();
        }
        if (!isFaultOfFile(failure)) std::rethrow_exception(failure);
        slideshow.lastImageURL = source.selectedSlideshowImageURL;
        UnreadablePictures& known = mayPassWithTime(failure) ? passedOver : unreadable_;
        known = co_await services_.executor.run(
            [known, url = *slideshow.lastImageURL] { return known.with(url); });
        outcome.leftOut.push_back(failure);
        if (outcome.leftOut.size() == maximumUnreadable) std::rethrow_exception(failure);
    }
}

Task<PictureSource> StaticPictures::nextOf(SlideshowPresentationSettings slideshow,
                                           UnreadablePictures passedOver) {
    co_return co_await services_.executor.run([settings = std::move(slideshow),
                                               random = services_.randomIndex, unreadable = unreadable_,
                                               passedOver, banned = services_.memory.banned()] {
        return pictureSource(settings, random, [&](const Url& image) {
            return banned.contains(image) || unreadable.contains(image) || passedOver.contains(image);
        });
    });
}

Task<StaticPictures::Prepared> StaticPictures::again(ShownPicture picture, DisplayInfo display) {
    WallpaperApplyOutcome outcome;
    outcome.shown = picture;
    if (picture.color) {
        GeneratedPicture made = co_await services_.renderer.solidColor(*picture.color, std::move(display));
        co_return Prepared{std::move(made), std::move(outcome)};
    }
    const auto file = picture.fileURL ? picture.fileURL->filePath() : std::nullopt;
    if (!file) throw Error(Error::Case::missingImage);
    const CacheFileLease sourceLease(services_.cacheFiles, *file);
    GeneratedPicture made = co_await services_.renderer.image(
        *file, picture.layout, picture.backgroundHexColor, picture.caption.value_or(""), std::move(display));
    co_return Prepared{std::move(made), std::move(outcome)};
}

Task<StaticPictures::Prepared> StaticPictures::fromService(WallpaperApplyRequest request) {
    const auto look = request.mode.imagePresentation();
    if (!look) throw Error(Error::Case::unsupportedMode);
    ResolvedRemoteImage source = co_await services_.remoteImages.resolveImage(
        request.mode, request.display, request.reason == WallpaperApplyReason::rotation,
        request.presentation);
    // What was downloaded once is not downloaded again, so that asking on costs little.
    for (int attempt = 1; isBanned(source.image); ++attempt) {
        if (attempt == maximumBanned) throw Error(Error::Case::remoteImagesInTrash);
        source = co_await services_.remoteImages.resolveImage(request.mode, request.display, true,
                                                              request.presentation);
    }
    Prepared prepared{
        .picture = co_await services_.renderer.image(source.image, look->layout, look->backgroundHexColor,
                                                     source.overlayCaption.value_or(""), request.display),
        .outcome = {}};
    prepared.outcome.selectionLease = leaseOf(source.windowsSpotlightSelection);
    prepared.outcome.windowsSpotlightSelection = source.windowsSpotlightSelection;
    prepared.outcome.shown = pictureOf(request, source.image, *look);
    prepared.outcome.shown->caption = source.overlayCaption;
    prepared.outcome.shown->credit = source.credit;
    co_return prepared;
}

bool StaticPictures::isBanned(const std::filesystem::path& file) const {
    return services_.memory.banned().contains(Url::fromFilePath(file));
}

std::optional<CacheFileLease> StaticPictures::leaseOf(
    const std::optional<WindowsSpotlightSelection>& selection) const {
    const auto file = selection ? selection->imageURL.filePath() : std::nullopt;
    if (!file) return std::nullopt;
    return CacheFileLease(services_.cacheFiles, *file);
}

}  // namespace quillmar

#include "panes/wallpaper/DraftPreview.h"

#include "async/Sleep.h"
#include "wallpaper/PictureSource.h"

namespace quillmar {
namespace {

/// What a slideshow begins with, whatever it is at now.
PictureSource firstPicture(SlideshowPresentationSettings settings) {
    settings.lastImageURL.reset();
    settings.shuffle = false;
    return pictureSource(settings, [](std::size_t) { return std::size_t{0}; }, {});
}

}  // namespace

bool DraftPreview::canDraw(WallpaperModeKind kind) { return natureOf(kind) == PresentationNature::still; }

void DraftPreview::show(const DisplayInfo& display, const WallpaperMode& mode) {
    Subject subject{display, mode};
    if (subject_ == subject) return;
    drawing_.cancel();
    subject_ = subject;
    drawing_ = tasks_.start(draw(std::move(subject)));
}

void DraftPreview::clear() {
    drawing_.cancel();
    drawing_.reset();
    subject_.reset();
    picture_ = {};
    failure_ = nullptr;
}

Task<void> DraftPreview::draw(Subject subject) {
    co_await sleepFor(pause);
    SharedPixels pixels;
    std::exception_ptr failure;
    try {
        pixels = co_await drawn(subject);
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception&) {
        failure = std::current_exception();
    }
    if (subject_ != subject) co_return;
    picture_ = {std::move(pixels), ++lastVersion_};
    failure_ = failure;
    drawing_.reset();
    changed_();
}

Task<SharedPixels> DraftPreview::drawn(Subject subject) {
    const auto& [display, mode] = subject;
    if (const auto* color = std::get_if<SolidColorPresentationSettings>(&mode.value))
        co_return co_await renderer_.smallColor(color->hexColor, display, longestSide);
    const PictureSource source = co_await files_.run([chosen = mode] {
        if (const auto* image = std::get_if<ImagePresentationSettings>(&chosen.value))
            return pictureSource(*image);
        return firstPicture(std::get<SlideshowPresentationSettings>(chosen.value));
    });
    const auto look = mode.imagePresentation();
    co_return co_await renderer_.smallImage(source.file, look->layout, look->backgroundHexColor, display,
                                            longestSide);
}

}  // namespace quillmar

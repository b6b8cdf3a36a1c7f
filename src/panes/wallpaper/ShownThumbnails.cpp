#include "panes/wallpaper/ShownThumbnails.h"

#include <algorithm>

#include "base/IsAmong.h"
#include "diagnostics/Log.h"

namespace quillmar {

void ShownThumbnails::refresh() {
    if (looking_ && !looking_.isFinished()) {
        looksAgain_ = true;
        return;
    }
    looking_ = tasks_.start(look());
}

void ShownThumbnails::clear() {
    looking_.cancel();
    looking_.reset();
    looksAgain_ = false;
    thumbnails_.clear();
}

SettingsPicture ShownThumbnails::of(const std::string& displayID) const {
    const auto found = thumbnails_.find(displayID);
    return found == thumbnails_.end() ? SettingsPicture{} : found->second.picture;
}

Task<void> ShownThumbnails::look() {
    do {
        looksAgain_ = false;
        const auto files = co_await services_.desktop.shown();
        const std::vector<DisplayInfo> displays = services_.displays.displays();
        std::erase_if(thumbnails_,
                      [&](const auto& each) { return !isAmong(each.first, displays, &DisplayInfo::id); });
        for (const DisplayInfo& display : displays) {
            const auto file = files.find(display.id);
            if (file != files.end()) co_await draw(display, file->second);
        }
    } while (looksAgain_);
}

Task<void> ShownThumbnails::draw(DisplayInfo display, std::filesystem::path file) {
    const PixelSize canvas = canvasSize(display);
    const auto known = thumbnails_.find(display.id);
    if (known != thumbnails_.end() && known->second.file == file && known->second.canvas == canvas) co_return;
    SharedPixels pixels;
    try {
        // A new picture is shown before its file is written.
        co_await services_.writer.settled(file);
        pixels = co_await services_.renderer.smallImage(file, ImagePresentationLayout::fill, "#000000",
                                                        display, longestSide);
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception&) {
        // The display stands there without a picture, which says as much.
        logInfo("What a display shows could not be drawn small.", "wallpaper");
    }
    co_await throwIfCancelled();
    thumbnails_.insert_or_assign(display.id, Thumbnail{file, canvas, {std::move(pixels), ++lastVersion_}});
    changed_();
}

}  // namespace quillmar

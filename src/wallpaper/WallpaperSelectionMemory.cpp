#include "wallpaper/WallpaperSelectionMemory.h"

namespace quillmar {

void WallpaperSelectionMemory::remember(const std::string& displayID, const WallpaperApplyOutcome& outcome) {
    pictures_.shows(displayID, outcome.shown);
    if (const auto& image = outcome.selectedSlideshowImageURL) {
        settingsModel_.update([displayID, image](AppSettings& settings) {
            auto* entry = findEntry(settings.wallpaper.displays, displayID);
            auto* slideshow =
                entry ? std::get_if<SlideshowPresentationSettings>(&entry->mode.value) : nullptr;
            if (slideshow) slideshow->lastImageURL = *image;
        });
    }
    if (auto selection = outcome.windowsSpotlightSelection) {
        // A remembered picture keeps the moment of its real change, so that its interval runs on.
        if (!selection->appliedAt) selection->appliedAt = clock_.now();
        settingsModel_.update([displayID, selection](AppSettings& settings) {
            auto* entry = findEntry(settings.wallpaper.displays, displayID);
            auto* spotlight = entry ? std::get_if<WindowsSpotlightSettings>(&entry->mode.value) : nullptr;
            if (spotlight && spotlight->locale == selection->locale) spotlight->lastSelection = *selection;
        });
    }
}

}  // namespace quillmar

#include "modes/WallpaperSettings.h"

namespace quillmar {

std::optional<WallpaperSettingsValidationIssue> WallpaperSettings::firstValidationIssue(
    const std::optional<DisplayIDs>& displayIDs, FileReadable isReadable) const {
    for (const DisplayWallpaperSettings& entry : displays) {
        if (displayIDs && !displayIDs->contains(entry.displayID)) continue;
        if (auto error = entry.mode.validationError(isReadable))
            return {{entry.displayID, *std::move(error)}};
    }
    return std::nullopt;
}

}  // namespace quillmar

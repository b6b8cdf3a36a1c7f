#include "modes/LockScreenSettings.h"

namespace quillmar {

std::optional<LockScreenSettingsValidationIssue> LockScreenSettings::firstValidationIssue(
    const std::optional<DisplayIDs>& displayIDs) const {
    for (const DisplayLockScreenSettings& entry : displays) {
        if (displayIDs && !displayIDs->contains(entry.displayID)) continue;
        if (auto error = entry.mode.wallpaperMode().validationError())
            return {{entry.displayID, *std::move(error)}};
    }
    return std::nullopt;
}

}  // namespace quillmar

#pragma once
#include <string>

#include "async/WallClock.h"
#include "settings/AppSettingsModel.h"
#include "wallpaper/WallpaperRequests.h"

namespace quillmar {

/// Writes down in the settings what an application chose by itself, unless they have moved on meanwhile. Main
/// thread.
class WallpaperSelectionMemory {
public:
    WallpaperSelectionMemory(AppSettingsModel& settingsModel, const WallClock& clock)
        : settingsModel_(settingsModel), clock_(clock) {}
    void remember(const std::string& displayID, const WallpaperApplyOutcome& outcome);

private:
    AppSettingsModel& settingsModel_;
    const WallClock& clock_;
};

}  // namespace quillmar

#pragma once
#include <string>

#include "async/WallClock.h"
#include "history/PictureMemory.h"
#include "settings/AppSettingsModel.h"
#include "wallpaper/WallpaperRequests.h"

namespace quillmar {

/// Writes down what an application has come to: what is shown in the memory of pictures, what it chose by
/// itself in the settings, unless they have moved on meanwhile. Main thread.
class WallpaperSelectionMemory {
public:
    WallpaperSelectionMemory(AppSettingsModel& settingsModel, PictureMemory& pictures, const WallClock& clock)
        : settingsModel_(settingsModel), pictures_(pictures), clock_(clock) {}
    void remember(const std::string& displayID, const WallpaperApplyOutcome& outcome);

private:
    AppSettingsModel& settingsModel_;
    PictureMemory& pictures_;
    const WallClock& clock_;
};

}  // namespace quillmar

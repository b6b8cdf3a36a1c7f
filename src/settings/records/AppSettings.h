#pragma once
#include <string>

#include "modes/LockScreenSettings.h"
#include "modes/ManagedScreensaverSettings.h"
#include "modes/WallpaperSettings.h"
#include "settings/records/CustomMenuSettings.h"
#include "settings/records/GeneralSettings.h"
#include "settings/records/HotCornerSettings.h"

namespace quillmar {

/// All that the user has configured: one document, copied freely and compared as a whole.
struct AppSettings {
    /// The version of the document's shape that this build writes and requires.
    static constexpr int requiredSchemaVersion = 1;

    int schemaVersion = requiredSchemaVersion;
    std::string lastLaunchedAppVersion;
    GeneralSettings general;
    WallpaperSettings wallpaper;
    LockScreenSettings lockScreen;
    ManagedScreensaverSettings screensaver;
    HotCornerSettings hotCorners;
    CustomMenuSettings customMenu;

    bool operator==(const AppSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("schemaVersion", self.schemaVersion)
            .required("lastLaunchedAppVersion", self.lastLaunchedAppVersion)
            .required("general", self.general)
            .required("wallpaper", self.wallpaper)
            .required("lockScreen", self.lockScreen)
            .required("screensaver", self.screensaver)
            .required("hotCorners", self.hotCorners)
            .required("customMenu", self.customMenu);
    }
};

}  // namespace quillmar

#pragma once
#include <optional>
#include <string>
#include <vector>

#include "base/Localization.h"
#include "base/WallTime.h"
#include "display/DisplayInfo.h"
#include "history/ShownPicture.h"
#include "modes/WallpaperMode.h"
#include "platform/LoginItemRegistering.h"
#include "updates/AvailableUpdate.h"

namespace quillmar {

/// When a display changes by itself.
struct RotationStatus {
    double intervalSeconds = 0;
    WallTime nextAttempt;
    double waitSeconds = 0;  ///< until then; never negative
    int consecutiveFailures = 0;

    static void describe(auto& self, auto& io) {
        io.required("intervalSeconds", self.intervalSeconds)
            .required("nextAttempt", self.nextAttempt)
            .required("waitSeconds", self.waitSeconds)
            .required("consecutiveFailures", self.consecutiveFailures);
    }
};

/// Why a display does not show what it is set to.
struct FailureStatus {
    std::string message;
    WallTime date;

    static void describe(auto& self, auto& io) {
        io.required("message", self.message).required("date", self.date);
    }
};

/// What one display is set to and shows.
struct WallpaperStatus {
    DisplayInfo display;
    WallpaperMode mode;
    std::optional<std::string> shows;     ///< file of the picture behind everything on the display
    std::optional<ShownPicture> picture;  ///< that it was given last, and what is known of it
    std::optional<RotationStatus> rotation;
    std::optional<FailureStatus> lastFailure;
    std::optional<std::vector<FailureStatus>> leftOut;  ///< files of the slideshow that cannot be shown

    static void describe(auto& self, auto& io) {
        io.required("display", self.display)
            .required("mode", self.mode)
            .optional("shows", self.shows)
            .optional("picture", self.picture)
            .optional("rotation", self.rotation)
            .optional("lastFailure", self.lastFailure)
            .optional("leftOut", self.leftOut);
    }
};

/// What the program does just now.
struct ProgramStatus {
    std::string version;
    bool areRotationsPaused = false;
    std::vector<WallpaperStatus> displays;
    std::optional<std::string> desktopFault;     ///< why no display can be given a picture
    std::optional<std::string> settingsFault;    ///< why the settings file cannot be read
    std::optional<std::string> saveFailure;      ///< why the latest change is not on disk
    std::optional<std::string> unsavedSettings;  ///< file of what an edit of the settings overtook
    LoginItemRegistrationStatus loginItem = LoginItemRegistrationStatus::notRegistered;
    std::optional<std::string> loginItemDifference;  ///< from the settings, for people
    std::optional<AvailableUpdate> update;           ///< that the last check found
    std::optional<std::string> updateFailure;        ///< why that check failed

    static void describe(auto& self, auto& io) {
        io.required("version", self.version)
            .required("areRotationsPaused", self.areRotationsPaused)
            .optional("desktopFault", self.desktopFault)
            .optional("settingsFault", self.settingsFault)
            .optional("saveFailure", self.saveFailure)
            .optional("unsavedSettings", self.unsavedSettings)
            .required("loginItem", self.loginItem)
            .optional("update", self.update)
            .optional("updateFailure", self.updateFailure)
            .required("displays", self.displays);
    }
};

/// A change, as "quillmar watch" says it: on one line, with the number of this format.
struct ChangeDocument {
    static constexpr int currentFormat = 1;
    std::string event;  ///< "display" or "status"
    int format = currentFormat;
    std::string version;
    std::optional<bool> areRotationsPaused;  ///< of "status"
    std::vector<WallpaperStatus> displays;   ///< of "display", the one that has changed

    static void describe(auto& self, auto& io) {
        io.required("event", self.event)
            .required("format", self.format)
            .required("version", self.version)
            .optional("areRotationsPaused", self.areRotationsPaused)
            .required("displays", self.displays);
    }
};
/// Keys of picture services are left out.
std::string changeAsJson(ChangeDocument change);

/// For scripts. Keys of picture services are left out.
std::string statusAsJson(ProgramStatus program);
/// For people: the program, then as `displaysStatusAsText`.
std::string statusAsText(const ProgramStatus& program, GeneralLanguage language);

/// The displays alone, as "quillmar wallpaper" says them.
std::string displaysStatusAsJson(ProgramStatus program);
/// What is known of the picture of each display; texts a line each, JSON as `displaysStatusAsJson`.
std::string infoAsText(const std::vector<WallpaperStatus>& displays, GeneralLanguage language);
/// A line or two for each display.
std::string displaysStatusAsText(const std::vector<WallpaperStatus>& displays, GeneralLanguage language);

}  // namespace quillmar

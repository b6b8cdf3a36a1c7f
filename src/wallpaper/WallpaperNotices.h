#pragma once
#include <exception>
#include <map>
#include <string>
#include <vector>

#include "async/WallClock.h"
#include "remote/RemoteWallpaperErrorNotifying.h"
#include "settings/AppSettingsModel.h"
#include "wallpaper/WallpaperRequests.h"

namespace quillmar {

struct WallpaperFailure {
    std::string message;
    WallTime date;
};

/// Tells of wallpapers that failed: the log, the user who wants to know, and whoever asks how each display
/// fares. Main thread.
class WallpaperNotices {
public:
    WallpaperNotices(const AppSettingsModel& settingsModel, const WallClock& clock,
                     RemoteWallpaperErrorNotifying* remoteErrorNotifier)
        : settingsModel_(settingsModel), clock_(clock), remoteErrorNotifier_(remoteErrorNotifier) {}

    /// What each display fails of at present, by display ID.
    const std::map<std::string, WallpaperFailure>& lastFailures() const { return lastFailures_; }
    void succeeded(const std::string& displayID) { lastFailures_.erase(displayID); }
    /// The files that each display's slideshow left out lately, by display ID.
    const std::map<std::string, std::vector<WallpaperFailure>>& leftOut() const { return leftOut_; }
    void leftOut(const std::string& displayID, const std::vector<std::exception_ptr>& reasons);
    /// The display was given other settings.
    void forgetLeftOut(const std::string& displayID) { leftOut_.erase(displayID); }
    void failed(const std::string& displayID, std::string message);
    /// `logMessage` says what was tried.
    Task<void> report(WallpaperApplyRequest request, std::exception_ptr error, std::string logMessage,
                      bool namesReason);
    static void reportRollback(const DisplayInfo& display, const std::exception_ptr& error);

private:
    const AppSettingsModel& settingsModel_;
    const WallClock& clock_;
    RemoteWallpaperErrorNotifying* remoteErrorNotifier_;  ///< null: nobody to tell
    std::map<std::string, WallpaperFailure> lastFailures_;
    std::map<std::string, std::vector<WallpaperFailure>> leftOut_;
};

}  // namespace quillmar

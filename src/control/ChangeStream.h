#pragma once
#include <map>
#include <optional>
#include <set>
#include <string>

#include "async/EventBus.h"
#include "async/TaskScope.h"
#include "control/WallpaperCommand.h"
#include "platform/ControlChannel.h"

namespace quillmar {

/// Tells whoever follows what changes: a display's picture or failure, the kinds of wallpapers, the pause,
/// the displays themselves. What changes in one turn of the loop, or while the channel is busy, is told once,
/// as it is by then. Main thread.
class ChangeStream {
public:
    struct Services {
        MainLoop& loop;
        EventBus& notifications;
        AppSettingsModel& settingsModel;
        const WallpaperCommand& wallpapers;
        ControlServing& channel;
        std::string version;
    };
    explicit ChangeStream(Services services);

    void displayDidChange(const std::string& displayID);
    void displaysDidChange();
    /// What a follower is told first: everything.
    ControlEvent present() const;

private:
    /// What of the settings is worth a word; what the program itself remembers there is not.
    struct Setup {
        bool areRotationsPaused = false;
        std::map<std::string, WallpaperModeKind> kinds;  ///< by display
        bool operator==(const Setup&) const = default;
    };
    Setup setup() const;
    void settingsDidChange();
    void tellSoon();
    Task<void> tellAll();
    /// Nothing of a display that is gone meanwhile, which the next status says.
    std::optional<ControlEvent> changeOf(const std::string& displayID) const;

    Services services_;
    Setup setup_;
    bool isStatusDue_ = false;
    std::set<std::string> due_;  ///< displays
    bool isTelling_ = false;
    EventBus::Observation observation_;
    TaskScope tasks_;
};

}  // namespace quillmar

#pragma once
#include <optional>

#include "async/TaskScope.h"
#include "async/Timer.h"
#include "async/WallClock.h"
#include "settings/AppSettingsModel.h"
#include "wallpaper/WallpaperCoordinator.h"
#include "wallpaper/WallpaperRotationSchedule.h"

namespace quillmar {

/// The one clock of all changes that wallpapers make by themselves: asks for each display when it is due, one
/// at a time, and sooner again after a failure. Main thread.
class WallpaperRotationCoordinator {
public:
    WallpaperRotationCoordinator(MainLoop& loop, EventBus& notifications, AppSettingsModel& settingsModel,
                                 WallpaperCoordinator& wallpaperCoordinator, const WallClock& clock);

    /// Begins to follow the settings; nothing when it does already.
    void start();
    /// Forgets every date. An attempt that is under way ends by itself, and nothing follows it.
    void stop();
    bool isMonitoring() const { return isMonitoring_; }
    /// Looks anew at the settings and the clock: after a change of either, and when the machine woke up.
    void reschedule();

    /// While the Lock Screen's pictures own the desktop nothing is due. Reschedules when that changes.
    void setSuspendedForLockScreen(bool isSuspended);
    const WallpaperRotationSchedule& schedule() const { return schedule_; }

private:
    Task<void> tick();
    Task<void> attempt(std::string displayID, int generation);
    bool arePaused() const { return settingsModel_.settings().general.pauseRotations; }

    EventBus& notifications_;
    AppSettingsModel& settingsModel_;
    WallpaperCoordinator& wallpaperCoordinator_;
    const WallClock& clock_;
    bool isMonitoring_ = false;
    int generation_ = 0;  ///< of the present monitoring: what an earlier one began counts no more
    bool isRotating_ = false;
    OneShotTimer timer_;
    WallpaperRotationSchedule schedule_;
    std::optional<bool> wasPaused_;  ///< absent until the first scheduling
    bool isSuspendedForLockScreen_ = false;
    EventBus::Observation observation_;
    TaskScope tasks_;
};

}  // namespace quillmar

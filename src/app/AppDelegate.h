#pragma once
#include <memory>
#include <optional>

#include "app/ApplicationInstanceLock.h"
#include "app/ApplicationMenuController.h"
#include "app/ApplicationQuitController.h"
#include "app/ApplicationStartupTask.h"
#include "app/ControlService.h"
#include "app/Ports.h"
#include "app/Subsystems.h"
#include "async/Timer.h"
#include "display/DisplayConfigurationChangeCoordinator.h"
#include "storage/CacheMaintenanceScheduler.h"

namespace quillmar {

/// Whether a wish to end comes from the system (a signal, the end of the session) or from somebody in it.
enum class QuitSource { system, other };

enum class TerminateReply { terminateNow, terminateCancel, terminateLater };

/// The process itself: one instance, the order in which everything starts, and the order in which it is
/// stopped and saved at quit. Main thread.
class AppDelegate {
public:
    AppDelegate(const Ports& platform, std::unique_ptr<ApplicationInstanceLock> instanceLock,
                ApplicationMenuController::Install installMenu);

    /// Whether this is the instance that does the work. A second one only brings the first to the front.
    bool isPrimary() const { return instanceLock_ != nullptr; }

    /// The two steps of launching, in order, once the loop is about to run.
    void applicationWillFinishLaunching();
    void applicationDidFinishLaunching();
    /// Asks the application to end; it does so in its own time, or not at all.
    void terminate(QuitSource source);
    /// The decision on a wish to end. `terminateLater`: the shut-down runs and ends the process, unless the
    /// user keeps it. One that is neither the system's nor explicit closes the Settings window instead, when
    /// that is open.
    TerminateReply applicationShouldTerminate(QuitSource source);
    ApplicationQuitController& quitController() { return quitController_; }
    /// The features; null until the primary instance has begun to launch, and always in a second one.
    Subsystems* subsystems() { return subsystems_.get(); }
    void applicationDidChangeScreenParameters();

private:
    Task<void> forwardActivation();
    Task<void> startUp();
    Task<void> showSettingsRecoveryAlert();
    Task<void> sweepCacheAtStart();
    Task<void> sweepCachePeriodically();
    std::optional<FilePaths> filesOfSettings() const;
    DisplayIDs displaysOfServices() const;
    void recallPicturesOfServices();
    void followNetwork();
    Task<void> retryFailedServices();
    Task<void> applyWallpapersAtStart();
    Task<TopologyApplyResult> applyWallpapers();
    Task<void> shutDown();
    Task<bool> keepsRunningAfterFailedSave();
    void resumeAfterCancelledTermination();
    bool isSettingsWindowVisible() const;
    DisplayConfigurationChangeCoordinator& displayCoordinator();
    void reportTopologyFailure(const TopologyApplyResult& result) const;

    Ports platform_;
    std::unique_ptr<ApplicationInstanceLock> instanceLock_;
    ApplicationMenuController applicationMenuController_;
    ApplicationQuitController quitController_;
    bool isPreparingToTerminate_ = false;
    std::unique_ptr<Subsystems> subsystems_;
    CacheMaintenanceScheduler cacheMaintenanceScheduler_;
    std::optional<ControlService> control_;
    std::optional<DisplayConfigurationChangeCoordinator> displayCoordinator_;
    OneShotTimer networkSettling_;
    ApplicationStartupTask startupTask_;
    TaskScope tasks_;
};

}  // namespace quillmar

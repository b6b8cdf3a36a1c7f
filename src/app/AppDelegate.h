#pragma once
#include <memory>
#include <optional>

#include "app/ApplicationQuitController.h"
#include "app/ApplicationStartupTask.h"
#include "app/AuxiliaryWindows.h"
#include "app/CacheUpkeep.h"
#include "app/ConfiguredWallpapers.h"
#include "app/LaunchSteps.h"
#include "app/Lives.h"
#include "app/Ports.h"
#include "app/Rotation.h"
#include "app/SettingsEdits.h"
#include "app/SoftwareUpdates.h"
#include "app/StatusItem.h"
#include "app/Subsystems.h"
#include "control/ControlService.h"
#include "panes/SettingsWindowModel.h"
#include "storage/ApplicationInstanceLock.h"

namespace quillmar {

/// Whether a wish to end comes from the system (a signal, the end of the session) or from somebody in it.
enum class QuitSource { system, other };

enum class TerminateReply { terminateNow, terminateCancel, terminateLater };

/// The process itself: one instance, the order in which everything starts, and the order in which it is
/// stopped and saved at quit. Main thread.
class AppDelegate {
public:
    AppDelegate(const Ports& ports, std::unique_ptr<ApplicationInstanceLock> instanceLock);
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;
    ~AppDelegate() { ports_.settingsWindow.setContent(nullptr); }

    /// Whether this is the instance that does the work. A second one only brings the first to the front.
    bool isPrimary() const { return instanceLock_ != nullptr; }

    /// The two steps of launching, in order, once the loop is about to run.
    void applicationWillFinishLaunching();
    void applicationDidFinishLaunching();
    /// Brings the Settings window to the front once the settings are loaded, at a section if one is named.
    /// Where it cannot be shown, the user is told.
    void openSettings(std::string section);
    /// Asks the application to end; it does so in its own time, or not at all.
    void terminate(QuitSource source);
    /// The decision on a wish to end. `terminateLater`: the shut-down runs and ends the process, unless the
    /// user keeps it. One that is neither the system's nor explicit closes the Settings window instead, when
    /// that is open.
    TerminateReply applicationShouldTerminate(QuitSource source);
    ApplicationQuitController& quitController() { return quitController_; }
    /// The features; null until the primary instance has begun to launch, and always in a second one.
    Subsystems* subsystems() { return subsystems_.get(); }

private:
    /// What runs in the primary instance, and the one list of it.
    struct Running {
        Running(const Ports& ports, Subsystems& subsystems, AuxiliaryWindows& windows, StatusItem::Ways ways);
        SettingsEdits edits;
        SoftwareUpdates updates;
        StatusItem statusItem;
        RememberedPictures remembered;
        LastShown lastShown;
        LastServicePictures lastPictures;
        CacheUpkeep cache;
        LaunchSteps launch;
        Rotation rotation;
        ConfiguredWallpapers wallpapers;
        NetworkRecovery network;
        Lives lives;
    };
    Task<void> forwardActivation();
    Task<void> startUp();
    Task<void> comeToFront();
    Task<void> showSettings(std::string section);
    Task<void> showOrTell(std::function<void()> show, TextKey title);
    /// Throws where there is no window to be had.
    void bringSettingsToFront(const std::string& section);
    Task<void> showSettingsRecoveryAlert();
    Task<void> shutDown();
    Task<bool> keepsRunningAfterFailedSave();

    Ports ports_;
    std::unique_ptr<ApplicationInstanceLock> instanceLock_;
    ApplicationQuitController quitController_;
    bool isPreparingToTerminate_ = false;
    bool isRecovering_ = false;  ///< the start is limited: the settings could not be read
    std::unique_ptr<Subsystems> subsystems_;
    std::optional<AuxiliaryWindows> windows_;
    std::optional<ControlService> control_;
    std::optional<SettingsWindowModel> settingsWindow_;
    std::optional<Running> running_;
    ApplicationStartupTask startupTask_;
    TaskScope tasks_;
};

}  // namespace quillmar

#include "app/AppDelegate.h"

#include "diagnostics/Log.h"
#include "settings/ReferencedFiles.h"
#include "storage/DesktopImageFiles.h"

namespace quillmar {
namespace {

/// From the first route to names that can be resolved.
constexpr std::chrono::seconds networkSettleDelay{3};

TopologyApplyResult summaryOf(const WallpaperApplyBatchResult& batch) {
    return {.hasFailure = batch.hasFailure(), .failureCount = batch.failedDisplayCount()};
}

}  // namespace

AppDelegate::AppDelegate(const Ports& platform, std::unique_ptr<ApplicationInstanceLock> instanceLock,
                         ApplicationMenuController::Install installMenu)
    : platform_(platform),
      instanceLock_(std::move(instanceLock)),
      applicationMenuController_(platform.bundle.displayName(), std::move(installMenu)),
      quitController_([this] { terminate(QuitSource::other); }),
      cacheMaintenanceScheduler_(platform.loop, [this] { return sweepCachePeriodically(); }),
      networkSettling_(platform.loop),
      startupTask_(platform.loop),
      tasks_(platform.loop) {}

void AppDelegate::applicationWillFinishLaunching() {
    platform_.systemEvents.setQuitHandler([this](SystemQuitReason) { terminate(QuitSource::system); });
    const std::string version = platform_.bundle.semanticVersion("unknown");
    if (isPrimary()) platform_.usageReporting.startCrashReporting("Quillmar@" + version);
    logInfo("Application diagnostics started.", "lifecycle", {{"version", version}});
    if (!isPrimary()) {
        logInfo("A running application instance was found; forwarding activation.", "lifecycle");
        tasks_.spawn(forwardActivation());
        return;
    }
    subsystems_ = std::make_unique<Subsystems>(platform_);
    applicationMenuController_.start(subsystems_->notifications, subsystems_->settingsModel);
    logInfo("Primary application instance acquired.", "lifecycle");
}

Task<void> AppDelegate::forwardActivation() {
    co_await platform_.runningInstances.activateOther();
    co_await platform_.flushLog();
    terminate(QuitSource::other);
}

void AppDelegate::applicationDidFinishLaunching() {
    if (!isPrimary()) return;
    platform_.screens.setChangeHandler([this] { applicationDidChangeScreenParameters(); });
    control_.emplace(platform_, *subsystems_, [this] { quitController_.requestQuit(); });
    platform_.control.serve([this](ControlCall call) { return control_->handle(std::move(call)); });
    platform_.runningInstances.publish(
        [] { logInfo("Another start asked this instance to come to the front.", "lifecycle"); });
    // The loop's time stands still while the machine sleeps; what fell due meanwhile is due now.
    platform_.systemEvents.setWakeHandler([this] { subsystems_->wallpaperRotation.reschedule(); });
    startupTask_.start(startUp());
}

Task<void> AppDelegate::startUp() {
    AppSettingsModel& model = subsystems_->settingsModel;
    co_await model.loaded();
    co_await throwIfCancelled();
    if (!model.canPersist()) co_await showSettingsRecoveryAlert();
    co_await throwIfCancelled();

    platform_.usageReporting.sendMessage("app_launch");
    platform_.usageReporting.sendMessage("display_count_" +
                                         std::to_string(subsystems_->displays.displays().size()));
    // Before the sweep, which spares what is shown.
    recallPicturesOfServices();
    co_await sweepCacheAtStart();
    co_await subsystems_->remoteImageFetcher.removeLeftovers();
    cacheMaintenanceScheduler_.start();
    co_await throwIfCancelled();

    if (!model.canPersist()) {
        logWarning("Application startup is limited until settings are recovered.", "lifecycle");
        co_return;
    }

    subsystems_->wallpaperRotation.start();
    co_await throwIfCancelled();
    co_await applyWallpapersAtStart();
    // Only now: the first application itself must not look like a change of the arrangement.
    displayCoordinator().start();
    followNetwork();
    logInfo("Application startup completed.", "lifecycle");
}

Task<void> AppDelegate::sweepCacheAtStart() {
    const CacheSweepResult swept = co_await subsystems_->cacheMaintenance.sweep(
        filesOfSettings(), desktopImageFiles(platform_.screens, platform_.desktopPicture),
        platform_.clock.now());
    co_await throwIfCancelled();
    if (swept.removedItems == 0) co_return;
    logInfo("Startup cache maintenance completed.", "cache",
            {{"removed_items", std::to_string(swept.removedItems)},
             {"reclaimed_bytes", std::to_string(swept.reclaimedBytes)}});
}

Task<void> AppDelegate::sweepCachePeriodically() {
    co_await subsystems_->cacheMaintenance.periodicSweep(
        filesOfSettings(), desktopImageFiles(platform_.screens, platform_.desktopPicture),
        platform_.clock.now());
}

/// Nothing when the settings could not be read: what they refer to is then unknown.
std::optional<FilePaths> AppDelegate::filesOfSettings() const {
    const AppSettingsModel& model = subsystems_->settingsModel;
    if (!model.canPersist()) return std::nullopt;
    return referencedFiles(model.settings());
}

DisplayIDs AppDelegate::displaysOfServices() const {
    const auto& entries = subsystems_->settingsModel.settings().wallpaper.displays;
    DisplayIDs ids;
    for (const DisplayInfo& display : subsystems_->displays.displays()) {
        const auto* entry = findEntry(entries, display.id);
        if (entry && isRemote(entry->mode.kind())) ids.insert(display.id);
    }
    return ids;
}

/// A service may take its time or be out of reach: until it answers, its displays show what they showed last.
void AppDelegate::recallPicturesOfServices() {
    for (const std::string& id : displaysOfServices()) subsystems_->wallpaperService.recallDesktop(id);
}

/// At login, and after the machine was moved, the network is often there later than its user.
void AppDelegate::followNetwork() {
    platform_.systemEvents.setNetworkHandler([this] {
        networkSettling_.set(networkSettleDelay, [this] { tasks_.spawn(retryFailedServices()); });
    });
}

Task<void> AppDelegate::retryFailedServices() {
    WallpaperCoordinator& wallpapers = subsystems_->wallpaperCoordinator;
    DisplayIDs failed = displaysOfServices();
    std::erase_if(failed, [&](const std::string& id) { return !wallpapers.lastFailures().contains(id); });
    if (!failed.empty()) co_await wallpapers.enqueue(std::move(failed), WallpaperApplyReason::userInitiated);
}

Task<void> AppDelegate::applyWallpapersAtStart() {
    const WallpaperApplyBatchResult batch =
        co_await subsystems_->wallpaperCoordinator.enqueue(std::nullopt, WallpaperApplyReason::userInitiated);
    co_await throwIfCancelled();
    if (!batch.hasFailure() || subsystems_->wallpaperGate.isLockScreenOverrideActive) co_return;
    logError("One or more wallpapers failed to apply during startup.", "wallpaper", nullptr,
             {{"failure_count", std::to_string(batch.failedDisplayCount())}});
}

Task<void> AppDelegate::showSettingsRecoveryAlert() {
    // The user's language is in the settings that could not be read, so the system's has to do.
    const GeneralLanguage language = preferredLanguage(platform_.preferredLanguages);
    const std::string details = subsystems_->settingsModel.loadError().value_or("Unknown error");
    Alert alert;
    alert.style = Alert::Style::critical;
    alert.title = localized("Quillmar Couldn’t Load Settings"_key, language);
    alert.text = localized(
        "Quillmar could not read its settings and has started in recovery mode. Only Settings and Quit are "
        "available. "
        "Open Backup / Restore, restore a backup or reset all settings, then restart Quillmar. Restarting "
        "before "
        "recovery will not fix the problem.\n\nDetails: %@"_key,
        language, {details});
    alert.buttons = {localized("Open Backup / Restore"_key, language), localized("Not Now"_key, language)};
    constexpr std::size_t openButton = 0;
    const std::size_t answer = co_await platform_.alerts.runModal(std::move(alert));
    if (answer == openButton && platform_.settingsWindow) platform_.settingsWindow->open("backup");
}

void AppDelegate::applicationDidChangeScreenParameters() {
    if (isPrimary()) displayCoordinator().screenParametersDidChange();
}

DisplayConfigurationChangeCoordinator& AppDelegate::displayCoordinator() {
    if (!displayCoordinator_) {
        displayCoordinator_.emplace(
            platform_.loop, subsystems_->displays,
            DisplayConfigurationChangeCoordinator::Actions{
                .isWallpaperApplicationSuppressed =
                    [this] { return subsystems_->wallpaperGate.isLockScreenOverrideActive; },
                .applyWallpaper = [this] { return applyWallpapers(); },
                .reportFailure = [this](const TopologyApplyResult& result) { reportTopologyFailure(result); },
                .topologyDidChange = [] {},
            },
            DisplayConfigurationChangeCoordinator::Delays{});
    }
    return *displayCoordinator_;
}

Task<TopologyApplyResult> AppDelegate::applyWallpapers() {
    recallPicturesOfServices();
    co_return summaryOf(co_await subsystems_->wallpaperCoordinator.enqueue(
        std::nullopt, WallpaperApplyReason::userInitiated));
}

void AppDelegate::reportTopologyFailure(const TopologyApplyResult& result) const {
    if (subsystems_->wallpaperGate.isLockScreenOverrideActive) return;
    logError("One or more wallpapers failed after a display topology change.", "wallpaper", nullptr,
             {{"failure_count", std::to_string(result.failureCount)}});
}

void AppDelegate::terminate(QuitSource source) {
    if (applicationShouldTerminate(source) == TerminateReply::terminateNow) platform_.process.exit(0);
}

bool AppDelegate::isSettingsWindowVisible() const {
    return platform_.settingsWindow && platform_.settingsWindow->isVisible();
}

TerminateReply AppDelegate::applicationShouldTerminate(QuitSource source) {
    if (!isPrimary()) return TerminateReply::terminateNow;
    if (isPreparingToTerminate_) return TerminateReply::terminateLater;
    const bool isExplicit = quitController_.takePendingExplicitQuitRequest();
    if (isSettingsWindowVisible() && !isExplicit && source != QuitSource::system) {
        logInfo("External quit request closed Settings without terminating the program.", "lifecycle");
        platform_.settingsWindow->performClose();
        return TerminateReply::terminateCancel;
    }
    isPreparingToTerminate_ = true;
    startupTask_.cancel();
    tasks_.spawn(shutDown());
    return TerminateReply::terminateLater;
}

Task<void> AppDelegate::shutDown() {
    cacheMaintenanceScheduler_.stop();
    displayCoordinator().stop();
    platform_.systemEvents.setNetworkHandler({});
    networkSettling_.cancel();
    subsystems_->wallpaperRotation.stop();
    subsystems_->restoreFollowing.stop();

    AppSettingsModel& model = subsystems_->settingsModel;
    bool isSaved = false;
    {
        const auto hold = co_await model.transactionGate().acquire();
        isSaved = co_await model.flushPendingSave();
    }
    if (!isSaved && co_await keepsRunningAfterFailedSave()) {
        isPreparingToTerminate_ = false;
        resumeAfterCancelledTermination();
        co_return;
    }
    logInfo("Application is terminating.", "lifecycle");
    co_await platform_.flushLog();
    platform_.process.exit(0);
}

Task<bool> AppDelegate::keepsRunningAfterFailedSave() {
    const AppSettingsModel& model = subsystems_->settingsModel;
    const GeneralLanguage language = model.settings().general.language;
    logError("Settings could not be saved while quitting.", "settings", nullptr,
             {{"has_save_error", model.saveError() ? "true" : "false"}});
    Alert alert;
    alert.style = Alert::Style::warning;
    alert.title = localized("Quillmar Couldn’t Save Settings"_key, language);
    alert.text = model.saveError().value_or(localized(
        "Your latest settings could not be saved. You can cancel quitting and try again, or quit without "
        "saving those changes."_key,
        language));
    alert.buttons = {localized("Cancel"_key, language), localized("Quit Without Saving"_key, language)};
    constexpr std::size_t cancelButton = 0;
    co_return co_await platform_.alerts.runModal(std::move(alert)) == cancelButton;
}

void AppDelegate::resumeAfterCancelledTermination() {
    cacheMaintenanceScheduler_.start();
    displayCoordinator().start();
    followNetwork();
    subsystems_->wallpaperRotation.start();
    logInfo("Application termination was cancelled.", "lifecycle");
}

}  // namespace quillmar

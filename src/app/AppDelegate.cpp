#include "app/AppDelegate.h"

#include "app/ControlServices.h"
#include "diagnostics/Log.h"

namespace quillmar {
namespace {

Task<void> ask(AlertPresenting* alerts, Alert alert, std::optional<std::size_t>* answer) {
    *answer = co_await alerts->runModal(std::move(alert));
}

}  // namespace

/// The start is in the order of the list. At the end the cache is left alone first, and nothing may follow
/// the displays any more before what changes by itself stops.
AppDelegate::Running::Running(const Ports& ports, Subsystems& subsystems, AuxiliaryWindows& windows,
                              StatusItem::Ways ways)
    : edits(ports, subsystems),
      updates(subsystems.softwareUpdates),
      statusItem(ports, subsystems, std::move(ways)),
      remembered(subsystems.pictureMemory),
      lastShown(subsystems.lastShownKeeper),
      lastPictures(subsystems),
      cache(ports, subsystems),
      launch(ports, subsystems, windows),
      rotation(subsystems.wallpaperRotation, subsystems.restoreFollowing),
      wallpapers(ports, subsystems, lastPictures),
      network(ports, subsystems),
      lives({
          {.life = &edits, .stopPlace = 6, .resumePlace = 6},
          {.life = &updates, .stopPlace = 8, .resumePlace = 8},
          // Nothing is asked for any more once the rest begins to stop.
          {.life = &statusItem, .stopPlace = 0, .resumePlace = 6},
          // What must not come again is known before anything is shown.
          {.life = &remembered, .stopPlace = 6, .resumePlace = 6},
          {.life = &lastShown, .stopPlace = 5, .resumePlace = 5},
          // The sweep spares what is shown, so that comes before it.
          {.life = &lastPictures, .stopPlace = 0, .resumePlace = 0},
          {.life = &cache, .stopPlace = 1, .resumePlace = 1},
          {.life = &launch, .stopPlace = 7, .resumePlace = 7},
          {.life = &rotation, .stopPlace = 4, .resumePlace = 3},
          {.life = &wallpapers, .stopPlace = 2, .resumePlace = 2},
          {.life = &network, .stopPlace = 3, .resumePlace = 4},
      }) {}

AppDelegate::AppDelegate(const Ports& ports, std::unique_ptr<ApplicationInstanceLock> instanceLock)
    : ports_(ports),
      instanceLock_(std::move(instanceLock)),
      quitController_([this] { terminate(QuitSource::other); }),
      startupTask_(ports.loop),
      tasks_(ports.loop) {}

void AppDelegate::applicationWillFinishLaunching() {
    ports_.systemEvents.setQuitHandler([this](SystemQuitReason) { terminate(QuitSource::system); });
    const std::string version = ports_.bundle.semanticVersion("unknown");
    if (isPrimary()) ports_.usageReporting.startCrashReporting("Quillmar@" + version);
    logInfo("Application diagnostics started.", "lifecycle", {{"version", version}});
    if (!isPrimary()) {
        logInfo("A running application instance was found; forwarding activation.", "lifecycle");
        tasks_.spawn(forwardActivation());
        return;
    }
    subsystems_ = std::make_unique<Subsystems>(ports_);
    windows_.emplace(ports_, *subsystems_, [this](const std::string& section) { openSettings(section); });
    running_.emplace(
        ports_, *subsystems_, *windows_,
        StatusItem::Ways{.carryOut = [this](ControlCall call) { return control_->handle(std::move(call)); },
                         // As from the window: what is not applied there is asked about.
                         .quit = [this] { settingsWindow_->quit(); },
                         .openSettings = [this] { openSettings({}); }});
    logInfo("Primary application instance acquired.", "lifecycle");
}

Task<void> AppDelegate::forwardActivation() {
    co_await ports_.runningInstances.activateOther();
    co_await ports_.flushLog();
    terminate(QuitSource::other);
}

void AppDelegate::applicationDidFinishLaunching() {
    if (!isPrimary()) return;
    ports_.screens.setChangeHandler([this] {
        running_->wallpapers.screenParametersDidChange();
        running_->statusItem.displaysDidChange();
        control_->displaysDidChange();
        settingsWindow_->displaysDidChange();
    });
    const ApplicationWishes wishes{
        .quit = [this] { quitController_.requestQuit(); },
        .isRecovering = [this] { return isRecovering_; },
        .openSettings = [this](const std::string& section) { bringSettingsToFront(section); },
        .openChangelog =
            [this] {
                tasks_.spawn(
                    showOrTell([this] { windows_->showChangelog(); }, "The changelog cannot be shown"_key));
            }};
    control_.emplace(controlServices(ports_, *subsystems_, wishes));
    settingsWindow_.emplace(settingsWindowServices(ports_, *subsystems_, wishes));
    ports_.settingsWindow.setContent(&*settingsWindow_);
    ports_.control.serve([this](ControlCall call) { return control_->handle(std::move(call)); });
    ports_.runningInstances.publish([this] {
        logInfo("Another start asked this instance to come to the front.", "lifecycle");
        tasks_.spawn(comeToFront());
    });
    // The loop's time stands still while the machine sleeps; what fell due meanwhile is due now.
    ports_.systemEvents.setWakeHandler([this] {
        subsystems_->wallpaperRotation.reschedule();
        subsystems_->softwareUpdates.reschedule();
    });
    running_->statusItem.appear();
    startupTask_.start(startUp());
}

Task<void> AppDelegate::startUp() {
    AppSettingsModel& model = subsystems_->settingsModel;
    co_await model.loaded();
    co_await throwIfCancelled();
    isRecovering_ = !model.canPersist();
    co_await running_->edits.start();
    if (isRecovering_) co_await showSettingsRecoveryAlert();
    co_await throwIfCancelled();

    ports_.usageReporting.sendMessage("app_launch");
    ports_.usageReporting.sendMessage("display_count_" +
                                      std::to_string(subsystems_->displays.displays().size()));
    co_await running_->lives.start(isRecovering_);
    if (isRecovering_) {
        logWarning("Application startup is limited until settings are recovered.", "lifecycle");
    } else {
        logInfo("Application startup completed.", "lifecycle");
    }
}

Task<void> AppDelegate::showSettingsRecoveryAlert() {
    // The user's language is in the settings that could not be read, so the system's has to do.
    const GeneralLanguage language = preferredLanguage(ports_.preferredLanguages);
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
    std::optional<std::size_t> answer;
    TaskScope asking(ports_.loop);
    const TaskHandle<void> question = asking.start(ask(&ports_.alerts, std::move(alert), &answer));
    // Settings that were restored or mended meanwhile leave nothing to be asked.
    const auto closing =
        subsystems_->notifications.observe<AppSettings>(appSettingsDidChange, [&](const AppSettings&) {
            if (subsystems_->settingsModel.canPersist()) question.cancel();
        });
    co_await question.ended();
    if (answer == openButton) openSettings("backup");
}

void AppDelegate::bringSettingsToFront(const std::string& section) {
    ports_.settingsWindow.open(section);
    windows_->settingsAreOpening();
    ports_.usageReporting.sendMessage("settings_opened");
}

void AppDelegate::openSettings(std::string section) {
    if (isPrimary()) tasks_.spawn(showSettings(std::move(section)));
}

/// Somebody started the program again: to see it.
Task<void> AppDelegate::comeToFront() {
    co_await subsystems_->settingsModel.loaded();
    if (!windows_->activate()) co_await showSettings({});
}

Task<void> AppDelegate::showSettings(std::string section) {
    co_await subsystems_->settingsModel.loaded();
    co_await showOrTell([this, section] { bringSettingsToFront(section); },
                        "The Settings window cannot be shown"_key);
}

/// Shows a window that the user asked for, or says with that title why there is none.
Task<void> AppDelegate::showOrTell(std::function<void()> show, TextKey title) {
    std::optional<std::string> failure;
    const GeneralLanguage language = subsystems_->settingsModel.settings().general.language;
    try {
        show();
    } catch (const AppLocalizableError& error) {
        failure = error.message(language);
    }
    if (!failure) co_return;
    Alert alert{.title = localized(title, language), .text = *failure};
    alert.buttons = {localized("OK"_key, language)};
    co_await ports_.alerts.runModal(std::move(alert));
}

void AppDelegate::terminate(QuitSource source) {
    if (applicationShouldTerminate(source) == TerminateReply::terminateNow) ports_.process.exit(0);
}

TerminateReply AppDelegate::applicationShouldTerminate(QuitSource source) {
    if (!isPrimary()) return TerminateReply::terminateNow;
    if (isPreparingToTerminate_) return TerminateReply::terminateLater;
    const bool isExplicit = quitController_.takePendingExplicitQuitRequest();
    if (ports_.settingsWindow.isVisible() && !isExplicit && source != QuitSource::system) {
        logInfo("External quit request closed Settings without terminating the program.", "lifecycle");
        ports_.settingsWindow.performClose();
        return TerminateReply::terminateCancel;
    }
    isPreparingToTerminate_ = true;
    startupTask_.cancel();
    tasks_.spawn(shutDown());
    return TerminateReply::terminateLater;
}

Task<void> AppDelegate::shutDown() {
    co_await running_->lives.stop();
    AppSettingsModel& model = subsystems_->settingsModel;
    bool isSaved = false;
    {
        const auto hold = co_await model.transactionGate().acquire();
        isSaved = co_await model.flushPendingSave();
    }
    if (!isSaved && co_await keepsRunningAfterFailedSave()) {
        isPreparingToTerminate_ = false;
        running_->lives.resume();
        logInfo("Application termination was cancelled.", "lifecycle");
        co_return;
    }
    logInfo("Application is terminating.", "lifecycle");
    co_await ports_.flushLog();
    ports_.process.exit(0);
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
    alert.closingButton = cancelButton;
    co_return co_await ports_.alerts.runModal(std::move(alert)) == cancelButton;
}

}  // namespace quillmar

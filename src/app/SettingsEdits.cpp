#include "app/SettingsEdits.h"

#include <algorithm>

#include "diagnostics/Log.h"
#include "settings/SettingsStore.h"

namespace quillmar {
namespace {

/// From the last step of whoever writes the file to our look, and from the first one at most.
constexpr std::chrono::milliseconds settleDelay{300};
constexpr std::chrono::seconds longestSettling{2};
constexpr const char* notification = "com.quillmar.settings-file";

/// What the user chose, without what the program remembers beside it.
WallpaperMode chosen(WallpaperMode mode) {
    if (auto* slideshow = std::get_if<SlideshowPresentationSettings>(&mode.value))
        slideshow->lastImageURL.reset();
    if (auto* spotlight = std::get_if<WindowsSpotlightSettings>(&mode.value))
        spotlight->lastSelection.reset();
    return mode;
}

WallpaperMode chosenFor(const std::string& displayID, const WallpaperSettings& settings) {
    const auto* entry = findEntry(settings.displays, displayID);
    return entry ? chosen(entry->mode) : WallpaperMode{};
}

}  // namespace

SettingsEdits::SettingsEdits(const Ports& ports, Subsystems& subsystems)
    : ports_(ports), subsystems_(subsystems), settling_(ports.loop), tasks_(ports.loop) {}

Task<void> SettingsEdits::start() {
    begin();
    co_return;
}

void SettingsEdits::begin() {
    if (std::exchange(isFollowing_, true)) return;
    EventBus& notifications = subsystems_.notifications;
    edits_ = notifications.observe<SettingsTakeover>(
        settingsWereTakenOver, [this](const SettingsTakeover& takeover) { tasks_.spawn(show(takeover)); });
    faults_ = notifications.observe<std::string>(
        settingsFileBroke, [this](const std::string& reason) { tasks_.spawn(say(reason)); });
    changes_ = notifications.observe<AppSettings>(appSettingsDidChange, [this](const AppSettings&) {
        if (isFaultShown_ && subsystems_.settingsModel.canPersist()) tasks_.spawn(takeBack());
    });
    ports_.settingsWatch.watch(applicationSupportDirectoryOrNowhere(ports_.environment) / settingsFileName,
                               [this] { fileDidChange(); });
    ports_.systemEvents.setReloadHandler([this] { tasks_.spawn(look()); });
    // What was written between the load and now.
    tasks_.spawn(look());
}

Task<void> SettingsEdits::stop() {
    isFollowing_ = false;
    ports_.settingsWatch.watch({}, {});
    ports_.systemEvents.setReloadHandler({});
    settling_.cancel();
    edits_.cancel();
    faults_.cancel();
    changes_.cancel();
    co_return;
}

void SettingsEdits::fileDidChange() {
    const TimePoint now = ports_.loop.now();
    if (!firstChange_) firstChange_ = now;
    // Somebody who writes without a pause is looked at all the same.
    const Duration rest = std::max<Duration>(*firstChange_ + longestSettling - now, Duration::zero());
    settling_.set(std::min<Duration>(settleDelay, rest), [this] { tasks_.spawn(look()); });
}

Task<void> SettingsEdits::look() {
    firstChange_.reset();
    const auto hold = co_await subsystems_.settingsModel.transactionGate().acquire();
    co_await subsystems_.settingsModel.followFile();
}

Task<void> SettingsEdits::show(SettingsTakeover takeover) {
    // A start that was limited by unreadable settings stays so until the next one.
    if (!subsystems_.wallpaperRotation.isMonitoring()) co_return;
    const AppSettings& present = subsystems_.settingsModel.settings();
    if (present.general.launchAtLogin != takeover.former.general.launchAtLogin) {
        if (const auto failure =
                co_await subsystems_.restoreFollowing.updateLoginItem(present.general.launchAtLogin))
            logWarning("The login item of the edited settings could not be updated.", "login-item", nullptr,
                       {{"error", *failure}});
    }
    if (present.lockScreen != takeover.former.lockScreen)
        subsystems_.restoreFollowing.lockScreenSettingsDidChange();
    DisplayIDs changed;
    for (const DisplayInfo& display : subsystems_.displays.displays()) {
        const WallpaperMode before = chosenFor(display.id, takeover.former.wallpaper);
        if (chosenFor(display.id, present.wallpaper) != before) changed.insert(display.id);
    }
    if (changed.empty()) co_return;
    const WallpaperApplyBatchResult batch = co_await subsystems_.wallpaperCoordinator.enqueue(
        std::move(changed), WallpaperApplyReason::userInitiated);
    if (batch.hasFailure()) {
        logWarning("One or more wallpapers of the edited settings failed to apply.", "wallpaper", nullptr,
                   {{"failure_count", std::to_string(batch.failedDisplayCount())}});
    }
}

/// Who edits a file by hand looks at no log.
Task<void> SettingsEdits::say(std::string reason) {
    const GeneralLanguage language = subsystems_.settingsModel.settings().general.language;
    co_await takeBack();
    isFaultShown_ = true;
    try {
        co_await ports_.notificationCenter.add(
            {notification, localized("Quillmar cannot read its settings"_key, language), std::move(reason)});
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception&) {  // nobody shows notifications; the log and every command say it too
    }
}

Task<void> SettingsEdits::takeBack() {
    if (std::exchange(isFaultShown_, false)) co_await ports_.notificationCenter.removeDelivered(notification);
}

}  // namespace quillmar

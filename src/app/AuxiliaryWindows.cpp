#include "app/AuxiliaryWindows.h"

#include <memory>

#include "async/WaitList.h"
#include "diagnostics/Log.h"

namespace quillmar {

AuxiliaryWindows::AuxiliaryWindows(const Ports& ports, Subsystems& subsystems,
                                   std::function<void(const std::string&)> openSettings)
    : ports_(ports),
      firstRun_({.notifications = subsystems.notifications,
                 .settingsModel = subsystems.settingsModel,
                 .window = ports.welcomeWindow,
                 .sendAnalytics = [&usage = ports.usageReporting](
                                      const std::string& message) { usage.sendMessage(message); },
                 .openSettings = std::move(openSettings)}),
      changelog_(subsystems.notifications, subsystems.settingsModel, ports.changelogWindow) {}

Task<void> AuxiliaryWindows::welcome() {
    if (ports_.settingsWindow.isVisible()) co_return;
    if (!ports_.isStartedByPerson) {
        isWelcomeDue_ = true;
        co_return;
    }
    struct Dismissal {
        bool isOver = false;
        WaitList waiting;
    };
    // Shared: the welcome may outlive a start that a quit has ended.
    const auto dismissal = std::make_shared<Dismissal>();
    const bool isShown = showWelcome([dismissal] {
        dismissal->isOver = true;
        dismissal->waiting.resumeAll();
    });
    while (isShown && !dismissal->isOver) co_await dismissal->waiting.wait();
}

bool AuxiliaryWindows::activate() {
    if (firstRun_.isVisible()) {
        firstRun_.bringToFront();
        return true;
    }
    return std::exchange(isWelcomeDue_, false) && showWelcome({});
}

bool AuxiliaryWindows::showWelcome(std::function<void()> onDismiss) {
    try {
        firstRun_.show(std::move(onDismiss));
    } catch (const AppLocalizableError&) {
        logWarning("The welcome could not be shown.", "lifecycle", std::current_exception());
        return false;
    }
    ports_.usageReporting.sendMessage("welcome_shown");
    return true;
}

void AuxiliaryWindows::settingsAreOpening() {
    isWelcomeDue_ = false;
    firstRun_.settingsAreOpening();
}

void AuxiliaryWindows::tellWhatIsNew() {
    try {
        changelog_.show();
    } catch (const AppLocalizableError&) {
        logWarning("The changelog could not be shown.", "lifecycle", std::current_exception());
        return;
    }
    ports_.usageReporting.sendMessage("changelog_shown");
}

}  // namespace quillmar

#pragma once
#include "async/EventBus.h"
#include "platform/PageWindow.h"
#include "settings/AppSettingsModel.h"

namespace quillmar {

/// The window that tells what every version brought. Main thread.
class ChangelogWindowController {
public:
    ChangelogWindowController(EventBus& notifications, const AppSettingsModel& settingsModel,
                              ChangelogWindowing& window);
    ChangelogWindowController(const ChangelogWindowController&) = delete;
    ChangelogWindowController& operator=(const ChangelogWindowController&) = delete;
    ~ChangelogWindowController() { window_.setWishHandler({}); }

    /// Throws `AppLocalizableError` where there is no window to be had.
    void show() { window_.show(page()); }
    ChangelogPage page() const;

private:
    const AppSettingsModel& settingsModel_;
    ChangelogWindowing& window_;
    EventBus::Observation changes_;
};

}  // namespace quillmar

#pragma once
#include <functional>
#include <optional>
#include <string>

#include "async/EventBus.h"
#include "panes/FirstRunChoices.h"
#include "platform/PageWindow.h"
#include "settings/AppSettingsModel.h"

namespace quillmar {

/// The welcome of a first run: what can be set up, and the way there. Main thread.
class FirstRunWindowController {
public:
    struct Services {
        EventBus& notifications;
        const AppSettingsModel& settingsModel;
        WelcomeWindowing& window;
        std::function<void(const std::string& message)> sendAnalytics;
        std::function<void(const std::string& section)> openSettings;  ///< empty: where it was last
    };
    explicit FirstRunWindowController(Services services);
    FirstRunWindowController(const FirstRunWindowController&) = delete;
    FirstRunWindowController& operator=(const FirstRunWindowController&) = delete;
    ~FirstRunWindowController() { services_.window.setWishHandler({}); }

    /// Shows the welcome, or brings it to the front. `onDismiss` is called once, when it closes. Throws
    /// `AppLocalizableError` where there is no window to be had, and then it is not called.
    void show(std::function<void()> onDismiss);
    void bringToFront();
    bool isVisible() const { return services_.window.isVisible(); }
    /// Settings are opened in another way: that is where the welcome leads to, so it closes.
    void settingsAreOpening();

    WelcomePage page() const;

private:
    void act(const std::string& wish);
    void finish(AnalyticsWelcomeTask task);
    GeneralLanguage language() const { return services_.settingsModel.settings().general.language; }

    Services services_;
    std::function<void()> onDismiss_;
    bool completionRecorded_ = false;  ///< of this showing
    EventBus::Observation changes_;
};

}  // namespace quillmar

#pragma once
#include <functional>
#include <optional>

#include "async/TaskScope.h"
#include "async/Timer.h"
#include "display/DisplayInfo.h"
#include "history/PictureMemory.h"
#include "platform/AlertPresenting.h"
#include "platform/ControlChannel.h"
#include "settings/AppSettingsModel.h"
#include "statusitem/StatusItemMenu.h"

namespace quillmar {

/// The program's icon in the panel: what its clicks do, and its menu. It is there before the settings are
/// read, and every answer looks at how far they are. Main thread.
class StatusItemController final : public StatusIconAnswering {
public:
    struct Services {
        MainLoop& loop;
        EventBus& notifications;
        AppSettingsModel& settingsModel;
        StatusIconShowing& icon;
        AlertPresenting& alerts;
        const DisplayProviding& displays;
        const PictureMemory& pictures;
        std::function<Task<ControlReply>(ControlCall)> carryOut;
        std::function<void()> quit;  ///< the user's explicit wish to end
        std::function<void()> openSettings;
    };
    explicit StatusItemController(Services services);
    StatusItemController(const StatusItemController&) = delete;
    StatusItemController& operator=(const StatusItemController&) = delete;
    ~StatusItemController() override { hide(); }

    /// Nothing while it is shown.
    void show();
    void hide();
    /// To be told when monitors came, went or were moved.
    void displaysDidChange();

    void clicked(const StatusIconClick& click) override;
    StatusMenu contextMenu() override;
    void contextMenuWillShow() override { pendingLeftClick_.cancel(); }
    void chosen(int command) override;

private:
    /// What the icon and its menu take from the settings, to see what a change is about.
    struct ObservedSettings {
        StatusItemReadiness readiness = StatusItemReadiness::loading;
        GeneralLanguage language = GeneralLanguage::english;
        bool showsColorfulStatusIcon = false;
        bool pausesRotations = false;
        bool operator==(const ObservedSettings&) const = default;
    };
    ObservedSettings observe() const;
    void settingsDidChange();
    bool isReady() const { return observe().readiness == StatusItemReadiness::ready; }
    const StatusIconClickBehavior& clickBehavior() const {
        return services_.settingsModel.settings().general.statusIconClickBehavior;
    }
    StatusItemDisplay describe(const DisplayInfo& display) const;
    int countOf(const StatusIconClick& click);
    void scheduleLeftClick();
    void perform(StatusIconClickAction action);
    void openSettings();
    void showContextMenu();
    Task<void> carryOut(StatusItemCommand command);
    Task<void> showFailure(std::string title, std::string text);

    Services services_;
    bool isShown_ = false;
    bool isFailureShown_ = false;
    ObservedSettings observedSettings_;
    StatusItemCommands commands_;
    std::optional<TimePoint> lastPrimaryClick_;
    int clickCount_ = 0;
    OneShotTimer pendingLeftClick_;
    EventBus::Observation settings_;
    TaskScope tasks_;
};

}  // namespace quillmar

#pragma once
#include <functional>
#include <map>

#include "async/TaskScope.h"
#include "control/GeneralCommand.h"
#include "panes/PaneModel.h"
#include "platform/AlertPresenting.h"

namespace quillmar {

/// What holds for all displays: language, theme, start, notifications, the icon in the panel. A change goes
/// the way of `quillmar general set`, so what one of them does the other does too.
class GeneralPane final : public PaneModel {
public:
    /// `changed` is called when the content became another one for other reasons than other settings.
    GeneralPane(MainLoop& loop, GeneralCommand::Services services, AlertPresenting& alerts,
                std::function<void()> changed);

    SettingsPane content() const override;
    void act(const SettingsIntent& intent) override;

private:
    Task<void> change(std::string setting, std::string value);

    AppSettingsModel& settingsModel_;
    GeneralCommand command_;
    AlertPresenting& alerts_;
    std::function<void()> changed_;
    std::map<std::string, std::string> notes_;  ///< by setting: what the last change of it met
    TaskScope tasks_;
};

}  // namespace quillmar

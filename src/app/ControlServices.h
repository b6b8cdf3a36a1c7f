#pragma once
#include "app/Subsystems.h"
#include "control/ControlService.h"
#include "panes/SettingsWindowModel.h"

namespace quillmar {

/// What the application itself does for the commands and the Settings window.
struct ApplicationWishes {
    std::function<void()> quit;                            ///< the user's explicit wish to end
    std::function<bool()> isRecovering;                    ///< the settings could not be read at the start
    std::function<void(const std::string&)> openSettings;  ///< at a section, or where it was
    std::function<void()> openChangelog;
};

/// What the commands stand on, from the features.
ControlService::Services controlServices(const Ports& ports, Subsystems& subsystems,
                                         ApplicationWishes wishes);
/// What the Settings window stands on: the same as the commands.
SettingsWindowModel::Services settingsWindowServices(const Ports& ports, Subsystems& subsystems,
                                                     ApplicationWishes wishes);

}  // namespace quillmar

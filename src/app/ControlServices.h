#pragma once
#include "app/Subsystems.h"
#include "control/ControlService.h"

namespace quillmar {

/// What the commands stand on, from the features. `quit` is the user's explicit wish to end; `isRecovering`
/// whether the start was limited by settings that could not be read.
ControlService::Services controlServices(const Ports& ports, Subsystems& subsystems,
                                         std::function<void()> quit, std::function<bool()> isRecovering);

}  // namespace quillmar

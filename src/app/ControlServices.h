#pragma once
#include "app/Subsystems.h"
#include "control/ControlService.h"

namespace quillmar {

/// What the commands stand on, from the features. `quit` is the user's explicit wish to end.
ControlService::Services controlServices(const Ports& ports, Subsystems& subsystems,
                                         std::function<void()> quit);

}  // namespace quillmar

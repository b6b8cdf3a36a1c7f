#pragma once
#include "app/AuxiliaryWindows.h"
#include "app/Lives.h"
#include "app/Ports.h"
#include "app/Subsystems.h"
#include "updates/UpdateDetectionService.h"

namespace quillmar {

/// What is done once after each start: a first run enters the program among those that start at login and
/// welcomes its user before anything else begins; any other finds out whether it is the first one of a newer
/// version, and tells what is new.
class LaunchSteps final : public Life {
public:
    LaunchSteps(const Ports& ports, Subsystems& subsystems, AuxiliaryWindows& windows)
        : usageReporting_(ports.usageReporting),
          currentVersion_(ports.bundle.semanticVersion("Unknown")),
          subsystems_(subsystems),
          windows_(windows) {}
    Task<void> start() override;
    Task<void> stop() override { co_return; }
    void resume() override {}

private:
    UsageReporting& usageReporting_;
    std::string currentVersion_;
    Subsystems& subsystems_;
    AuxiliaryWindows& windows_;
};

}  // namespace quillmar

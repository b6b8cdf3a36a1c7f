#pragma once
#include "app/Lives.h"
#include "app/Ports.h"
#include "app/Subsystems.h"
#include "updates/UpdateDetectionService.h"

namespace quillmar {

/// What is done once after each start: a first run enters the program among those that start at login, any
/// other finds out whether it is the first one of a newer version.
class LaunchSteps final : public Life {
public:
    LaunchSteps(const Ports& ports, Subsystems& subsystems)
        : usageReporting_(ports.usageReporting),
          currentVersion_(ports.bundle.semanticVersion("Unknown")),
          subsystems_(subsystems) {}
    Task<void> start() override;
    Task<void> stop() override { co_return; }
    void resume() override {}

    /// What this start found; empty until then. The window that tells what is new asks it.
    const std::optional<UpdateDetection>& detection() const { return detection_; }

private:
    UsageReporting& usageReporting_;
    std::string currentVersion_;
    Subsystems& subsystems_;
    std::optional<UpdateDetection> detection_;
};

}  // namespace quillmar

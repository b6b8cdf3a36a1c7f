#pragma once
#include "app/Lives.h"
#include "app/Subsystems.h"
#include "async/Timer.h"

namespace quillmar {

/// Lets the running program follow what others make of its settings file: looks at it when it was written and
/// when the system asks for it, shows what a valid edit says, and tells the user of one that cannot be read.
class SettingsEdits final : public Life {
public:
    SettingsEdits(const Ports& ports, Subsystems& subsystems);

    bool runsInRecovery() const override { return true; }
    /// Nothing where it was started already: while an alert of the start is open, edits are followed too.
    Task<void> start() override;
    Task<void> stop() override;
    void resume() override { begin(); }

private:
    void begin();
    void fileDidChange();
    Task<void> look();
    Task<void> show(SettingsTakeover takeover);
    Task<void> say(std::string reason);
    Task<void> takeBack();

    Ports ports_;
    Subsystems& subsystems_;
    bool isFollowing_ = false;
    bool isFaultShown_ = false;
    std::optional<TimePoint> firstChange_;  ///< of those that were not looked at yet
    OneShotTimer settling_;
    EventBus::Observation edits_;
    EventBus::Observation faults_;
    EventBus::Observation changes_;
    TaskScope tasks_;
};

}  // namespace quillmar

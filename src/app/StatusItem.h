#pragma once
#include "app/Lives.h"
#include "app/Subsystems.h"
#include "statusitem/StatusItemController.h"

namespace quillmar {

/// The icon in the panel, from before the settings are read to the wish to end.
class StatusItem final : public Life {
public:
    /// What the menu leads to besides the features.
    struct Ways {
        std::function<Task<ControlReply>(ControlCall)> carryOut;
        std::function<void()> quit;
        std::function<void()> openSettings;
    };
    StatusItem(const Ports& ports, Subsystems& subsystems, Ways ways);

    bool runsInRecovery() const override { return true; }
    /// Nothing where it was started already.
    Task<void> start() override {
        controller_.show();
        co_return;
    }
    Task<void> stop() override {
        controller_.hide();
        co_return;
    }
    void resume() override { controller_.show(); }
    void displaysDidChange() { controller_.displaysDidChange(); }
    /// Shows it at once.
    void appear() { controller_.show(); }

private:
    StatusItemController controller_;
};

}  // namespace quillmar

#pragma once
#include "app/Lives.h"
#include "updates/SoftwareUpdateController.h"

namespace quillmar {

/// The looks for newer versions, also where the settings could not be read: a newer version may read them.
class SoftwareUpdates final : public Life {
public:
    explicit SoftwareUpdates(SoftwareUpdateController& controller) : controller_(controller) {}
    bool runsInRecovery() const override { return true; }
    Task<void> start() override { return controller_.start(); }
    Task<void> stop() override {
        controller_.stop();
        co_return;
    }
    void resume() override { controller_.resume(); }

private:
    SoftwareUpdateController& controller_;
};

}  // namespace quillmar

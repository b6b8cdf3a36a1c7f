#pragma once
#include "app/Lives.h"
#include "app/Subsystems.h"
#include "async/TaskLock.h"
#include "async/Timer.h"
#include "display/DisplayConfigurationChangeCoordinator.h"

namespace quillmar {

/// Keeps the displays of picture services with a picture: what they showed last, until their service answers.
/// It may take its time or be out of reach, and at login the network is often there later than its user.
class LastServicePictures final : public Life {
public:
    explicit LastServicePictures(Subsystems& subsystems) : subsystems_(subsystems) {}
    Task<void> start() override { return recall(); }
    Task<void> stop() override { co_return; }
    void resume() override {}
    Task<void> recall();

private:
    Subsystems& subsystems_;
};

/// What was shown before, remembered for the commands that go back to it and for what must not come again.
class RememberedPictures final : public Life {
public:
    explicit RememberedPictures(PictureMemory& memory) : memory_(memory) {}
    bool runsInRecovery() const override { return true; }
    Task<void> start() override { return memory_.load(); }
    Task<void> stop() override { co_return; }
    void resume() override {}

private:
    PictureMemory& memory_;
};

/// Lets the next start paint what was shown last at once.
class LastShown final : public Life {
public:
    explicit LastShown(LastShownKeeper& keeper) : keeper_(keeper) {}
    Task<void> start() override {
        keeper_.start();
        co_return;
    }
    Task<void> stop() override { return keeper_.stop(); }
    void resume() override { keeper_.start(); }

private:
    LastShownKeeper& keeper_;
};

/// Shows what the settings say: at the start, whenever the displays were rearranged, and where the desktop
/// forgot it.
class ConfiguredWallpapers final : public Life {
public:
    ConfiguredWallpapers(const Ports& ports, Subsystems& subsystems, LastServicePictures& lastPictures);
    Task<void> start() override;
    Task<void> stop() override;
    void resume() override;
    void screenParametersDidChange();

private:
    Task<TopologyApplyResult> applyAll();
    Task<void> repair();
    void follow();

    Subsystems& subsystems_;
    LastServicePictures& lastPictures_;
    bool isFollowing_ = false;
    DisplayConfigurationChangeCoordinator coordinator_;
    OneShotTimer settling_;
    TaskLock recalling_;
    TaskScope tasks_;
};

/// Asks the services that failed again when the network is back.
class NetworkRecovery final : public Life {
public:
    NetworkRecovery(const Ports& ports, Subsystems& subsystems);
    Task<void> start() override;
    Task<void> stop() override;
    void resume() override { follow(); }

private:
    void follow();
    Task<void> retry();

    SystemEventsObserving& events_;
    Subsystems& subsystems_;
    OneShotTimer settling_;
    TaskScope tasks_;
};

}  // namespace quillmar

#pragma once
#include "app/Lives.h"
#include "app/Subsystems.h"
#include "storage/CacheMaintenanceScheduler.h"

namespace quillmar {

/// Keeps the cache in bounds: a full sweep at the start, then one every half hour. Nothing that the settings
/// name or a display shows is touched.
class CacheUpkeep final : public Life {
public:
    CacheUpkeep(MainLoop& loop, const WallClock& clock, Subsystems& subsystems)
        : clock_(clock), subsystems_(subsystems), scheduler_(loop, [this] { return sweepPeriodically(); }) {}

    bool runsInRecovery() const override { return true; }
    Task<void> start() override;
    Task<void> stop() override;
    void resume() override { scheduler_.start(); }

private:
    Task<void> sweepPeriodically();
    Task<FilePaths> shownFiles();
    std::optional<FilePaths> filesOfSettings() const;

    const WallClock& clock_;
    Subsystems& subsystems_;
    CacheMaintenanceScheduler scheduler_;
};

}  // namespace quillmar

#pragma once
#include "app/Lives.h"
#include "app/Subsystems.h"
#include "storage/CacheMaintenanceScheduler.h"

namespace quillmar {

/// Keeps the cache in bounds: a full sweep at the start, then one every half hour, and one in between
/// whenever what was written has used up the room. Nothing that the settings name or a display shows is
/// touched.
class CacheUpkeep final : public Life {
public:
    CacheUpkeep(const Ports& ports, Subsystems& subsystems);

    bool runsInRecovery() const override { return true; }
    Task<void> start() override;
    Task<void> stop() override;
    void resume() override { scheduler_.start(); }

private:
    Task<void> sweepPeriodically();
    Task<void> makeRoom(std::filesystem::path written);
    Task<void> removeLeftovers() const;
    Task<FilePaths> shownFiles();
    std::optional<FilePaths> filesOfSettings() const;

    const Ports& ports_;
    Subsystems& subsystems_;
    WallTime beginning_;  ///< of the process, or a moment before
    CacheMaintenanceScheduler scheduler_;
};

}  // namespace quillmar

#pragma once
#include "async/TaskScope.h"

namespace quillmar {

/// Sweeps again and again, half an hour after the start for the first time and then half an hour after each
/// sweep. Main thread.
class CacheMaintenanceScheduler {
public:
    using Sweep = std::function<Task<void>()>;

    CacheMaintenanceScheduler(MainLoop& loop, Sweep sweep) : sweep_(std::move(sweep)), tasks_(loop) {}

    /// Nothing happens when it has been started.
    void start();
    /// No sweep begins after this; one that runs ends in its own time.
    void stop();

private:
    Task<void> run();

    Sweep sweep_;
    TaskHandle<void> task_;
    TaskScope tasks_;
};

}  // namespace quillmar

#include "storage/CacheMaintenanceScheduler.h"

#include "async/Sleep.h"

namespace quillmar {
namespace {

constexpr std::chrono::minutes interval{30};

}  // namespace

void CacheMaintenanceScheduler::start() {
    if (!task_) task_ = tasks_.start(run());
}

void CacheMaintenanceScheduler::stop() { std::exchange(task_, {}).cancel(); }

Task<void> CacheMaintenanceScheduler::run() {
    const TaskContext context = co_await currentContext();
    while (!context.stop.stop_requested()) {
        co_await sleepFor(interval);
        try {
            co_await sweep_();
        } catch (const CancellationError&) {
            co_return;
        } catch (...) {
            // One bad sweep must not be the last.
            context.loop->taskFailed(std::current_exception());
        }
    }
}

}  // namespace quillmar

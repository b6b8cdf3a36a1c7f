#include "app/ApplicationStartupTask.h"

namespace quillmar {

void ApplicationStartupTask::start(Task<void> operation) {
    cancel();
    const Uuid taskID = Uuid::random();
    taskID_ = taskID;
    task_ = tasks_.start(run(std::move(operation), taskID));
}

void ApplicationStartupTask::cancel() {
    std::exchange(task_, {}).cancel();
    taskID_.reset();
}

Task<void> ApplicationStartupTask::run(Task<void> operation, Uuid taskID) {
    const TaskContext context = co_await currentContext();
    try {
        co_await std::move(operation);
    } catch (const CancellationError&) {
        // The quit that cancelled it is on its way.
    } catch (...) {
        context.loop->taskFailed(std::current_exception());
    }
    // An old run that ends after a newer one began leaves the newer one's handle alone.
    if (taskID_ != taskID) co_return;
    task_.reset();
    taskID_.reset();
}

}  // namespace quillmar

#pragma once
#include "async/TaskScope.h"
#include "async/Timer.h"

namespace quillmar {

/// Waits for the task's end, but no longer than `limit`: whether it came. The task goes on in any case.
/// Throws `CancellationError` when the waiting task is cancelled.
template <class T>
Task<bool> endedWithin(TaskHandle<T> task, Duration limit) {
    MainLoop& loop = *(co_await currentContext()).loop;
    WaitList either;
    OneShotTimer timer(loop);
    timer.set(limit, [&either] { either.resumeAll(); });
    TaskScope watching(loop);
    watching.spawn([](TaskHandle<T> watched, WaitList* list) -> Task<void> {
        co_await watched.ended();
        list->resumeAll();
    }(task, &either));
    if (!task.isFinished()) co_await either.wait();
    co_return task.isFinished();
}

}  // namespace quillmar

#pragma once
#include <exception>
#include <utility>

#include "async/TaskScope.h"

namespace quillmar {

/// Thrown out of a wait that took longer than it may.
class TimeoutError : public std::exception {
public:
    const char* what() const noexcept override { return "took too long"; }
};

/// The value of `work`, which is destroyed where it waits when it is not done within `limit`; then this
/// throws `TimeoutError`. The same happens at once to `work` when the awaiting task is cancelled.
template <class T>
Task<T> withinTime(Duration limit, Task<T> work) {
    const TaskContext context = co_await currentContext();
    WaitList isOver;
    TaskScope scope(*context.loop);
    const TaskHandle<T> running = scope.start(std::move(work));
    scope.spawn([](TaskHandle<T> task, WaitList* over) -> Task<void> {
        co_await task.ended();
        over->resumeAll();
    }(running, &isOver));
    const Scheduled deadline(*context.loop, context.loop->now() + limit, [&isOver] { isOver.resumeAll(); });
    co_await isOver.wait();
    if (!running.isFinished()) throw TimeoutError();
    co_return co_await running.value();
}

}  // namespace quillmar

#pragma once
#include <coroutine>
#include <functional>
#include <optional>
#include <stop_token>

#include "async/Task.h"

namespace quillmar {

/// `co_await sleepFor(5s)`: resumes after that time, or later when the machine slept meanwhile. Throws
/// `CancellationError` when the task is cancelled before.
class sleepFor {
public:
    explicit sleepFor(Duration duration) : duration_(duration) {}
    sleepFor(const sleepFor&) = delete;
    sleepFor& operator=(const sleepFor&) = delete;

    bool await_ready() const noexcept { return false; }
    template <class Promise>
    void await_suspend(std::coroutine_handle<Promise> frame) {
        suspend(frame, frame.promise().context);
    }
    void await_resume();

private:
    void suspend(std::coroutine_handle<> frame, const TaskContext& context);

    Duration duration_;
    bool wasCancelled_ = false;
    Scheduled wakeUp_;
    std::optional<std::stop_callback<std::function<void()>>> onStop_;
};

}  // namespace quillmar

#pragma once
#include <coroutine>
#include <functional>
#include <optional>
#include <stop_token>

#include "async/Task.h"

using GSource = struct _GSource;

namespace quillmar {

/// `co_await readable(descriptor)`: resumes when there is something to read from it, its end or a failure
/// among them. Throws `CancellationError` when the task is cancelled before. The descriptor stays open
/// meanwhile.
class readable {
public:
    explicit readable(int descriptor) : descriptor_(descriptor) {}
    readable(const readable&) = delete;
    readable& operator=(const readable&) = delete;
    ~readable() { unwatch(); }

    bool await_ready() const noexcept { return false; }
    template <class Promise>
    void await_suspend(std::coroutine_handle<Promise> frame) {
        suspend(frame, frame.promise().context);
    }
    void await_resume();

private:
    void suspend(std::coroutine_handle<> frame, const TaskContext& context);
    void unwatch();

    int descriptor_;
    GSource* source_ = nullptr;
    std::coroutine_handle<> frame_;
    bool wasCancelled_ = false;
    Scheduled wakeUp_;
    std::optional<std::stop_callback<std::function<void()>>> onStop_;
};

}  // namespace quillmar

#pragma once
#include <concepts>
#include <memory>
#include <stop_token>
#include <variant>

#include "async/WaitList.h"

namespace quillmar {

namespace detail {

struct TaskStateBase {
    std::stop_source stop;
    bool isFinished = false;
    std::exception_ptr error;
    WaitList waiters;

    void finish() {
        isFinished = true;
        waiters.resumeAll();
    }
    /// The task's owner is gone: whoever waits for its value learns that there will be none.
    void abandon() {
        if (isFinished) return;
        error = std::make_exception_ptr(CancellationError());
        finish();
    }
};

template <class T>
struct TaskState : TaskStateBase {
    std::optional<T> value;
    T result() const {
        if (error) std::rethrow_exception(error);
        return *value;
    }
};
template <>
struct TaskState<void> : TaskStateBase {
    void result() const {
        if (error) std::rethrow_exception(error);
    }
};

}  // namespace detail

/// A task that runs in a `TaskScope`, shared by all who wait for it or may cancel it. Copies name the same
/// task. An empty handle names none. The scope keeps the task alive, the handle does not.
template <class T = void>
class TaskHandle {
public:
    TaskHandle() = default;
    explicit TaskHandle(std::shared_ptr<detail::TaskState<T>> state) : state_(std::move(state)) {}

    explicit operator bool() const { return state_ != nullptr; }
    /// Whether the task has ended, however it did. An empty handle is never finished.
    bool isFinished() const { return state_ && state_->isFinished; }
    /// Asks the task to stop: its next wait throws `CancellationError`. Once or often is the same.
    void cancel() const {
        if (state_) state_->stop.request_stop();
    }
    /// Forgets the task, which goes on.
    void reset() { state_.reset(); }
    /// Same task.
    bool operator==(const TaskHandle& other) const = default;

    /// Waits for the task and returns its value or throws its failure. Throws `CancellationError` when the
    /// waiting task is cancelled; the task that was waited for goes on.
    Task<T> value() const { return valueOf(state_); }
    /// Waits for the task's end, however it ends and whatever happens to the waiting task meanwhile.
    Task<void> ended() const { return endOf(state_); }

private:
    using State = std::shared_ptr<detail::TaskState<T>>;
    static Task<T> valueOf(State state) {
        while (!state->isFinished) co_await state->waiters.wait();
        co_return state->result();
    }
    static Task<void> endOf(State state) {
        while (!state->isFinished) co_await state->waiters.waitUncancelled();
    }
    State state_;
};

}  // namespace quillmar

#pragma once
#include <coroutine>
#include <exception>
#include <optional>
#include <stop_token>
#include <utility>

#include "async/Cancellation.h"
#include "async/MainLoop.h"

namespace quillmar {

/// What a task inherits from the one that awaits it.
struct TaskContext {
    MainLoop* loop = nullptr;
    std::stop_token stop;
};

template <class T>
class Task;

namespace detail {

struct TaskPromiseBase {
    TaskContext context;
    std::coroutine_handle<> continuation = std::noop_coroutine();
    std::exception_ptr error;

    struct Final {
        bool await_ready() noexcept { return false; }
        template <class Promise>
        std::coroutine_handle<> await_suspend(std::coroutine_handle<Promise> frame) noexcept {
            return frame.promise().continuation;
        }
        void await_resume() noexcept {}
    };
    std::suspend_always initial_suspend() noexcept { return {}; }
    Final final_suspend() noexcept { return {}; }
    void unhandled_exception() noexcept { error = std::current_exception(); }
};

template <class T>
struct TaskPromise : TaskPromiseBase {
    std::optional<T> value;

    Task<T> get_return_object() { return Task<T>(std::coroutine_handle<TaskPromise>::from_promise(*this)); }
    template <class V>
    void return_value(V&& result) {
        value.emplace(std::forward<V>(result));
    }
    T take() {
        if (error) std::rethrow_exception(error);
        return std::move(*value);
    }
};

template <>
struct TaskPromise<void> : TaskPromiseBase {
    inline Task<void> get_return_object();
    void return_void() {}
    void take() {
        if (error) std::rethrow_exception(error);
    }
};

}  // namespace detail

/// An asynchronous algorithm of the main thread. It starts when it is awaited, or when a `TaskScope` starts
/// it; it is awaited once. Destroying it while it is suspended ends it there: the destructors of its frame
/// run. A failure is thrown where it is awaited.
template <class T = void>
class [[nodiscard]] Task {
public:
    using promise_type = detail::TaskPromise<T>;

    /// For the compiler: takes over a frame that has not begun.
    explicit Task(std::coroutine_handle<promise_type> frame) : frame_(frame) {}
    Task(Task&& other) noexcept : frame_(std::exchange(other.frame_, {})) {}
    Task& operator=(Task&& other) noexcept {
        std::swap(frame_, other.frame_);
        return *this;
    }
    ~Task() {
        if (frame_) frame_.destroy();
    }

    /// For `TaskScope`, which keeps the task until it is done: begins it outside of any other task.
    void start(TaskContext context) {
        frame_.promise().context = std::move(context);
        frame_.resume();
    }
    /// For wrappers that await with another context than the awaiting task's own.
    void setContext(TaskContext context) {
        frame_.promise().context = std::move(context);
        hasContext_ = true;
    }

    bool await_ready() const noexcept { return false; }
    template <class Promise>
    std::coroutine_handle<> await_suspend(std::coroutine_handle<Promise> parent) {
        frame_.promise().continuation = parent;
        if (!hasContext_) frame_.promise().context = parent.promise().context;
        return frame_;
    }
    T await_resume() { return frame_.promise().take(); }

private:
    std::coroutine_handle<promise_type> frame_;
    bool hasContext_ = false;
};

inline Task<void> detail::TaskPromise<void>::get_return_object() {
    return Task<void>(std::coroutine_handle<TaskPromise>::from_promise(*this));
}

/// `co_await currentContext()`: the loop and the stop token of the running task.
class currentContext {
public:
    bool await_ready() const noexcept { return false; }
    template <class Promise>
    bool await_suspend(std::coroutine_handle<Promise> frame) {
        context_ = frame.promise().context;
        return false;
    }
    TaskContext await_resume() { return std::move(context_); }

private:
    TaskContext context_;
};

/// Whether the running task was cancelled.
inline Task<bool> isCancelled() { co_return (co_await currentContext()).stop.stop_requested(); }
/// Throws `CancellationError` when the running task was cancelled: between the steps of a long algorithm.
inline Task<void> throwIfCancelled() {
    if ((co_await currentContext()).stop.stop_requested()) throw CancellationError();
}

/// Runs `task` to its end even when the awaiting task is cancelled: for steps that must not be left half
/// done.
template <class T>
Task<T> uncancelled(Task<T> task) {
    const TaskContext context = co_await currentContext();
    task.setContext({context.loop, {}});
    co_return co_await std::move(task);
}

}  // namespace quillmar

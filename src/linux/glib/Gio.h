#pragma once
#include <coroutine>
#include <functional>
#include <optional>
#include <stop_token>

#include "async/Task.h"
#include "linux/glib/Ref.h"

namespace quillmar {

/// `co_await gio([=](auto* cancellable, auto callback, auto data) { g_file_read_async(..., cancellable,
/// callback, data); })` starts an asynchronous operation of GIO and yields its `GAsyncResult`, for the
/// operation's own
/// `_finish`. Cancelling the task cancels the operation, whose `_finish` then says so; destroying the task
/// does the same and drops the result, which is why an operation's `_finish` may never be called.
class gio {
public:
    using Start = std::function<void(GCancellable*, GAsyncReadyCallback, gpointer)>;

    explicit gio(Start start) : start_(std::move(start)) {}
    gio(const gio&) = delete;
    gio& operator=(const gio&) = delete;
    ~gio();

    bool await_ready() const noexcept { return false; }
    template <class Promise>
    void await_suspend(std::coroutine_handle<Promise> frame) {
        suspend(frame, frame.promise().context.stop);
    }
    Ref<GAsyncResult> await_resume() {
        onStop_.reset();
        return std::move(result_);
    }

private:
    struct Flight;
    void suspend(std::coroutine_handle<> frame, std::stop_token stop);
    static void landed(GObject* source, GAsyncResult* result, gpointer data);

    Start start_;
    Flight* flight_ = nullptr;
    Ref<GAsyncResult> result_;
    std::optional<std::stop_callback<std::function<void()>>> onStop_;
};

}  // namespace quillmar

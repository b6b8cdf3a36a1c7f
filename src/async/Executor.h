#pragma once
#include <coroutine>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <variant>

#include "async/Task.h"

namespace quillmar {

/// Where work runs that must not hold up the main thread: files, pixels, waiting for others.
class Executor {
public:
    using Job = std::move_only_function<void()>;
    virtual ~Executor() = default;
    /// Queues a job. It runs on some other thread and must not throw. May be called from any thread.
    virtual void submit(Job job) = 0;

    template <class Work>
    class Run;
    /// `co_await executor.run(work)`: leaves the main thread, runs `work` and comes back to it with the
    /// result or the failure. Work that has begun runs to its end: a cancelled task still waits for it, and
    /// when the task is destroyed meanwhile the result is dropped. So `work` owns what it uses; it never
    /// refers to the waiting frame.
    template <class Work>
    Run<std::decay_t<Work>> run(Work&& work) {
        return Run<std::decay_t<Work>>(*this, std::forward<Work>(work));
    }
};

template <class Work>
class Executor::Run {
    using Result = std::invoke_result_t<Work&>;
    using Stored = std::conditional_t<std::is_void_v<Result>, std::monostate, Result>;

public:
    Run(Executor& executor, Work work)
        : executor_(executor), shared_(std::make_shared<Shared>(std::move(work))) {}
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    ~Run() { shared_->frame = nullptr; }

    bool await_ready() const noexcept { return false; }
    template <class Promise>
    void await_suspend(std::coroutine_handle<Promise> frame) {
        shared_->frame = frame;
        shared_->loop = frame.promise().context.loop;
        executor_.submit([shared = shared_]() mutable {
            shared->execute();
            MainLoop& loop = *shared->loop;
            // Moved along, so that the result dies on the main thread whoever is the last to hold it.
            loop.post([shared = std::move(shared)] {
                if (shared->frame) shared->frame.resume();
            });
        });
    }
    Result await_resume() {
        if (shared_->error) std::rethrow_exception(shared_->error);
        if constexpr (!std::is_void_v<Result>) return std::move(*shared_->result);
    }

private:
    struct Shared {
        explicit Shared(Work w) : work(std::move(w)) {}
        void execute() {
            try {
                if constexpr (std::is_void_v<Result>) {
                    (*work)();
                } else {
                    result.emplace((*work)());
                }
            } catch (...) {
                error = std::current_exception();
            }
            work.reset();
        }
        std::optional<Work> work;
        std::optional<Stored> result;
        std::exception_ptr error;
        std::coroutine_handle<> frame;  ///< touched by the main thread alone
        MainLoop* loop = nullptr;
    };
    Executor& executor_;
    std::shared_ptr<Shared> shared_;
};

}  // namespace quillmar

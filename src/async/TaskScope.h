#pragma once
#include <list>
#include <memory>

#include "async/TaskHandle.h"

namespace quillmar {

/// Runs tasks and owns them: its end is their end, wherever they wait. Always the last member of its class,
/// so that the tasks end before anything that they use. A task never destroys the scope that it runs in.
class TaskScope {
public:
    explicit TaskScope(MainLoop& loop) : loop_(loop) {}
    TaskScope(const TaskScope&) = delete;
    TaskScope& operator=(const TaskScope&) = delete;
    ~TaskScope();

    /// Starts a task at the loop's next turn. Its failure, other than a cancellation, goes to
    /// `MainLoop::taskFailed`.
    void spawn(Task<void> task);
    /// Starts a task at the loop's next turn; its value or failure is for those who wait for the handle.
    template <class T>
    TaskHandle<T> start(Task<T> task) {
        auto state = std::make_shared<detail::TaskState<T>>();
        add(complete(std::move(task), state), state);
        return TaskHandle<T>(state);
    }
    /// Asks every task to stop.
    void cancelAll();
    /// How many tasks have not ended.
    std::size_t runningCount() const { return entries_.size(); }

private:
    struct Entry {
        Task<void> task;
        std::shared_ptr<detail::TaskStateBase> state;
        Scheduled next;  ///< the start, later the removal
    };
    using Position = std::list<Entry>::iterator;

    void add(Task<void> task, std::shared_ptr<detail::TaskStateBase> state);
    static Task<void> reportingFailure(Task<void> task);
    template <class T>
    static Task<void> complete(Task<T> task, std::shared_ptr<detail::TaskState<T>> state) {
        try {
            if constexpr (std::is_void_v<T>) {
                co_await std::move(task);
            } else {
                state->value.emplace(co_await std::move(task));
            }
        } catch (...) {
            state->error = std::current_exception();
        }
    }

    MainLoop& loop_;
    std::list<Entry> entries_;
};

}  // namespace quillmar

#pragma once
#include <coroutine>
#include <functional>
#include <optional>
#include <stop_token>

#include "async/Task.h"

namespace quillmar {

/// Tasks that wait for something to happen, first come first served.
/// `co_await list.wait()` suspends until a `resume...` call reaches the waiter, and throws
/// `CancellationError` when the waiting task is cancelled first. `co_await list.waitUncancelled()` ignores
/// cancellation. A waiter is resumed at a later turn of the loop, never inside `resume...`; one whose task is
/// destroyed leaves the list.
class WaitList {
public:
    /// What becomes of a turn that was given to a waiter whose task ended before it could take it.
    using LostTurn = std::function<void()>;

    WaitList() = default;
    explicit WaitList(LostTurn lostTurn) : lostTurn_(std::move(lostTurn)) {}
    WaitList(const WaitList&) = delete;
    WaitList& operator=(const WaitList&) = delete;
    ~WaitList();

    /// What `wait` returns, to be awaited at once; lives in the frame of the waiting task.
    class Waiter {
    public:
        Waiter(WaitList& list, bool isCancellable) : list_(&list), isCancellable_(isCancellable) {}
        Waiter(const Waiter&) = delete;
        Waiter& operator=(const Waiter&) = delete;
        ~Waiter();

        bool await_ready() const noexcept { return false; }
        template <class Promise>
        void await_suspend(std::coroutine_handle<Promise> frame) {
            suspend(frame, frame.promise().context);
        }
        void await_resume();

    private:
        friend class WaitList;
        enum class State { waiting, given, cancelled, taken };
        void suspend(std::coroutine_handle<> frame, const TaskContext& context);
        void resumeLater(State state);
        void leave();

        WaitList* list_;
        bool isCancellable_;
        State state_ = State::waiting;
        std::coroutine_handle<> frame_;
        MainLoop* loop_ = nullptr;
        Waiter* previous_ = nullptr;
        Waiter* next_ = nullptr;
        bool isLinked_ = false;
        Scheduled resumption_;
        std::optional<std::stop_callback<std::function<void()>>> onStop_;
    };

    /// Waits for a turn; throws `CancellationError` when the task is cancelled before.
    Waiter wait() { return Waiter(*this, true); }
    /// Waits for a turn whatever happens to the task.
    Waiter waitUncancelled() { return Waiter(*this, false); }
    /// Whether nobody waits.
    bool isEmpty() const { return first_ == nullptr; }
    /// Gives the turn to the first waiter; false when there is none.
    bool resumeFirst();
    /// Gives a turn to all who wait now, in their order.
    void resumeAll();

private:
    LostTurn lostTurn_;
    Waiter* first_ = nullptr;
    Waiter* last_ = nullptr;
};

}  // namespace quillmar

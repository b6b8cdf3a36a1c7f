#pragma once
#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <utility>

namespace quillmar {

/// Monotonic time: it stands still while the machine sleeps and never jumps.
using TimePoint = std::chrono::steady_clock::time_point;
using Duration = std::chrono::steady_clock::duration;

/// The main thread's queue, and the only door to time. Everything but `post` is for the main thread alone.
class MainLoop {
public:
    using Callback = std::move_only_function<void()>;
    /// Names one scheduled callback; never reused.
    using Ticket = std::pair<TimePoint, std::uint64_t>;

    virtual ~MainLoop() = default;
    /// The present of timers and durations; within one turn of the loop it may move on.
    virtual TimePoint now() const = 0;
    /// Runs `callback` once at `when` or as soon after it as the loop can; never from inside this call.
    /// Callbacks run in order of their time, those of one time in order of their scheduling.
    virtual Ticket callAt(TimePoint when, Callback callback) = 0;
    /// The callback will not run. Nothing happens when it has run already.
    virtual void forget(Ticket ticket) = 0;
    /// Runs `callback` on the main thread after what is due. May be called from any thread.
    virtual void post(Callback callback) = 0;
    /// Receives the failure of a task that nobody waits for.
    virtual void taskFailed(std::exception_ptr failure) = 0;
};

/// Owns one pending callback: its end is the end of the callback.
class Scheduled {
public:
    Scheduled() = default;
    Scheduled(MainLoop& loop, TimePoint when, MainLoop::Callback callback)
        : loop_(&loop), ticket_(loop.callAt(when, std::move(callback))) {}
    /// At the next turn of the loop.
    Scheduled(MainLoop& loop, MainLoop::Callback callback)
        : Scheduled(loop, loop.now(), std::move(callback)) {}
    Scheduled(Scheduled&& other) noexcept
        : loop_(std::exchange(other.loop_, nullptr)), ticket_(std::move(other.ticket_)) {}
    Scheduled& operator=(Scheduled&& other) noexcept {
        std::swap(loop_, other.loop_);
        std::swap(ticket_, other.ticket_);
        return *this;
    }
    ~Scheduled() { cancel(); }

    /// Ends the wait for the callback; nothing happens when it has run.
    void cancel() {
        if (MainLoop* loop = std::exchange(loop_, nullptr)) loop->forget(ticket_);
    }

private:
    MainLoop* loop_ = nullptr;
    MainLoop::Ticket ticket_{};
};

}  // namespace quillmar

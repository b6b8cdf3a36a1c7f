#pragma once
#include <mutex>

#include "async/TimerQueue.h"
#include "async/WallClock.h"

namespace quillmar {

/// Virtual time: nothing happens but inside `settle`, `advance` and `jump`. Posts from other threads are
/// taken in.
class VirtualLoop final : public MainLoop {
public:
    ~VirtualLoop() override;
    TimePoint now() const override { return now_; }
    Ticket callAt(TimePoint when, Callback callback) override;
    void forget(Ticket ticket) override;
    void post(Callback callback) override;
    /// Fails the running test, unless the failure is taken with `takeFailure`.
    void taskFailed(std::exception_ptr failure) override { failure_ = failure; }
    std::exception_ptr takeFailure() { return std::exchange(failure_, nullptr); }

    /// Runs what is due now, and what that makes due.
    void settle() { advance(Duration::zero()); }
    /// Runs everything that falls due within `duration`, each thing at its time.
    void advance(Duration duration);
    /// Wakes up late: `duration` passes at once, as when the machine slept, and then all that is overdue
    /// runs.
    void jump(Duration duration);
    /// Settles, waiting for the background threads, until `condition` holds; false when it does not within 10
    /// s of real time. For tests whose files or sockets are real.
    bool settleUntil(const std::function<bool()>& condition);

    /// How many callbacks are pending.
    std::size_t pendingCount() const;
    /// Time until the first pending callback.
    std::optional<Duration> untilNext() const;

private:
    bool runOneDue(TimePoint end);

    mutable std::mutex mutex_;
    TimerQueue queue_;
    TimePoint now_{std::chrono::hours(1000)};
    std::exception_ptr failure_;
};

/// A calendar clock that follows a virtual loop until it is set.
class VirtualWallClock final : public WallClock {
public:
    explicit VirtualWallClock(const MainLoop& loop) : loop_(loop), started_(loop.now()) {}
    WallTime now() const override {
        return origin_ + std::chrono::duration_cast<std::chrono::microseconds>(loop_.now() - started_);
    }
    void set(WallTime time) {
        origin_ = time;
        started_ = loop_.now();
    }

private:
    const MainLoop& loop_;
    TimePoint started_;
    WallTime origin_{std::chrono::sys_days(std::chrono::year(2026) / 5 / 4) + std::chrono::hours(9)};
};

}  // namespace quillmar

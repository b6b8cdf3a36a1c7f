#pragma once
#include <functional>
#include <memory>

#include "async/MainLoop.h"

namespace quillmar {

/// Calls back once, a duration after it was set. Destroying it, cancelling it or setting it anew ends what
/// was set.
class OneShotTimer {
public:
    explicit OneShotTimer(MainLoop& loop) : loop_(loop) {}
    /// Calls back once after `delay`, in the place of what was set before. The callback may set or destroy
    /// the timer.
    void set(Duration delay, std::function<void()> callback);
    /// Nothing happens when nothing is set.
    void cancel() { pending_.reset(); }
    /// True until the callback begins.
    bool isSet() const { return pending_ != nullptr; }

private:
    MainLoop& loop_;
    std::unique_ptr<Scheduled> pending_;
};

/// Calls back at a fixed interval until it is cancelled or destroyed. After a late wake-up it calls once and
/// goes on from there: missed turns are not made up for.
class RepeatingTimer {
public:
    explicit RepeatingTimer(MainLoop& loop) : loop_(loop) {}
    /// Calls back after one `interval` for the first time; starts anew when it is running already.
    void start(Duration interval, std::function<void()> callback);
    /// Nothing is called any more; the callback itself may ask for this.
    void cancel();
    bool isRunning() const { return callback_ != nullptr; }

private:
    void arm(TimePoint when);

    MainLoop& loop_;
    Duration interval_{};
    std::shared_ptr<const std::function<void()>> callback_;
    Scheduled pending_;
};

}  // namespace quillmar

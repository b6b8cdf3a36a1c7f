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
    void set(Duration delay, std::function<void()> callback);
    void cancel() { pending_.reset(); }
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
    void start(Duration interval, std::function<void()> callback);
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

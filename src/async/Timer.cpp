#include "async/Timer.h"

namespace quillmar {

void OneShotTimer::set(Duration delay, std::function<void()> callback) {
    pending_ =
        std::make_unique<Scheduled>(loop_, loop_.now() + delay, [this, callback = std::move(callback)] {
            pending_.reset();
            callback();
        });
}

void RepeatingTimer::start(Duration interval, std::function<void()> callback) {
    interval_ = interval;
    callback_ = std::make_shared<const std::function<void()>>(std::move(callback));
    arm(loop_.now() + interval_);
}

void RepeatingTimer::cancel() {
    pending_.cancel();
    callback_.reset();
}

void RepeatingTimer::arm(TimePoint when) {
    pending_ = Scheduled(loop_, when, [this, when] {
        const auto callback = callback_;  // the callback may cancel or restart this timer
        const TimePoint next = when + interval_;
        arm(next > loop_.now() ? next : loop_.now() + interval_);
        (*callback)();
    });
}

}  // namespace quillmar

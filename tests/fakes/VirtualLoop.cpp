#include "fakes/VirtualLoop.h"

#include <gtest/gtest.h>

#include <thread>

namespace quillmar {

VirtualLoop::~VirtualLoop() {
    if (!failure_) return;
    try {
        std::rethrow_exception(failure_);
    } catch (const std::exception& failure) {
        ADD_FAILURE() << "a task failed and nobody waited for it: " << failure.what();
    }
}

MainLoop::Ticket VirtualLoop::callAt(TimePoint when, Callback callback) {
    const std::lock_guard lock(mutex_);
    return queue_.add(std::max(when, now_), std::move(callback));
}

void VirtualLoop::forget(Ticket ticket) {
    Callback forgotten;  // dies after the lock is released: what it owns may forget something too
    const std::lock_guard lock(mutex_);
    forgotten = queue_.remove(ticket);
}

void VirtualLoop::post(Callback callback) {
    const std::lock_guard lock(mutex_);
    queue_.add(now_, std::move(callback));
}

bool VirtualLoop::runOneDue(TimePoint end) {
    Callback callback;
    {
        const std::lock_guard lock(mutex_);
        const auto due = queue_.firstDue();
        if (!due || *due > end) return false;
        now_ = std::max(now_, *due);
        callback = queue_.takeDue(now_, queue_.nextSerial());
    }
    callback();
    return true;
}

void VirtualLoop::advance(Duration duration) {
    const TimePoint end = now_ + duration;
    while (runOneDue(end)) {
    }
    const std::lock_guard lock(mutex_);
    now_ = end;
}

void VirtualLoop::jump(Duration duration) {
    {
        const std::lock_guard lock(mutex_);
        now_ += duration;
    }
    settle();
}

bool VirtualLoop::settleUntil(const std::function<bool()>& condition) {
    for (int attempt = 0; attempt < 10000; ++attempt) {
        settle();
        if (condition()) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return false;
}

std::size_t VirtualLoop::pendingCount() const {
    const std::lock_guard lock(mutex_);
    return queue_.size();
}

std::optional<Duration> VirtualLoop::untilNext() const {
    const std::lock_guard lock(mutex_);
    const auto due = queue_.firstDue();
    if (!due) return std::nullopt;
    return std::max(*due, now_) - now_;
}

}  // namespace quillmar

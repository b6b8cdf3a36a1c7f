#pragma once
#include <utility>

#include "async/WaitList.h"

namespace quillmar {

/// Lets one task at a time go on, first come first served. Main thread.
class TaskLock {
public:
    /// The lock, held. Released when this ends, on whatever path. The lock outlives it.
    class [[nodiscard]] Hold {
    public:
        explicit Hold(TaskLock& lock) : lock_(&lock) {}
        Hold(Hold&& other) noexcept : lock_(std::exchange(other.lock_, nullptr)) {}
        Hold& operator=(Hold&& other) noexcept {
            std::swap(lock_, other.lock_);
            return *this;
        }
        ~Hold() { release(); }
        void release() {
            if (auto* lock = std::exchange(lock_, nullptr)) lock->passOn();
        }

    private:
        TaskLock* lock_;
    };

    TaskLock() : waiters_([this] { passOn(); }) {}
    TaskLock(const TaskLock&) = delete;
    TaskLock& operator=(const TaskLock&) = delete;

    /// Waits for the lock. Throws `CancellationError` when the task is cancelled before its turn.
    Task<Hold> acquire() {
        if (isLocked_) {
            co_await waiters_.wait();
        } else {
            isLocked_ = true;
        }
        co_return Hold(*this);
    }
    bool isLocked() const { return isLocked_; }

private:
    void passOn() {
        if (!waiters_.resumeFirst()) isLocked_ = false;
    }

    bool isLocked_ = false;
    WaitList waiters_;
};

}  // namespace quillmar

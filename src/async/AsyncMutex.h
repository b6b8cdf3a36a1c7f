#pragma once
#include <utility>

#include "async/WaitList.h"

namespace quillmar {

/// Puts tasks in line, first come first served: one at a time holds it, across its waits too. Main thread.
class AsyncMutex {
public:
    /// The mutex, held. Released when this ends, on whatever path. The mutex outlives it.
    class [[nodiscard]] Hold {
    public:
        explicit Hold(AsyncMutex& mutex) : mutex_(&mutex) {}
        Hold(Hold&& other) noexcept : mutex_(std::exchange(other.mutex_, nullptr)) {}
        Hold& operator=(Hold&& other) noexcept {
            std::swap(mutex_, other.mutex_);
            return *this;
        }
        ~Hold() { release(); }
        void release() {
            if (auto* mutex = std::exchange(mutex_, nullptr)) mutex->passOn();
        }

    private:
        AsyncMutex* mutex_;
    };

    AsyncMutex() : waiters_([this] { passOn(); }) {}
    AsyncMutex(const AsyncMutex&) = delete;
    AsyncMutex& operator=(const AsyncMutex&) = delete;

    /// Waits for the mutex. Throws `CancellationError` when the task is cancelled before its turn.
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

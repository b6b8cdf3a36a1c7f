#pragma once
#include <utility>

#include "async/WaitList.h"

namespace quillmar {

/// Puts the transactions of the settings in line, first come first served. It is the outermost lock: taken
/// before any other; its holder may wait for the disk, never for the user.
class SettingsTransactionGate {
public:
    /// The gate, held. Released when this ends, on whatever path. The gate outlives it.
    class [[nodiscard]] Hold {
    public:
        explicit Hold(SettingsTransactionGate& gate) : gate_(&gate) {}
        Hold(Hold&& other) noexcept : gate_(std::exchange(other.gate_, nullptr)) {}
        Hold& operator=(Hold&& other) noexcept {
            std::swap(gate_, other.gate_);
            return *this;
        }
        ~Hold() { release(); }
        /// Lets the next one in before this ends.
        void release() {
            if (auto* gate = std::exchange(gate_, nullptr)) gate->passOn();
        }

    private:
        SettingsTransactionGate* gate_;
    };

    SettingsTransactionGate() : waiters_([this] { passOn(); }) {}
    SettingsTransactionGate(const SettingsTransactionGate&) = delete;
    SettingsTransactionGate& operator=(const SettingsTransactionGate&) = delete;

    /// Waits for the gate. Throws `CancellationError` when the task is cancelled before its turn.
    Task<Hold> acquire() {
        if (isLocked_) {
            co_await waiters_.wait();
        } else {
            isLocked_ = true;
        }
        co_return Hold(*this);
    }
    /// Whether somebody holds the gate.
    bool isLocked() const { return isLocked_; }

private:
    void passOn() {
        if (!waiters_.resumeFirst()) isLocked_ = false;
    }

    bool isLocked_ = false;
    WaitList waiters_;
};

}  // namespace quillmar

#pragma once
#include <functional>

#include "base/FileDescriptor.h"

namespace quillmar {

/// Hears when the wall clock leaps against the loop's time: the machine slept and woke up, or somebody set
/// the clock. Main thread.
class ClockJumps {
public:
    /// Where the kernel cannot tell, nothing is ever heard.
    explicit ClockJumps(std::function<void()> handler);
    ClockJumps(const ClockJumps&) = delete;
    ClockJumps& operator=(const ClockJumps&) = delete;
    ~ClockJumps();

private:
    void arm() const;
    bool hasJumped() const;

    std::function<void()> handler_;
    FileDescriptor timer_;
    unsigned int watch_ = 0;  ///< 0: none
};

}  // namespace quillmar

#pragma once
#include <functional>

#include "async/Task.h"

namespace quillmar {

/// The program's instances in this session, as far as they can find each other. Main thread.
class RunningInstances {
public:
    virtual ~RunningInstances() = default;
    /// Asks the instance that others can find to come to the front. False when there is none but this one or
    /// it does not answer within two seconds; starts no program. Throws `CancellationError` when cancelled.
    virtual Task<bool> activateOther() = 0;
    /// Makes this instance one that others can find; `onActivate` is called from the main loop each time
    /// another asks for it. Where instances cannot find each other nothing happens.
    virtual void publish(std::function<void()> onActivate) = 0;
};

}  // namespace quillmar

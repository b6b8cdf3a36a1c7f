#pragma once
#include <functional>

namespace quillmar {

/// Why the system wants the program to end.
enum class SystemQuitReason {
    interrupted,  ///< someone at the terminal
    terminated,   ///< the session or the machine ends, or an administrator asks
    hungUp,       ///< the terminal that it was started from is gone
};

/// What the system asks of the program. Main thread.
class SystemEventsObserving {
public:
    virtual ~SystemEventsObserving() = default;
    /// Calls back, from the main loop, each time the system asks the program to end. Replaces the former
    /// handler. Without a handler the program ends as the system would have it.
    virtual void setQuitHandler(std::function<void(SystemQuitReason)> handler) = 0;
    /// Calls back, from the main loop, each time somebody asks the program to look at its settings again.
    /// Replaces the former handler.
    virtual void setReloadHandler(std::function<void()> handler) = 0;
    /// Calls back, from the main loop, each time the machine has woken up or its clock was set. Replaces the
    /// former handler.
    virtual void setWakeHandler(std::function<void()> handler) = 0;
    /// Calls back, from the main loop, each time the machine has a network again after it had none. Replaces
    /// the former handler; an empty one ends it.
    virtual void setNetworkHandler(std::function<void()> handler) = 0;
};

}  // namespace quillmar

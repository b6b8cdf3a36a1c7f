#pragma once
#include <array>
#include <memory>

#include "platform/SystemEvents.h"

namespace quillmar {

/// The system's wishes, as the signals SIGINT, SIGTERM and SIGHUP. One instance at a time; while it has a
/// quit handler the signals do nothing but call it.
///
/// SIGHUP says two things. Where the terminal that the program was started from is gone, or goes within a
/// second, it is the wish to end, unless the program was started to outlive that ("nohup"). Otherwise
/// somebody sent it who wants the settings to be looked at.
class UnixSignals {
public:
    UnixSignals();
    UnixSignals(const UnixSignals&) = delete;
    UnixSignals& operator=(const UnixSignals&) = delete;
    ~UnixSignals();
    void setQuitHandler(std::function<void(SystemQuitReason)> handler);
    void setReloadHandler(std::function<void()> handler) { reload_ = std::move(handler); }

private:
    struct Watch;
    void hungUp();
    bool endIfTerminalIsGone();

    bool mayOutliveTerminal_;
    std::function<void(SystemQuitReason)> quit_;
    std::function<void()> reload_;
    std::array<std::unique_ptr<Watch>, 3> watches_;
    unsigned int secondLook_ = 0;
};

}  // namespace quillmar

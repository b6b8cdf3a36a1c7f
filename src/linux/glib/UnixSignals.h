#pragma once
#include <array>
#include <memory>

#include "platform/SystemEvents.h"

namespace quillmar {

/// The system's wish to end, as the signals SIGINT, SIGTERM and SIGHUP. One instance at a time; while it has
/// a handler the signals do nothing but call it.
class UnixSignals {
public:
    UnixSignals();
    UnixSignals(const UnixSignals&) = delete;
    UnixSignals& operator=(const UnixSignals&) = delete;
    ~UnixSignals();
    void setQuitHandler(std::function<void(SystemQuitReason)> handler);

private:
    struct Watch;
    std::array<std::unique_ptr<Watch>, 3> watches_;
};

}  // namespace quillmar

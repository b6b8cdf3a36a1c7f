#pragma once
#include <map>
#include <optional>

#include "async/MainLoop.h"

namespace quillmar {

/// The callbacks of a main loop in the order in which they fall due. Not synchronised.
class TimerQueue {
public:
    /// Puts the callback behind those of the same time.
    MainLoop::Ticket add(TimePoint when, MainLoop::Callback callback);
    /// Takes the callback out; empty when it is not there any more.
    MainLoop::Callback remove(MainLoop::Ticket ticket);

    /// When the first callback falls due; nothing when there is none.
    std::optional<TimePoint> firstDue() const;
    /// Takes the first callback that is due at `now` and was added before `serial`; empty when there is none.
    MainLoop::Callback takeDue(TimePoint now, std::uint64_t serial);
    /// The serial of the next callback to be added.
    std::uint64_t nextSerial() const { return nextSerial_; }
    std::size_t size() const { return callbacks_.size(); }

private:
    std::map<MainLoop::Ticket, MainLoop::Callback> callbacks_;
    std::uint64_t nextSerial_ = 1;
};

}  // namespace quillmar

#include "async/TimerQueue.h"

namespace quillmar {

MainLoop::Ticket TimerQueue::add(TimePoint when, MainLoop::Callback callback) {
    const MainLoop::Ticket ticket{when, nextSerial_++};
    callbacks_.emplace(ticket, std::move(callback));
    return ticket;
}

MainLoop::Callback TimerQueue::remove(MainLoop::Ticket ticket) {
    auto entry = callbacks_.extract(ticket);
    return entry ? std::move(entry.mapped()) : MainLoop::Callback();
}

std::optional<TimePoint> TimerQueue::firstDue() const {
    if (callbacks_.empty()) return std::nullopt;
    return callbacks_.begin()->first.first;
}

MainLoop::Callback TimerQueue::takeDue(TimePoint now, std::uint64_t serial) {
    for (auto entry = callbacks_.begin(); entry != callbacks_.end() && entry->first.first <= now; ++entry) {
        if (entry->first.second >= serial) continue;
        MainLoop::Callback callback = std::move(entry->second);
        callbacks_.erase(entry);
        return callback;
    }
    return {};
}

}  // namespace quillmar

#include "linux/glib/ClockJumps.h"

#include <glib-unix.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <limits>
#include <utility>

namespace quillmar {

ClockJumps::ClockJumps(std::function<void()> handler)
    : handler_(std::move(handler)), timer_(::timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC)) {
    if (!timer_) return;
    arm();
    constexpr auto readable = +[](int, GIOCondition, gpointer data) -> gboolean {
        auto* jumps = static_cast<ClockJumps*>(data);
        if (jumps->hasJumped()) {
            jumps->arm();
            jumps->handler_();
        }
        return G_SOURCE_CONTINUE;
    };
    watch_ = g_unix_fd_add(timer_.get(), G_IO_IN, readable, this);
}

ClockJumps::~ClockJumps() {
    if (watch_ != 0) g_source_remove(watch_);
}

/// A timer that nobody waits for: the kernel cancels it when its clock leaps.
void ClockJumps::arm() const {
    itimerspec never{};
    never.it_value.tv_sec = std::numeric_limits<decltype(never.it_value.tv_sec)>::max();
    ::timerfd_settime(timer_.get(), TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &never, nullptr);
}

bool ClockJumps::hasJumped() const {
    std::uint64_t expirations = 0;
    return ::read(timer_.get(), &expirations, sizeof expirations) < 0 && errno == ECANCELED;
}

}  // namespace quillmar

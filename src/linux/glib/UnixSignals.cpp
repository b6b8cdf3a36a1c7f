#include "linux/glib/UnixSignals.h"

#include <fcntl.h>
#include <glib-unix.h>

#include <csignal>

#include "base/FileDescriptor.h"

namespace quillmar {
namespace {

/// From a shell's word that it ends to the end of its terminal.
constexpr guint secondLookMilliseconds = 1000;

bool hasTerminal() {
    return static_cast<bool>(FileDescriptor(::open("/dev/tty", O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)));
}

bool isHangUpIgnored() {
    struct sigaction present{};
    return ::sigaction(SIGHUP, nullptr, &present) == 0 && present.sa_handler == SIG_IGN;
}

}  // namespace

struct UnixSignals::Watch {
    using Handler = std::function<void()>;

    Watch(int signal, Handler callback)
        : handler(std::make_shared<Handler>(std::move(callback))),
          id(g_unix_signal_add(signal, &arrived, this)) {}
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;
    ~Watch() { g_source_remove(id); }

    static gboolean arrived(gpointer data) {
        const auto held = static_cast<Watch*>(data)->handler;  // it may be replaced while it runs
        (*held)();
        return G_SOURCE_CONTINUE;
    }

    std::shared_ptr<Handler> handler;
    guint id;
};

UnixSignals::UnixSignals() : mayOutliveTerminal_(isHangUpIgnored() || !hasTerminal()) {}
UnixSignals::~UnixSignals() {
    if (secondLook_) g_source_remove(secondLook_);
}

void UnixSignals::setQuitHandler(std::function<void(SystemQuitReason)> handler) {
    watches_ = {};
    quit_ = handler;
    if (!handler) return;
    const auto quits = [&](SystemQuitReason reason) { return [handler, reason] { handler(reason); }; };
    watches_ = {std::make_unique<Watch>(SIGINT, quits(SystemQuitReason::interrupted)),
                std::make_unique<Watch>(SIGTERM, quits(SystemQuitReason::terminated)),
                std::make_unique<Watch>(SIGHUP, [this] { hungUp(); })};
}

void UnixSignals::hungUp() {
    if (endIfTerminalIsGone()) return;
    if (reload_) reload_();
    if (mayOutliveTerminal_ || secondLook_) return;
    const GSourceFunc look = [](gpointer data) -> gboolean {
        auto* self = static_cast<UnixSignals*>(data);
        self->secondLook_ = 0;
        self->endIfTerminalIsGone();
        return G_SOURCE_REMOVE;
    };
    secondLook_ = g_timeout_add(secondLookMilliseconds, look, this);
}

bool UnixSignals::endIfTerminalIsGone() {
    if (mayOutliveTerminal_ || hasTerminal() || !quit_) return false;
    const auto held = quit_;  // it may be replaced while it runs
    held(SystemQuitReason::hungUp);
    return true;
}

}  // namespace quillmar

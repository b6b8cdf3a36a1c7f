#include "linux/glib/UnixSignals.h"

#include <glib-unix.h>

#include <csignal>

namespace quillmar {

struct UnixSignals::Watch {
    using Handler = std::function<void(SystemQuitReason)>;

    Watch(int signal, SystemQuitReason why, Handler callback)
        : reason(why),
          handler(std::make_shared<Handler>(std::move(callback))),
          id(g_unix_signal_add(signal, &arrived, this)) {}
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;
    ~Watch() { g_source_remove(id); }

    static gboolean arrived(gpointer data) {
        const auto* watch = static_cast<Watch*>(data);
        const auto held = watch->handler;  // the handler may be replaced while it runs
        (*held)(watch->reason);
        return G_SOURCE_CONTINUE;
    }

    SystemQuitReason reason;
    std::shared_ptr<Handler> handler;
    guint id;
};

UnixSignals::UnixSignals() = default;
UnixSignals::~UnixSignals() = default;

void UnixSignals::setQuitHandler(std::function<void(SystemQuitReason)> handler) {
    watches_ = {};
    if (!handler) return;
    watches_ = {std::make_unique<Watch>(SIGINT, SystemQuitReason::interrupted, handler),
                std::make_unique<Watch>(SIGTERM, SystemQuitReason::terminated, handler),
                std::make_unique<Watch>(SIGHUP, SystemQuitReason::hungUp, handler)};
}

}  // namespace quillmar

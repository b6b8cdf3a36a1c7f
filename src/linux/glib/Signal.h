#pragma once
#include <glib-object.h>

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

namespace quillmar {

/// A connected signal; disconnects when it is destroyed. The emitter may die first.
class Signal {
public:
    Signal() = default;
    /// `callback` receives the emitter and the signal's arguments, whose types are named after the result's:
    /// `Signal::connect<void, int>(dialog, "response", [](GtkDialog*, int response) {...})`.
    template <class Result, class... Arguments, class Sender>
    [[nodiscard]] static Signal connect(
        Sender* sender, const char* name,
        std::type_identity_t<std::function<Result(Sender*, Arguments...)>> callback) {
        using Callback = std::function<Result(Sender*, Arguments...)>;
        constexpr auto call = +[](Sender* emitter, Arguments... arguments, gpointer data) -> Result {
            // A copy: the callback may disconnect itself.
            const auto held = *static_cast<std::shared_ptr<Callback>*>(data);
            return (*held)(emitter, arguments...);
        };
        constexpr auto drop =
            +[](gpointer data, GClosure*) { delete static_cast<std::shared_ptr<Callback>*>(data); };
        auto* data = new std::shared_ptr<Callback>(std::make_shared<Callback>(std::move(callback)));
        return Signal(G_OBJECT(sender),
                      g_signal_connect_data(sender, name, G_CALLBACK(call), data, drop, GConnectFlags(0)));
    }
    Signal(Signal&&) noexcept = default;
    Signal& operator=(Signal&& other) noexcept {
        disconnect();
        watch_ = std::move(other.watch_);
        return *this;
    }
    ~Signal() { disconnect(); }

    void disconnect() {
        const auto watch = std::move(watch_);
        if (!watch || !watch->emitter) return;
        g_object_remove_weak_pointer(G_OBJECT(watch->emitter), &watch->emitter);
        g_signal_handler_disconnect(watch->emitter, watch->id);
    }

private:
    struct Watch {
        gpointer emitter;
        gulong id;
    };
    Signal(GObject* emitter, gulong id) : watch_(std::make_unique<Watch>(emitter, id)) {
        g_object_add_weak_pointer(emitter, &watch_->emitter);
    }
    std::unique_ptr<Watch> watch_;
};

}  // namespace quillmar

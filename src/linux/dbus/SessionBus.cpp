#include "linux/dbus/SessionBus.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "linux/glib/Gio.h"

namespace quillmar {

bool BusRefusal::isAbsence() const {
    constexpr std::string_view bus = "org.freedesktop.DBus.Error.";
    constexpr std::array<std::string_view, 6> absences{"ServiceUnknown", "NameHasNoOwner", "NoReply",
                                                       "Timeout",        "TimedOut",       "Disconnected"};
    if (!name_.starts_with(bus)) return false;
    const std::string_view word = std::string_view(name_).substr(bus.size());
    return word.starts_with("Spawn.") || std::ranges::count(absences, word) > 0;
}

Task<Bus> sessionBus() {
    const auto result = co_await gio([](GCancellable* cancellable, GAsyncReadyCallback done, gpointer data) {
        g_bus_get(G_BUS_TYPE_SESSION, cancellable, done, data);
    });
    Owned<GError> error;
    const Bus bus = Bus::adopt(g_bus_get_finish(result.get(), GErrorOut(error)));
    throwIfFailed(error);
    // The library's default is to end the process with the bus.
    g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
    co_return bus;
}

Task<Bus> sessionBusWithin(Duration limit) {
    const TaskContext context = co_await currentContext();
    std::stop_source stop;
    const std::stop_callback follow(context.stop, [&stop] { stop.request_stop(); });
    const Scheduled deadline(*context.loop, context.loop->now() + limit, [&stop] { stop.request_stop(); });
    Task<Bus> opening = sessionBus();
    opening.setContext({context.loop, stop.get_token()});
    try {
        co_return co_await std::move(opening);
    } catch (const CancellationError&) {
        if (context.stop.stop_requested()) throw;
        throw BusSilence("the session bus did not answer");
    }
}

Task<std::shared_ptr<GVariant>> callOnBus(Bus bus, BusCall call) {
    const auto result = co_await gio([=](GCancellable* cancellable, GAsyncReadyCallback done, gpointer data) {
        g_dbus_connection_call(bus.get(), call.destination, call.path, call.interface, call.method,
                               call.arguments, nullptr,
                               call.startsProgram ? G_DBUS_CALL_FLAGS_NONE : G_DBUS_CALL_FLAGS_NO_AUTO_START,
                               call.timeoutMilliseconds, cancellable, done, data);
    });
    Owned<GError> error;
    GVariant* answer = g_dbus_connection_call_finish(bus.get(), result.get(), GErrorOut(error));
    if (error && g_dbus_error_is_remote_error(error.get())) {
        const Owned<char> name(g_dbus_error_get_remote_error(error.get()));
        g_dbus_error_strip_remote_error(error.get());
        throw BusRefusal(name.get(), error->message);
    }
    if (g_error_matches(error.get(), G_IO_ERROR, G_IO_ERROR_TIMED_OUT)) throw BusSilence(error->message);
    throwIfFailed(error);
    co_return std::shared_ptr<GVariant>(answer, &g_variant_unref);
}

Task<bool> hasOwner(Bus bus, std::string name, int timeoutMilliseconds) {
    const auto answer =
        co_await callOnBus(bus, {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                 "NameHasOwner", g_variant_new("(s)", name.c_str()), timeoutMilliseconds});
    gboolean isOwned = FALSE;
    g_variant_get(answer.get(), "(b)", &isOwned);
    co_return isOwned != FALSE;
}

}  // namespace quillmar

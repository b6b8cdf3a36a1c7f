#include "linux/dbus/BlockingBus.h"

namespace quillmar {

namespace {

constexpr int answerMilliseconds = 5000;

}  // namespace

Bus blockingSessionBus() {
    // Nobody to tell: a desktop without a bus is an ordinary one.
    Bus bus = Bus::adopt(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    // The library's default is to end the process with the bus.
    if (bus) g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
    return bus;
}

Owned<GVariant> callAndWait(const Bus& bus, const BusCall& call) {
    Owned<GError> error;
    Owned<GVariant> answer(g_dbus_connection_call_sync(
        bus.get(), call.destination, call.path, call.interface, call.method, call.arguments, nullptr,
        G_DBUS_CALL_FLAGS_NONE, call.timeoutMilliseconds < 0 ? answerMilliseconds : call.timeoutMilliseconds,
        nullptr, GErrorOut(error)));
    if (error && g_dbus_error_is_remote_error(error.get())) {
        const Owned<char> name(g_dbus_error_get_remote_error(error.get()));
        g_dbus_error_strip_remote_error(error.get());
        throw BusRefusal(name.get(), error->message);
    }
    throwIfFailed(error);
    return answer;
}

bool hasOwner(const Bus& bus, const char* name) {
    const auto answer =
        callAndWait(bus, {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                          "NameHasOwner", g_variant_new("(s)", name)});
    gboolean isOwned = FALSE;
    g_variant_get(answer.get(), "(b)", &isOwned);
    return isOwned != FALSE;
}

}  // namespace quillmar

#include "linux/dbus/SessionBus.h"

#include "linux/glib/Gio.h"

namespace quillmar {

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

Task<std::shared_ptr<GVariant>> callOnBus(Bus bus, BusCall call) {
    const auto result = co_await gio([=](GCancellable* cancellable, GAsyncReadyCallback done, gpointer data) {
        g_dbus_connection_call(bus.get(), call.destination, call.path, call.interface, call.method,
                               call.arguments, nullptr,
                               call.startsProgram ? G_DBUS_CALL_FLAGS_NONE : G_DBUS_CALL_FLAGS_NO_AUTO_START,
                               call.timeoutMilliseconds, cancellable, done, data);
    });
    Owned<GError> error;
    GVariant* answer = g_dbus_connection_call_finish(bus.get(), result.get(), GErrorOut(error));
    throwIfFailed(error);
    co_return std::shared_ptr<GVariant>(answer, &g_variant_unref);
}

}  // namespace quillmar

#include "linux/dbus/DBusSessionEnd.h"

#include <gio/gio.h>
#include <gmock/gmock.h>

#include "desktop/Desktop.h"
#include "linux/glib/GlibMainLoop.h"
#include "linux/glib/Ref.h"

namespace quillmar {
namespace {

/// A session manager on the real bus, with a connection of its own.
class SessionManager {
public:
    SessionManager() {
        bus_.offer("/org/gnome/SessionManager", R"(<node><interface name="org.gnome.SessionManager">
            <method name="RegisterClient"><arg type="s" direction="in"/><arg type="s" direction="in"/>
            <arg type="o" direction="out"/></method></interface></node>)",
                   &called, this);
        bus_.offer(client, R"(<node><interface name="org.gnome.SessionManager.ClientPrivate">
            <method name="EndSessionResponse"><arg type="b" direction="in"/><arg type="s" direction="in"/></method>
            </interface></node>)",
                   &called, this);
    }
    void emit(const char* signal, GVariant* parameters) {
        g_dbus_connection_emit_signal(bus_.get(), nullptr, client, "org.gnome.SessionManager.ClientPrivate",
                                      signal, parameters, nullptr);
    }
    std::vector<std::string> calls;

private:
    static constexpr const char* client = "/org/gnome/SessionManager/Client1";

    static void called(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* method,
                       GVariant* parameters, GDBusMethodInvocation* invocation, gpointer data) {
        const Owned<char> text(g_variant_print(parameters, FALSE));
        static_cast<SessionManager*>(data)->calls.push_back(std::string(method) + text.get());
        const bool registers = std::string_view(method) == "RegisterClient";
        g_dbus_method_invocation_return_value(invocation, registers ? g_variant_new("(o)", client) : nullptr);
    }
    OwnConnection bus_{"org.gnome.SessionManager"};
};

TEST(DBusSessionEndTest, theSessionManagerIsAnsweredAndItsEndIsAWishToQuit) {
    SessionManager manager;
    GlibMainLoop loop;
    DBusSessionEnd sessionEnd(loop);
    int quits = 0;
    sessionEnd.setQuitHandler([&](SystemQuitReason) { ++quits; });
    ASSERT_TRUE(turnUntil([&] { return manager.calls.size() == 1; }));
    EXPECT_EQ(manager.calls[0], "RegisterClient('com.quillmar.Quillmar', '')");
    // The client hears signals only from the moment at which it knows its path.
    ASSERT_TRUE(turnUntil([&] {
        if (manager.calls.size() < 2) manager.emit("QueryEndSession", g_variant_new("(u)", 0));
        return manager.calls.size() >= 2;
    }));
    EXPECT_EQ(manager.calls[1], "EndSessionResponse(true, '')");
    EXPECT_EQ(quits, 0);
    manager.emit("EndSession", g_variant_new("(u)", 0));
    EXPECT_TRUE(turnUntil([&] { return quits == 1; }));
}

TEST(DBusSessionEndTest, withoutASessionManagerNothingIsHeardAndNothingFails) {
    GlibMainLoop loop;
    int failures = 0;
    loop.setTaskFailureHandler([&](std::exception_ptr) { ++failures; });
    DBusSessionEnd sessionEnd(loop);
    bool isLater = false;
    sessionEnd.setQuitHandler([](SystemQuitReason) {});
    const Scheduled later(loop, loop.now() + std::chrono::milliseconds(300), [&] { isLater = true; });
    ASSERT_TRUE(turnUntil([&] { return isLater; }));
    EXPECT_EQ(failures, 0);
}

TEST(DBusSessionEndTest, aMachineThatShutsDownIsAWishToQuit) {
    const Owned<char> address(g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    g_setenv("DBUS_SYSTEM_BUS_ADDRESS", address.get(), TRUE);
    const OwnConnection logind("org.freedesktop.login1");
    GlibMainLoop loop;
    DBusSessionEnd session(loop);
    int quits = 0;
    session.setQuitHandler([&](SystemQuitReason) { ++quits; });
    // Signals before it listens are lost.
    EXPECT_TRUE(turnUntil([&] {
        g_dbus_connection_emit_signal(logind.get(), nullptr, "/org/freedesktop/login1",
                                      "org.freedesktop.login1.Manager", "PrepareForShutdown",
                                      g_variant_new("(b)", TRUE), nullptr);
        return quits > 0;
    }));
}

}  // namespace
}  // namespace quillmar

#include "linux/dbus/DBusRunningInstances.h"

#include <unistd.h>

#include <string_view>

#include "diagnostics/Log.h"
#include "linux/dbus/SessionBus.h"

namespace quillmar {

namespace {

constexpr const char* objectPath = "/com/quillmar/Quillmar";
constexpr const char* interfaceName = "org.freedesktop.Application";
constexpr const char* interfaceXml = R"(<node><interface name="org.freedesktop.Application">
<method name="Activate"><arg type="a{sv}" name="platform-data" direction="in"/></method>
<method name="Open"><arg type="as" name="uris" direction="in"/>
<arg type="a{sv}" name="platform-data" direction="in"/></method>
<method name="ActivateAction"><arg type="s" name="action-name" direction="in"/>
<arg type="av" name="parameter" direction="in"/>
<arg type="a{sv}" name="platform-data" direction="in"/></method>
</interface></node>)";
constexpr Duration answerTime = std::chrono::seconds(2);

Task<bool> activateOwner() {
    const Bus bus = co_await sessionBus();
    const auto answer =
        co_await callOnBus(bus, {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                 "GetConnectionUnixProcessID", g_variant_new("(s)", quillmarBusName)});
    guint32 process = 0;
    g_variant_get(answer.get(), "(u)", &process);
    if (process == static_cast<guint32>(getpid())) co_return false;
    co_await callOnBus(
        bus, {quillmarBusName, objectPath, interfaceName, "Activate", g_variant_new_parsed("(@a{sv} {},)")});
    co_return true;
}

}  // namespace

/// The name on the bus and the object behind it.
struct DBusRunningInstances::Publication {
    explicit Publication(std::function<void()> callback)
        : onActivate(std::move(callback)),
          name(g_bus_own_name(G_BUS_TYPE_SESSION, quillmarBusName, G_BUS_NAME_OWNER_FLAGS_NONE, &gotBus,
                              nullptr, &lostName, this, nullptr)) {}
    Publication(const Publication&) = delete;
    Publication& operator=(const Publication&) = delete;
    ~Publication() {
        withdraw();
        g_bus_unown_name(name);
    }

    static void gotBus(GDBusConnection* bus, const gchar*, gpointer data) {
        static_cast<Publication*>(data)->exportObject(bus);
    }
    static void lostName(GDBusConnection* bus, const gchar*, gpointer data) {
        // With a bus the name is another instance's, of another display perhaps: we come next.
        if (bus) return;
        static_cast<Publication*>(data)->withdraw();
        logInfo("There is no session bus; other instances cannot be found.", "lifecycle");
    }
    void exportObject(GDBusConnection* connection) {
        static constexpr GDBusInterfaceVTable methods{&called, nullptr, nullptr, {}};
        withdraw();
        g_dbus_connection_set_exit_on_close(connection, FALSE);
        const Owned<GDBusNodeInfo> description(g_dbus_node_info_new_for_xml(interfaceXml, nullptr));
        bus = Bus::share(connection);
        object = g_dbus_connection_register_object(connection, objectPath, description->interfaces[0],
                                                   &methods, this, nullptr, nullptr);
    }
    void withdraw() {
        if (object != 0) g_dbus_connection_unregister_object(bus.get(), std::exchange(object, 0));
    }
    static void called(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* method,
                       GVariant*, GDBusMethodInvocation* invocation, gpointer data) {
        // There are neither documents nor actions: opening one is as much as coming to the front.
        const auto onActivate = static_cast<Publication*>(data)->onActivate;
        g_dbus_method_invocation_return_value(invocation, nullptr);
        if (std::string_view(method) != "ActivateAction") onActivate();
    }

    std::function<void()> onActivate;
    Bus bus;
    guint object = 0;
    guint name;
};

DBusRunningInstances::DBusRunningInstances() = default;
DBusRunningInstances::~DBusRunningInstances() = default;

Task<bool> DBusRunningInstances::activateOther() {
    const TaskContext context = co_await currentContext();
    std::stop_source stop;
    const std::stop_callback cancelled(context.stop, [&stop] { stop.request_stop(); });
    const Scheduled timeIsUp(*context.loop, context.loop->now() + answerTime,
                             [&stop] { stop.request_stop(); });
    Task<bool> attempt = activateOwner();
    attempt.setContext({context.loop, stop.get_token()});
    try {
        co_return co_await std::move(attempt);
    } catch (const CancellationError&) {
        if (context.stop.stop_requested()) throw;
    } catch (const std::exception&) {
        // No bus, nobody with the name, or one that is just leaving: all mean that there is no other.
    }
    co_return false;
}

void DBusRunningInstances::publish(std::function<void()> onActivate) {
    publication_ = std::make_unique<Publication>(std::move(onActivate));
}

}  // namespace quillmar

#include "desktop/FakePlasmaShell.h"

#include <duktape.h>

#include <iostream>

#include "desktop/Desktop.h"
#include "desktop/WaitingLoop.h"
#include "linux/dbus/SessionBus.h"
#include "linux/glib/GlibMainLoop.h"

namespace quillmar {

namespace {

constexpr const char* busName = "org.kde.plasmashell";
constexpr const char* interfaceXml = R"(<node><interface name="org.kde.PlasmaShell">
<method name="evaluateScript"><arg type="s" name="script" direction="in"/>
<arg type="s" name="printed" direction="out"/></method></interface></node>)";

constexpr const char* world = R"(
var printed = "";
function print(text) { printed += text; }
function Desktop(screen) {
    this.screen = screen;
    this.wallpaperPlugin = "org.kde.image";
    this.currentConfigGroup = [];
    this.settings = {};
}
Desktop.prototype.writeConfig = function (key, value) {
    this.settings[this.currentConfigGroup.concat(key).join("/")] = value;
};
Desktop.prototype.readConfig = function (key, otherwise) {
    var name = this.currentConfigGroup.concat(key).join("/");
    return name in this.settings ? this.settings[name] : otherwise;
};
var all = [new Desktop(0), new Desktop(1), new Desktop(-1)];
function desktops() { return all; }
function screenGeometry(screen) {
    return [{x: 0, y: 0, width: 1920, height: 1080}, {x: 1920, y: 0, width: 640, height: 512}][screen];
}
)";

void evaluate(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*, GVariant* arguments,
              GDBusMethodInvocation* invocation, gpointer data) {
    auto* engine = static_cast<duk_context*>(data);
    const char* script = "";
    g_variant_get(arguments, "(&s)", &script);
    duk_eval_string_noresult(engine, "printed = ''");
    const bool hasFailed = duk_peval_string(engine, script) != 0;
    if (hasFailed) {
        g_dbus_method_invocation_return_dbus_error(invocation, "org.freedesktop.DBus.Error.Failed",
                                                   duk_safe_to_string(engine, -1));
    } else {
        duk_get_global_string(engine, "printed");
        g_dbus_method_invocation_return_value(invocation, g_variant_new("(s)", duk_get_string(engine, -1)));
        duk_pop(engine);
    }
    duk_pop(engine);
}

}  // namespace

int playPlasmaShell() {
    GlibMainLoop loop;
    duk_context* engine = duk_create_heap_default();
    duk_eval_string_noresult(engine, world);
    const Bus bus = Bus::adopt(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    const Owned<GDBusNodeInfo> description(g_dbus_node_info_new_for_xml(interfaceXml, nullptr));
    static constexpr GDBusInterfaceVTable methods{&evaluate, nullptr, nullptr, {}};
    g_dbus_connection_register_object(bus.get(), "/PlasmaShell", description->interfaces[0], &methods, engine,
                                      nullptr, nullptr);
    g_bus_own_name_on_connection(
        bus.get(), busName, G_BUS_NAME_OWNER_FLAGS_NONE,
        [](GDBusConnection*, const gchar*, gpointer) { std::cout << "ready" << std::endl; }, nullptr, nullptr,
        nullptr);
    loop.run();
    return 0;
}

std::string inPlasmaShell(const std::string& script) {
    WaitingLoop loop;
    const Bus bus = loop.await(sessionBus());
    const auto answer = loop.await(callOnBus(bus, {busName, "/PlasmaShell", "org.kde.PlasmaShell",
                                                   "evaluateScript", g_variant_new("(s)", script.c_str())}));
    const char* text = "";
    g_variant_get(answer.get(), "(&s)", &text);
    return text;
}

}  // namespace quillmar

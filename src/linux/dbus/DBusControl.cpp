#include "linux/dbus/DBusControl.h"

#include "async/TaskScope.h"
#include "linux/dbus/SessionBus.h"
#include "linux/glib/Gio.h"

namespace quillmar {
namespace {

constexpr const char* objectPath = "/com/quillmar/Quillmar/Control";
constexpr const char* interfaceName = "com.quillmar.Quillmar.Control";
constexpr const char* interfaceXml = R"(<node><interface name="com.quillmar.Quillmar.Control">
<method name="Run">
<arg type="aay" name="arguments" direction="in"/><arg type="ay" name="workingDirectory" direction="in"/>
<arg type="a{sv}" name="context" direction="in"/>
<arg type="i" name="status" direction="out"/><arg type="s" name="output" direction="out"/>
<arg type="s" name="errors" direction="out"/></method>
<signal name="Changed">
<arg type="s" name="event"/><arg type="s" name="json"/><arg type="s" name="text"/></signal>
</interface></node>)";

/// A byte string with or without the zero that some callers end it with.
std::string bytesOf(GVariant* value) {
    gsize length = 0;
    const auto* bytes = static_cast<const char*>(g_variant_get_fixed_array(value, &length, 1));
    std::string text = length == 0 ? std::string() : std::string(bytes, length);
    if (text.ends_with('\0')) text.pop_back();
    return text;
}

ControlCall unpacked(GVariant* parameters) {
    const Owned<GVariant> arguments(g_variant_get_child_value(parameters, 0));
    const Owned<GVariant> folder(g_variant_get_child_value(parameters, 1));
    const Owned<GVariant> context(g_variant_get_child_value(parameters, 2));
    ControlCall call{.workingDirectory = bytesOf(folder.get())};
    for (gsize i = 0; i < g_variant_n_children(arguments.get()); ++i) {
        call.arguments.push_back(
            bytesOf(Owned<GVariant>(g_variant_get_child_value(arguments.get(), i)).get()));
    }
    const char* version = nullptr;
    if (g_variant_lookup(context.get(), "version", "&s", &version)) call.version = version;
    return call;
}

Owned<char> validText(const std::string& bytes) {
    return Owned<char>(g_utf8_make_valid(bytes.data(), static_cast<gssize>(bytes.size())));
}

Task<void> emitChanged(Bus bus, ControlEvent event) {
    GVariant* parameters = g_variant_new("(sss)", validText(event.name).get(), validText(event.json).get(),
                                         validText(event.text).get());
    g_dbus_connection_emit_signal(bus.get(), nullptr, objectPath, interfaceName, "Changed", parameters,
                                  nullptr);
    // A bus that is gone takes nothing, and whoever followed it hears of that from the bus.
    co_await gio([bus](GCancellable* cancellable, GAsyncReadyCallback done, gpointer data) {
        g_dbus_connection_flush(bus.get(), cancellable, done, data);
    });
}

}  // namespace

class DBusControl::Server {
public:
    using Handler = std::function<Task<ControlReply>(ControlCall)>;

    Server(MainLoop& loop, Handler handler) : handler_(std::move(handler)), tasks_(loop) {
        tasks_.spawn(appear());
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    ~Server() {
        if (object_ != 0) g_dbus_connection_unregister_object(bus_.get(), object_);
    }

    const Bus& bus() const { return bus_; }

private:
    Task<void> appear() {
        try {
            bus_ = co_await sessionBus();
        } catch (const std::runtime_error&) {
            co_return;  // without a bus there is nobody to be answered
        }
        static constexpr GDBusInterfaceVTable methods{&called, nullptr, nullptr, {}};
        const Owned<GDBusNodeInfo> description(g_dbus_node_info_new_for_xml(interfaceXml, nullptr));
        object_ = g_dbus_connection_register_object(bus_.get(), objectPath, description->interfaces[0],
                                                    &methods, this, nullptr, nullptr);
    }
    static void called(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*,
                       GVariant* parameters, GDBusMethodInvocation* invocation, gpointer data) {
        auto* server = static_cast<Server*>(data);
        server->tasks_.spawn(
            server->answer(Ref<GDBusMethodInvocation>::adopt(invocation), unpacked(parameters)));
    }
    Task<void> answer(Ref<GDBusMethodInvocation> invocation, ControlCall call) {
        ControlReply reply;
        try {
            reply = co_await handler_(std::move(call));
        } catch (const CancellationError&) {
            throw;
        } catch (const std::exception& error) {
            reply = {.status = 1, .errors = std::string(error.what()) + "\n"};
        }
        // Returning the value takes a reference of its own to the invocation.
        g_object_ref(invocation.get());
        g_dbus_method_invocation_return_value(
            invocation.get(), g_variant_new("(iss)", reply.status, validText(reply.output).get(),
                                            validText(reply.errors).get()));
    }

    Handler handler_;
    Bus bus_;
    guint object_ = 0;
    TaskScope tasks_;
};

DBusControl::DBusControl(MainLoop& loop) : loop_(loop) {}
DBusControl::~DBusControl() = default;

void DBusControl::serve(std::function<Task<ControlReply>(ControlCall)> handler) {
    server_ = std::make_unique<Server>(loop_, std::move(handler));
}

Task<void> DBusControl::tell(ControlEvent event) {
    if (server_ && server_->bus()) co_await emitChanged(server_->bus(), std::move(event));
}

}  // namespace quillmar

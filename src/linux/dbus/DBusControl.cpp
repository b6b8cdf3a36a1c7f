#include "linux/dbus/DBusControl.h"

#include "async/TaskScope.h"
#include "base/Text.h"
#include "linux/dbus/SessionBus.h"

namespace quillmar {
namespace {

constexpr const char* objectPath = "/com/quillmar/Quillmar/Control";
constexpr const char* interfaceName = "com.quillmar.Quillmar.Control";
constexpr const char* interfaceXml = R"(<node><interface name="com.quillmar.Quillmar.Control">
<method name="Run">
<arg type="as" name="arguments" direction="in"/><arg type="s" name="workingDirectory" direction="in"/>
<arg type="i" name="status" direction="out"/><arg type="s" name="output" direction="out"/>
<arg type="s" name="errors" direction="out"/></method>
</interface></node>)";

GVariant* packed(const ControlCall& call) {
    GVariantBuilder arguments;
    g_variant_builder_init(&arguments, G_VARIANT_TYPE("as"));
    for (const std::string& argument : call.arguments) {
        g_variant_builder_add(&arguments, "s", argument.c_str());
    }
    return g_variant_new("(ass)", &arguments, call.workingDirectory.c_str());
}

ControlCall unpacked(GVariant* parameters) {
    ControlCall call;
    GVariantIter* arguments = nullptr;
    const char* text = nullptr;
    g_variant_get(parameters, "(as&s)", &arguments, &text);
    call.workingDirectory = text;
    while (g_variant_iter_next(arguments, "&s", &text)) call.arguments.emplace_back(text);
    g_variant_iter_free(arguments);
    return call;
}

Task<ControlReply> ask(ControlCall call) {
    const Bus bus = co_await sessionBus();
    const auto answer =
        co_await callOnBus(bus, {quillmarBusName, objectPath, interfaceName, "Run", packed(call), G_MAXINT});
    ControlReply reply;
    const char* output = nullptr;
    const char* errors = nullptr;
    g_variant_get(answer.get(), "(i&s&s)", &reply.status, &output, &errors);
    reply.output = output;
    reply.errors = errors;
    co_return reply;
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
        const auto text = [](const std::string& bytes) {
            return Owned<char>(g_utf8_make_valid(bytes.data(), static_cast<gssize>(bytes.size())));
        };
        // Returning the value takes a reference of its own to the invocation.
        g_object_ref(invocation.get());
        g_dbus_method_invocation_return_value(
            invocation.get(),
            g_variant_new("(iss)", reply.status, text(reply.output).get(), text(reply.errors).get()));
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

Task<std::optional<ControlReply>> DBusControl::call(ControlCall call) {
    // The bus carries no other texts.
    for (const std::string& text : call.arguments) {
        if (!isValidUtf8(text))
            co_return ControlReply{.status = 2, .errors = "The command is not UTF-8 text.\n"};
    }
    if (!isValidUtf8(call.workingDirectory)) call.workingDirectory = "/";
    try {
        co_return co_await ask(std::move(call));
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception&) {
        // No bus, or nobody with the name: both mean that no program is there.
        co_return std::nullopt;
    }
}

}  // namespace quillmar

#include "linux/dbus/DBusSessionEnd.h"

#include <cstdlib>
#include <string_view>
#include <vector>

#include "async/TaskScope.h"
#include "linux/dbus/SessionBus.h"
#include "linux/glib/Gio.h"

namespace quillmar {
namespace {

constexpr const char* managerName = "org.gnome.SessionManager";
constexpr const char* managerPath = "/org/gnome/SessionManager";
constexpr const char* clientInterface = "org.gnome.SessionManager.ClientPrivate";

Task<Bus> systemBus() {
    const auto result = co_await gio([](GCancellable* cancellable, GAsyncReadyCallback done, gpointer data) {
        g_bus_get(G_BUS_TYPE_SYSTEM, cancellable, done, data);
    });
    Owned<GError> error;
    const Bus bus = Bus::adopt(g_bus_get_finish(result.get(), GErrorOut(error)));
    throwIfFailed(error);
    g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
    co_return bus;
}

}  // namespace

class DBusSessionEnd::Client {
public:
    using Handler = std::function<void(SystemQuitReason)>;

    Client(MainLoop& loop, Handler handler) : handler_(std::move(handler)), tasks_(loop) {
        tasks_.spawn(whereThere(joinSession()));
        tasks_.spawn(whereThere(watchMachine()));
    }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;
    ~Client() {
        for (const auto& [bus, subscription] : subscriptions_)
            g_dbus_connection_signal_unsubscribe(bus.get(), subscription);
    }

private:
    /// Desktops without such a manager are no failure.
    static Task<void> whereThere(Task<void> attempt) {
        try {
            co_await std::move(attempt);
        } catch (const std::runtime_error&) {
        }
    }

    Task<void> joinSession() {
        session_ = co_await sessionBus();
        const char* startupID = std::getenv("DESKTOP_AUTOSTART_ID");
        const auto answer = co_await callOnBus(
            session_, {managerName, managerPath, managerName, "RegisterClient",
                       g_variant_new("(ss)", "com.quillmar.Quillmar", startupID ? startupID : "")});
        const char* path = nullptr;
        g_variant_get(answer.get(), "(&o)", &path);
        clientPath_ = path;
        subscribe(session_, managerName, clientInterface, nullptr, path);
    }
    Task<void> watchMachine() {
        const Bus bus = co_await systemBus();
        subscribe(bus, "org.freedesktop.login1", "org.freedesktop.login1.Manager", "PrepareForShutdown",
                  "/org/freedesktop/login1");
    }
    void subscribe(const Bus& bus, const char* sender, const char* interface, const char* signal,
                   const char* path) {
        const guint subscription =
            g_dbus_connection_signal_subscribe(bus.get(), sender, interface, signal, path, nullptr,
                                               G_DBUS_SIGNAL_FLAGS_NONE, &Client::received, this, nullptr);
        subscriptions_.emplace_back(bus, subscription);
    }
    static void received(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* signal,
                         GVariant* parameters, gpointer data) {
        auto* client = static_cast<Client*>(data);
        const std::string_view name = signal;
        if (name == "QueryEndSession") {
            client->tasks_.spawn(whereThere(client->agree()));
        } else if (name == "EndSession" || name == "Stop") {
            // The answer that the manager waits for is the end of the process, once all is saved.
            client->handler_(SystemQuitReason::terminated);
        } else if (name == "PrepareForShutdown") {
            gboolean begins = FALSE;
            g_variant_get(parameters, "(b)", &begins);
            if (begins) client->handler_(SystemQuitReason::terminated);
        }
    }
    Task<void> agree() {
        co_await callOnBus(session_, {managerName, clientPath_.c_str(), clientInterface, "EndSessionResponse",
                                      g_variant_new("(bs)", TRUE, "")});
    }

    Handler handler_;
    Bus session_;
    std::string clientPath_;
    std::vector<std::pair<Bus, guint>> subscriptions_;
    TaskScope tasks_;
};

DBusSessionEnd::DBusSessionEnd(MainLoop& loop) : loop_(loop) {}
DBusSessionEnd::~DBusSessionEnd() = default;

void DBusSessionEnd::setQuitHandler(std::function<void(SystemQuitReason)> handler) {
    client_ = handler ? std::make_unique<Client>(loop_, std::move(handler)) : nullptr;
}

}  // namespace quillmar

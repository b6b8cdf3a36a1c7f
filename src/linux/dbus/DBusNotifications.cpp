#include "linux/dbus/DBusNotifications.h"

#include <set>
#include <stdexcept>

#include "linux/dbus/SessionBus.h"

namespace quillmar {
namespace {

constexpr int patienceMilliseconds = 2000;

constexpr const char* serverName = "org.freedesktop.Notifications";

/// Starts the server where the session can: many start it for its first notification.
Task<std::shared_ptr<GVariant>> ask(const char* method, GVariant* arguments,
                                    std::string server = serverName) {
    // Held from here on: finding the bus takes a turn of the loop.
    const std::shared_ptr<GVariant> held(g_variant_ref_sink(arguments), &g_variant_unref);
    const Bus bus = co_await sessionBus();
    co_return co_await callOnBus(bus, {.destination = server.c_str(),
                                       .path = "/org/freedesktop/Notifications",
                                       .interface = "org.freedesktop.Notifications",
                                       .method = method,
                                       .arguments = held.get(),
                                       .timeoutMilliseconds = patienceMilliseconds,
                                       .startsProgram = true});
}

GVariant* noArguments() { return g_variant_new("()"); }

/// The unique name of the server that is there now.
Task<std::string> presentServer() {
    const Bus bus = co_await sessionBus();
    const auto answer = co_await callOnBus(bus, {.destination = "org.freedesktop.DBus",
                                                 .path = "/org/freedesktop/DBus",
                                                 .interface = "org.freedesktop.DBus",
                                                 .method = "GetNameOwner",
                                                 .arguments = g_variant_new("(s)", serverName),
                                                 .timeoutMilliseconds = patienceMilliseconds});
    const char* name = nullptr;
    g_variant_get(answer.get(), "(&s)", &name);
    co_return name;
}

std::set<std::string> namesIn(GVariant* answer) {
    std::set<std::string> names;
    GVariantIter* iterator = nullptr;
    const char* name = nullptr;
    g_variant_get(answer, "(as)", &iterator);
    while (g_variant_iter_next(iterator, "&s", &name)) names.insert(name);
    g_variant_iter_free(iterator);
    return names;
}

std::string escaped(const std::string& text) {
    return Owned<char>(g_markup_escape_text(text.c_str(), static_cast<gssize>(text.size()))).get();
}

}  // namespace

Task<RemoteNotificationAuthorizationStatus> DBusNotifications::authorizationStatus() {
    try {
        co_await ask("GetServerInformation", noArguments());
        co_return RemoteNotificationAuthorizationStatus::authorized;
    } catch (const std::runtime_error&) {
        co_return RemoteNotificationAuthorizationStatus::denied;
    }
}

Task<void> DBusNotifications::requestAuthorization() { co_return; }

Task<void> DBusNotifications::removeDelivered(std::string identifier) {
    const auto shown = delivered_.find(identifier);
    if (shown == delivered_.end()) co_return;
    const Shown former = shown->second;
    delivered_.erase(shown);
    try {
        co_await ask("CloseNotification", g_variant_new("(u)", former.number), former.server);
    } catch (const std::runtime_error&) {
        // The user has closed it already, or the server is gone and its notifications with it.
    }
}

Task<void> DBusNotifications::add(RemoteNotificationRequest request) {
    const auto capabilities = namesIn((co_await ask("GetCapabilities", noArguments())).get());
    std::string server = co_await presentServer();
    const std::string body = capabilities.contains("body-markup") ? escaped(request.body) : request.body;
    GVariantBuilder hints;
    g_variant_builder_init(&hints, G_VARIANT_TYPE("a{sv}"));
    g_variant_builder_add(&hints, "{sv}", "desktop-entry", g_variant_new_string("com.quillmar.Quillmar"));
    if (capabilities.contains("sound")) {
        g_variant_builder_add(&hints, "{sv}", "sound-name", g_variant_new_string("dialog-warning"));
    }
    const auto answer =
        co_await ask("Notify",
                     g_variant_new("(susss@asa{sv}i)", "Quillmar", 0u, "", request.title.c_str(),
                                   body.c_str(), g_variant_new_strv(nullptr, 0), &hints, -1),
                     server);
    std::uint32_t number = 0;
    g_variant_get(answer.get(), "(u)", &number);
    delivered_.insert_or_assign(request.identifier, Shown{std::move(server), number});
}

}  // namespace quillmar

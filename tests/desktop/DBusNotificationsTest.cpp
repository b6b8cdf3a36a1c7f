#include "linux/dbus/DBusNotifications.h"

#include <gio/gio.h>
#include <gmock/gmock.h>

#include "async/TaskScope.h"
#include "desktop/Desktop.h"
#include "linux/glib/GlibMainLoop.h"
#include "linux/glib/Ref.h"

namespace quillmar {
namespace {

using testing::HasSubstr;
using Status = RemoteNotificationAuthorizationStatus;

/// A notification server on the real bus, with a connection of its own.
class NotificationServer {
public:
    explicit NotificationServer(std::vector<std::string> capabilities)
        : capabilities_(std::move(capabilities)) {
        bus_.offer("/org/freedesktop/Notifications",
                   R"(<node><interface name="org.freedesktop.Notifications">
            <method name="GetServerInformation"><arg type="s" direction="out"/><arg type="s" direction="out"/>
            <arg type="s" direction="out"/><arg type="s" direction="out"/></method>
            <method name="GetCapabilities"><arg type="as" direction="out"/></method>
            <method name="CloseNotification"><arg type="u" direction="in"/></method>
            <method name="Notify"><arg type="s" direction="in"/><arg type="u" direction="in"/>
            <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="s" direction="in"/>
            <arg type="as" direction="in"/><arg type="a{sv}" direction="in"/><arg type="i" direction="in"/>
            <arg type="u" direction="out"/></method></interface></node>)",
                   &called, this);
    }

    std::vector<std::string> calls;  ///< those that change what is shown
    bool isSilent = false;

private:
    static void called(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* method,
                       GVariant* parameters, GDBusMethodInvocation* invocation, gpointer data) {
        auto& server = *static_cast<NotificationServer*>(data);
        if (server.isSilent) return;
        const std::string_view name = method;
        if (name == "GetServerInformation") {
            g_dbus_method_invocation_return_value(invocation,
                                                  g_variant_new("(ssss)", "test", "us", "1", "1.2"));
        } else if (name == "GetCapabilities") {
            GVariantBuilder names;
            g_variant_builder_init(&names, G_VARIANT_TYPE("as"));
            for (const std::string& text : server.capabilities_)
                g_variant_builder_add(&names, "s", text.c_str());
            g_dbus_method_invocation_return_value(invocation, g_variant_new("(as)", &names));
        } else {
            const Owned<char> text(g_variant_print(parameters, FALSE));
            server.calls.push_back(std::string(name) + text.get());
            g_dbus_method_invocation_return_value(
                invocation, name == "Notify" ? g_variant_new("(u)", ++server.number_) : nullptr);
        }
    }

    std::vector<std::string> capabilities_;
    OwnConnection bus_{"org.freedesktop.Notifications"};
    std::uint32_t number_ = 6;
};

struct DBusNotificationsTest : testing::Test {
    GlibMainLoop loop;
    DBusNotifications notifications;

    static Task<void> keep(Task<void> work, std::string* outcome) {
        try {
            co_await std::move(work);
            *outcome = "done";
        } catch (const std::exception& error) {
            *outcome = error.what();
        }
    }
    std::string run(Task<void> work) {
        std::string outcome;
        TaskScope tasks(loop);
        tasks.spawn(keep(std::move(work), &outcome));
        EXPECT_TRUE(turnUntil([&] { return !outcome.empty(); }));
        return outcome;
    }
    Status status() {
        Status found = Status::unknown;
        run([](DBusNotifications* from, Status* to) -> Task<void> {
            *to = co_await from->authorizationStatus();
        }(&notifications, &found));
        return found;
    }
    std::string add(std::string identifier, std::string body) {
        return run(notifications.add({std::move(identifier), "Couldn’t update Bing", std::move(body)}));
    }
};

TEST_F(DBusNotificationsTest, aServerThatAnswersMayBeGivenNotificationsAndEachIsTakenBackByItsName) {
    NotificationServer server({"body", "body-markup", "sound"});
    EXPECT_EQ(status(), Status::authorized);
    EXPECT_EQ(add("A", "a < b"), "done");
    EXPECT_EQ(add("B", "b"), "done");
    EXPECT_EQ(run(notifications.removeDelivered("A")), "done");
    EXPECT_EQ(run(notifications.removeDelivered("A")), "done");
    ASSERT_EQ(server.calls.size(), 3u);
    EXPECT_THAT(server.calls[0],
                HasSubstr("Notify('Quillmar', 0, '', 'Couldn’t update Bing', 'a &lt; b', []"));
    EXPECT_THAT(server.calls[0], HasSubstr("'sound-name': <'dialog-warning'>"));
    EXPECT_EQ(server.calls[2], "CloseNotification(7,)");
}

TEST_F(DBusNotificationsTest, anotherServersNotificationsAreLeftAlone) {
    auto former = std::make_unique<NotificationServer>(std::vector<std::string>{});
    EXPECT_EQ(add("A", "a"), "done");
    former.reset();
    NotificationServer server({});
    EXPECT_EQ(run(notifications.removeDelivered("A")), "done");
    EXPECT_EQ(status(), Status::authorized);
    EXPECT_THAT(server.calls, testing::IsEmpty());
}

TEST_F(DBusNotificationsTest, aPlainServerGetsPlainText) {
    NotificationServer server({"body"});
    EXPECT_EQ(add("A", "a < b"), "done");
    EXPECT_THAT(server.calls[0], HasSubstr("'a < b'"));
    EXPECT_THAT(server.calls[0], testing::Not(HasSubstr("sound-name")));
}

TEST_F(DBusNotificationsTest, whereNobodyAnswersNothingMayBeShown) {
    EXPECT_EQ(status(), Status::denied);
    EXPECT_NE(add("A", "a"), "done");
    NotificationServer server({});
    server.isSilent = true;
    EXPECT_EQ(status(), Status::denied);
}

}  // namespace
}  // namespace quillmar

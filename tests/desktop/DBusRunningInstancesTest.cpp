#include "linux/dbus/DBusRunningInstances.h"

#include <gio/gio.h>
#include <gmock/gmock.h>

#include <thread>

#include "async/TaskScope.h"
#include "desktop/Desktop.h"
#include "fakes/VirtualLoop.h"
#include "linux/glib/GlibMainLoop.h"
#include "linux/glib/Ref.h"

namespace quillmar {
namespace {

using namespace std::chrono_literals;

class DBusRunningInstancesTest : public testing::Test {
protected:
    bool nameIsOwned() const {
        const Owned<GVariant> answer(g_dbus_connection_call_sync(
            bus_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
            "NameHasOwner", g_variant_new("(s)", "com.quillmar.Quillmar"), nullptr, G_DBUS_CALL_FLAGS_NONE,
            -1, nullptr, nullptr));
        gboolean isOwned = FALSE;
        g_variant_get(answer.get(), "(b)", &isOwned);
        return isOwned;
    }
    bool activatesOther() {
        TaskScope scope(loop_);
        std::optional<bool> found;
        scope.spawn([](DBusRunningInstances* instances, std::optional<bool>* out) -> Task<void> {
            *out = co_await instances->activateOther();
        }(&instances_, &found));
        EXPECT_TRUE(turnUntil([&] { return found.has_value(); }));
        return found.value_or(false);
    }

    Ref<GDBusConnection> bus_ =
        Ref<GDBusConnection>::adopt(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    GlibMainLoop loop_;
    DBusRunningInstances instances_;
};

TEST_F(DBusRunningInstancesTest, anInstanceDoesNotFindItselfButIsFound) {
    int activations = 0;
    instances_.publish([&] { ++activations; });
    ASSERT_TRUE(turnUntil([&] { return nameIsOwned(); }));
    EXPECT_FALSE(activatesOther());
    EXPECT_EQ(activations, 0);
    const std::string call =
        "gdbus call --session --dest com.quillmar.Quillmar --object-path /com/quillmar/Quillmar --method "
        "org.freedesktop.Application.";
    std::optional<int> status;
    const std::jthread user([&] {
        const int result = runProgram(call + "Open '[\"file:///a\"]' '{}' >/dev/null && " + call +
                                      "ActivateAction quit '[]' '{}' >/dev/null");
        loop_.post([&, result] { status = result; });
    });
    ASSERT_TRUE(turnUntil([&] { return status.has_value(); }));
    EXPECT_EQ(status, 0);
    EXPECT_EQ(activations, 1);
}

TEST_F(DBusRunningInstancesTest, anInstanceThatDoesNotAnswerIsGivenUpAfterTwoSeconds) {
    OtherProcess deaf({"deaf-instance"});
    ASSERT_EQ(deaf.line(), "deaf");
    VirtualLoop time;
    TaskScope scope(time);
    std::optional<bool> found;
    scope.spawn([](DBusRunningInstances* instances, std::optional<bool>* out) -> Task<void> {
        *out = co_await instances->activateOther();
    }(&instances_, &found));
    time.advance(1999ms);
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
    EXPECT_FALSE(found.has_value());
    time.advance(1ms);
    EXPECT_TRUE(turnUntil([&] { return found.has_value(); }));
    EXPECT_EQ(found, false);
}

}  // namespace
}  // namespace quillmar

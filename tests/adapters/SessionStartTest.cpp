#include "linux/session/SessionStart.h"

namespace quillmar {
namespace {

TEST(SessionStartTest, aProgramThatNobodyStartedKnowsIt) {
    EXPECT_FALSE(isStartedBySession({{"XDG_SESSION_TYPE", "x11"}}, 42));
    EXPECT_FALSE(isStartedBySession({{"SYSTEMD_EXEC_PID", "41"}}, 42))
        << "a program of a desktop that is a service";
    EXPECT_TRUE(isStartedBySession({{"SYSTEMD_EXEC_PID", "42"}}, 42));
    EXPECT_TRUE(isStartedBySession({{"DBUS_STARTER_ADDRESS", "unix:path=/run/bus"}}, 42));
    EXPECT_TRUE(isStartedBySession({{"DESKTOP_AUTOSTART_ID", "10"}}, 42));
}

}  // namespace
}  // namespace quillmar

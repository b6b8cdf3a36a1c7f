#include "ui/GtkAlerts.h"

#include <gmock/gmock.h>

#include <thread>

#include "async/TaskScope.h"
#include "desktop/Desktop.h"
#include "linux/glib/GlibMainLoop.h"

namespace quillmar {
namespace {

class GtkAlertsTest : public testing::Test {
protected:
    GtkAlertsTest() { openGtkSession(); }

    static std::string details() {
        std::string text = "Line\n\nDetails: ";
        for (int i = 0; i < 1000; ++i) text += "field " + std::to_string(i) + ", ";
        return text;
    }
    static Alert alert() {
        return {Alert::Style::critical,
                "Settings are gone",
                details() + " <b>&",
                {"Open _it", "Other", "Not Now"}};
    }
    void shows() {
        scope_.emplace(loop_);
        scope_->spawn([](GtkAlertsTest* test) -> Task<void> {
            test->answer_ = co_await test->alerts_.runModal(alert());
        }(this));
    }
    /// Does something to the alert, as soon as it is to be seen, from outside.
    void user(const std::string& action) {
        std::optional<int> status;
        const std::jthread hand([&] {
            const int result = runProgram("xdotool search --sync --onlyvisible --name 'Settings are gone' " +
                                          action + " >/dev/null");
            loop_.post([&, result] { status = result; });
        });
        ASSERT_TRUE(turnUntil([&] { return status.has_value(); }));
        EXPECT_EQ(status, 0);
    }
    static bool isOnScreen() {
        return runProgram("xdotool search --onlyvisible --name 'Settings are gone' >/dev/null") == 0;
    }

    Desktop desktop_;
    GlibMainLoop loop_;
    GtkAlerts alerts_;
    std::optional<std::size_t> answer_;
    std::optional<TaskScope> scope_;
};

TEST_F(GtkAlertsTest, returnPressesTheFirstButton) {
    shows();
    user("windowactivate --sync key --window 0 Return");
    EXPECT_TRUE(turnUntil([&] { return answer_.has_value(); }));
    EXPECT_EQ(answer_, 0u);
    EXPECT_TRUE(turnUntil([&] { return !isOnScreen(); }));
}

TEST_F(GtkAlertsTest, everyButtonIsInReachAndAnswersWithItsPlace) {
    shows();
    // From the first button, which stands last, on to the texts and around to the other end of the row.
    user("windowactivate --sync key --window 0 --delay 50 Left Return");
    EXPECT_TRUE(turnUntil([&] { return answer_.has_value(); }));
    EXPECT_EQ(answer_, 1u);
}

TEST_F(GtkAlertsTest, closingAnswersAsTheLastButton) {
    for (const std::string key : {"Escape", "alt+F4"}) {
        answer_.reset();
        shows();
        user("windowactivate --sync key --window 0 " + key);
        EXPECT_TRUE(turnUntil([&] { return answer_.has_value(); })) << key;
        EXPECT_EQ(answer_, 2u);
    }
}

TEST_F(GtkAlertsTest, itGoesWithTheTaskThatWaitsForIt) {
    shows();
    user("getwindowname");
    scope_.reset();
    EXPECT_TRUE(turnUntil([&] { return !isOnScreen(); }));
    EXPECT_EQ(answer_, std::nullopt);
}

}  // namespace
}  // namespace quillmar

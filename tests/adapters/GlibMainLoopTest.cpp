#include "linux/glib/GlibMainLoop.h"

#include <glib.h>
#include <gmock/gmock.h>
#include <sys/timex.h>

#include <csignal>
#include <stdexcept>
#include <thread>

#include "linux/glib/ClockJumps.h"
#include "linux/glib/UnixSignals.h"

namespace quillmar {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class GlibMainLoopTest : public testing::Test {
protected:
    auto records(int number) {
        return [this, number] { ran_.push_back(number); };
    }
    /// Runs all that can run without waiting.
    static void settle() {
        while (g_main_context_iteration(nullptr, FALSE)) {
        }
    }

    GlibMainLoop loop_;
    std::vector<int> ran_;
};

TEST_F(GlibMainLoopTest, callbacksRunByTheirTimeAndThenByTheirOrder) {
    const TimePoint now = loop_.now();
    loop_.callAt(now + 6ms, [this] { loop_.quit(); });
    loop_.callAt(now + 5ms, records(3));
    loop_.callAt(now + 2ms, records(1));
    loop_.callAt(now + 5ms, records(4));
    loop_.callAt(now + 3ms, records(2));
    loop_.forget(loop_.callAt(now + 1ms, records(9)));
    EXPECT_THAT(ran_, IsEmpty());
    loop_.run();
    EXPECT_THAT(ran_, ElementsAre(1, 2, 3, 4));
    EXPECT_GE(loop_.now(), now + 6ms);
}

TEST_F(GlibMainLoopTest, workThatQueuesWorkLetsOthersHaveTheirTurn) {
    std::function<void()> again = [&] {
        ran_.push_back(1);
        loop_.post([&] { again(); });
    };
    loop_.post([&] { again(); });
    const auto quits = +[](gpointer loop) -> gboolean {
        static_cast<GlibMainLoop*>(loop)->quit();
        return G_SOURCE_REMOVE;
    };
    g_idle_add_full(G_PRIORITY_DEFAULT, quits, &loop_, nullptr);
    loop_.run();
    EXPECT_LE(ran_.size(), 2u);
}

TEST_F(GlibMainLoopTest, aCallbackMayForgetTheNextAndWhatItOwns) {
    Scheduled second;
    loop_.post([&] { second.cancel(); });
    // What the forgotten callback owns forgets something itself.
    second = Scheduled(loop_, [owned = Scheduled(loop_, records(3)), this] { ran_.push_back(2); });
    loop_.post(records(4));
    settle();
    EXPECT_THAT(ran_, ElementsAre(4));
}

TEST_F(GlibMainLoopTest, otherThreadsWakeTheLoopUp) {
    std::jthread other;
    loop_.post([&] {
        other = std::jthread([this] {
            for (int i = 0; i < 1000; ++i) loop_.post(records(i));
            loop_.post([this] { loop_.quit(); });
        });
    });
    loop_.run();
    EXPECT_EQ(ran_.size(), 1000u);
    EXPECT_TRUE(std::ranges::is_sorted(ran_));
}

TEST_F(GlibMainLoopTest, anIdleLoopHasNothingToWakeUpFor) {
    loop_.post(records(1));
    loop_.forget(loop_.callAt(loop_.now() + 1h, records(2)));
    settle();
    GMainContext* context = g_main_context_default();
    ASSERT_TRUE(g_main_context_acquire(context));
    int priority = 0;
    int timeout = 0;
    GPollFD descriptors[8];
    g_main_context_prepare(context, &priority);
    g_main_context_query(context, priority, &timeout, descriptors, 8);
    g_main_context_release(context);
    EXPECT_EQ(timeout, -1);
}

TEST_F(GlibMainLoopTest, whatACallbackThrowsIsAFailedTask) {
    std::string failure;
    loop_.setTaskFailureHandler([&](std::exception_ptr error) {
        try {
            std::rethrow_exception(error);
        } catch (const std::exception& caught) {
            failure = caught.what();
        }
    });
    loop_.post([] { throw std::runtime_error("broken"); });
    loop_.post(records(1));
    settle();
    EXPECT_EQ(failure, "broken");
    EXPECT_THAT(ran_, ElementsAre(1));
}

TEST_F(GlibMainLoopTest, quitBeforeRunIsNotLost) {
    loop_.quit();
    loop_.run();
}

TEST_F(GlibMainLoopTest, signalsOfTheSystemAreEventsOfTheLoop) {
    std::vector<std::optional<SystemQuitReason>> reasons;  // none: to look at the settings again
    UnixSignals signals;
    signals.setReloadHandler([&] { reasons.emplace_back(); });
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGTERM}) {
        signals.setQuitHandler([&](SystemQuitReason reason) {
            reasons.emplace_back(reason);
            signals.setQuitHandler([](SystemQuitReason) {});
            loop_.quit();
        });
        raise(signal);
        const std::size_t before = reasons.size();
        while (reasons.size() == before) g_main_context_iteration(nullptr, TRUE);
    }
    EXPECT_THAT(reasons, ElementsAre(SystemQuitReason::terminated, SystemQuitReason::interrupted,
                                     std::nullopt, SystemQuitReason::terminated));
}

TEST_F(GlibMainLoopTest, aClockThatWasSetIsAnEventEachTime) {
    int jumps = 0;
    const ClockJumps watch([&] { ++jumps; });
    for (const long microseconds : {1, 999'999}) {
        // Forth and back again: seconds may be negative, fractions of them may not.
        timex change{};
        change.modes = ADJ_SETOFFSET;
        change.time = {microseconds == 1 ? 0 : -1, microseconds};
        if (::adjtimex(&change) < 0) GTEST_SKIP() << "only an administrator may set the clock";
        const int before = jumps;
        while (jumps == before) g_main_context_iteration(nullptr, TRUE);
    }
    EXPECT_EQ(jumps, 2);
    settle();
    EXPECT_EQ(jumps, 2);
}

}  // namespace
}  // namespace quillmar

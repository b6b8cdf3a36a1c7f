#include "async/Sleep.h"
#include "async/TaskScope.h"
#include "async/Timer.h"
#include "fakes/VirtualLoop.h"

namespace quillmar {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

struct TimeTest : ::testing::Test {
    VirtualLoop loop;
    TimePoint start = loop.now();
    std::vector<Duration> calls;
    void called() { calls.push_back(loop.now() - start); }
};

TEST_F(TimeTest, aOneShotTimerCallsOnceAndSettingItAgainMovesIt) {
    OneShotTimer timer(loop);
    timer.set(5s, [&] { called(); });
    loop.advance(3s);
    timer.set(5s, [&] { called(); });
    loop.advance(1h);
    EXPECT_THAT(calls, ElementsAre(8s));
    EXPECT_FALSE(timer.isSet());
}

TEST_F(TimeTest, aOneShotTimerMayBeSetOrDestroyedByItsOwnCallback) {
    auto timer = std::make_unique<OneShotTimer>(loop);
    timer->set(1s, [&] {
        called();
        timer->set(2s, [&] {
            called();
            timer.reset();
        });
    });
    loop.advance(1h);
    EXPECT_THAT(calls, ElementsAre(1s, 3s));
}

TEST_F(TimeTest, aRepeatingTimerMakesUpForNothingAfterALateWakeUp) {
    RepeatingTimer timer(loop);
    timer.start(10s, [&] { called(); });
    loop.advance(25s);
    loop.jump(1h);
    EXPECT_THAT(calls, ElementsAre(10s, 20s, 3625s));
    calls.clear();
    loop.advance(10s);
    EXPECT_THAT(calls, ElementsAre(3635s));
}

TEST_F(TimeTest, aRepeatingTimerMayCancelItself) {
    RepeatingTimer timer(loop);
    timer.start(10s, [&] {
        called();
        if (calls.size() == 2) timer.cancel();
    });
    loop.advance(1h);
    EXPECT_THAT(calls, ElementsAre(10s, 20s));
    EXPECT_EQ(loop.pendingCount(), 0u);
}

}  // namespace
}  // namespace quillmar

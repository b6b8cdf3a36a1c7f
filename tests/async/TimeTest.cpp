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

TEST_F(TimeTest, callbacksOfOneMomentRunInTheOrderOfTheirScheduling) {
    std::string order;
    const Scheduled later(loop, loop.now() + 2s, [&] { order += 'c'; });
    const Scheduled first(loop, loop.now() + 1s, [&] { order += 'a'; });
    const Scheduled second(loop, loop.now() + 1s, [&] { order += 'b'; });
    loop.jump(1h);
    EXPECT_EQ(order, "abc");
}

TEST_F(TimeTest, aDayOfTimersIsAMatterOfTheirCountAndNotOfTime) {
    RepeatingTimer fast(loop);
    RepeatingTimer slow(loop);
    fast.start(100ms, [&] { calls.resize(1); });
    slow.start(30min, [&] { called(); });
    loop.advance(24h);
    EXPECT_EQ(loop.ranCount(), 864'000u + 48u);
}

TEST_F(TimeTest, aSleeperIsNotMovedWhenTheWallClockIsSetBack) {
    VirtualWallClock clock(loop);
    const WallTime before = clock.now();
    TaskScope scope(loop);
    scope.spawn([](TimeTest* test) -> Task<void> {
        co_await sleepFor(60s);
        test->called();
    }(this));
    loop.advance(30s);
    clock.set(before - 24h);
    loop.advance(30s);
    EXPECT_THAT(calls, ElementsAre(60s));
    EXPECT_EQ(clock.now(), before - 24h + 30s);
}

}  // namespace
}  // namespace quillmar

#include "async/TaskScope.h"

#include "async/Sleep.h"
#include "fakes/VirtualLoop.h"

namespace quillmar {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using Log = std::vector<std::string>;

struct Farewell {
    Log* log;
    std::string word;
    ~Farewell() { log->push_back(word); }
};

Task<int> valueAfter(Duration delay, int value) {
    co_await sleepFor(delay);
    co_return value;
}

Task<void> record(Log* log, std::string word, Duration delay) {
    const Farewell farewell{log, word + " gone"};
    try {
        co_await sleepFor(delay);
        log->push_back(word);
    } catch (const CancellationError&) {
        log->push_back(word + " cancelled");
        throw;
    }
}

Task<void> failing() {
    co_await sleepFor(1s);
    throw std::runtime_error("disk on fire");
}

struct TaskTest : ::testing::Test {
    VirtualLoop loop;
    Log log;
};

TEST_F(TaskTest, aTaskStartsAtTheNextTurnAndNotInsideTheCallThatStartsIt) {
    TaskScope scope(loop);
    scope.spawn(record(&log, "work", 0s));
    EXPECT_TRUE(log.empty());
    loop.settle();
    EXPECT_THAT(log, ElementsAre("work", "work gone"));
    EXPECT_EQ(scope.runningCount(), 0u);
}

TEST_F(TaskTest, theEndOfTheOwnerEndsATaskWhereItWaits) {
    {
        TaskScope scope(loop);
        scope.spawn(record(&log, "work", 10s));
        loop.advance(5s);
    }
    loop.advance(1h);
    EXPECT_THAT(log, ElementsAre("work gone"));
    EXPECT_EQ(loop.pendingCount(), 0u);
}

TEST_F(TaskTest, anOwnerThatDiesBeforeTheFirstTurnNeverStartsTheTask) {
    {
        TaskScope(loop).spawn(record(&log, "work", 0s));
    }
    loop.advance(1h);
    EXPECT_TRUE(log.empty());
}

TEST_F(TaskTest, aCancelledTaskWakesUpFromItsWaitAtALaterTurn) {
    TaskScope scope(loop);
    const auto handle = scope.start(record(&log, "work", 10s));
    loop.advance(1s);
    handle.cancel();
    handle.cancel();
    EXPECT_TRUE(log.empty()) << "resumed inside cancel()";
    loop.settle();
    EXPECT_THAT(log, ElementsAre("work cancelled", "work gone"));
    EXPECT_TRUE(handle.isFinished());
}

TEST_F(TaskTest, aTaskCancelledBeforeItBeganStopsAtItsFirstWait) {
    TaskScope scope(loop);
    scope.start(record(&log, "work", 10s)).cancel();
    loop.settle();
    EXPECT_THAT(log, ElementsAre("work cancelled", "work gone"));
}

Task<void> waitFor(TaskHandle<int> handle, Log* log, std::string who) {
    try {
        log->push_back(who + " got " + std::to_string(co_await handle.value()));
    } catch (const CancellationError&) {
        log->push_back(who + " cancelled");
    } catch (const std::exception& error) {
        log->push_back(who + " failed: " + error.what());
    }
}

TEST_F(TaskTest, severalWaitersOfOneHandleGetItsValueInTheirOrder) {
    TaskScope scope(loop);
    const auto handle = scope.start(valueAfter(2s, 7));
    for (const char* who : {"a", "b", "c"}) scope.spawn(waitFor(handle, &log, who));
    loop.advance(1s);
    EXPECT_TRUE(log.empty());
    loop.advance(1s);
    scope.spawn(waitFor(handle, &log, "late"));
    loop.settle();
    EXPECT_THAT(log, ElementsAre("a got 7", "b got 7", "c got 7", "late got 7"));
}

TEST_F(TaskTest, aWaiterThatIsCancelledLeavesTheTaskAndTheOtherWaitersAlone) {
    TaskScope scope(loop);
    const auto handle = scope.start(valueAfter(2s, 7));
    const auto waiter = scope.start(waitFor(handle, &log, "a"));
    scope.spawn(waitFor(handle, &log, "b"));
    loop.advance(1s);
    waiter.cancel();
    loop.advance(1s);
    EXPECT_THAT(log, ElementsAre("a cancelled", "b got 7"));
}

TEST_F(TaskTest, waitersOfATaskWhoseOwnerDiesAreToldThatNoValueComes) {
    TaskScope waiters(loop);
    {
        TaskScope owner(loop);
        waiters.spawn(waitFor(owner.start(valueAfter(2s, 7)), &log, "a"));
        loop.advance(1s);
    }
    loop.settle();
    EXPECT_THAT(log, ElementsAre("a cancelled"));
}

TEST_F(TaskTest, aWaiterThatDiesInTheTurnInWhichItWouldResumeIsNotResumed) {
    TaskScope owner(loop);
    auto waiters = std::make_unique<TaskScope>(loop);
    const auto handle = owner.start(valueAfter(2s, 7));
    waiters->spawn(waitFor(handle, &log, "a"));
    loop.settle();
    const Scheduled death(loop, loop.now() + 2s, [&] { waiters.reset(); });
    loop.advance(1h);
    EXPECT_TRUE(handle.isFinished());
    EXPECT_TRUE(log.empty());
}

TEST_F(TaskTest, endedWaitsThroughTheCancellationOfTheWaiterAndOfTheTask) {
    TaskScope scope(loop);
    const auto handle = scope.start(record(&log, "work", 5s));
    const auto waiter = scope.start([](TaskHandle<> work, Log* words) -> Task<void> {
        co_await work.ended();
        words->push_back("waiter went on");
    }(handle, &log));
    loop.settle();
    waiter.cancel();
    loop.settle();
    EXPECT_TRUE(log.empty());
    handle.cancel();
    loop.settle();
    EXPECT_THAT(log, ElementsAre("work cancelled", "work gone", "waiter went on"));
}

TEST_F(TaskTest, anUncancelledStepRunsToItsEndInACancelledTask) {
    TaskScope scope(loop);
    const auto handle = scope.start([](Log* words) -> Task<void> {
        co_await uncancelled(record(words, "step", 2s));
        co_await record(words, "rest", 2s);
    }(&log));
    loop.advance(1s);
    handle.cancel();
    loop.advance(5s);
    EXPECT_THAT(log, ElementsAre("step", "step gone", "rest cancelled", "rest gone"));
}

TEST_F(TaskTest, aFailureReachesTheWaiterAndOneThatNobodyWaitsForReachesTheLoop) {
    TaskScope scope(loop);
    scope.spawn([](TaskHandle<> work, Log* words) -> Task<void> {
        try {
            co_await work.value();
        } catch (const std::runtime_error& error) {
            words->push_back(error.what());
        }
    }(scope.start(failing()), &log));
    loop.advance(1s);
    EXPECT_THAT(log, ElementsAre("disk on fire"));
    EXPECT_EQ(loop.takeFailure(), nullptr);

    scope.spawn(failing());
    loop.advance(1s);
    EXPECT_NE(loop.takeFailure(), nullptr);
}

TEST_F(TaskTest, tenThousandAwaitsThatAreReadyAtOnceDoNotGrowTheStack) {
    TaskScope scope(loop);
    int sum = 0;
    scope.spawn([](int* total) -> Task<void> {
        for (int i = 0; i < 100'000; ++i) {
            *total += co_await [](int value) -> Task<int> { co_return value; }(1);
        }
    }(&sum));
    loop.settle();
    EXPECT_EQ(sum, 100'000);
}

TEST(WaitListTest, aTurnGivenToATaskThatDiesIsReported) {
    VirtualLoop loop;
    int lost = 0;
    WaitList list([&lost] { ++lost; });
    auto wait = [](WaitList* from) -> Task<void> { co_await from->wait(); };
    {
        TaskScope scope(loop);
        scope.spawn(wait(&list));
        loop.settle();
        EXPECT_TRUE(list.resumeFirst());
        EXPECT_FALSE(list.resumeFirst());
    }
    EXPECT_EQ(lost, 1);
    TaskScope scope(loop);
    scope.spawn(wait(&list));
    loop.settle();
    list.resumeAll();
    loop.settle();
    EXPECT_EQ(lost, 1);
}

}  // namespace
}  // namespace quillmar

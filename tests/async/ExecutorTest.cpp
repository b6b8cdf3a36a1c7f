#include <atomic>
#include <latch>

#include "async/TaskScope.h"
#include "async/ThreadPool.h"
#include "fakes/FakeExecutors.h"
#include "fakes/VirtualLoop.h"

namespace quillmar {
namespace {

using ::testing::ElementsAre;

struct ExecutorTest : ::testing::Test {
    VirtualLoop loop;
    std::vector<std::string> log;
};

TEST_F(ExecutorTest, aSerialExecutorRunsOneJobAtATimeInTheirOrder) {
    ThreadPool pool(4);
    std::vector<int> order;
    std::atomic<int> inside = 0;
    std::atomic<bool> overlapped = false;
    {
        SerialExecutor executor(pool);
        std::latch all(500);
        for (int i = 0; i < 500; ++i) {
            executor.submit([&, i] {
                if (++inside != 1) overlapped = true;
                order.push_back(i);
                --inside;
                all.count_down();
            });
        }
        all.wait();
    }
    EXPECT_FALSE(overlapped);
    EXPECT_TRUE(std::ranges::is_sorted(order));
    EXPECT_EQ(order.size(), 500u);
}

TEST_F(ExecutorTest, destroyingASerialExecutorWaitsForTheRunningJobAndDropsTheRest) {
    ThreadPool pool(2);
    std::latch begun(1);
    std::latch released(1);
    std::atomic<int> ran = 0;
    auto executor = std::make_unique<SerialExecutor>(pool);
    executor->submit([&] {
        begun.count_down();
        released.wait();
        ++ran;
    });
    executor->submit([&] { ran += 100; });
    begun.wait();
    std::thread releaser([&] { released.count_down(); });
    executor.reset();
    EXPECT_EQ(ran, 1);
    releaser.join();
}

Task<void> runAndRecord(Executor* executor, std::vector<std::string>* log) {
    log->push_back(co_await executor->run([] { return std::string("done"); }));
}

TEST_F(ExecutorTest, aResultForATaskThatDiedMeanwhileIsDropped) {
    HeldExecutor executor;
    {
        TaskScope scope(loop);
        scope.spawn(runAndRecord(&executor, &log));
        loop.settle();
        executor.releaseAll();
    }
    loop.settle();
    {
        TaskScope scope(loop);
        scope.spawn(runAndRecord(&executor, &log));
        loop.settle();
    }
    executor.releaseAll();
    loop.settle();
    EXPECT_TRUE(log.empty());
}

TEST_F(ExecutorTest, workThatBeganIsWaitedForByACancelledTask) {
    HeldExecutor executor;
    TaskScope scope(loop);
    const auto handle = scope.start(runAndRecord(&executor, &log));
    loop.settle();
    handle.cancel();
    loop.settle();
    EXPECT_FALSE(handle.isFinished());
    executor.releaseAll();
    loop.settle();
    EXPECT_THAT(log, ElementsAre("done"));
}

}  // namespace
}  // namespace quillmar

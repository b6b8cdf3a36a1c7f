#include "app/ApplicationStartupTask.h"

#include <gtest/gtest.h>

#include "async/Sleep.h"
#include "fakes/VirtualLoop.h"

namespace quillmar {
namespace {

using namespace std::chrono_literals;

TEST(ApplicationStartupTaskTest, anOldRunThatEndsLateLeavesTheNewOneAlone) {
    VirtualLoop loop;
    ApplicationStartupTask task(loop);
    const auto stubborn = []() -> Task<void> {
        co_await uncancelled([]() -> Task<void> { co_await sleepFor(5s); }());
    };
    const auto next = []() -> Task<void> { co_await sleepFor(10s); };
    task.start(stubborn());
    loop.advance(1s);
    task.start(next());
    loop.advance(6s);
    EXPECT_TRUE(task.isRunning());
    loop.advance(10s);
    EXPECT_FALSE(task.isRunning());
}

}  // namespace
}  // namespace quillmar

#include "display/DisplayConfigurationChangeCoordinator.h"

#include "async/Sleep.h"
#include "fakes/VirtualLoop.h"

namespace quillmar {
namespace {

using namespace std::chrono_literals;

struct FakeDisplays final : DisplayProviding {
    mutable int asked = 0;
    std::vector<DisplayInfo> present{{"display:a", "A", {0, 0, 800, 600}, {}, 1, true}};
    std::vector<DisplayInfo> displays() const override {
        ++asked;
        return present;
    }
    void move() { present[0].frame.x += 10; }
};

struct DisplayChangeTest : ::testing::Test {
    VirtualLoop loop;
    FakeDisplays displays;
    bool isSuppressed = false;
    TopologyApplyResult result;
    Duration applyTime = 0s;
    int applied = 0;
    int reported = 0;
    int told = 0;
    std::optional<DisplayConfigurationChangeCoordinator> coordinator;

    void SetUp() override {
        coordinator.emplace(loop, displays,
                            DisplayConfigurationChangeCoordinator::Actions{
                                .isWallpaperApplicationSuppressed = [this] { return isSuppressed; },
                                .applyWallpaper = [this] { return apply(); },
                                .reportFailure = [this](const TopologyApplyResult&) { ++reported; },
                                .topologyDidChange = [this] { ++told; },
                            },
                            DisplayConfigurationChangeCoordinator::Delays{});
    }
    Task<TopologyApplyResult> apply() {
        ++applied;
        co_await sleepFor(applyTime);
        co_return result;
    }
    void changes(int times = 1) {
        for (int i = 0; i < times; ++i) {
            displays.move();
            coordinator->screenParametersDidChange();
        }
    }
};

TEST_F(DisplayChangeTest, aBurstOfChangesIsLookedAtOnceHalfASecondAfterItsLast) {
    coordinator->start();
    displays.asked = 0;
    for (int i = 0; i < 30; ++i) {
        changes();
        loop.advance(30ms);
    }
    loop.advance(469ms);
    EXPECT_EQ(displays.asked, 0);
    loop.advance(1ms);
    EXPECT_EQ(displays.asked, 1);
    EXPECT_EQ(told, 1);
    EXPECT_EQ(applied, 1);
}

TEST_F(DisplayChangeTest, changesBeforeTheStartAndChangesThatChangeNothingAreDropped) {
    changes();
    loop.advance(1s);
    coordinator->start();
    coordinator->screenParametersDidChange();
    loop.advance(1s);
    EXPECT_EQ(told + applied, 0);
    displays.present.clear();
    coordinator->screenParametersDidChange();
    loop.advance(1s);
    EXPECT_EQ(applied, 1) << "no display at all is a topology too";
}

TEST_F(DisplayChangeTest, stoppingDuringTheDelayLooksAtNothing) {
    coordinator->start();
    displays.asked = 0;
    changes();
    loop.advance(100ms);
    coordinator->stop();
    loop.advance(1h);
    EXPECT_EQ(displays.asked, 0);
    EXPECT_EQ(loop.pendingCount(), 0u);
}

TEST_F(DisplayChangeTest, underTheLockScreenTheWallpapersWaitButTheChangeIsKnownAtOnce) {
    coordinator->start();
    isSuppressed = true;
    changes();
    loop.advance(10s);
    changes();
    loop.advance(10s);
    EXPECT_EQ(told, 2);
    EXPECT_EQ(applied, 0);
    isSuppressed = false;
    loop.advance(1s);
    EXPECT_EQ(applied, 1);
    loop.advance(1h);
    EXPECT_EQ(applied, 1);
    EXPECT_EQ(loop.pendingCount(), 0u);
}

TEST_F(DisplayChangeTest, aSleepingMachineWakesUpToOneApplication) {
    coordinator->start();
    isSuppressed = true;
    changes();
    loop.advance(5s);
    isSuppressed = false;
    loop.jump(8h);
    EXPECT_EQ(applied, 1);
}

TEST_F(DisplayChangeTest, aFailureIsReportedUnlessTheLockScreenCaused) {
    coordinator->start();
    result = {.hasFailure = true, .failureCount = 1};
    applyTime = 2s;
    changes();
    loop.advance(10s);
    EXPECT_EQ(reported, 1);
    changes();
    loop.advance(1s);
    isSuppressed = true;
    loop.advance(10s);
    EXPECT_EQ(applied, 2);
    EXPECT_EQ(reported, 1);
}

TEST_F(DisplayChangeTest, theEndOfTheCoordinatorEndsWhatItWaitsFor) {
    coordinator->start();
    applyTime = 1h;
    changes();
    loop.advance(1s);
    coordinator.reset();
    loop.advance(2h);
    EXPECT_EQ(applied, 1);
    EXPECT_EQ(loop.pendingCount(), 0u);
}

}  // namespace
}  // namespace quillmar

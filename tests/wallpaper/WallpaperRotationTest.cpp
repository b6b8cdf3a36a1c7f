#include "wallpaper/WallpaperRotationCoordinator.h"

#include "fakes/RotatingDisplays.h"

namespace quillmar {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

WallTime at(double seconds) { return wallTimeSince1970(1'800'000'000 + seconds); }
double secondsAfter(WallTime time) { return secondsSince1970(time) - 1'800'000'000; }

WallpaperMode slideshow(double interval) {
    SlideshowPresentationSettings settings;
    settings.rotationIntervalSeconds = interval;
    return {settings};
}
DisplayWallpaperSettings entry(std::string id, WallpaperMode mode) {
    DisplayWallpaperSettings settings;
    settings.displayID = std::move(id);
    settings.mode = std::move(mode);
    return settings;
}
WallpaperMode spotlight(std::optional<double> appliedAt, std::string locale = "en-US",
                        double interval = 3600) {
    WindowsSpotlightSettings settings{.rotationIntervalSeconds = interval};
    settings.lastSelection = WindowsSpotlightSelection{.locale = std::move(locale)};
    if (appliedAt) settings.lastSelection->appliedAt = at(*appliedAt);
    return {settings};
}

TEST(WallpaperRotationScheduleTest, failuresAreTriedAgainSoonerAtFirstAndThenOncePerInterval) {
    for (const auto& [interval, waits] : std::vector<std::pair<double, std::vector<double>>>{
             {20, {20, 20, 20, 20, 20}}, {3600, {30, 60, 300, 3600, 3600}}, {60, {30, 60, 60, 60, 60}}}) {
        const WallpaperRotationDescriptor descriptor{"A", Seconds(interval), slideshow(interval)};
        WallpaperRotationSchedule schedule;
        std::vector<double> seen;
        for (std::size_t i = 0; i < waits.size(); ++i) {
            schedule.record(descriptor, at(0), false);
            seen.push_back(secondsAfter(*schedule.nextDate()));
        }
        EXPECT_EQ(seen, waits);
        EXPECT_EQ(schedule.entries.at("A").consecutiveFailureCount, 4);
        schedule.record(descriptor, at(0), true);
        EXPECT_EQ(schedule.entries.at("A").consecutiveFailureCount, 0);
        EXPECT_EQ(secondsAfter(*schedule.nextDate()), interval);
        schedule.record(descriptor, at(0), false);
        schedule.record({"A", Seconds(7200), slideshow(7200)}, at(0), false);
        EXPECT_EQ(schedule.entries.at("A").consecutiveFailureCount, 1) << "another mode begins anew";
    }
}

TEST(WallpaperRotationScheduleTest, theSettingsSayWhichDisplaysChangeAndTheLastEntryOfAnIDCounts) {
    WallpaperSettings settings;
    WallpaperMode tooLong = slideshow(86400);
    std::get<SlideshowPresentationSettings>(tooLong.value).folderURL = Url::fromFilePath("/pictures");
    settings.displays = {entry("C", slideshow(5)),
                         entry("B", slideshow(60)),
                         entry("A", {BingSettings{}}),
                         entry("C", slideshow(0)),
                         entry("B", slideshow(90)),
                         entry("D", {}),
                         entry("E", slideshow(0.01)),
                         entry("F", tooLong),
                         entry("G", {NasaEpicSettings{.presentation = NasaEpicPresentation::rotateThroughDays,
                                                      .secondsPerObservation = 5}})};
    const auto descriptors = rotationDescriptors(settings);
    ASSERT_THAT(descriptors, SizeIs(2));
    EXPECT_EQ(descriptors[0].displayID, "A");
    EXPECT_EQ(descriptors[0].interval, Seconds(1800));
    EXPECT_EQ(descriptors[1].interval, Seconds(90));
}

TEST(WallpaperRotationScheduleTest, whatIsAsBeforeKeepsItsDateAndTheRestBeginsAnInterval) {
    const WallpaperRotationDescriptor a{"A", Seconds(100), slideshow(100)};
    const WallpaperRotationDescriptor b{"B", Seconds(100), slideshow(100)};
    const WallpaperRotationDescriptor otherB{"B", Seconds(50), slideshow(50)};
    WallpaperRotationSchedule schedule;
    schedule.update({a, b}, at(0), false);
    schedule.record(a, at(0), false);
    schedule.update({a, otherB}, at(10), false);
    EXPECT_EQ(secondsAfter(schedule.entries.at("A").nextAttemptDate), 30);
    EXPECT_EQ(schedule.entries.at("A").consecutiveFailureCount, 1);
    EXPECT_EQ(secondsAfter(schedule.entries.at("B").nextAttemptDate), 60);
    schedule.update({a}, at(20), true);
    EXPECT_EQ(secondsAfter(schedule.entries.at("A").nextAttemptDate), 120);
    EXPECT_THAT(schedule.entries, SizeIs(1));
    schedule.update({a}, at(-100000), false);
    EXPECT_EQ(secondsAfter(schedule.entries.at("A").nextAttemptDate), -99900) << "the clock was set back";
}

TEST(WallpaperRotationScheduleTest, aSpotlightPictureKeepsItsRemainingTimeOverARestart) {
    struct Row {
        WallpaperMode mode;
        double due;
    };
    const std::vector<Row> rows = {
        {spotlight(-3000), 600},     {spotlight(-3000, "de-DE"), 3600},
        {spotlight({}), 3600},       {{WindowsSpotlightSettings{.rotationIntervalSeconds = 3600}}, 3600},
        {spotlight(-90000), -86400},
    };
    for (const Row& row : rows) {
        WallpaperRotationSchedule schedule;
        schedule.update({{"A", Seconds(3600), row.mode}}, at(0), false);
        EXPECT_EQ(secondsAfter(*schedule.nextDate()), row.due);
    }
}

/// Displays that take what they are given, as long as their network is there.
struct Applier final : WallpaperApplying {
    std::vector<std::string> attempts;
    std::set<std::string> failing;
    bool isHeld = false;
    WaitList held;
    int runningCount = 0;

    Task<WallpaperApplyOutcome> apply(WallpaperApplyRequest request) override {
        EXPECT_EQ(++runningCount, 1) << "one at a time";
        EXPECT_EQ(request.reason, WallpaperApplyReason::rotation);
        attempts.push_back(request.display.id);
        while (isHeld) co_await held.wait();
        --runningCount;
        if (failing.contains(request.display.id)) throw std::runtime_error("no network");
        co_return WallpaperApplyOutcome{};
    }
};

struct WallpaperRotationTest : ::testing::Test, RotatingDisplays<Applier> {
    WallpaperRotationTest() { displays.present = {{.id = "A"}, {.id = "B"}}; }

    /// How many attempts the time brings.
    std::size_t attemptsIn(Duration time) {
        const std::size_t before = applier.attempts.size();
        loop.advance(time);
        return applier.attempts.size() - before;
    }
    void pauses(bool isPaused) {
        model->update([isPaused](AppSettings& settings) { settings.general.pauseRotations = isPaused; });
        loop.advance(1s);  // the save has its own timer
    }
    void expectOneTimer() const {
        EXPECT_EQ(loop.pendingCount(), 1u);
        EXPECT_GE(loop.untilNext(), Duration(100ms));
    }
};

TEST_F(WallpaperRotationTest, aWeekOfASlideshowAndOfAServiceTakesItsAttemptsOnTime) {
    starts({entry("A", slideshow(600)), entry("B", {BingSettings{}})});
    expectOneTimer();
    loop.advance(599s);
    EXPECT_THAT(applier.attempts, IsEmpty());
    EXPECT_EQ(attemptsIn(1s), 1u);
    expectOneTimer();
    loop.advance(24h * 7 - 600s);
    EXPECT_EQ(std::ranges::count(applier.attempts, "A"), 7 * 24 * 6);
    EXPECT_EQ(std::ranges::count(applier.attempts, "B"), 7 * 24 * 2);
    expectOneTimer();
}

TEST_F(WallpaperRotationTest, withoutARotatingModeThereIsNoTimer) {
    starts({entry("A", {SolidColorPresentationSettings{"#112233"}}), entry("B", slideshow(0))});
    EXPECT_EQ(loop.pendingCount(), 0u);
}

TEST_F(WallpaperRotationTest, displaysDueTogetherAreAskedInOrderAndOneAtATime) {
    starts({entry("B", slideshow(60)), entry("A", slideshow(60))});
    applier.isHeld = true;
    loop.advance(60s);
    EXPECT_THAT(applier.attempts, ElementsAre("A"));
    EXPECT_EQ(attemptsIn(1h), 0u) << "no second tick meanwhile";
    applier.isHeld = false;
    applier.held.resumeAll();
    loop.settle();
    EXPECT_THAT(applier.attempts, ElementsAre("A", "B"));
    expectOneTimer();
}

TEST_F(WallpaperRotationTest, aDayWithoutANetworkIsADayOfFewAttemptsAndEndsWithTheNextOne) {
    starts({entry("A", {BingSettings{}}), entry("B", slideshow(20))});
    applier.failing = {"A", "B"};
    loop.advance(24h);
    EXPECT_EQ(std::ranges::count(applier.attempts, "A"), 4 + 46) << "30, 60 and 300 s, then the interval";
    EXPECT_EQ(std::ranges::count(applier.attempts, "B"), 24 * 180);
    EXPECT_EQ(wallpapers->lastFailures().at("A").message, "no network");
    applier.failing.clear();
    loop.advance(1800s);
    EXPECT_THAT(wallpapers->lastFailures(), IsEmpty());
    EXPECT_EQ(rotation->schedule().entries.at("A").consecutiveFailureCount, 0);
}

TEST_F(WallpaperRotationTest, aPauseEndsWithAWholeIntervalForEveryDisplay) {
    starts({entry("A", slideshow(600))});
    loop.advance(500s);
    pauses(true);
    EXPECT_EQ(loop.pendingCount(), 0u);
    EXPECT_EQ(attemptsIn(1h), 0u);
    pauses(false);
    EXPECT_EQ(attemptsIn(598s), 0u);
    EXPECT_EQ(attemptsIn(1s), 1u);
}

TEST_F(WallpaperRotationTest, underTheLockScreenNothingIsDue) {
    starts({entry("A", slideshow(600)), entry("B", slideshow(600))});
    loop.advance(500s);
    rotation->setSuspendedForLockScreen(true);
    EXPECT_EQ(loop.pendingCount(), 0u);
    EXPECT_EQ(attemptsIn(1h), 0u);
    rotation->setSuspendedForLockScreen(false);
    applier.isHeld = true;
    loop.advance(600s);
    gate.isLockScreenOverrideActive = true;
    rotation->setSuspendedForLockScreen(true);
    applier.isHeld = false;
    applier.held.resumeAll();
    loop.settle();
    EXPECT_THAT(applier.attempts, ElementsAre("A")) << "the gate has answered for the other";
    EXPECT_THAT(rotation->schedule().entries, IsEmpty());
    EXPECT_EQ(loop.pendingCount(), 0u);
}

TEST_F(WallpaperRotationTest, aMachineThatSleptMakesUpForNothingButIsDueOnce) {
    starts({entry("A", slideshow(60))});
    loop.jump(8h);
    EXPECT_THAT(applier.attempts, SizeIs(1));
    EXPECT_EQ(attemptsIn(60s), 1u);
}

TEST_F(WallpaperRotationTest, whatFellDueInASleepThatTheLoopDidNotCountIsDueOnTheWakeUp) {
    starts({entry("A", slideshow(3600))});
    clock.set(clock.now() + 8h);
    rotation->reschedule();
    EXPECT_EQ(attemptsIn(99ms), 0u) << "a schedule that is always late does not spin";
    EXPECT_EQ(attemptsIn(1ms), 1u);
    expectOneTimer();
}

TEST_F(WallpaperRotationTest, aClockThatIsSetCostsAnIntervalAtMost) {
    starts({entry("A", slideshow(600))});
    clock.set(clock.now() - std::chrono::days(365));
    EXPECT_EQ(attemptsIn(1200s), 1u);
    EXPECT_EQ(attemptsIn(600s), 1u);
    clock.set(clock.now() + std::chrono::days(365));
    EXPECT_EQ(attemptsIn(600s), 1u);
    EXPECT_EQ(attemptsIn(600s), 1u);
}

TEST_F(WallpaperRotationTest, aChangeDuringAnAttemptCountsForWhatIsSetNow) {
    starts({entry("A", slideshow(600)), entry("B", slideshow(600))});
    applier.isHeld = true;
    loop.advance(600s);
    model->update([](AppSettings& settings) { settings.wallpaper.displays = {entry("A", slideshow(60))}; });
    applier.isHeld = false;
    applier.failing = {"A"};
    applier.held.resumeAll();
    loop.settle();
    ASSERT_THAT(rotation->schedule().entries, SizeIs(1));
    EXPECT_EQ(rotation->schedule().entries.at("A").consecutiveFailureCount, 1);
    displays.present.erase(displays.present.begin());
    EXPECT_EQ(attemptsIn(30s), 0u) << "an unplugged display is not asked";
    EXPECT_EQ(rotation->schedule().entries.at("A").consecutiveFailureCount, 2) << "but stays on the list";
}

TEST_F(WallpaperRotationTest, aStopAndAStartDuringAnAttemptBeginAnIntervalForEveryDisplay) {
    starts({entry("A", slideshow(60)), entry("B", slideshow(60))});
    applier.isHeld = true;
    applier.failing = {"A"};
    loop.advance(60s);
    rotation->stop();
    rotation->start();
    applier.isHeld = false;
    applier.held.resumeAll();
    EXPECT_EQ(attemptsIn(59s), 0u);
    expectOneTimer();
    EXPECT_EQ(attemptsIn(1s), 2u);
}

TEST_F(WallpaperRotationTest, whenItIsStoppedOrItsOwnerEndsNothingIsLeft) {
    starts({entry("A", slideshow(60)), entry("B", slideshow(60))});
    applier.isHeld = true;
    loop.advance(60s);
    rotation->stop();
    applier.isHeld = false;
    applier.held.resumeAll();
    loop.settle();
    EXPECT_THAT(applier.attempts, ElementsAre("A")) << "the tick ends with it";
    EXPECT_THAT(rotation->schedule().entries, IsEmpty());
    EXPECT_EQ(loop.pendingCount(), 0u);
    model->update([](AppSettings&) {});
    loop.advance(1s);
    EXPECT_EQ(loop.pendingCount(), 0u) << "it does not listen any more";

    rotation->start();
    applier.isHeld = true;
    loop.advance(60s);
    rotation.reset();
    wallpapers.reset();
    EXPECT_EQ(loop.pendingCount(), 0u);
}

}  // namespace
}  // namespace quillmar

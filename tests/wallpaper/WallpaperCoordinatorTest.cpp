#include "wallpaper/WallpaperCoordinator.h"

#include "fakes/FakeDisplays.h"
#include "fakes/FakeExecutors.h"
#include "fakes/FakeSettingsStore.h"
#include "fakes/FakeWallpaperApplier.h"
#include "fakes/TaskOutcome.h"
#include "fakes/TemporaryFolder.h"
#include "fakes/VirtualLoop.h"

namespace quillmar {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::SizeIs;
constexpr auto rotation = WallpaperApplyReason::rotation;
constexpr auto userInitiated = WallpaperApplyReason::userInitiated;
constexpr const char* skipped =
    "The wallpaper request was skipped while the Lock Screen override was active.";

WallpaperSettings colors(std::vector<std::pair<std::string, std::string>> rows) {
    WallpaperSettings settings;
    for (auto& [id, color] : rows) {
        WallpaperMode mode;
        if (color != "disabled") mode.value = SolidColorPresentationSettings{color};
        DisplayWallpaperSettings entry;
        entry.displayID = id;
        entry.mode = std::move(mode);
        settings.displays.push_back(std::move(entry));
    }
    return settings;
}

std::string colorIn(const WallpaperSettings& settings, const std::string& id) {
    for (const auto& entry : settings.displays) {
        if (entry.displayID != id) continue;
        const auto* solid = std::get_if<SolidColorPresentationSettings>(&entry.mode.value);
        return solid ? solid->hexColor : std::string(enumName(entry.mode.kind()));
    }
    return "no entry";
}

struct WallpaperCoordinatorTest : ::testing::Test {
    VirtualLoop loop;
    VirtualWallClock clock{loop};
    EventBus notifications;
    FakeSettingsStore store;
    FakeDisplays displays;
    FakeWallpaperApplier applier;
    WallpaperSettingsTransactionService transactions{applier};
    WallpaperApplicationGate gate;
    CacheFileProtection cacheFiles;
    TemporaryFolder folder;
    InlineExecutor files;
    PictureMemory memory{files, folder.path(), clock};
    std::optional<AppSettingsModel> model;
    std::optional<WallpaperCoordinator> coordinator;
    TaskScope tasks{loop};

    void SetUp() override {
        displays.present = {{.id = "A", .localizedName = "Left"}, {.id = "B", .localizedName = "Right"}};
        store.onDisk.wallpaper = colors({{"A", "#aaaaaa"}, {"B", "#bbbbbb"}});
        applier.shown = {{"A", "before A"}, {"B", "before B"}};
        model.emplace(loop, notifications, store, AppSettings{}, cacheFiles);
        coordinator.emplace(loop, displays, applier, &transactions, *model, memory, gate, clock);
        loop.settle();
    }
    TaskHandle<WallpaperApplyBatchResult> enqueue(std::optional<DisplayIDs> ids,
                                                  WallpaperApplyReason reason = userInitiated) {
        auto handle = tasks.start(coordinator->enqueue(std::move(ids), reason));
        loop.settle();
        return handle;
    }
    WallpaperApplyBatchResult result(TaskHandle<WallpaperApplyBatchResult> handle) {
        return outcomeOf(loop, tasks, handle.value())->value.value();
    }
    WallpaperApplyBatchResult apply(WallpaperSettings settings) {
        return result(tasks.start(coordinator->apply(std::move(settings))));
    }
    static std::vector<std::string> lines(const WallpaperApplyBatchResult& batch) {
        std::vector<std::string> texts;
        for (const auto& display : batch.displays) {
            texts.push_back(display.displayID + ": " + display.failureMessage.value_or("applied"));
        }
        return texts;
    }
};

TEST_F(WallpaperCoordinatorTest, theSettingsAreAppliedDisplayByDisplayAndOneThatFailsDoesNotStopTheOthers) {
    applier.settingFails("A", "#aaaaaa");
    const auto batch = result(enqueue(std::nullopt));
    EXPECT_THAT(lines(batch), ElementsAre("A: cannot set", "B: applied"));
    EXPECT_EQ(batch.displays[0].displayName, "Left");
    EXPECT_TRUE(batch.hasFailure());
    EXPECT_FALSE(coordinator->isApplying());
}

TEST_F(WallpaperCoordinatorTest, aDisplayWithoutARecordIsAppliedAsDisabled) {
    displays.present.push_back({.id = "C"});
    EXPECT_THAT(lines(result(enqueue(DisplayIDs{"C"}))), ElementsAre("C: applied"));
    EXPECT_THAT(applier.calls, ElementsAre("apply C disabled"));
}

TEST_F(WallpaperCoordinatorTest, aDisplayThatIsNotConnectedIsAnsweredByItsID) {
    const auto batch = result(enqueue(DisplayIDs{"Z", "A", "Y"}));
    EXPECT_THAT(lines(batch), ElementsAre("Y: The display with ID Y is no longer connected.",
                                          "Z: The display with ID Z is no longer connected.", "A: applied"));
    EXPECT_EQ(batch.displays[0].displayName, "Y");
}

TEST_F(WallpaperCoordinatorTest, requestsOfOneReasonMergeIntoOnePassAndEachWaiterSeesItsOwn) {
    applier.hold();
    const auto running = enqueue(std::nullopt, rotation);
    const auto first = enqueue(DisplayIDs{"A"}, rotation);
    const auto second = enqueue(DisplayIDs{"B"}, rotation);
    const auto other = enqueue(DisplayIDs{"A"}, userInitiated);
    const auto all = enqueue(std::nullopt, userInitiated);
    applier.calls.clear();
    applier.letThrough();
    EXPECT_THAT(lines(result(first)), ElementsAre("A: applied"));
    EXPECT_THAT(lines(result(second)), ElementsAre("B: applied"));
    EXPECT_THAT(lines(result(other)), ElementsAre("A: applied"));
    EXPECT_THAT(lines(result(all)), ElementsAre("A: applied", "B: applied"));
    EXPECT_EQ(result(running).displays.size(), 2u);
    // For each display: one pass for the two rotations, one for the two others.
    EXPECT_THAT(applier.calls,
                ElementsAre("apply A #aaaaaa", "apply A #aaaaaa", "apply B #bbbbbb", "apply B #bbbbbb"));
}

TEST_F(WallpaperCoordinatorTest, nothingMergesAcrossASettingsTransaction) {
    applier.hold();
    enqueue(std::nullopt);
    const auto before = enqueue(DisplayIDs{"A"});
    const auto change = tasks.start(coordinator->apply(colors({{"A", "#cccccc"}})));
    const auto after = enqueue(DisplayIDs{"A"});
    applier.calls.clear();
    applier.letThrough();
    result(after);
    EXPECT_THAT(applier.calls, ElementsAre("apply A #aaaaaa", "prepare A", "set A #cccccc", "apply A #cccccc",
                                           "prepare B", "set B disabled"));
}

TEST_F(WallpaperCoordinatorTest, aDisplayThatTakesItsTimeHoldsUpNoOther) {
    applier.hold("A");
    const auto stuck = enqueue(std::nullopt);
    const auto behind = enqueue(DisplayIDs{"A"}, rotation);
    EXPECT_THAT(lines(result(enqueue(DisplayIDs{"B"}, rotation))), ElementsAre("B: applied"));
    const auto change = [](WallpaperSettings& settings) {
        findEntry(settings.displays, "B")->mode.value = SolidColorPresentationSettings{"#222222"};
    };
    EXPECT_THAT(lines(result(tasks.start(coordinator->apply(change, {"B"})))), ElementsAre("B: applied"));
    EXPECT_EQ(applier.shown["A"], "before A");
    EXPECT_TRUE(coordinator->isApplying());
    applier.letThrough();
    EXPECT_THAT(lines(result(stuck)), ElementsAre("A: applied", "B: applied"));
    EXPECT_THAT(lines(result(behind)), ElementsAre("A: applied"));
    EXPECT_FALSE(coordinator->isApplying());
}

TEST_F(WallpaperCoordinatorTest, changesOfSingleDisplaysThatOverlapAllStandAndTouchNoOtherDisplay) {
    const auto changes = [this](const std::string& id, const std::string& color) {
        const auto change = [id, color](WallpaperSettings& settings) {
            findEntry(settings.displays, id)->mode.value = SolidColorPresentationSettings{color};
        };
        auto handle = tasks.start(coordinator->apply(change, {id}));
        loop.settle();
        return handle;
    };
    applier.hold();
    const auto first = changes("A", "#111111");
    const auto second = changes("B", "#222222");
    const auto third = changes("B", "#333333");
    applier.letThrough();
    EXPECT_THAT(lines(result(first)), ElementsAre("A: applied"));
    EXPECT_THAT(lines(result(second)), ElementsAre("B: applied"));
    EXPECT_THAT(lines(result(third)), ElementsAre("B: applied"));
    EXPECT_THAT(applier.calls, ElementsAre("prepare A", "set A #111111", "prepare B", "set B #222222",
                                           "prepare B", "set B #333333"));
    EXPECT_EQ(store.onDisk.wallpaper, colors({{"A", "#111111"}, {"B", "#333333"}}));

    applier.hold();
    const auto running = changes("B", "#444444");
    const auto late = changes("B", "#555555");
    displays.present.pop_back();
    applier.letThrough();
    EXPECT_THAT(lines(result(late)), ElementsAre("B: The display with ID B is no longer connected."));
    EXPECT_EQ(store.onDisk.wallpaper, colors({{"A", "#111111"}, {"B", "#444444"}})) << "as it shows";
}

TEST_F(WallpaperCoordinatorTest, theLockScreenRefusesWhatComesAndWhatIsNotYetReached) {
    applier.hold();
    const auto running = enqueue(DisplayIDs{"A"});
    const auto waiting = enqueue(DisplayIDs{"A"}, rotation);
    const auto change = tasks.start(coordinator->apply(
        [](WallpaperSettings& settings) { settings = colors({{"A", "#cccccc"}}); }, {"A"}));
    loop.settle();
    gate.isLockScreenOverrideActive = true;
    applier.letThrough();
    EXPECT_THAT(lines(result(running)), ElementsAre("A: applied"));
    EXPECT_THAT(lines(result(waiting)), ElementsAre(std::string("A: ") + skipped));
    EXPECT_THAT(lines(result(change)), ElementsAre(std::string("A: ") + skipped));
    EXPECT_THAT(lines(apply(colors({{"A", "#cccccc"}}))),
                ElementsAre(std::string("A: ") + skipped, std::string("B: ") + skipped));
    EXPECT_TRUE(store.saves.empty());
}

TEST_F(WallpaperCoordinatorTest, whatIsAskedOfNoDisplayIsAnsweredToo) {
    displays.present.clear();
    EXPECT_EQ(outcomeOf(loop, tasks, coordinator->enqueue(std::nullopt, rotation))->text, "done");
    EXPECT_EQ(outcomeOf(loop, tasks, coordinator->showNext({}))->text, "done");
    EXPECT_EQ(outcomeOf(loop, tasks, coordinator->showPrevious({}))->text, "done");
    EXPECT_EQ(outcomeOf(loop, tasks, coordinator->apply(colors({})))->text, "done");
}

TEST_F(WallpaperCoordinatorTest, aDisplayThatWasAwayOrOfAnotherSizeAtItsTurnIsOutOfDate) {
    const auto resized = [&](int width) { displays.present[0].pixelSize = PixelSize{width, 600}; };
    resized(800);
    result(enqueue(std::nullopt));
    EXPECT_TRUE(coordinator->outOfDate().empty());
    resized(640);
    EXPECT_THAT(coordinator->outOfDate(), ElementsAre("A"));
    applier.hold();
    const auto change = enqueue(DisplayIDs{"A"}, rotation);
    EXPECT_TRUE(coordinator->outOfDate().empty()) << "it is its turn";
    resized(800);
    applier.letThrough();
    applier.calls.clear();
    result(change);
    EXPECT_THAT(applier.calls, ElementsAre("apply A #aaaaaa")) << "again, in the size that it has by now";
    EXPECT_TRUE(coordinator->outOfDate().empty());
    applier.isAway = true;
    result(enqueue(DisplayIDs{"A"}));
    EXPECT_THAT(coordinator->outOfDate(), ElementsAre("A"));
}

TEST_F(WallpaperCoordinatorTest, aTransactionSavesFirstAndThenApplies) {
    const auto batch = apply(colors({{"A", "#cccccc"}, {"B", "#dddddd"}}));
    EXPECT_THAT(lines(batch), ElementsAre("A: applied", "B: applied"));
    EXPECT_EQ(applier.shown["A"], "#cccccc");
    EXPECT_EQ(colorIn(store.onDisk.wallpaper, "B"), "#dddddd");
    EXPECT_EQ(store.saves.size(), 1u);
}

TEST_F(WallpaperCoordinatorTest, aTransactionThatCannotBeSavedAppliesNothing) {
    store.nextSaveFails("No space left on device");
    const auto batch = apply(colors({{"A", "#cccccc"}}));
    EXPECT_TRUE(batch.displays.empty());
    EXPECT_EQ(batch.transactionFailureMessage,
              "Quillmar could not save the wallpaper settings. Review the settings save error before trying "
              "again.");
    EXPECT_TRUE(applier.calls.empty());
    EXPECT_EQ(colorIn(model->settings().wallpaper, "A"), "#aaaaaa");
}

TEST_F(WallpaperCoordinatorTest, ofTwoDisplaysTheOneThatFailsIsTakenBackOnScreenAndInTheFile) {
    applier.settingFails("B", "#dddddd");
    const auto batch = apply(colors({{"A", "#cccccc"}, {"B", "#dddddd"}}));
    EXPECT_THAT(lines(batch), ElementsAre("A: applied", "B: cannot set"));
    EXPECT_EQ(applier.shown["A"], "#cccccc");
    EXPECT_EQ(applier.shown["B"], "#bbbbbb");
    EXPECT_EQ(colorIn(store.onDisk.wallpaper, "A"), "#cccccc");
    EXPECT_EQ(colorIn(store.onDisk.wallpaper, "B"), "#bbbbbb");
    EXPECT_TRUE(batch.rollbackFailures.empty());
}

TEST_F(WallpaperCoordinatorTest, aDisplayThatWasNotManagedGetsBackWhatItShowed) {
    store.onDisk.wallpaper = colors({{"B", "disabled"}});
    model.emplace(loop, notifications, store, AppSettings{}, cacheFiles);
    coordinator.emplace(loop, displays, applier, &transactions, *model, memory, gate, clock);
    applier.settingFails("A", "#cccccc");
    applier.settingFails("B", "#dddddd");
    apply(colors({{"A", "#cccccc"}, {"B", "#dddddd"}}));
    EXPECT_EQ(applier.shown["A"], "before A");
    EXPECT_EQ(applier.shown["B"], "before B");
    EXPECT_EQ(colorIn(store.onDisk.wallpaper, "A"), "no entry");
    EXPECT_EQ(colorIn(store.onDisk.wallpaper, "B"), "disabled");
}

TEST_F(WallpaperCoordinatorTest, whatFailsBeforeTheDesktopIsTouchedIsNotRolledBack) {
    applier.preparingFails("A");
    apply(colors({{"A", "#cccccc"}, {"B", "#bbbbbb"}}));
    EXPECT_THAT(applier.calls, ElementsAre("prepare A", "prepare B", "set B #bbbbbb"));
    EXPECT_EQ(colorIn(store.onDisk.wallpaper, "A"), "#aaaaaa");
}

TEST_F(WallpaperCoordinatorTest, failuresOfTheWayBackAreReported) {
    store.onDisk.wallpaper = {};
    model.emplace(loop, notifications, store, AppSettings{}, cacheFiles);
    coordinator.emplace(loop, displays, applier, &transactions, *model, memory, gate, clock);
    loop.settle();
    applier.capturingFails("A");
    applier.settingFails("B", "#dddddd");
    applier.restoringFails("B");
    const auto batch = apply(colors({{"A", "#cccccc"}, {"B", "#dddddd"}}));
    EXPECT_THAT(
        lines(batch),
        ElementsAre("A: Quillmar could not capture the current desktop for display ID A.", "B: cannot set"));
    ASSERT_EQ(batch.rollbackFailures.size(), 1u);
    EXPECT_EQ(batch.rollbackFailures[0], (WallpaperRollbackFailure{"B", "Right", "cannot restore"}));
}

TEST_F(WallpaperCoordinatorTest, aFileThatCannotBeTakenBackIsSaid) {
    applier.settingFails("A", "#cccccc");
    applier.hold();
    const auto change = tasks.start(coordinator->apply(colors({{"A", "#cccccc"}})));
    loop.settle();
    store.nextSaveFails("No space left on device");
    applier.letThrough();
    EXPECT_THAT(result(change).transactionFailureMessage.value_or(""),
                HasSubstr("Quillmar could not roll back the failed wallpaper change."));
}

TEST_F(WallpaperCoordinatorTest, theImageOfASlideshowIsRememberedUnlessTheModeChangedMeanwhile) {
    const Url image = Url::fromFilePath("/pictures/2.jpg");
    store.onDisk.wallpaper.displays[0].mode.value = SlideshowPresentationSettings{};
    model.emplace(loop, notifications, store, AppSettings{}, cacheFiles);
    coordinator.emplace(loop, displays, applier, &transactions, *model, memory, gate, clock);
    loop.settle();
    applier.outcome.selectedSlideshowImageURL = image;
    const auto remembered = [&] {
        const auto* slideshow =
            std::get_if<SlideshowPresentationSettings>(&model->settings().wallpaper.displays[0].mode.value);
        return slideshow ? slideshow->lastImageURL : std::nullopt;
    };
    result(enqueue(DisplayIDs{"A"}, rotation));
    EXPECT_EQ(remembered(), image);

    applier.outcome.selectedSlideshowImageURL = Url::fromFilePath("/pictures/3.jpg");
    applier.hold();
    const auto running = enqueue(DisplayIDs{"A"}, rotation);
    model->update([](AppSettings& settings) {
        settings.wallpaper.displays[0].mode.value = SolidColorPresentationSettings{"#eeeeee"};
    });
    applier.letThrough();
    result(running);
    EXPECT_EQ(colorIn(model->settings().wallpaper, "A"), "#eeeeee");
}

TEST_F(WallpaperCoordinatorTest, aWaiterThatGoesAwayLeavesTheWorkAndTheOthersAlone) {
    applier.hold();
    auto gone = std::make_unique<TaskScope>(loop);
    gone->start(coordinator->enqueue(std::nullopt, userInitiated));
    loop.settle();
    const auto staying = enqueue(std::nullopt);
    gone.reset();
    applier.letThrough();
    EXPECT_EQ(result(staying).displays.size(), 2u);
    EXPECT_EQ(applier.calls.size(), 4u);
}

struct Notifier final : RemoteWallpaperErrorNotifying {
    std::vector<std::string> told;
    Task<void> notify(std::exception_ptr error, DisplayInfo display, WallpaperMode mode) override {
        told.push_back(display.id + " " + std::string(enumName(mode.kind())) + ": " +
                       errorText(error, GeneralLanguage::english));
        co_return;
    }
};

TEST_F(WallpaperCoordinatorTest, failuresOfServicesAreToldToTheUserWhoWantsToKnow) {
    Notifier notifier;
    coordinator.emplace(loop, displays, applier, &transactions, *model, memory, gate, clock, &notifier);
    WallpaperSettings settings = colors({{"A", "#aaaaaa"}, {"B", "#bbbbbb"}});
    settings.displays[0].mode.value = BingSettings{};
    model->update([&](AppSettings& document) { document.wallpaper = settings; });
    applier.settingFails("A", "bing");
    applier.settingFails("B", "#bbbbbb");
    enqueue(std::nullopt);
    EXPECT_THAT(notifier.told, ::testing::IsEmpty());
    model->update([](AppSettings& document) { document.general.showRemoteErrorNotifications = true; });
    enqueue(std::nullopt);
    EXPECT_THAT(notifier.told, ElementsAre("A bing: cannot set"));
    tasks.start(coordinator->apply(settings));
    loop.settle();
    EXPECT_THAT(notifier.told, SizeIs(2));
    EXPECT_EQ(coordinator->lastFailures().at("B").message, "cannot set") << "nor could it be taken back";
}

}  // namespace
}  // namespace quillmar

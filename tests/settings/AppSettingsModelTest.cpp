#include "settings/AppSettingsModelFixture.h"

namespace quillmar {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::Optional;

TEST_F(AppSettingsModelTest, changesMadeDuringTheLoadAreMadeAgainOnWhatWasLoadedAndSaved) {
    pause(store.onDisk);
    store.hold();
    begin();
    loop.settle();
    model->update(colourful);
    model->update(launch);
    EXPECT_EQ(marks(model->settings()), "cl");
    store.letThrough();
    loop.settle();
    EXPECT_TRUE(model->isLoaded());
    EXPECT_EQ(marks(model->settings()), "pcl");
    EXPECT_THAT(posted, ElementsAre("c", "cl", "pcl"));
    loop.advance(250ms);
    EXPECT_THAT(savedMarks(), ElementsAre("pcl"));
}

TEST_F(AppSettingsModelTest, changesMadeDuringAFailedLoadStayInMemoryAndNeverReachTheFile) {
    store.loadFails("Permission denied");
    begin();
    model->update(pause);
    loop.settle();
    model->update(colourful);
    loop.advance(1h);
    EXPECT_FALSE(model->canPersist());
    EXPECT_THAT(model->loadError(), Optional(std::string("Permission denied")));
    EXPECT_EQ(marks(model->settings()), "pc");
    EXPECT_TRUE(store.saves.empty());
}

TEST_F(AppSettingsModelTest, aBurstOfChangesIsWrittenOnceAfterItsLast) {
    beginLoaded();
    for (int i = 0; i < 50; ++i) {
        model->update(i % 2 ? pause : colourful);
        loop.advance(100ms);
    }
    EXPECT_TRUE(store.saves.empty());
    loop.advance(150ms);
    EXPECT_THAT(savedMarks(), ElementsAre("pc"));
    EXPECT_EQ(posted.size(), 50u);
    EXPECT_EQ(loop.pendingCount(), 0u);
}

TEST_F(AppSettingsModelTest, aMachineThatSleptInTheDelayWritesOnceWhenItWakes) {
    beginLoaded();
    model->update(pause);
    loop.advance(100ms);
    loop.jump(8h);
    EXPECT_THAT(savedMarks(), ElementsAre("p"));
}

TEST_F(AppSettingsModelTest, aFailedSaveIsShownUntilTheNextChangeIsSaved) {
    beginLoaded();
    store.nextSaveFails("No space left on device");
    model->update(pause);
    loop.advance(1s);
    EXPECT_THAT(model->saveError(), Optional(std::string("No space left on device")));
    model->update(colourful);
    EXPECT_FALSE(model->saveError());
    loop.advance(1s);
    EXPECT_THAT(savedMarks(), ElementsAre("pc"));
}

TEST_F(AppSettingsModelTest, aFailureOfAnOlderRevisionIsDropped) {
    beginLoaded();
    store.nextSaveFails("No space left on device");
    model->update(pause);
    loop.advance(250ms - 1ms);
    store.hold();
    loop.advance(1ms);
    model->update(colourful);
    store.letThrough();
    loop.advance(100ms);
    EXPECT_FALSE(model->saveError());
    loop.advance(1s);
    EXPECT_THAT(savedMarks(), ElementsAre("pc"));
}

TEST_F(AppSettingsModelTest, aTransactionIsOnDiskBeforeItsObserversHearOfIt) {
    beginLoaded();
    store.hold();
    const auto commit = commits(pause);
    loop.advance(1h);
    EXPECT_TRUE(model->isSavingSettings());
    EXPECT_TRUE(posted.empty());
    store.letThrough();
    EXPECT_THAT(outcome(commit), Optional(true));
    EXPECT_FALSE(model->isSavingSettings());
    EXPECT_THAT(savedMarks(), ElementsAre("p"));
    EXPECT_THAT(posted, ElementsAre("p"));
}

TEST_F(AppSettingsModelTest, aTransactionWaitsForTheLoad) {
    store.hold();
    begin();
    const auto commit = commits(pause);
    loop.advance(1h);
    EXPECT_TRUE(store.saves.empty());
    store.letThrough();
    EXPECT_THAT(outcome(commit), Optional(true));
    EXPECT_EQ(marks(store.onDisk), "p");
}

TEST_F(AppSettingsModelTest, aChangeDuringATransactionIsWrittenAfterIt) {
    beginLoaded();
    store.hold();
    const auto commit = commits(pause);
    loop.settle();
    model->update(colourful);
    loop.advance(1h);
    store.letThrough();
    EXPECT_THAT(outcome(commit), Optional(true));
    EXPECT_THAT(savedMarks(), ElementsAre("p"));
    loop.advance(250ms);
    EXPECT_THAT(savedMarks(), ElementsAre("p", "pc"));
}

TEST_F(AppSettingsModelTest, aFailedTransactionIsUndoneButNotTheChangesThatCameDuringIt) {
    beginLoaded();
    model->update(launch);
    store.nextSaveFails("Read-only file system");
    store.hold();
    const auto commit = commits(pause);
    loop.settle();
    model->update(colourful);
    store.letThrough();
    EXPECT_THAT(outcome(commit), Optional(false));
    EXPECT_EQ(marks(model->settings()), "cl");
    EXPECT_THAT(model->saveError(), Optional(std::string("Read-only file system")));
    loop.advance(250ms);
    EXPECT_THAT(savedMarks(), ElementsAre("cl"));
    EXPECT_FALSE(model->saveError());
}

TEST_F(AppSettingsModelTest, aTransactionTakesThePlaceOfTheSaveThatWasWaiting) {
    beginLoaded();
    model->update(colourful);
    EXPECT_THAT(outcome(commits(pause)), Optional(true));
    loop.advance(1h);
    EXPECT_THAT(savedMarks(), ElementsAre("pc"));
}

TEST_F(AppSettingsModelTest, aTransactionEndsWellEvenWhenItsCallerIsCancelledOrGone) {
    beginLoaded();
    store.hold();
    auto commit = commits(pause);
    loop.settle();
    commit.cancel();
    loop.settle();
    store.letThrough();
    EXPECT_THAT(outcome(commit), Optional(true));

    store.hold();
    {
        TaskScope caller(loop);
        caller.start(model->commit(colourful));
        loop.settle();
    }
    store.letThrough();
    loop.settle();
    model->update(launch);
    loop.advance(1s);
    EXPECT_THAT(savedMarks(), ElementsAre("p", "pc", "pcl"));
}

TEST_F(AppSettingsModelTest, nothingIsCommittedOverAFileThatCouldNotBeRead) {
    store.loadFails("general: missing key");
    beginLoaded();
    EXPECT_THAT(outcome(commits(pause)), Optional(false));
    const std::string refusal =
        "The existing settings file could not be loaded (general: missing key), so this "
        "settings change was not saved.";
    EXPECT_THAT(model->saveError(), Optional(refusal));
    EXPECT_TRUE(store.saves.empty());
}

TEST_F(AppSettingsModelTest, replacingTheDocumentIsTheWayOutOfAFailedLoad) {
    store.loadFails("general: missing key");
    beginLoaded();
    AppSettings document;
    pause(document);
    store.nextSaveFails("No space left on device");
    EXPECT_THAT(outcome(tasks.start(model->replaceSettings(document))), Optional(false));
    EXPECT_FALSE(model->canPersist());
    EXPECT_THAT(model->loadError(), Optional(std::string("general: missing key")));
    EXPECT_EQ(marks(model->settings()), "");

    EXPECT_THAT(outcome(tasks.start(model->replaceSettings(document))), Optional(true));
    EXPECT_TRUE(model->canPersist());
    EXPECT_FALSE(model->loadError());
    EXPECT_EQ(marks(store.onDisk), "p");
    model->update(colourful);
    loop.advance(1s);
    EXPECT_EQ(marks(store.onDisk), "pc");
}

struct AppSettingsModelLeaseTest : AppSettingsModelTest {
    TemporaryFolder folder;
    std::filesystem::path root = resolvedPath(folder.path());

    /// The document shows this picture and no other.
    SettingsUpdate shows(const std::string& name) {
        return [file = Url::fromFilePath(root / name)](AppSettings& settings) {
            DisplayWallpaperSettings entry;
            entry.mode.value = ImagePresentationSettings{.cachedImageURL = file};
            settings.wallpaper.displays = {entry};
        };
    }
    bool canBeSwept(const std::string& name) {
        std::ofstream(root / name) << "x";
        return cacheFiles.removeIfFree(root / name);
    }
};

TEST_F(AppSettingsModelLeaseTest, theFilesOfThePresentDocumentCannotBeSwept) {
    shows("loaded")(store.onDisk);
    begin();
    model->update(shows("early"));
    EXPECT_FALSE(canBeSwept("early"));
    loop.settle();
    EXPECT_FALSE(canBeSwept("early")) << "made again on what was loaded";
    EXPECT_TRUE(canBeSwept("loaded"));
    model->update(shows("late"));
    EXPECT_FALSE(canBeSwept("late"));
    EXPECT_TRUE(canBeSwept("early"));
}

TEST_F(AppSettingsModelLeaseTest,
       duringATransactionTheFilesOfBothDocumentsAreKeptAndThenThoseOfTheOneThatStays) {
    shows("old")(store.onDisk);
    beginLoaded();
    for (const bool fails : {true, false}) {
        if (fails) store.nextSaveFails("disk full");
        store.hold();
        const auto commit = commits(shows("new"));
        loop.settle();
        EXPECT_FALSE(canBeSwept("old"));
        EXPECT_FALSE(canBeSwept("new"));
        store.letThrough();
        EXPECT_THAT(outcome(commit), Optional(!fails));
        EXPECT_EQ(canBeSwept("old"), !fails);
        EXPECT_EQ(canBeSwept("new"), fails);
    }
}

TEST_F(AppSettingsModelTest, flushingWritesWhatIsUnsavedAndNothingElse) {
    beginLoaded();
    const auto flush = [&] { return outcome(tasks.start(model->flushPendingSave())); };
    EXPECT_THAT(flush(), Optional(true));
    EXPECT_TRUE(store.saves.empty()) << "nothing was unsaved";

    model->update(pause);
    EXPECT_THAT(flush(), Optional(true));
    EXPECT_THAT(savedMarks(), ElementsAre("p"));
    loop.advance(1h);
    EXPECT_EQ(store.saves.size(), 1u) << "the delayed save was cancelled";

    store.nextSaveFails("No space left on device");
    model->update(colourful);
    EXPECT_THAT(flush(), Optional(false));
    EXPECT_THAT(model->saveError(), Optional(std::string("No space left on device")));
}

TEST_F(AppSettingsModelTest, flushingDuringATransactionWaitsForIt) {
    beginLoaded();
    store.hold();
    const auto commit = commits(pause);
    loop.settle();
    const auto flush = tasks.start(model->flushPendingSave());
    loop.settle();
    EXPECT_FALSE(flush.isFinished());
    store.letThrough();
    EXPECT_THAT(outcome(flush), Optional(true));
    EXPECT_THAT(outcome(commit), Optional(true));
    EXPECT_EQ(store.saves.size(), 1u);
}

TEST_F(AppSettingsModelTest, flushingWhenReadOnlyFailsOnlyIfSomethingIsUnsaved) {
    store.loadFails("Is a directory");
    beginLoaded();
    EXPECT_THAT(outcome(tasks.start(model->flushPendingSave())), Optional(true));
    model->update(pause);
    EXPECT_THAT(outcome(tasks.start(model->flushPendingSave())), Optional(false));
    EXPECT_TRUE(model->saveError());
}

struct GateTest : ::testing::Test {
    VirtualLoop loop;
    SettingsTransactionGate gate;
    std::vector<std::string> order;

    Task<void> use(std::string who) {
        const auto hold = co_await gate.acquire();
        order.push_back(who);
        co_await sleepFor(1s);
    }
};

TEST_F(GateTest, threeAcquirersAreServedInTheirOrderAndTheGateStaysLockedThroughout) {
    TaskScope tasks(loop);
    for (const char* who : {"a", "b", "c"}) tasks.spawn(use(who));
    for (const std::size_t served : {1u, 2u, 3u}) {
        loop.advance(500ms);
        EXPECT_EQ(order.size(), served);
        EXPECT_TRUE(gate.isLocked());
        loop.advance(500ms);
    }
    EXPECT_THAT(order, ElementsAre("a", "b", "c"));
    EXPECT_FALSE(gate.isLocked());
}

TEST_F(GateTest, anAcquirerThatIsCancelledOrDiesLeavesTheLineAndATurnItWasGivenMovesOn) {
    TaskScope tasks(loop);
    auto dying = std::make_unique<TaskScope>(loop);
    tasks.spawn(use("a"));
    const auto cancelled = tasks.start(use("cancelled"));
    dying->spawn(use("dying"));
    tasks.spawn(use("c"));
    loop.settle();
    cancelled.cancel();
    // The gate is handed over at one second; the one that gets it dies before it can go on.
    const Scheduled death(loop, loop.now() + 1s, [&] { dying.reset(); });
    loop.advance(1s);
    EXPECT_THAT(order, ElementsAre("a", "c"));
    loop.advance(1s);
    EXPECT_FALSE(gate.isLocked());
}

}  // namespace
}  // namespace quillmar

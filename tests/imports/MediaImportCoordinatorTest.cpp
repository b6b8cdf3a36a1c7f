#include "imports/MediaImportFixture.h"

namespace quillmar {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Kind = MediaImportKind;
const MediaImportSlot slot{.displayID = "display:a", .role = MediaImportSlot::Role::pdf};

/// Two files may be chosen for one slot; what is told of them is kept.
class MediaImportCoordinatorTest : public MediaImportTest {
protected:
    void choose(const std::string& name, const MediaImportSlot& in = slot) {
        coordinator.startImport(
            in, urlOf(write(name, "%PDF-" + name)), Kind::pdf, [this, name](Outcome outcome) {
                told.push_back(name + (outcome ? " is there" : ": " + std::string(outcome.error().what())));
                if (outcome) files.push_back(*outcome);
            });
    }
    void takeSteps(int count) {
        loop.settle();
        for (int step = 0; step < count && jobs.heldCount() > 0; ++step) {
            jobs.releaseOne();
            loop.settle();
        }
    }
    void finish() {
        constexpr int more = 100;
        takeSteps(more);
    }

    std::vector<std::string> told;
    std::vector<Url> files;
    std::unique_ptr<MediaImportRepository> storage = repository();
    MediaImportCoordinator coordinator{loop, notifications, *storage};
};

/// The copy, the look at its beginning, the commit, the end of the claim.
constexpr int steps = 4;

TEST_F(MediaImportCoordinatorTest, anImportThatEndsAtAnyStepLeavesNoFileAndIsNotTold) {
    for (int step = 0; step <= steps; ++step) {
        for (const bool isReplaced : {false, true}) {
            told.clear();
            std::filesystem::remove_all(cache);
            jobs.runsAtOnce = false;
            choose("first.pdf");
            takeSteps(step);
            if (step == steps) {
                EXPECT_THAT(told, ElementsAre("first.pdf is there"));
                EXPECT_THAT(coordinator.importingSlots(), IsEmpty());
                break;
            }
            EXPECT_THAT(coordinator.importingSlots(), ElementsAre(slot));
            isReplaced ? choose("second.pdf") : coordinator.cancelImports("display:a");
            finish();
            const auto remaining =
                isReplaced ? std::vector<std::string>{"second.pdf is there"} : std::vector<std::string>{};
            EXPECT_EQ(told, remaining) << step;
            EXPECT_EQ(cached().size(), remaining.size()) << step;
            EXPECT_THAT(coordinator.importingSlots(), IsEmpty());
        }
    }
}

TEST_F(MediaImportCoordinatorTest, slotsAreToldAndEachIsItsOwn) {
    std::vector<std::size_t> counts;
    const auto observation = notifications.observe<MediaImportSlots>(
        mediaImportsDidChange, [&](const MediaImportSlots& slots) { counts.push_back(slots.size()); });
    jobs.runsAtOnce = false;
    const MediaImportSlot other{.displayID = "display:b", .role = slot.role};
    choose("a.pdf");
    choose("b.pdf", other);
    choose("again.pdf");
    coordinator.cancelImports("display:c");
    coordinator.cancelImports({other});
    finish();
    EXPECT_THAT(told, ElementsAre("again.pdf is there"));
    EXPECT_THAT(counts, ElementsAre(1, 2, 1, 0));
}

TEST_F(MediaImportCoordinatorTest, theSameContentIsThereOnceAndStaysWhileItIsClaimed) {
    TaskScope tasks(loop);
    const auto prepared = [&](const char* name) {
        return *outcomeOf(loop, tasks, storage->prepare(urlOf(write(name, "%PDF-same")), Kind::pdf))->value;
    };
    const auto committed = [&](const char* name) {
        return *outcomeOf(loop, tasks, storage->commit(prepared(name)))->value;
    };
    const auto does = [&](Task<void> step) {
        outcomeOf(loop, tasks, std::move(step));
        return cached().size();
    };

    const auto first = committed("a.pdf");
    const auto second = committed("b.pdf");
    EXPECT_EQ(std::pair(first.createdFile, second.createdFile), std::pair(true, false));
    EXPECT_EQ(cached().size(), 1u);
    EXPECT_EQ(does(storage->acceptClaim(first)), 1u);
    EXPECT_EQ(does(storage->removeImportedFile(first.file)), 1u) << "the second has not ended";
    EXPECT_EQ(does(storage->releaseClaim(second)), 0u);

    const auto third = committed("a.pdf");
    const auto fourth = committed("b.pdf");
    EXPECT_EQ(does(storage->releaseClaim(third)), 1u);
    EXPECT_EQ(does(storage->acceptClaim(fourth)), 1u) << "another import brought it, but this one was taken";
    EXPECT_EQ(does(storage->releaseClaim(committed("c.pdf"))), 1u) << "it was there before";
    EXPECT_EQ(does(storage->discard(prepared("d.pdf"))), 1u);
    EXPECT_FALSE(cacheFiles.removeIfFree(resolvedPath(fourth.file))) << "a draft may hold it";
}

TEST_F(MediaImportCoordinatorTest, aCleanupRemovesWhatNothingRefersToAndNoOtherFile) {
    choose("a.pdf");
    loop.settle();
    choose("b.pdf");
    loop.settle();
    const Url own = urlOf(write("import-mine.pdf"));
    std::filesystem::create_symlink(folder.path(), folder.path() / "link");
    const Url linked = urlOf(folder.path() / "link/Cache" / cached()[0]);
    coordinator.cleanup(std::vector{files[0], files[1], own}, std::vector{files[0], files[1]});
    loop.settle();
    EXPECT_EQ(cached().size(), 2u);
    {
        const CacheFileLease lease(cacheFiles, *files[0].filePath());
        coordinator.cleanup(std::vector{files[0], own, *Url::parse("https://example.com/x")}, {});
        loop.settle();
    }
    EXPECT_EQ(cached().size(), 2u) << "somebody uses it";
    coordinator.cleanup(std::vector{files[0], files[1], own}, std::vector{linked});
    loop.settle();
    EXPECT_THAT(cached(),
                ElementsAre(linked.filePath()->lexically_relative(folder.path() / "link/Cache").string()));
    EXPECT_TRUE(std::filesystem::exists(*own.filePath()));
}

}  // namespace
}  // namespace quillmar

#include "history/PictureMemory.h"

#include <fstream>

#include "fakes/FakeExecutors.h"
#include "fakes/TaskOutcome.h"
#include "fakes/TemporaryFolder.h"
#include "fakes/VirtualLoop.h"

namespace quillmar {
namespace {

using ::testing::ElementsAre;

Url url(const std::string& name) { return Url::fromFilePath("/pictures/" + name); }

struct PictureMemoryTest : ::testing::Test {
    VirtualLoop loop;
    VirtualWallClock clock{loop};
    TemporaryFolder folder;
    InlineExecutor files;
    std::optional<PictureMemory> memory;
    TaskScope tasks{loop};

    void SetUp() override { restart(); }
    /// As the next process would find it.
    void restart() {
        memory.emplace(files, folder.path(), clock);
        EXPECT_EQ(outcomeOf(loop, tasks, memory->load())->text, "done");
    }
    void shows(const std::string& name, const std::string& display = "A") {
        memory->shows(display, ShownPicture{.kind = WallpaperModeKind::slideshow,
                                            .fileURL = url(name),
                                            .credit = {.title = "The " + name}});
    }
    static std::string name(const ShownPicture* picture) {
        return picture ? picture->fileURL->filePath()->filename().string() : "none";
    }
    std::string now(const std::string& display = "A") const {
        return name(memory->history().current(display));
    }
    /// Goes as far as it goes, and names what it comes by.
    std::vector<std::string> walk(HistoryStep step, const std::string& display = "A") {
        std::vector<std::string> names;
        while (const ShownPicture* next = memory->history().neighbour(display, step)) {
            names.push_back(name(next));
            memory->returned(display, ShownPicture(*next));
        }
        return names;
    }
};

TEST_F(PictureMemoryTest, eachDisplaysPicturesAreWalkedBackAndForthAndNewOnesComeLast) {
    for (const char* picture : {"1", "2", "2", "3"}) shows(picture);
    shows("of B", "B");
    EXPECT_THAT(walk(HistoryStep::back), ElementsAre("2", "1"));
    EXPECT_THAT(walk(HistoryStep::forward), ElementsAre("2", "3"));
    walk(HistoryStep::back);
    shows("4");
    EXPECT_THAT(walk(HistoryStep::back), ElementsAre("3", "2", "1"));
    shows("1");
    EXPECT_EQ(name(memory->history().neighbour("A", HistoryStep::forward)), "2") << "it is where it was";
    memory->shows("A", std::nullopt);
    EXPECT_EQ(now(), "none");
    EXPECT_EQ(name(memory->history().neighbour("A", HistoryStep::back)), "4");
    EXPECT_EQ(now("B"), "of B");
}

TEST_F(PictureMemoryTest, theNextStartKnowsThemButNotWhatIsShown) {
    for (const char* picture : {"1", "2", "3"}) shows(picture);
    restart();
    EXPECT_EQ(now(), "none");
    shows("3");
    EXPECT_THAT(walk(HistoryStep::back), ElementsAre("2", "1"));
    EXPECT_EQ(memory->history().current("A")->credit.title, "The 1");
    // Cut off in the middle of a line, and written by somebody else.
    std::ofstream(folder.path() / "history", std::ios::app) << "{\"display\": 7}\n{\"display\":\"A\",\"pict";
    restart();
    shows("4");
    restart();
    EXPECT_THAT(walk(HistoryStep::back), ElementsAre("4", "3", "2", "1"));
}

TEST_F(PictureMemoryTest, whatIsShownBeforeTheFilesAreReadIsNotLost) {
    shows("1");
    memory.emplace(files, folder.path(), clock);
    shows("2");
    memory->ban(url("9"));
    EXPECT_EQ(now(), "2");
    EXPECT_EQ(outcomeOf(loop, tasks, memory->load())->text, "done");
    EXPECT_EQ(now(), "2");
    EXPECT_THAT(walk(HistoryStep::back), ElementsAre("1"));
    restart();
    EXPECT_THAT(walk(HistoryStep::back), ElementsAre("2", "1"));
    EXPECT_TRUE(memory->banned().contains(url("9")));
}

TEST_F(PictureMemoryTest, itIsBoundedHoweverLongTheProgramRuns) {
    for (int i = 0; i < 10000; ++i) shows(std::to_string(i));
    EXPECT_EQ(walk(HistoryStep::back).size(), PictureHistory::maximumPictures - 1);
    EXPECT_LT(std::filesystem::file_size(folder.path() / "history"), 1000000u);
    for (int i = 0; i < 100; ++i) {
        clock.set(clock.now() + std::chrono::seconds(1));
        shows("1", "display " + std::to_string(i));
    }
    EXPECT_EQ(now("A"), "none") << "of the displays, those that were met first are forgotten";
}

TEST_F(PictureMemoryTest, whatIsInTheTrashIsForgottenOnceItIsNoLongerShown) {
    for (const char* picture : {"2", "1", "2", "3"}) shows(picture);
    memory->ban(url("3"));
    memory->ban(url("1"));
    EXPECT_EQ(now(), "3");
    EXPECT_TRUE(memory->banned().contains(*Url::parse("file:///pictures/./3"))) << "in any spelling";
    EXPECT_THAT(walk(HistoryStep::back), ElementsAre("2"));
    EXPECT_THAT(walk(HistoryStep::forward), ElementsAre());
    restart();
    EXPECT_THAT(walk(HistoryStep::back), ElementsAre("2"));
    EXPECT_TRUE(memory->banned().contains(url("1")));
    EXPECT_FALSE(memory->banned().contains(url("2")));
    // As editors leave it.
    std::ofstream(folder.path() / "trash") << "# mine\r\nfile:///pictures/4\r\n\n\xff\n file:///pictures/5";
    restart();
    memory->ban(url("6"));
    restart();
    for (const char* banned : {"4", "5", "6"}) EXPECT_TRUE(memory->banned().contains(url(banned))) << banned;
    EXPECT_EQ(outcomeOf(loop, tasks, memory->bansAreKept())->text, "done");
    std::filesystem::remove(folder.path() / "trash");
    std::filesystem::create_directory(folder.path() / "trash");
    memory->ban(url("7"));
    EXPECT_THAT(outcomeOf(loop, tasks, memory->bansAreKept())->text,
                testing::HasSubstr("trash: Is a directory"));
}

TEST_F(PictureMemoryTest, aHistoryThatNobodyCanReadBeginsAnew) {
    std::ofstream(folder.path() / "history") << "";
    std::filesystem::resize_file(folder.path() / "history", 65 << 20);
    restart();
    EXPECT_EQ(std::filesystem::file_size(folder.path() / "history"), 0u);
}

TEST_F(PictureMemoryTest, aFolderThatIsNoneCostsOnlyTheMemory) {
    std::ofstream(folder.path() / "file") << "in the way";
    memory.emplace(files, folder.path() / "file", clock);
    EXPECT_EQ(outcomeOf(loop, tasks, memory->load())->text, "done");
    shows("1");
    memory->ban(url("2"));
    EXPECT_EQ(now(), "1");
    EXPECT_TRUE(memory->banned().contains(url("2")));
}

}  // namespace
}  // namespace quillmar

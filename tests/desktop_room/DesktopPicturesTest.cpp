#include "desktop/DesktopPictures.h"

#include "desktop/LastShownKeeper.h"

#include "fakes/DesktopWorld.h"
#include "fakes/RecordedLog.h"
#include "modes/WallpaperApplicationError.h"
#include "storage/LastShownRows.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Pair;

struct DesktopPicturesTest : ::testing::Test, DesktopWorld {
    RecordedLog log{clock};

    DesktopImage image(const std::string& name) {
        return {put(name), std::make_shared<PixelBuffer>(PixelSize{1920, 1080})};
    }
    std::string set(std::uint32_t screen, const std::string& name) {
        return run(pictures->set(id(screen), image(name)));
    }
};

TEST_F(DesktopPicturesTest, whatTheDesktopForgotWithAPlugIsShownAgainAndWhatOthersPaintedStays) {
    set(1, "one.png");
    set(2, "two.png");
    screens.unplug(2);
    screens.plugIn(2, {1920, 0, 1280, 1024});
    desktop.forgets(2);
    desktop.shown.erase(1);  // of another program: no file is known
    desktop.set.clear();
    EXPECT_EQ(run(pictures->repaintForgotten()), "done");
    EXPECT_THAT(desktop.set, ElementsAre(2u));
    EXPECT_EQ(shown(2), "two.png");

    desktop.forgets(1);
    desktop.forgets(2);
    desktop.refuses(1, "no room");
    EXPECT_EQ(run(pictures->repaintForgotten()), "done");
    EXPECT_THAT(log.lines, Contains(HasSubstr("A display could not be given its picture again.")));
    EXPECT_EQ(shown(2), "two.png") << "one display that fails holds up no other";
}

TEST_F(DesktopPicturesTest, whatAnotherDisplayWasGivenInTheSamePlaceMeanwhileIsPaintedOver) {
    set(1, "one.png");
    set(2, "two.png");
    desktop.shown[1] = folder.path() / "two.png";  // as the root window has it: by the place
    run(pictures->repaintForgotten());
    EXPECT_EQ(shown(1), "one.png");
    desktop.wantsPixels = false;
    restart();
    set(1, "one.png");
    desktop.shown[1] = "/home/ana/holiday.jpg";
    run(pictures->repaintForgotten());
    EXPECT_EQ(shown(1), "holiday.jpg") << "her desktop knows its displays: that was her";
}

TEST_F(DesktopPicturesTest, aChangeThatMeetsARepaintIsTheOneThatStays) {
    set(1, "old.png");
    desktop.forgets(1);
    rendering.hold();
    const auto repaint = outcomeOf(loop, tasks, pictures->repaintForgotten());
    const auto change = outcomeOf(loop, tasks, pictures->set(id(1), image("new.png")));
    rendering.letThrough();
    loop.settle();
    EXPECT_EQ(repaint->text + change->text, "donedone");
    EXPECT_EQ(shown(1), "new.png");
}

TEST_F(DesktopPicturesTest, theNextSessionShowsWhatADisplayShowedLast) {
    set(1, "one.png");
    set(2, "two.png");
    desktop.shown.clear();
    restart();
    run(pictures->recall(id(1)));
    run(pictures->recall("display:unplugged"));
    EXPECT_EQ(shown(1), "one.png");
    EXPECT_EQ(shown(2), "");
    EXPECT_FALSE(cacheFiles.removeIfFree(resolvedPath(folder.path() / "one.png")));
    desktop.shown[2] = "/home/ana/holiday.jpg";
    run(pictures->recall(id(2)));
    EXPECT_EQ(shown(2), "holiday.jpg") << "it forgot nothing";
    fs::remove(folder.path() / "one.png");
    desktop.shown.clear();
    restart();
    run(pictures->recall(id(1)));
    EXPECT_EQ(shown(1), "");
}

TEST_F(DesktopPicturesTest, aCapturedDisplayComesBackWithItsOptionsAndAfterItsFileIsWritten) {
    EXPECT_EQ(run(pictures->capture(id(1))),
              "Quillmar could not capture the current desktop for display ID " + id(1) + ".");
    const fs::path holiday = put("holiday.jpg");
    desktop.shown[1] = holiday;
    desktop.options[1] = {{"style", "zoom"}};
    std::optional<DesktopSnapshot> snapshot;
    {
        auto outcome = outcomeOf(loop, tasks, pictures->capture(id(1)));
        snapshot = std::move(outcome->value);
    }
    set(1, "one.png");
    EXPECT_TRUE(desktop.options[1].empty());
    rendering.damaged.insert(holiday);  // no picture of ours, nor of the screen's size
    EXPECT_EQ(run(pictures->restore(*snapshot)), "done");
    EXPECT_EQ(shown(1), "holiday.jpg");
    EXPECT_EQ(desktop.options[1].at("style"), "zoom");
    EXPECT_EQ(rendering.lastComposition.destination, (PixelRect{0, 0, 400, 300}));

    writing.runsAtOnce = false;
    const DesktopImage unwritten = image("unwritten.png");
    writer.writeBehind(unwritten.file, unwritten.pixels);
    run(pictures->set(id(2), unwritten));
    const auto waiting = outcomeOf(loop, tasks, pictures->capture(id(2)));
    EXPECT_EQ(waiting->text, "waiting");
    writing.releaseAll();
    loop.settle();
    EXPECT_EQ(waiting->text, "done");
    screens.unplug(1);
    EXPECT_EQ(run(pictures->restore(*snapshot)), "The display with ID " + id(1) + " is no longer connected.");
}

TEST_F(DesktopPicturesTest, aDisplayGetsBackWhatItShowedBeforeTheFirstPictureInALaterProcessAndMoreThanOnce) {
    desktop.shown[1] = put("Cache/captured-1.png");
    put("Desktop/Former/captured-forgotten.png");
    for (const char* round : {"the first", "the second"}) {
        run(pictures->keepFormer(id(1), desktop.shown[1], {}));
        set(1, "one.png");
        run(pictures->keepFormer(id(1), desktop.shown[1], {}));
        restart();
        set(1, "two.png");
        run(pictures->removeForgottenFormer());
        fs::remove(folder.path() / "Cache/captured-1.png");  // as a sweep does
        run(pictures->giveBack(id(1)));
        EXPECT_EQ(desktop.shown[1], folder.path() / "Desktop/Former/captured-1.png") << round;
        run(pictures->removeForgottenFormer());
    }
    EXPECT_TRUE(fs::exists(desktop.shown[1])) << "it is shown";
    EXPECT_FALSE(fs::exists(folder.path() / "Desktop/Former/captured-forgotten.png"));
}

TEST_F(DesktopPicturesTest, aFileIsKeptWhileItIsShownAndNoLonger) {
    set(1, "one.png");
    const fs::path first = resolvedPath(folder.path() / "one.png");
    set(2, "two.png");
    EXPECT_FALSE(cacheFiles.removeIfFree(first)) << "the other display's is another matter";
    desktop.refuses(1, "no");
    EXPECT_THAT(set(1, "three.png"), HasSubstr("refused it (no)"));
    EXPECT_FALSE(cacheFiles.removeIfFree(first)) << "it is still shown";
    desktop.accepts(1);
    set(1, "three.png");
    EXPECT_TRUE(cacheFiles.removeIfFree(first));
}

TEST_F(DesktopPicturesTest, aDesktopThatTookHalfAChangeIsPutBack) {
    desktop.wantsPixels = false;
    desktop.shown[1] = "/home/ana/holiday.jpg";
    desktop.options[1] = {{"style", "zoom"}};
    desktop.refuses(1, "read-only");
    EXPECT_THAT(set(1, "one.png"), HasSubstr("read-only"));
    EXPECT_EQ(shown(1), "holiday.jpg");
    EXPECT_EQ(desktop.options[1].at("style"), "zoom");
}

TEST_F(DesktopPicturesTest, aDesktopThatDoesNotAnswerHoldsUpNobodyWhoAsks) {
    set(1, "one.png");
    desktop.shown[2] = "/home/ana/holiday.jpg";
    std::map<std::string, fs::path> files;
    run(pictures->shown(), &files);
    EXPECT_THAT(files, ElementsAre(Pair(id(1), folder.path() / "one.png"),
                                   Pair(id(2), fs::path("/home/ana/holiday.jpg"))));
    desktop.hold();
    for (int i = 0; i < 3; ++i) {
        const auto outcome = outcomeOf(loop, tasks, pictures->shown());
        EXPECT_EQ(outcome->text, "waiting");
        loop.advance(500ms);
        ASSERT_EQ(outcome->text, "done");
        EXPECT_EQ(*outcome->value, files) << "as it said last";
    }
    {
        TaskScope owner(loop);
        owner.start(pictures->set(id(1), image("late.png")));
        loop.settle();
    }
    desktop.letThrough();
    EXPECT_EQ(set(1, "next.png"), "done") << "whose owner died leaves the display to others";
    EXPECT_EQ(shown(1), "next.png");
}

TEST_F(DesktopPicturesTest, ofManyPicturesThatWaitToBeWrittenTheOldestIsLetGo) {
    writing.runsAtOnce = false;
    for (int i = 0; i < 7; ++i) {
        writer.writeBehind(folder.path() / (std::to_string(i) + ".png"),
                           std::make_shared<PixelBuffer>(PixelSize{2, 2}));
    }
    loop.settle();
    rendering.writeError = std::errc::no_space_on_device;
    writing.releaseOne();
    loop.settle();
    rendering.writeError.reset();
    writing.runsAtOnce = true;
    writing.releaseAll();
    loop.settle();
    EXPECT_EQ(rendering.written, 3);
    EXPECT_THAT(log.lines, Contains(HasSubstr("A picture that is shown could not be kept in the cache.")));
    EXPECT_TRUE(fs::exists(folder.path() / "6.png"));
}

TEST_F(DesktopPicturesTest, whatHasStoodForAWhileOrIsShownAtTheEndIsKeptForTheNextStart) {
    const fs::path rowsFolder = folder.path() / "Cache/LastShown";
    LastShownKeeper keeper({.loop = loop,
                            .pictures = *pictures,
                            .displays = displays,
                            .rendering = rendering,
                            .writer = writer,
                            .executor = executor,
                            .folder = rowsFolder});
    const auto kept = [&] {
        const auto rows = LastShownRows::open(rowsFolder, id(1).substr(8));
        return rows ? rows->png().filename().string() : "";
    };
    keeper.start();
    set(1, "one.png");
    loop.advance(59s);
    EXPECT_EQ(kept(), "");
    loop.advance(1s);
    EXPECT_EQ(kept(), "one.png");
    for (int minute = 0; minute < 29; ++minute) {
        set(1, minute % 2 == 0 ? "two.png" : "three.png");
        loop.advance(1min);
        EXPECT_EQ(kept(), "one.png") << "rows are large";
    }
    loop.advance(2min);
    EXPECT_EQ(kept(), "two.png");
    set(1, "last.png");
    EXPECT_EQ(run(keeper.stop()), "done");
    EXPECT_EQ(kept(), "last.png");
    keeper.start();
    run(pictures->giveBack(id(1)));
    EXPECT_EQ(kept(), "") << "the next start leaves the display alone";
    set(1, "last.png");
    run(keeper.stop());
    EXPECT_EQ(kept(), "last.png");
    const int loaded = rendering.loaded;
    LastShownKeeper next({.loop = loop,
                          .pictures = *pictures,
                          .displays = displays,
                          .rendering = rendering,
                          .writer = writer,
                          .executor = executor,
                          .folder = rowsFolder});
    next.start();
    run(pictures->set(id(1), {folder.path() / "last.png", nullptr}));
    loop.advance(1min);
    EXPECT_EQ(rendering.loaded, loaded) << "they are there";
    set(1, "stuck.png");
    rendering.hold();
    const auto stopping = outcomeOf(loop, tasks, next.stop());
    loop.advance(LastShownKeeper::longestEnd);
    EXPECT_EQ(stopping->text, "done");
}

}  // namespace
}  // namespace quillmar

#include "linux/render/ProcessPictureRendering.h"

#include <sys/stat.h>
#include <sys/wait.h>

#include "PictureFixture.h"
#include "fakes/FakeExecutors.h"

namespace quillmar {
namespace {

using namespace std::chrono_literals;
using Case = PictureRenderingError::Case;

// What a reader that has gone wrong may answer, as a shell writes it: number, kind, width, height.
constexpr const char* sizeOfNoPicture =
    R"(printf '\001\000\155\161\001\000\000\000\377\377\377\177\001\000\000\000' >&0;)";
constexpr const char* size =
    R"(printf '\001\000\155\161\001\000\000\000\010\000\000\000\010\000\000\000' >&0;)";
constexpr const char* done =
    R"(printf '\001\000\155\161\002\000\000\000\000\000\000\000\000\000\000\000' >&0;)";
constexpr const char* unreadable =
    R"(printf '\001\000\155\161\003\000\000\000\000\000\000\000\000\000\000\000' >&0;)";
constexpr const char* unknown =
    R"(printf '\001\000\155\161\011\000\000\000\000\000\000\000\000\000\000\000' >&0;)";
constexpr const char* otherNumber =
    R"(printf '\002\000\155\161\001\000\000\000\010\000\000\000\010\000\000\000' >&0;)";
/// Takes a message. A socket that is closed with one unread tells its other end of nothing else.
constexpr const char* hears = "head -c 1 >/dev/null;";
constexpr const char* stops = "kill -STOP $$;";

struct ProcessPictureRenderingTest : PictureFixture {
    std::filesystem::path picture = save(samples::png(samples::patterned(8, 8)));

    /// A stand-in for the reader, or something around it.
    std::filesystem::path reader(const std::string& script) {
        const std::string text = "#!/bin/sh\n" + script + "\n";
        const auto file = save(Bytes(text.begin(), text.end()), "reader");
        ::chmod(file.c_str(), 0700);
        return file;
    }
    static Task<SharedPixels> rendered(PictureRendering& by, const std::filesystem::path& file) {
        return by.render(
            file, [](PixelSize) { return PictureComposition{{16, 16}, {}, {0, 0, 16, 16}, false, {}}; });
    }
    /// Runs the loop until no reader is left, not even an ended one that nobody asked for.
    static void expectNoReaderIsLeft() {
        siginfo_t info{};
        while (::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0)
            g_main_context_iteration(nullptr, FALSE);
        EXPECT_EQ(errno, ECHILD);
    }
};

TEST_F(ProcessPictureRenderingTest, aReaderThatFailsIsNoMoreThanAnError) {
    const std::pair<std::string, Case> readers[] = {
        {"exit 0", Case::decoderFailed},
        {"kill -KILL $$", Case::decoderFailed},
        {"printf x >&0", Case::decoderFailed},
        {"head -c 100000 /dev/zero >&0", Case::decoderFailed},
        {unknown, Case::decoderFailed},
        {otherNumber, Case::decoderFailed},
        {sizeOfNoPicture, Case::decoderFailed},
        {done, Case::decoderFailed},
        {size, Case::decoderFailed},
        {size + std::string(size), Case::decoderFailed},
        {size + std::string("kill -SEGV $$"), Case::decoderFailed},
        {size + std::string(hears) + unreadable, Case::unreadable},
        {stops, Case::tookTooLong},
        {size + std::string(stops), Case::tookTooLong},
    };
    for (const auto& [script, expected] : readers) {
        SCOPED_TRACE(script);
        const bool isSlow = expected == Case::tookTooLong;
        ProcessPictureRendering failing(pool, reader(hears + script),
                                        {.time = isSlow ? Duration(200ms) : 60s});
        EXPECT_EQ(failureOf(rendered(failing, picture)), expected);
        expectNoReaderIsLeft();
    }
    ProcessPictureRendering missing(pool, folder.path() / "missing");
    EXPECT_EQ(failureOf(rendered(missing, picture)), Case::noDecoder);
    EXPECT_FALSE(failureOf(rendered(rendering, picture))) << "the next one is read all the same";
}

TEST_F(ProcessPictureRenderingTest, aRequestThatIsCancelledOrDroppedEndsItsReaderAndLetsTheNextOneIn) {
    const auto started = folder.path() / "started";
    const std::string script =
        "[ -e " + started.string() + " ] || { touch " + started.string() + "; " + stops + " }; " + done;
    ProcessPictureRendering oneAtATime(pool, reader(hears + script), {.time = 60s, .requests = 1});
    TaskScope tasks(loop);
    auto first = std::make_unique<TaskScope>(loop);
    const auto stuck = first->start(oneAtATime.isPicture(picture));
    const auto untilStarted = [&] {
        while (!std::filesystem::exists(started)) g_main_context_iteration(nullptr, FALSE);
    };
    untilStarted();
    const auto leaves = tasks.start(oneAtATime.isPicture(picture));
    const auto waits = tasks.start(oneAtATime.isPicture(picture));
    leaves.cancel();
    awaited(ended(leaves));
    EXPECT_FALSE(waits.isFinished());
    stuck.cancel();
    EXPECT_TRUE(awaited(waits.value()));
    EXPECT_TRUE(stuck.isFinished());

    std::filesystem::remove(started);
    const auto dropped = first->start(oneAtATime.isPicture(picture));
    untilStarted();
    first.reset();
    EXPECT_TRUE(dropped.isFinished());
    EXPECT_TRUE(awaited(oneAtATime.isPicture(picture)));
    expectNoReaderIsLeft();
}

TEST_F(ProcessPictureRenderingTest, aDiskThatDoesNotAnswerIsGivenUpToo) {
    HeldExecutor disk;
    ProcessPictureRendering waiting(disk, ProcessPictureRendering::installedProgram(),
                                    {.time = 20ms, .requests = 1});
    EXPECT_EQ(failureOf(waiting.isPicture(picture)), Case::tookTooLong);
    disk.releaseAll();
    disk.runsAtOnce = true;
    EXPECT_NE(failureOf(rendered(waiting, folder.path() / "missing")), Case::tookTooLong);
}

TEST_F(ProcessPictureRenderingTest, aReaderThatWasEndedByOthersIsStartedOnceMore) {
    const auto ended = (folder.path() / "ended").string();
    const std::string exec = "exec " + ProcessPictureRendering::installedProgram().string();
    ProcessPictureRendering unlucky(
        pool, reader("[ -e " + ended + " ] || { touch " + ended + "; kill -KILL $$; }; " + exec));
    EXPECT_FALSE(failureOf(rendered(unlucky, picture)));
    EXPECT_TRUE(std::filesystem::exists(ended));
}

#if !__has_feature(address_sanitizer)
TEST_F(ProcessPictureRenderingTest, aPictureForWhichThereIsNoMemorySaysSo) {
    // Turned on its side, it is held whole before it is on its canvas.
    const auto file = save(samples::jpeg(samples::patterned(8, 8), {.orientation = 6}));
    const std::string exec = "exec " + ProcessPictureRendering::installedProgram().string();
    ProcessPictureRendering bounded(pool, reader("ulimit -v 260000;" + exec));
    const auto on = [&](int side) {
        return bounded.render(file, [side](PixelSize) {
            return PictureComposition{{side, side}, {}, {0, 0, side, side}, false, {}};
        });
    };
    EXPECT_EQ(failureOf(on(6000)), Case::tooLarge);
    EXPECT_EQ(failureOf(on(100)), std::nullopt);
}
#endif

TEST_F(ProcessPictureRenderingTest, aReaderThatHangsHoldsUpNoOtherPicture) {
    const auto started = folder.path() / "started";
    ProcessPictureRendering two(pool,
                                reader(hears + std::string("[ -e ") + started.string() + " ] || { touch " +
                                       started.string() + "; " + stops + " }; " + done),
                                {.time = 60s, .requests = 2});
    TaskScope tasks(loop);
    const auto stuck = tasks.start(two.isPicture(picture));
    while (!std::filesystem::exists(started)) g_main_context_iteration(nullptr, FALSE);
    EXPECT_TRUE(awaited(two.isPicture(picture)));
    EXPECT_FALSE(stuck.isFinished());
}

}  // namespace
}  // namespace quillmar

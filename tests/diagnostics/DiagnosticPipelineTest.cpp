#include "diagnostics/DiagnosticPipeline.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <fstream>

#include "async/Sleep.h"
#include "async/ThreadPool.h"
#include "base/JsonRecord.h"
#include "fakes/FakeExecutors.h"
#include "fakes/LocalTimeZone.h"
#include "fakes/TemporaryFolder.h"
#include "fakes/VirtualLoop.h"

namespace quillmar {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// Notes what it is told, and takes its time over a report when the test wants that.
class FakeErrorReporting final : public ErrorReporting {
public:
    bool failsToPrepare = false;
    Duration timePerReport{};
    std::vector<std::string> calls;
    std::vector<std::optional<std::string>> tails;

    Task<void> prepare() override {
        calls.push_back("prepare");
        if (failsToPrepare) throw std::system_error(std::make_error_code(std::errc::permission_denied));
        co_return;
    }
    void startWorker() override { calls.push_back("start"); }
    Task<void> enqueue(DiagnosticEntry entry, std::optional<std::string> tail) override {
        if (timePerReport > Duration::zero()) co_await sleepFor(timePerReport);
        calls.push_back(entry.message);
        tails.push_back(std::move(tail));
    }
    void prepareForTermination() override { calls.push_back("terminate"); }
};

class DiagnosticPipelineTest : public testing::Test {
public:
    DiagnosticPipelineTest() { files.runsAtOnce = true; }

    DiagnosticEntry entry(const std::string& message, DiagnosticLevel level) const {
        DiagnosticEntry made;
        made.timestamp = clock.now();
        made.level = level;
        made.message = message;
        made.appVersion = "1.2.3";
        return made;
    }
    void logs(const std::string& message) {
        pipeline.record(entry(message, DiagnosticLevel::information), false);
        loop.settle();
    }
    void logsError(const std::string& message) {
        pipeline.record(entry(message, DiagnosticLevel::error), true);
    }
    /// Whether a flush ends without further ado.
    bool flushes() {
        flush = scope.start(pipeline.flush());
        loop.settle();
        return flush.isFinished();
    }
    std::vector<std::string> messages() const {
        std::vector<std::string> found;
        std::ifstream file(folder / "Quillmar-2026-05-04.log");
        for (std::string line; std::getline(file, line);)
            found.push_back(json::decode<DiagnosticEntry>(line).message);
        return found;
    }

    LocalTimeZone zone{"UTC"};
    TemporaryFolder support;
    std::filesystem::path folder = support.path() / "Logs";
    VirtualLoop loop;
    VirtualWallClock clock{loop};
    HeldExecutor files;
    FakeErrorReporting reporter;
    DiagnosticPipeline pipeline{loop, clock, files, reporter, folder};
    TaskHandle<void> flush;
    TaskScope scope{loop};
};

TEST_F(DiagnosticPipelineTest, theFirstEntryPreparesTheFileAndTheReporter) {
    EXPECT_FALSE(std::filesystem::exists(folder));
    logs("first");
    logs("second");
    pipeline.record(entry("debugging", DiagnosticLevel::debug), true);
    EXPECT_THAT(messages(), ElementsAre("first", "second"));
    EXPECT_THAT(reporter.calls, ElementsAre("prepare", "start"));
}

TEST_F(DiagnosticPipelineTest, onlyErrorsThatAskForItAreReportedWithTheLogUpToThem) {
    logs("before");
    pipeline.record(entry("a warning", DiagnosticLevel::warning), true);
    pipeline.record(entry("a quiet error", DiagnosticLevel::error), false);
    logsError("an error");
    logs("after");
    EXPECT_THAT(reporter.calls, ElementsAre("prepare", "start", "an error"));
    ASSERT_THAT(reporter.tails, SizeIs(1));
    EXPECT_THAT(reporter.tails[0].value(), testing::HasSubstr("\"before\""));
    EXPECT_THAT(reporter.tails[0].value(), testing::HasSubstr("\"an error\""));
    EXPECT_THAT(reporter.tails[0].value(), testing::Not(testing::HasSubstr("after")));
}

TEST_F(DiagnosticPipelineTest, aFolderThatCannotBeMadeEndsTheFileLogAndTheReports) {
    std::ofstream(folder) << "a file is in the way";
    logs("first");
    logsError("an error");
    loop.settle();
    std::filesystem::remove(folder);
    logs("second");
    EXPECT_FALSE(std::filesystem::exists(folder));
    EXPECT_TRUE(flushes());
    EXPECT_THAT(reporter.calls, ElementsAre("terminate"));
}

TEST_F(DiagnosticPipelineTest, aReporterThatCannotPrepareLeavesTheFileLogAtWork) {
    reporter.failsToPrepare = true;
    logsError("first");
    loop.settle();
    logsError("second");
    loop.settle();
    EXPECT_THAT(messages(), ElementsAre("first", "second"));
    EXPECT_THAT(reporter.calls, ElementsAre("prepare"));
}

TEST_F(DiagnosticPipelineTest, aFolderThatVanishesCostsLinesAndNothingElse) {
    logs("first");
    std::filesystem::remove_all(folder);
    logs("lost");
    clock.set(clock.now() + std::chrono::days(1));
    logs("lost too");
    clock.set(clock.now() - std::chrono::days(1));
    std::filesystem::create_directory(folder);
    logs("back");
    EXPECT_THAT(messages(), ElementsAre("back"));
}

TEST_F(DiagnosticPipelineTest, aFlushWritesAllThatWasRecordedBeforeAndALaterEntryOpensTheFileAgain) {
    files.runsAtOnce = false;
    reporter.timePerReport = std::chrono::seconds(2);
    logs("waiting");
    logsError("an error");
    EXPECT_FALSE(flushes());
    EXPECT_THAT(reporter.calls, ElementsAre("terminate"));
    files.runsAtOnce = true;
    files.releaseAll();
    loop.advance(std::chrono::seconds(1));
    EXPECT_THAT(messages(), ElementsAre("waiting", "an error"));
    EXPECT_THAT(reporter.calls, ElementsAre("terminate", "prepare", "start"));
    EXPECT_FALSE(flush.isFinished());
    loop.advance(std::chrono::seconds(1));
    EXPECT_THAT(reporter.calls, ElementsAre("terminate", "prepare", "start", "an error"));
    EXPECT_TRUE(flush.isFinished());

    std::filesystem::rename(folder / "Quillmar-2026-05-04.log", folder / "closed");
    logs("late");
    EXPECT_THAT(messages(), ElementsAre("late"));
    EXPECT_TRUE(flushes());
}

TEST_F(DiagnosticPipelineTest, aBurstBeyondTheBoundLosesItsLastEntriesAndALineSaysHowMany) {
    files.runsAtOnce = false;
    for (int i = 0; i < 10123; ++i)
        pipeline.record(entry(std::to_string(i), DiagnosticLevel::information), false);
    EXPECT_EQ(files.heldCount(), 1u);
    files.releaseAll();
    logs("later");
    files.releaseAll();
    const auto written = messages();
    ASSERT_THAT(written, SizeIs(10002));
    EXPECT_EQ(written[9999], "9999");
    EXPECT_EQ(written[10000], "123 log entries were dropped.");
    EXPECT_EQ(written[10001], "later");
    EXPECT_EQ(pipeline.peakQueueLength(), 10000u);
}

TEST_F(DiagnosticPipelineTest, ofAStormOfErrorsTheNewestFiftyDifferentOnesAreReported) {
    files.runsAtOnce = false;
    for (int i = 0; i < 2000; ++i) logsError(fmt::format("error {}", i / 10));
    files.releaseAll();
    loop.settle();
    ASSERT_THAT(reporter.calls, SizeIs(52));
    EXPECT_EQ(reporter.calls[2], "error 150");
    EXPECT_EQ(reporter.calls.back(), "error 199");

    reporter.timePerReport = std::chrono::hours(1);
    for (int i = 0; i < 70; ++i) {
        logsError(fmt::format("slow {}", i));
        files.releaseAll();
        loop.settle();
    }
    loop.advance(std::chrono::hours(24 * 7));
    EXPECT_THAT(reporter.calls, SizeIs(52 + 51));  // the first was on its way already
    EXPECT_EQ(reporter.calls[52], "slow 0");
    EXPECT_EQ(reporter.calls[53], "slow 20");
}

TEST_F(DiagnosticPipelineTest, entriesOfManyThreadsArriveWholeAndEachThreadsInItsOrder) {
    ThreadPool pool(2);
    SerialExecutor real(pool);
    DiagnosticPipeline threaded(loop, clock, real, reporter, folder);
    {
        std::vector<std::jthread> threads;
        for (int t = 0; t < 4; ++t) {
            threads.emplace_back([this, t, &threaded] {
                for (int i = 0; i < 500; ++i) {
                    threaded.record(entry(fmt::format("{} {:03}", t, i), DiagnosticLevel::information),
                                    false);
                }
            });
        }
    }
    scope.spawn(threaded.flush());
    ASSERT_TRUE(loop.settleUntil([&] { return scope.runningCount() == 0; }));
    const std::vector<std::string> found = messages();
    EXPECT_THAT(found, SizeIs(2000));
    std::map<char, std::string> last;
    for (const std::string& message : found) {
        EXPECT_LT(last[message[0]], message);
        last[message[0]] = message;
    }
}

}  // namespace
}  // namespace quillmar

#include "diagnostics/HTTPErrorReporter.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <fstream>

#include "base/Files.h"
#include "fakes/FakeExecutors.h"
#include "fakes/FakeHTTPSession.h"
#include "fakes/TemporaryFolder.h"
#include "fakes/VirtualLoop.h"

namespace quillmar {
namespace {

using std::chrono::hours;
using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;

class HTTPErrorReporterTest : public testing::Test {
public:
    static DiagnosticEntry error(const std::string& message) {
        DiagnosticEntry entry;
        entry.timestamp = *parseISO8601("2026-05-04T09:30:00.25Z");
        entry.level = DiagnosticLevel::error;
        entry.category = "cache";
        entry.message = message;
        entry.appVersion = "1.2.3";
        entry.operatingSystemVersion = "Debian 12";
        return entry;
    }
    void reports(DiagnosticEntry entry, std::optional<std::string> tail = std::nullopt) {
        scope.spawn(reporter.enqueue(std::move(entry), std::move(tail)));
        loop.settle();
    }
    void reports(const std::string& message) { reports(error(message)); }
    void startsWithQueued(std::vector<std::string> messages) {
        scope.spawn(reporter.prepare());
        loop.settle();
        int time = 0;
        for (const std::string& message : messages) waits(fmt::format("{:013}-x.json", ++time), message);
        reporter.startWorker();
        loop.settle();
    }
    void waits(const std::string& name, const std::string& content) const {
        std::filesystem::create_directories(queue);
        std::ofstream(queue / name) << content;
    }
    std::vector<std::string> waiting() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(queue))
            names.push_back(entry.path().filename());
        std::ranges::sort(names);
        return names;
    }
    std::vector<std::string> sentBodies() const {
        std::vector<std::string> bodies;
        for (const HTTPRequest& request : server.requests)
            bodies.emplace_back(request.body.begin(), request.body.end());
        return bodies;
    }

    TemporaryFolder folder;
    std::filesystem::path queue = folder.path() / "ErrorQueue";
    VirtualLoop loop;
    VirtualWallClock clock{loop};
    InlineExecutor files;
    FakeHTTPSession server{loop};
    Scrubber scrubber;
    HTTPErrorReporter reporter{
        loop, clock, files, server, scrubber, queue, Url::parse("https://reports.example/api/crashreport")};
    TaskScope scope{loop};
};

TEST_F(HTTPErrorReporterTest, aReportIsOneEventWithTheEntryAndTheEndOfTheLogScrubbedOnceMore) {
    DiagnosticEntry entry = error("It failed.");
    entry.errorDescription = "cause";
    entry.metadata = {{"Category", "replaced"}, {"display", "a"}};
    reports(entry, "cut /tmp/x" + std::string(65535, 'b'));
    ASSERT_THAT(server.requests, SizeIs(1));
    const HTTPRequest& request = server.requests[0];
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.url.string(), "https://reports.example/api/crashreport");
    EXPECT_THAT(request.headers, ElementsAre(std::pair("Content-Type", "application/json"),
                                             std::pair("User-Agent", "Quillmar/Linux")));
    EXPECT_EQ(request.requestTimeout, seconds(15));
    EXPECT_EQ(request.resourceTimeout, seconds(30));
    EXPECT_EQ(sentBodies()[0],
              R"([{"Exception":"cause","Level":"Error","MessageTemplate":"It failed.","Properties":{)"
              R"("AppVersion":"1.2.3","Category":"cache","LogTail":"x)" +
                  std::string(65535, 'b') +
                  R"(","OperatingSystemVersion":"Debian 12","Platform":"Linux","display":"a"},)"
                  R"("RenderedMessage":"It failed.","Timestamp":"2026-05-04T09:30:00.250Z"}])");
    EXPECT_THAT(waiting(), IsEmpty());

    reports(error("Again."), "see /tmp/x");
    EXPECT_THAT(sentBodies()[1], testing::HasSubstr("\"LogTail\":\"see [path]\""));
    EXPECT_THAT(sentBodies()[1], testing::HasSubstr("\"Exception\":null"));
    reports("Without a tail.");
    EXPECT_THAT(sentBodies()[2], testing::Not(testing::HasSubstr("LogTail")));
}

TEST_F(HTTPErrorReporterTest, aWaitingReportIsAFileForItsOwnerAloneNamedByItsTime) {
    server.answers({503});
    clock.set(wallTimeSince1970(1'234'567.890));
    reports("first");
    reports("second");
    ASSERT_THAT(waiting(), ElementsAre(MatchesRegex("0001234567890-[0-9A-F-]{36}\\.json"),
                                       MatchesRegex("0001234567891-[0-9A-F-]{36}\\.json")));
    struct stat status{};
    ::stat((queue / waiting()[0]).c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777u, 0600u);
    ::stat(queue.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777u, 0700u);
    clock.set(wallTimeSince1970(1000));
    reports("the clock was set back");
    EXPECT_THAT(waiting()[0], testing::StartsWith("0000001000000-"));
}

TEST_F(HTTPErrorReporterTest, equalErrorsWithinAMinuteMakeOneReport) {
    DiagnosticEntry entry = error("It failed.");
    entry.metadata = {{"status", "500"}};
    reports(entry);
    loop.advance(seconds(59));
    reports(entry);
    EXPECT_THAT(server.requests, SizeIs(1));
    loop.advance(seconds(1));
    reports(entry);
    EXPECT_THAT(server.requests, SizeIs(2));
    const std::vector<std::function<void(DiagnosticEntry&)>> differences{
        [](DiagnosticEntry& other) { other.metadata["status"] = "501"; },
        [](DiagnosticEntry& other) { other.metadata = {{"status2", "500"}}; },
        [](DiagnosticEntry& other) { other.errorDescription = "cause"; },
        [](DiagnosticEntry& other) { other.category = "display"; },
        [](DiagnosticEntry& other) { other.message = "It failed!"; },
    };
    for (const auto& differ : differences) {
        DiagnosticEntry other = entry;
        differ(other);
        reports(other);
    }
    EXPECT_THAT(server.requests, SizeIs(7));
}

TEST_F(HTTPErrorReporterTest, aRefusedDuplicateStillStartsWhatWaits) {
    server.answers({500});
    startsWithQueued({});
    reports("It failed.");
    waits("0000000000001-x.json", "older");
    server.answers({200});
    loop.advance(seconds(30));
    EXPECT_THAT(waiting(), IsEmpty());
    waits("0000000000002-x.json", "placed by another launch");
    reports("It failed.");
    EXPECT_THAT(waiting(), IsEmpty());
}

TEST_F(HTTPErrorReporterTest, aReportThatIsTooLargeIsNeverSent) {
    DiagnosticEntry entry = error("large");
    entry.metadata["text"] = std::string(131072, 'x');
    reports(entry);
    EXPECT_THAT(waiting(), IsEmpty());
    startsWithQueued({std::string(131073, 'x'), std::string(131072, 'y')});
    EXPECT_THAT(sentBodies(), ElementsAre(std::string(131072, 'y')));
    EXPECT_THAT(waiting(), IsEmpty());
}

TEST_F(HTTPErrorReporterTest, fiftyReportsAndFiveMebibytesAreKeptAndTheNewestWin) {
    const auto prepared = [&](int count, std::size_t size) {
        std::filesystem::remove_all(queue);
        for (int i = 1; i <= count; ++i) waits(fmt::format("{:013}-x.json", i), std::string(size, 'x'));
        waits(".0-hidden.json", "");
        waits("0-other.txt", "");
        scope.spawn(reporter.prepare());
        loop.settle();
        std::vector<std::string> names = waiting();
        std::erase_if(names, [](const std::string& name) { return !name.ends_with("-x.json"); });
        EXPECT_EQ(waiting().size(), names.size() + 2);
        return fmt::format("{} from {}", names.size(), names.empty() ? 0 : std::stoi(names[0]));
    };
    EXPECT_EQ(prepared(50, 1), "50 from 1");
    EXPECT_EQ(prepared(51, 1), "50 from 2");
    EXPECT_EQ(prepared(40, 131072), "40 from 1");
    EXPECT_EQ(prepared(41, 131072), "40 from 2");
    EXPECT_EQ(prepared(1, 5242881), "0 from 0");
}

TEST_F(HTTPErrorReporterTest, theServersAnswerDecidesWhetherAReportGoesOrStays) {
    const std::vector<std::pair<int, bool>> goes{{200, true},  {204, true},  {299, true},  {400, true},
                                                 {404, true},  {410, true},  {499, true},  {408, false},
                                                 {429, false}, {301, false}, {304, false}, {500, false},
                                                 {503, false}, {599, false}, {100, false}, {600, false}};
    for (const auto& [status, isGone] : goes) {
        FakeHTTPSession answering(loop);
        answering.answers({status});
        HTTPErrorReporter own(loop, clock, files, answering, scrubber, queue,
                              Url::parse("https://reports.example/"));
        waits("1.json", "x");
        own.startWorker();
        loop.settle();
        EXPECT_EQ(waiting().empty(), isGone) << status;
        EXPECT_EQ(answering.requests.size(), 1u) << status;
    }
}

TEST_F(HTTPErrorReporterTest, threeReportsLeaveEveryHalfMinuteTheOldestFirst) {
    server.answers({200, 404, 200});
    startsWithQueued({"1", "2", "3", "4", "5", "6", "7"});
    loop.advance(hours(1));
    EXPECT_THAT(sentBodies(), ElementsAre("1", "2", "3", "4", "5", "6", "7"));
    EXPECT_THAT(server.secondsOfRequests, ElementsAre(0, 0, 0, 30, 30, 30, 60));
    EXPECT_EQ(loop.pendingCount(), 0u);  // an empty queue costs nothing
}

TEST_F(HTTPErrorReporterTest, aFailureEndsTheBatchAndThePausesDoubleUpToHalfAnHour) {
    server.answers({200, 500});
    startsWithQueued({"1", "2", "3"});
    EXPECT_THAT(waiting(), SizeIs(2));
    loop.advance(seconds(3690 + 1800 + 1800));
    EXPECT_THAT(server.secondsOfRequests, ElementsAre(0, 0, 30, 90, 210, 450, 930, 1890, 3690, 5490, 7290));
    loop.advance(hours(24 * 30));
    EXPECT_EQ(server.secondsOfRequests.back() % 1800, 7290 % 1800);
}

TEST_F(HTTPErrorReporterTest, aBatchThatSucceedsEndsTheBackOff) {
    server.answers({500, 500, 200, 200, 200, 500, 200});
    startsWithQueued({"1", "2", "3", "4"});
    loop.advance(hours(1));
    EXPECT_THAT(sentBodies(), ElementsAre("1", "1", "1", "2", "3", "4", "4"));
    EXPECT_THAT(server.secondsOfRequests, ElementsAre(0, 30, 90, 90, 90, 120, 150));
}

TEST_F(HTTPErrorReporterTest, terminationEndsTheSendUnderWayAndKeepsLaterReportsForTheNextLaunch) {
    server.neverAnswers();
    reports("first");
    loop.advance(seconds(5));
    reporter.prepareForTermination();
    loop.settle();
    EXPECT_EQ(server.cancelledCount, 1);
    EXPECT_TRUE(server.isInvalidated);
    reports("second");
    reporter.startWorker();
    loop.advance(hours(1));
    EXPECT_THAT(server.requests, SizeIs(1));
    EXPECT_THAT(waiting(), SizeIs(2));
}

TEST_F(HTTPErrorReporterTest, withoutAnEndpointReportsWaitAndNothingIsSent) {
    HTTPErrorReporter own(loop, clock, files, server, scrubber, queue, std::nullopt);
    scope.spawn(own.enqueue(error("It failed."), std::nullopt));
    loop.advance(hours(1));
    EXPECT_THAT(server.requests, IsEmpty());
    EXPECT_THAT(waiting(), SizeIs(1));
}

TEST_F(HTTPErrorReporterTest, aFolderThatVanishesOrCannotBeMadeCostsItsReportsOnly) {
    server.answers({500});
    reports("first");
    std::filesystem::remove_all(queue);
    loop.advance(seconds(30));
    reports("second");
    EXPECT_THAT(waiting(), SizeIs(1));
    std::filesystem::remove_all(queue);
    std::ofstream(queue) << "a file is in the way";
    reports("third");
    loop.advance(hours(1));
    std::filesystem::remove(queue);
    server.answers({200});
    reports("fourth");
    EXPECT_THAT(sentBodies().back(), testing::HasSubstr("fourth"));
}

}  // namespace
}  // namespace quillmar

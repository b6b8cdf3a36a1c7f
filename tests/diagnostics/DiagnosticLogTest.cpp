#include "diagnostics/DiagnosticLog.h"

#include <gmock/gmock.h>

#include <mutex>
#include <random>
#include <thread>

#include "diagnostics/OperatingSystemVersion.h"
#include "fakes/VirtualLoop.h"

namespace quillmar {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class DiagnosticLogTest : public testing::Test, public SystemLog, public DiagnosticRecording {
public:
    void write(SystemLogLevel level, std::string_view line) noexcept override {
        const std::lock_guard lock(mutex);
        constexpr std::array names{"info ", "default ", "error "};
        systemLines.push_back(names[static_cast<std::size_t>(level)] + std::string(line));
    }
    void record(DiagnosticEntry entry, bool report) override {
        const std::lock_guard lock(mutex);
        if (failsToRecord) throw std::bad_alloc();
        entries.push_back(std::move(entry));
        reports.push_back(report);
    }
    template <class Error>
    static std::exception_ptr failure(Error error) {
        return std::make_exception_ptr(std::move(error));
    }

    std::mutex mutex;
    std::vector<std::string> systemLines;
    std::vector<DiagnosticEntry> entries;
    std::vector<bool> reports;
    bool failsToRecord = false;

    VirtualLoop loop;
    VirtualWallClock clock{loop};
    Scrubber scrubber;
    DiagnosticLog log{scrubber, clock, *this, *this, {"1.2.3", "Debian 12"}};
};

TEST_F(DiagnosticLogTest, everyCallReachesTheSystemLogAndTheFileScrubbedAndOnlyErrorsAreReported) {
    const LogInstallation installation(log);
    logInfo("Started from /home/ana.", "lifecycle", {{"password", "x"}});
    logWarning("No answer.", "cache /tmp/x",
               failure(std::runtime_error("GET https://a.example/?token=1 failed")));
    logError("No token: abc", "display", failure(std::runtime_error("by ana@example.org")),
             {{"user", "ana@example.org"}});
    logWarning("No reason.", "display");
    EXPECT_THAT(systemLines, ElementsAre("info [lifecycle] Started from [path]",
                                         "default [cache [path]] No answer. — GET [url] failed",
                                         "error [display] No token=[redacted] — by [email]",
                                         "default [display] No reason."));
    EXPECT_THAT(reports, ElementsAre(false, false, true, false));
    const DiagnosticEntry expected{.timestamp = clock.now(),
                                   .level = DiagnosticLevel::error,
                                   .category = "display",
                                   .message = "No token=[redacted]",
                                   .errorDescription = "by [email]",
                                   .metadata = {{"user", "[email]"}},
                                   .appVersion = "1.2.3",
                                   .operatingSystemVersion = "Debian 12"};
    EXPECT_EQ(entries[2], expected);
    EXPECT_EQ(entries[0].metadata.at("password"), "[redacted]");
    EXPECT_EQ(entries[3].errorDescription, std::nullopt);
}

TEST_F(DiagnosticLogTest, callsBeforeAndAfterTheInstallationDoNothing) {
    logError("before", "lifecycle");
    {
        const LogInstallation installation(log);
    }
    logError("after", "lifecycle");
    EXPECT_THAT(systemLines, IsEmpty());
}

TEST_F(DiagnosticLogTest, aCallNeverFails) {
    const LogInstallation installation(log);
    failsToRecord = true;
    logInfo("lost", "lifecycle");
    failsToRecord = false;
    std::minstd_rand random(1);
    for (int i = 0; i < 2000; ++i) {
        std::string bytes(random() % 64, '\0');
        for (char& byte : bytes)
            byte = random() % 4 == 0 ? "/@:="[random() % 4] : static_cast<char>(random());
        logError(bytes, bytes, failure(std::runtime_error(bytes)), {{bytes, bytes}});
    }
    logError("odd", "lifecycle", failure(42));
    EXPECT_THAT(entries, SizeIs(2001));
    EXPECT_EQ(entries.back().errorDescription, "unknown error");
}

TEST_F(DiagnosticLogTest, anErrorTellsItsCauses) {
    std::exception_ptr error;
    try {
        try {
            throw std::runtime_error("the disk is full");
        } catch (...) {
            std::throw_with_nested(std::runtime_error("not saved"));
        }
    } catch (...) {
        error = std::current_exception();
    }
    EXPECT_EQ(debugDescription(error), "not saved: the disk is full");
}

TEST_F(DiagnosticLogTest, theEndOfTheInstallationWaitsForCallsOfOtherThreads) {
    std::atomic<bool> isStopping = false;
    std::vector<std::jthread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([&] {
            while (!isStopping) logInfo("from a thread", "lifecycle");
        });
    }
    for (int round = 0; round < 20; ++round) {
        // A log that is gone when a call is still in it is what the sanitizers would see.
        const auto own =
            std::make_unique<DiagnosticLog>(scrubber, clock, *this, *this, DiagnosticIdentity{"1", "2"});
        const LogInstallation installation(*own);
        std::this_thread::yield();
    }
    const std::size_t count = [&] {
        const std::lock_guard lock(mutex);
        return entries.size();
    }();
    std::this_thread::yield();
    isStopping = true;
    threads.clear();
    EXPECT_EQ(entries.size(), count);
}

TEST(OperatingSystemVersionTest, theDistributionIsNamedAsItNamesItself) {
    const auto text = [](std::string_view release) { return operatingSystemVersionText(release, "6.1.0"); };
    EXPECT_EQ(text("ID=debian\nPRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\n"),
              "Debian GNU/Linux 12 (bookworm), Linux 6.1.0");
    EXPECT_EQ(text("#PRETTY_NAME=no\nPRETTY_NAME=Plain"), "Plain, Linux 6.1.0");
    EXPECT_EQ(text("PRETTY_NAME='A \\$mall OS'\r\n"), "A $mall OS, Linux 6.1.0");
    EXPECT_EQ(text("ID=none"), "Linux 6.1.0");
    EXPECT_THAT(operatingSystemVersionText(), testing::HasSubstr("Linux "));
}

}  // namespace
}  // namespace quillmar

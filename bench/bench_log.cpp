// What a log call costs its caller, and how a burst meets the queue's bound.
#include <fmt/format.h>

#include <vector>

#include "async/ThreadPool.h"
#include "diagnostics/DiagnosticLog.h"
#include "diagnostics/DiagnosticPipeline.h"
#include "fakes/TemporaryFolder.h"
#include "fakes/VirtualLoop.h"

namespace quillmar {
namespace {

class SilentSystemLog final : public SystemLog {
public:
    void write(SystemLogLevel, std::string_view) noexcept override {}
};

class NoErrorReporting final : public ErrorReporting {
public:
    Task<void> prepare() override { co_return; }
    void startWorker() override {}
    Task<void> enqueue(DiagnosticEntry, std::optional<std::string>) override { co_return; }
    void prepareForTermination() override {}
};

class Stopwatch {
public:
    double microseconds() const {
        return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - began_).count();
    }

private:
    std::chrono::steady_clock::time_point began_ = std::chrono::steady_clock::now();
};

/// A pipeline on real threads and a real folder.
struct Log {
    TemporaryFolder folder;
    VirtualLoop loop;
    VirtualWallClock clock{loop};
    Scrubber scrubber{std::vector<std::string>{"/home/ana", "/home/ana/.local/share"}};
    SilentSystemLog systemLog;
    NoErrorReporting reporter;
    ThreadPool pool{2};
    SerialExecutor files{pool};
    DiagnosticPipeline pipeline{loop, clock, files, reporter, folder.path() / "Logs"};
    DiagnosticLog log{scrubber, clock, systemLog, pipeline, {"1.2.3", "Debian GNU/Linux 12"}};
    LogInstallation installation{log};
    TaskScope scope{loop};

    void flush() {
        scope.spawn(pipeline.flush());
        loop.settleUntil([this] { return scope.runningCount() == 0; });
    }
    std::uintmax_t fileBytes() const {
        std::uintmax_t bytes = 0;
        for (const auto& file : std::filesystem::directory_iterator(folder.path() / "Logs"))
            bytes += file.file_size();
        return bytes;
    }
};

constexpr std::string_view message = "The wallpaper was applied.";
const LogMetadata metadata{
    {"display_id", "display:1b2c"}, {"mode", "image"}, {"path", "/home/ana/Pictures/a.png"}};

/// Calls with room in the queue: bursts that stay below its bound, with the disk catching up between them.
void measureCall() {
    Log log;
    constexpr int rounds = 20;
    constexpr int calls = 5000;
    double total = 0;
    for (int round = 0; round < rounds; ++round) {
        const Stopwatch watch;
        for (int i = 0; i < calls; ++i) logInfo(message, "wallpaper", metadata);
        total += watch.microseconds();
        log.flush();
    }
    const Stopwatch watch;
    std::size_t length = 0;
    for (int i = 0; i < calls; ++i) {
        length += log.scrubber.text(message).size() + log.scrubber.text("wallpaper").size();
        length += log.scrubber.metadata(metadata).size();
    }
    const double scrubbing = watch.microseconds() / calls;
    const double call = total / (rounds * calls);
    fmt::print("a call: {:.2f} us, of it scrubbing {:.2f} us, beyond it {:.2f} us (checksum {})\n", call,
               scrubbing, call - scrubbing, length % 1000);
}

void measureBurst() {
    Log log;
    constexpr int calls = 100000;
    const Stopwatch watch;
    double longest = 0;
    for (int i = 0; i < calls; ++i) {
        const Stopwatch call;
        logInfo(message, "wallpaper", metadata);
        longest = std::max(longest, call.microseconds());
    }
    const double burst = watch.microseconds();
    log.flush();
    fmt::print(
        "a burst of {} lines: {:.2f} us a call, the longest {:.0f} us; peak queue {} of {}; on disk after "
        "{:.0f} ms, {} KB\n",
        calls, burst / calls, longest, log.pipeline.peakQueueLength(), DiagnosticPipeline::queueLimit,
        watch.microseconds() / 1000, log.fileBytes() / 1024);
}

}  // namespace
}  // namespace quillmar

int main() {
    quillmar::measureCall();
    quillmar::measureBurst();
}

#include "diagnostics/DiagnosticPipeline.h"

#include <fmt/format.h>

#include <algorithm>
#include <deque>
#include <mutex>
#include <set>
#include <utility>

#include "diagnostics/DailyLogFileSink.h"
#include "diagnostics/ErrorReport.h"

namespace quillmar {
namespace {

constexpr std::size_t tailLimitBytes = 65536;
/// As many as the reporter's folder holds: of more, only the newest would stay there.
constexpr std::size_t waitingReportLimit = 50;

}  // namespace

/// What the callers' threads, the file thread and the main thread share; the background jobs keep it alive.
class DiagnosticPipeline::Core : public std::enable_shared_from_this<Core> {
public:
    struct Item {
        DiagnosticEntry entry;
        bool report;
    };
    struct Report {
        DiagnosticEntry entry;
        std::optional<std::string> tail;
        std::string fingerprint;
    };

    Core(MainLoop& loop, Executor& files, std::filesystem::path logsFolder, const WallClock& clock)
        : loop_(loop), files_(files), sink_(std::move(logsFolder), clock) {}

    void add(Item item);
    /// File thread: writes what waits at this moment.
    void writeWaiting();
    /// File thread.
    void closeFile();
    /// Main thread, nothing when there is none.
    std::optional<Report> takeReport();
    bool hasSink() const {
        const std::lock_guard lock(mutex_);
        return hasSink_;
    }
    std::size_t peakLength() const {
        const std::lock_guard lock(mutex_);
        return peakLength_;
    }
    /// Main thread: `handler` is called there when a report waits, or reports have become possible.
    void setReportHandler(std::shared_ptr<std::function<void()>> handler) {
        reportHandler_ = std::move(handler);
    }

private:
    void scheduleWriting();
    void prepare();
    void write(Item item, bool withReport);
    void writeDroppedLine(const DiagnosticEntry& firstDropped, std::size_t count);
    void append(const DiagnosticEntry& entry);
    void keepReport(DiagnosticEntry entry);
    void wakeHandler();
    static std::vector<bool> reportsWorthKeeping(const std::deque<Item>& items);

    MainLoop& loop_;
    Executor& files_;
    std::weak_ptr<std::function<void()>> reportHandler_;

    mutable std::mutex mutex_;
    std::deque<Item> waiting_;         ///< guarded
    std::size_t beingWritten_ = 0;     ///< guarded; counts towards the limit
    std::size_t peakLength_ = 0;       ///< guarded
    std::size_t droppedCount_ = 0;     ///< guarded
    DiagnosticEntry firstDropped_;     ///< guarded; without texts
    bool isWritingScheduled_ = false;  ///< guarded
    std::deque<Report> reports_;       ///< guarded
    bool hasSink_ = false;             ///< guarded

    bool didPrepare_ = false;  ///< file thread
    DailyLogFileSink sink_;    ///< file thread
};

void DiagnosticPipeline::Core::add(Item item) {
    {
        const std::lock_guard lock(mutex_);
        const std::size_t length = waiting_.size() + beingWritten_;
        if (length >= queueLimit) {
            if (droppedCount_++ == 0) {
                firstDropped_.timestamp = item.entry.timestamp;
                firstDropped_.appVersion = std::move(item.entry.appVersion);
                firstDropped_.operatingSystemVersion = std::move(item.entry.operatingSystemVersion);
            }
            return;
        }
        peakLength_ = std::max(peakLength_, length + 1);
        waiting_.push_back(std::move(item));
        if (std::exchange(isWritingScheduled_, true)) return;
    }
    scheduleWriting();
}

void DiagnosticPipeline::Core::scheduleWriting() {
    files_.submit([core = shared_from_this()] {
        core->writeWaiting();
        {
            const std::lock_guard lock(core->mutex_);
            core->isWritingScheduled_ = !core->waiting_.empty();
            if (!core->isWritingScheduled_) return;
        }
        // Not in a loop here: a flood of entries must not keep a flush from its turn.
        core->scheduleWriting();
    });
}

void DiagnosticPipeline::Core::writeWaiting() {
    std::deque<Item> items;
    {
        const std::lock_guard lock(mutex_);
        items.swap(waiting_);
        beingWritten_ = items.size();
    }
    prepare();
    const std::vector<bool> withReport = reportsWorthKeeping(items);
    for (std::size_t i = 0; i < withReport.size(); ++i) {
        write(std::move(items.front()), withReport[i]);
        items.pop_front();
        const std::lock_guard lock(mutex_);
        --beingWritten_;
    }
    std::size_t droppedCount = 0;
    DiagnosticEntry firstDropped;
    {
        const std::lock_guard lock(mutex_);
        droppedCount = std::exchange(droppedCount_, 0);
        if (droppedCount > 0) firstDropped = std::exchange(firstDropped_, {});
    }
    if (droppedCount > 0) writeDroppedLine(firstDropped, droppedCount);
}

/// Reading the log's tail costs a wait for the disk, so a storm of errors reads it only for those reports
/// that would stay: the newest, and of equal ones the first.
std::vector<bool> DiagnosticPipeline::Core::reportsWorthKeeping(const std::deque<Item>& items) {
    std::vector<bool> worth(items.size(), false);
    std::set<std::string> seen;
    std::deque<std::size_t> chosen;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const Item& item = items[i];
        if (!item.report || item.entry.level != DiagnosticLevel::error) continue;
        if (!seen.insert(errorReportFingerprint(item.entry)).second) continue;
        chosen.push_back(i);
        if (chosen.size() > waitingReportLimit) chosen.pop_front();
    }
    for (const std::size_t index : chosen) worth[index] = true;
    return worth;
}

void DiagnosticPipeline::Core::prepare() {
    if (std::exchange(didPrepare_, true)) return;
    try {
        sink_.prepare();
    } catch (const std::system_error&) {
        return;  // no file and no reports from here on; the system log still has every line
    }
    {
        const std::lock_guard lock(mutex_);
        hasSink_ = true;
    }
    wakeHandler();
}

void DiagnosticPipeline::Core::write(Item item, bool withReport) {
    if (item.entry.level == DiagnosticLevel::debug) return;
    append(item.entry);
    if (withReport && hasSink()) keepReport(std::move(item.entry));
}

void DiagnosticPipeline::Core::append(const DiagnosticEntry& entry) {
    if (!hasSink()) return;
    try {
        sink_.append(entry);
    } catch (const std::exception&) {
        // A full disk or a removed folder costs the line, which the system log has.
    }
}

void DiagnosticPipeline::Core::writeDroppedLine(const DiagnosticEntry& firstDropped, std::size_t count) {
    DiagnosticEntry entry = firstDropped;
    entry.level = DiagnosticLevel::warning;
    entry.category = "diagnostics";
    entry.message = fmt::format("{} log entries were dropped.", count);
    append(entry);
}

void DiagnosticPipeline::Core::keepReport(DiagnosticEntry entry) {
    std::optional<std::string> tail;
    try {
        tail = sink_.tail(tailLimitBytes);
    } catch (const std::exception&) {
        // The report goes without it.
    }
    std::string fingerprint = errorReportFingerprint(entry);
    {
        const std::lock_guard lock(mutex_);
        if (std::ranges::find(reports_, fingerprint, &Report::fingerprint) != reports_.end()) return;
        reports_.push_back({std::move(entry), std::move(tail), std::move(fingerprint)});
        if (reports_.size() > waitingReportLimit) reports_.pop_front();
    }
    wakeHandler();
}

void DiagnosticPipeline::Core::wakeHandler() {
    loop_.post([handler = reportHandler_] {
        if (const auto present = handler.lock()) (*present)();
    });
}

void DiagnosticPipeline::Core::closeFile() {
    try {
        sink_.close();
    } catch (const std::system_error&) {
        // What the disk did not take is lost, at quit as before.
    }
}

std::optional<DiagnosticPipeline::Core::Report> DiagnosticPipeline::Core::takeReport() {
    const std::lock_guard lock(mutex_);
    if (reports_.empty()) return std::nullopt;
    Report report = std::move(reports_.front());
    reports_.pop_front();
    return report;
}

DiagnosticPipeline::DiagnosticPipeline(MainLoop& loop, const WallClock& clock, Executor& files,
                                       ErrorReporting& reporter, std::filesystem::path logsFolder)
    : files_(files),
      reporter_(reporter),
      core_(std::make_shared<Core>(loop, files, std::move(logsFolder), clock)),
      reportHandler_(std::make_shared<std::function<void()>>([this] { startHanding(); })),
      scope_(loop) {
    core_->setReportHandler(reportHandler_);
}

DiagnosticPipeline::~DiagnosticPipeline() = default;

void DiagnosticPipeline::record(DiagnosticEntry entry, bool report) {
    core_->add({std::move(entry), report});
}

std::size_t DiagnosticPipeline::peakQueueLength() const { return core_->peakLength(); }

void DiagnosticPipeline::startHanding() {
    if (handing_ && !handing_.isFinished()) return;
    handing_ = scope_.start(handReports());
}

/// Gives the waiting reports to the reporter, one after the other: its file work is awaited, so that what
/// waits is bounded here.
Task<void> DiagnosticPipeline::handReports() {
    if (!std::exchange(didPrepareReporter_, true)) {
        try {
            co_await reporter_.prepare();
            hasReporter_ = true;
            reporter_.startWorker();
        } catch (const std::system_error&) {
            // The file log works, and no reports are made.
        }
    }
    while (std::optional<Core::Report> report = core_->takeReport()) {
        if (hasReporter_) co_await reporter_.enqueue(std::move(report->entry), std::move(report->tail));
    }
}

Task<void> DiagnosticPipeline::flush() {
    reporter_.prepareForTermination();
    co_await files_.run([core = core_] { core->writeWaiting(); });
    if (core_->hasSink()) {
        startHanding();
        co_await handing_.ended();
    }
    co_await files_.run([core = core_] { core->closeFile(); });
}

}  // namespace quillmar

#pragma once
#include <filesystem>
#include <optional>

#include "async/Executor.h"
#include "async/TaskScope.h"
#include "async/WallClock.h"
#include "base/Url.h"
#include "diagnostics/DuplicateFilter.h"
#include "diagnostics/ErrorReportQueue.h"
#include "diagnostics/ErrorReporting.h"
#include "diagnostics/Scrubber.h"
#include "platform/HTTPSession.h"

namespace quillmar {

/// Delivers error reports to the maker's server from a bounded folder: three at a time, a pause of half a
/// minute, and longer ones while the server fails. No failure of it is shown or logged: a log line about a
/// report would ask for the next report.
class HTTPErrorReporter final : public ErrorReporting {
public:
    /// `files` runs one job at a time; the session serves this reporter alone. All outlive the reporter,
    /// `scrubber` also the jobs of `files`. Without an endpoint reports are kept within their bounds and
    /// nothing is sent.
    HTTPErrorReporter(MainLoop& loop, const WallClock& clock, Executor& files, HTTPSession& session,
                      const Scrubber& scrubber, std::filesystem::path queueFolder,
                      std::optional<Url> endpoint);

    Task<void> prepare() override;
    void startWorker() override;
    Task<void> enqueue(DiagnosticEntry entry, std::optional<std::string> tail) override;
    void prepareForTermination() override;

private:
    enum class BatchOutcome { idle, moreWaiting, failed };
    Task<void> work();
    Task<void> drain();
    Task<BatchOutcome> sendBatch();
    Task<bool> isSettled(std::string name);
    Duration pauseAfter(BatchOutcome outcome);
    HTTPRequest request(const std::string& payload) const;
    std::string newFileName();

    MainLoop& loop_;
    const WallClock& clock_;
    Executor& files_;
    HTTPSession& session_;
    const Scrubber& scrubber_;
    ErrorReportQueue queue_;
    std::optional<Url> endpoint_;
    DuplicateFilter duplicates_;
    std::int64_t lastFileTime_ = 0;
    int consecutiveFailures_ = 0;
    bool isPreparingForTermination_ = false;
    TaskHandle<void> worker_;  ///< empty when none runs
    TaskScope scope_;
};

}  // namespace quillmar

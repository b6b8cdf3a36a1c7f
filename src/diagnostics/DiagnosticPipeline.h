#pragma once
#include <filesystem>
#include <functional>
#include <memory>

#include "async/Executor.h"
#include "async/TaskScope.h"
#include "async/WallClock.h"
#include "diagnostics/DiagnosticEntry.h"
#include "diagnostics/ErrorReporting.h"

namespace quillmar {

/// Writes entries to the daily log file in the background and has errors reported. Entries beyond 10,000 that
/// wait for the disk are dropped, and a line says how many; reports beyond the newest 50 that wait are
/// dropped too. It prepares itself on the first use. No failure leaves it: what cannot be written is lost.
class DiagnosticPipeline final : public DiagnosticRecording {
public:
    /// Most entries that wait at one time.
    static constexpr std::size_t queueLimit = 10000;

    /// `files` runs one job at a time and is this pipeline's and its reporter's own. All outlive the
    /// pipeline, `clock` and `loop` also the jobs of `files`.
    DiagnosticPipeline(MainLoop& loop, const WallClock& clock, Executor& files, ErrorReporting& reporter,
                       std::filesystem::path logsFolder);
    ~DiagnosticPipeline() override;

    void record(DiagnosticEntry entry, bool report) override;
    /// At quit, on the main thread: ends the deliveries, writes everything that was recorded before, reports
    /// too, and closes the file. An entry that comes later opens it again.
    Task<void> flush();
    /// The most entries that have waited at one time.
    std::size_t peakQueueLength() const;

private:
    class Core;
    void startHanding();
    Task<void> handReports();

    Executor& files_;
    ErrorReporting& reporter_;
    bool didPrepareReporter_ = false;
    bool hasReporter_ = false;
    std::shared_ptr<Core> core_;
    std::shared_ptr<std::function<void()>> reportHandler_;  ///< the core knows it weakly
    TaskHandle<void> handing_;
    TaskScope scope_;
};

}  // namespace quillmar

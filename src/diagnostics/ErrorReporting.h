#pragma once
#include <optional>
#include <string>

#include "async/Task.h"
#include "diagnostics/DiagnosticEntry.h"

namespace quillmar {

/// Delivers error entries to the maker. Main thread.
class ErrorReporting {
public:
    virtual ~ErrorReporting() = default;
    /// Makes ready for reports. Throws `std::system_error`.
    virtual Task<void> prepare() = 0;
    /// Begins to deliver what waits from earlier launches.
    virtual void startWorker() = 0;
    /// Keeps a report of the entry, with the newest lines of the log, until it is delivered. Never throws for
    /// a report that cannot be kept.
    virtual Task<void> enqueue(DiagnosticEntry entry, std::optional<std::string> tail) = 0;
    /// Ends all delivery for good. Later reports are still kept, for the next launch.
    virtual void prepareForTermination() = 0;
};

}  // namespace quillmar

#pragma once
#include <string>

#include "async/WallClock.h"
#include "diagnostics/DiagnosticEntry.h"
#include "diagnostics/Scrubber.h"
#include "platform/SystemLog.h"

namespace quillmar {

/// What writes the log lines, as each of them says.
struct DiagnosticIdentity {
    std::string appVersion;
    std::string operatingSystemVersion;
};

/// What the three log calls do, once it is installed: scrub, write to the system log, hand an entry on.
class DiagnosticLog {
public:
    /// All of them outlive the log and may be used from any thread.
    DiagnosticLog(const Scrubber& scrubber, const WallClock& clock, SystemLog& systemLog,
                  DiagnosticRecording& recording, DiagnosticIdentity identity);

    /// Any thread. A failure, for want of memory, costs the line.
    void write(DiagnosticLevel level, std::string_view message, std::string_view category,
               const std::exception_ptr& error, const LogMetadata& metadata) noexcept;

private:
    const Scrubber& scrubber_;
    const WallClock& clock_;
    SystemLog& systemLog_;
    DiagnosticRecording& recording_;
    DiagnosticIdentity identity_;
};

/// Makes a log the one that the log calls of the whole process write to, for as long as it lives; before and
/// after, they do nothing. There is one at a time, made by the composition root. Its end waits for calls
/// under way.
class LogInstallation {
public:
    explicit LogInstallation(DiagnosticLog& log);
    LogInstallation(const LogInstallation&) = delete;
    LogInstallation& operator=(const LogInstallation&) = delete;
    ~LogInstallation();
};

/// An error's own words, with those of the errors within it.
std::string debugDescription(const std::exception_ptr& error);

}  // namespace quillmar

#include "diagnostics/DiagnosticLog.h"

#include <atomic>

namespace quillmar {
namespace {

/// The only object of the process that is reached without being handed over. A log line may come from
/// anywhere, from a destructor or a worker thread too, and a logger in every constructor would bind all rooms
/// to this one for something that none of them depends on.
std::atomic<DiagnosticLog*> installedLog = nullptr;
/// Calls that may be using the installed log.
std::atomic<int> callsUnderWay = 0;

void write(DiagnosticLevel level, std::string_view message, std::string_view category,
           const std::exception_ptr& error, const LogMetadata& metadata) noexcept {
    if (!installedLog.load()) return;  // uncounted, so that an uninstaller sees an end
    callsUnderWay.fetch_add(1);        // before the second look: whoever uninstalls then sees this call
    if (DiagnosticLog* log = installedLog.load()) log->write(level, message, category, error, metadata);
    if (callsUnderWay.fetch_sub(1) == 1) callsUnderWay.notify_all();
}

SystemLogLevel systemLevel(DiagnosticLevel level) {
    switch (level) {
        case DiagnosticLevel::error: return SystemLogLevel::error;
        case DiagnosticLevel::warning: return SystemLogLevel::standard;
        default: return SystemLogLevel::information;
    }
}

void describe(const std::exception& error, std::string& text) {
    if (!text.empty()) text += ": ";
    text += error.what();
    try {
        std::rethrow_if_nested(error);
    } catch (const std::exception& cause) {
        describe(cause, text);
    } catch (...) {
        text += ": unknown error";
    }
}

}  // namespace

std::string debugDescription(const std::exception_ptr& error) {
    std::string text;
    try {
        std::rethrow_exception(error);
    } catch (const std::exception& caught) {
        describe(caught, text);
    } catch (...) {
        text = "unknown error";
    }
    return text;
}

DiagnosticLog::DiagnosticLog(const Scrubber& scrubber, const WallClock& clock, SystemLog& systemLog,
                             DiagnosticRecording& recording, DiagnosticIdentity identity)
    : scrubber_(scrubber),
      clock_(clock),
      systemLog_(systemLog),
      recording_(recording),
      identity_(std::move(identity)) {}

void DiagnosticLog::write(DiagnosticLevel level, std::string_view message, std::string_view category,
                          const std::exception_ptr& error, const LogMetadata& metadata) noexcept {
    try {
        DiagnosticEntry entry;
        entry.timestamp = clock_.now();
        entry.level = level;
        entry.category = scrubber_.text(category);
        entry.message = scrubber_.text(message);
        if (error) entry.errorDescription = scrubber_.text(debugDescription(error));
        entry.metadata = scrubber_.metadata(metadata);
        entry.appVersion = identity_.appVersion;
        entry.operatingSystemVersion = identity_.operatingSystemVersion;

        std::string line = "[" + entry.category + "] " + entry.message;
        if (entry.errorDescription) line += " — " + *entry.errorDescription;
        systemLog_.write(systemLevel(level), line);
        recording_.record(std::move(entry), level == DiagnosticLevel::error);
    } catch (...) {
        // Nothing that a log call meets is its caller's business, and there is nowhere left to tell it.
    }
}

LogInstallation::LogInstallation(DiagnosticLog& log) { installedLog.store(&log); }

LogInstallation::~LogInstallation() {
    installedLog.store(nullptr);
    while (const int calls = callsUnderWay.load()) callsUnderWay.wait(calls);
}

void logInfo(std::string_view message, std::string_view category, const LogMetadata& metadata) {
    write(DiagnosticLevel::information, message, category, nullptr, metadata);
}

void logWarning(std::string_view message, std::string_view category, const std::exception_ptr& error,
                const LogMetadata& metadata) {
    write(DiagnosticLevel::warning, message, category, error, metadata);
}

void logError(std::string_view message, std::string_view category, const std::exception_ptr& error,
              const LogMetadata& metadata) {
    write(DiagnosticLevel::error, message, category, error, metadata);
}

}  // namespace quillmar

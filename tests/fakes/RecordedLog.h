#pragma once
#include <string>
#include <vector>

#include "async/WallClock.h"
#include "base/Enum.h"
#include "diagnostics/DiagnosticLog.h"

namespace quillmar {

/// The log of the process while it lives, kept in memory.
class RecordedLog final : private SystemLog, private DiagnosticRecording {
public:
    explicit RecordedLog(const WallClock& clock) : log_(scrubber_, clock, *this, *this, {"1.2.3", "Test"}) {}

    /// "level [category] message key=value ..." of each line.
    std::vector<std::string> lines;

private:
    void write(SystemLogLevel, std::string_view) noexcept override {}
    void record(DiagnosticEntry entry, bool) override {
        std::string line = std::string(enumName(entry.level)) + " [" + entry.category + "] " + entry.message;
        for (const auto& [key, value] : entry.metadata) line += " " + key + "=" + value;
        lines.push_back(std::move(line));
    }

    Scrubber scrubber_;
    DiagnosticLog log_;
    LogInstallation installation_{log_};
};

}  // namespace quillmar

#pragma once
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "async/WallClock.h"
#include "base/CalendarDay.h"
#include "base/FileDescriptor.h"
#include "diagnostics/DiagnosticEntry.h"

namespace quillmar {

/// The log files: one a local day, "Quillmar-2026-05-04.log", with a line of JSON for each entry. Waits for
/// the disk and is used by one thread at a time. Failures are `std::system_error`.
class DailyLogFileSink {
public:
    DailyLogFileSink(std::filesystem::path folder, const WallClock& clock, std::size_t retainedFileCount = 7);

    /// Makes the folder, readable by its owner alone, and removes what is too old.
    void prepare();
    /// Adds the entry to the file of its own day, whole or not at all.
    void append(const DiagnosticEntry& entry);
    /// The last `limit` bytes of the newest day's file as text; nothing without a file.
    std::optional<std::string> tail(std::size_t limit);
    /// Brings the open file to the disk and closes it; the next entry opens it again.
    void close();

private:
    void openFile(CalendarDay day);
    void prune(CalendarDay today) const;
    std::vector<std::string> logFileNames() const;
    void writeLine(std::string_view line) const;

    std::filesystem::path folder_;
    const WallClock& clock_;
    std::size_t retainedFileCount_;
    std::optional<CalendarDay> currentDay_;
    FileDescriptor currentFile_;
};

}  // namespace quillmar

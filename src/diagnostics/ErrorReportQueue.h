#pragma once
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace quillmar {

/// The folder of reports that wait for their delivery: at most 50 files and 5 MiB, named so that the order of
/// their names is that of their ages. A value that a background job can own; its calls wait for the disk, and
/// one thread at a time makes them. Failures are `std::system_error`.
struct ErrorReportQueue {
    std::filesystem::path folder;

    /// Makes the folder, readable by its owner alone, and removes what exceeds the bounds, the oldest first.
    void prepare() const;
    /// Names of the waiting files, the oldest first.
    std::vector<std::string> pending() const;
    /// Adds a report and keeps the bounds.
    void add(const std::string& name, std::string_view payload) const;
    /// A report's content. One that is too large or cannot be read would block those behind it: it is
    /// removed, and nothing comes back.
    std::optional<std::string> readOrRemove(const std::string& name) const;
    /// A file that stays in spite of it is sent again one day.
    void remove(const std::string& name) const noexcept;

private:
    void trim() const;
};

}  // namespace quillmar

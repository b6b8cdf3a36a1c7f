#pragma once
#include <filesystem>

#include "async/Executor.h"
#include "settings/backup/SettingsBackupDocument.h"

namespace quillmar {

/// The file work of backups, away from the main thread.
class SettingsBackupService {
public:
    /// A file above this is no backup of this program.
    static constexpr std::size_t maximumBytes = 10u << 20;

    /// The executor must be serial.
    explicit SettingsBackupService(Executor& executor) : executor_(executor) {}

    /// Writes the file whole or not at all; missing parent folders are made. Throws an error with the place
    /// and reason.
    Task<void> write(SettingsBackupDocument document, std::filesystem::path file);
    /// Never holds more of the file than the limit. Throws `SettingsBackupError`, or an error with place and
    /// reason.
    Task<SettingsBackupDocument> read(std::filesystem::path file);

private:
    Executor& executor_;
};

}  // namespace quillmar

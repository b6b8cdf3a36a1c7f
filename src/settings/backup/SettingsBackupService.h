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

    /// The backup as a file holds it. Throws `SettingsBackupError` for one that could not be read again.
    Task<std::string> text(SettingsBackupDocument document);
    /// Writes the file whole or not at all; missing parent folders are made, links are followed, and what is
    /// no file is left alone. Throws as `text`, or an error with place and reason.
    Task<void> write(SettingsBackupDocument document, std::filesystem::path file);
    /// Never holds more of the file than the limit. Throws `SettingsBackupError`, or an error with place and
    /// reason.
    Task<SettingsBackupDocument> read(std::filesystem::path file);

private:
    Executor& executor_;
};

}  // namespace quillmar

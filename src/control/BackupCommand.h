#pragma once
#include "commandline/CommandLine.h"
#include "platform/ControlChannel.h"
#include "settings/backup/BackupSettingsModel.h"

namespace quillmar {

/// `quillmar backup ...`: export, inspect, restore and reset from a shell, in the running program or, when
/// there is none, on the settings file itself. Main thread.
class BackupCommand {
public:
    explicit BackupCommand(BackupSettingsModel::Services services) : services_(std::move(services)) {}

    /// Carries out a line that begins with "backup". A relative file starts from `folder`.
    Task<ControlReply> run(CommandLine line, std::filesystem::path folder);
    GeneralLanguage language() const { return services_.settingsModel.settings().general.language; }

private:
    using Sections = std::optional<SettingsBackupSections>;

    Task<ControlReply> exportTo(std::filesystem::path folder, std::string file, Sections sections);
    Task<ControlReply> inspect(std::filesystem::path file);
    Task<ControlReply> restore(std::filesystem::path file, Sections sections);
    Task<ControlReply> reset();
    ControlReply failed(TextKey sentence) const;

    BackupSettingsModel::Services services_;
};

}  // namespace quillmar

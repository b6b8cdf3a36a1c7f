#pragma once
#include <optional>

#include "commandline/CommandLine.h"
#include "settings/backup/SettingsBackupDocument.h"
#include "settings/records/GeneralSettings.h"
#include "settings/records/SoftwareUpdatePreferences.h"

namespace quillmar {

/// Gives the options of "general set" to the settings. Throws `UsageError`.
void applyGeneralOptions(const CommandLine& line, GeneralSettings& settings);
/// The same of "update set".
void applyUpdateOptions(const CommandLine& line, SoftwareUpdatePreferences& preferences);

/// What "--sections" names; absent where it was not given. Throws `UsageError`.
std::optional<SettingsBackupSections> namedSections(const CommandLine& line);

}  // namespace quillmar

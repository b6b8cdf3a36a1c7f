#pragma once
#include <optional>

#include "commandline/CommandLine.h"
#include "settings/backup/SettingsBackupDocument.h"
#include "settings/records/GeneralSettings.h"

namespace quillmar {

/// Gives the options of "general set" to the settings. Throws `UsageError`.
void applyGeneralOptions(const CommandLine& line, GeneralSettings& settings);

/// What "--sections" names; absent where it was not given. Throws `UsageError`.
std::optional<SettingsBackupSections> namedSections(const CommandLine& line);

}  // namespace quillmar

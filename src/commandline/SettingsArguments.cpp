#include "commandline/SettingsArguments.h"

#include "base/Enum.h"
#include "commandline/RecordOptions.h"

namespace quillmar {

void applyGeneralOptions(const CommandLine& line, GeneralSettings& settings) {
    if (line.options.empty()) throw UsageError("No setting was named."_key);
    for (const GivenOption& given : line.options) {
        RecordOption option(given.row->field, {given.row->name, given.text});
        GeneralSettings::describe(settings, option);
    }
}

std::optional<SettingsBackupSections> namedSections(const CommandLine& line) {
    const GivenOption* given = line.option("sections");
    if (!given) return std::nullopt;
    SettingsBackupSections sections;
    OptionValue("sections", given->text).readInto(sections);
    if (sections.empty()) throw UsageError("No section was named."_key);
    return sections;
}

}  // namespace quillmar

#include "commandline/SettingsArguments.h"

#include "base/Enum.h"
#include "commandline/RecordOptions.h"

namespace quillmar {
namespace {

template <class Record>
void applyOptions(const CommandLine& line, Record& record) {
    if (line.options.empty()) throw UsageError("No setting was named."_key);
    for (const GivenOption& given : line.options) {
        RecordOption option(given.row->field, {given.row->name, given.text});
        Record::describe(record, option);
    }
}

}  // namespace

void applyGeneralOptions(const CommandLine& line, GeneralSettings& settings) { applyOptions(line, settings); }

void applyUpdateOptions(const CommandLine& line, SoftwareUpdatePreferences& preferences) {
    applyOptions(line, preferences);
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

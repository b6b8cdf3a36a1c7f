#include "control/BackupCommand.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/Enum.h"
#include "commandline/SettingsArguments.h"
#include "control/SettingsReply.h"

namespace quillmar {
namespace {

using Action = BackupSettingsModel::BackupDestructiveAction;

ControlReply replyOf(const std::optional<BackupSettingsModel::BackupNotice>& notice) {
    if (!notice) return {};
    const std::string text = notice->title + ": " + notice->message;
    return notice->isFailure ? ControlReply{.status = 1, .errors = text + "\n"}
                             : ControlReply{.output = text + "\n"};
}

}  // namespace

Task<ControlReply> BackupCommand::run(CommandLine line, std::filesystem::path folder) {
    const Sections sections = namedSections(line);
    co_await services_.settingsModel.loaded();
    if (line.is("backup reset")) co_return co_await reset();
    if (line.is("backup export"))
        co_return co_await exportTo(std::move(folder), line.operands.front(), sections);
    const std::filesystem::path file = folder / line.operands.front();
    if (line.is("backup inspect")) co_return co_await inspect(file);
    co_return co_await restore(file, sections);
}

ControlReply BackupCommand::failed(TextKey sentence) const {
    return {.status = 1, .errors = localized(sentence, language()) + "\n"};
}

Task<ControlReply> BackupCommand::exportTo(std::filesystem::path folder, std::string file,
                                           Sections sections) {
    // What is in memory then is not what the user has configured.
    if (const auto& error = services_.settingsModel.loadError()) {
        co_return ControlReply{
            .status = 1,
            .errors = localized("The settings could not be read, so there is nothing to back up: %@"_key,
                                language(), {*error}) +
                      "\n"};
    }
    BackupSettingsModel backup(services_);
    if (sections) backup.exportSections = *sections;
    if (file == "-") {
        auto text = co_await backup.exportText();
        if (text) co_return ControlReply{.output = *std::move(text)};
        co_return replyOf(backup.notice());
    }
    co_await backup.exportTo(folder / file);
    co_return replyOf(backup.notice());
}

Task<ControlReply> BackupCommand::inspect(std::filesystem::path file) {
    BackupSettingsModel backup(services_);
    co_await backup.load(std::move(file));
    if (!backup.importedDocument()) co_return replyOf(backup.notice());
    std::string text = backup.importedDescription() + "\n";
    for (const SettingsBackupSection section : backup.importedDocument()->availableSections()) {
        text += fmt::format("  {:<12} {}\n", enumName(section),
                            localized(backupSectionLabel(section), language()));
    }
    co_return ControlReply{.output = std::move(text)};
}

Task<ControlReply> BackupCommand::restore(std::filesystem::path file, Sections sections) {
    BackupSettingsModel backup(services_);
    co_await backup.load(std::move(file));
    if (!backup.importedDocument()) co_return replyOf(backup.notice());
    if (sections) {
        std::erase_if(backup.importSections, [&](auto section) { return !sections->contains(section); });
        if (backup.importSections.empty()) co_return failed("The backup has none of these sections."_key);
    }
    backup.request(Action::restore);
    if (!co_await backup.confirmPendingAction()) co_return unsavedReply(services_.settingsModel);
    co_return replyOf(backup.notice());
}

Task<ControlReply> BackupCommand::reset() {
    BackupSettingsModel backup(services_);
    backup.request(Action::reset);
    if (!co_await backup.confirmPendingAction()) co_return unsavedReply(services_.settingsModel);
    co_return replyOf(backup.notice());
}

}  // namespace quillmar

#include "app/BackupCommand.h"

#include <fmt/format.h>

#include <algorithm>

#include "app/SettingsReply.h"
#include "base/Enum.h"

namespace quillmar {
namespace {

using Action = BackupSettingsModel::BackupDestructiveAction;

constexpr std::string_view usage =
    "Usage: quillmar backup export FILE [--sections LIST]\n"
    "       quillmar backup inspect FILE\n"
    "       quillmar backup restore FILE [--sections LIST]\n"
    "       quillmar backup reset\n"
    "LIST is made of general, wallpaper, lockScreen, screensaver, hotCorners, customMenu, with commas "
    "between.\n";

ControlReply failed(std::string sentence) { return {.status = 1, .errors = std::move(sentence) + "\n"}; }
ControlReply notUnderstood(const std::string& sentence) {
    return {.status = 2, .errors = sentence + "\n" + std::string(usage)};
}

ControlReply replyOf(const std::optional<BackupSettingsModel::BackupNotice>& notice) {
    if (!notice) return {};
    const std::string text = notice->title + ": " + notice->message;
    return notice->isFailure ? failed(text) : ControlReply{.output = text + "\n"};
}

}  // namespace

struct BackupCommand::Arguments {
    std::string verb;
    std::filesystem::path file;
    std::optional<SettingsBackupSections> sections;
    std::string complaint;  ///< not empty: the line was not understood

    void takeSections(std::string_view list);
};

void BackupCommand::Arguments::takeSections(std::string_view list) {
    sections.emplace();
    while (!list.empty()) {
        const std::string_view name = list.substr(0, list.find(','));
        list.remove_prefix(std::min(list.size(), name.size() + 1));
        if (const auto section = enumFromName<SettingsBackupSection>(name)) {
            sections->insert(*section);
        } else {
            complaint = fmt::format("There is no section \"{}\".", name);
        }
    }
    if (sections->empty() && complaint.empty()) complaint = "No section was named.";
}

BackupCommand::Arguments BackupCommand::parse(const ControlCall& call) {
    Arguments parsed;
    const auto complain = [&](std::string sentence) {
        parsed.complaint = std::move(sentence);
        return parsed;
    };
    std::vector<std::string> words(std::next(call.arguments.begin()), call.arguments.end());
    if (words.empty()) return complain("What is to be done with backups was not said.");
    parsed.verb = words.front();
    const bool takesFile = parsed.verb == "export" || parsed.verb == "inspect" || parsed.verb == "restore";
    if (!takesFile && parsed.verb != "reset") {
        return complain(fmt::format("\"backup\" has no command \"{}\".", parsed.verb));
    }
    for (std::size_t i = 1; i < words.size() && parsed.complaint.empty(); ++i) {
        const bool takesSections = parsed.verb == "export" || parsed.verb == "restore";
        if (takesSections && words[i] == "--sections") {
            if (++i == words.size()) return complain("\"--sections\" needs a list.");
            parsed.takeSections(words[i]);
        } else if (takesFile && parsed.file.empty() && !words[i].empty() && !words[i].starts_with("--")) {
            parsed.file = std::filesystem::path(call.workingDirectory) / words[i];
        } else {
            return complain(fmt::format("\"backup {}\" does not take \"{}\".", parsed.verb, words[i]));
        }
    }
    if (takesFile && parsed.file.empty() && parsed.complaint.empty()) {
        return complain(fmt::format("\"backup {}\" needs a file.", parsed.verb));
    }
    return parsed;
}

Task<ControlReply> BackupCommand::run(ControlCall call) {
    Arguments arguments = parse(call);
    if (!arguments.complaint.empty()) co_return notUnderstood(arguments.complaint);
    co_await services_.settingsModel.loaded();
    if (arguments.verb == "export") co_return co_await exportTo(std::move(arguments));
    if (arguments.verb == "inspect") co_return co_await inspect(std::move(arguments));
    if (arguments.verb == "restore") co_return co_await restore(std::move(arguments));
    co_return co_await reset();
}

Task<ControlReply> BackupCommand::exportTo(Arguments arguments) {
    // What is in memory then is not what the user has configured.
    if (const auto& error = services_.settingsModel.loadError()) {
        co_return failed("The settings could not be read, so there is nothing to back up: " + *error);
    }
    BackupSettingsModel backup(services_);
    if (arguments.sections) backup.exportSections = *arguments.sections;
    co_await backup.exportTo(arguments.file);
    co_return replyOf(backup.notice());
}

Task<ControlReply> BackupCommand::inspect(Arguments arguments) {
    BackupSettingsModel backup(services_);
    co_await backup.load(arguments.file);
    if (!backup.importedDocument()) co_return replyOf(backup.notice());
    std::string text = backup.importedDescription() + "\n";
    const GeneralLanguage language = services_.settingsModel.settings().general.language;
    for (const SettingsBackupSection section : backup.importedDocument()->availableSections()) {
        text +=
            fmt::format("  {:<12} {}\n", enumName(section), localized(backupSectionLabel(section), language));
    }
    co_return ControlReply{.output = std::move(text)};
}

Task<ControlReply> BackupCommand::restore(Arguments arguments) {
    BackupSettingsModel backup(services_);
    co_await backup.load(arguments.file);
    if (!backup.importedDocument()) co_return replyOf(backup.notice());
    if (arguments.sections) {
        std::erase_if(backup.importSections,
                      [&](auto section) { return !arguments.sections->contains(section); });
        if (backup.importSections.empty()) co_return failed("The backup has none of these sections.");
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

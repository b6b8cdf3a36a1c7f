#include "panes/BackupPane.h"

#include "base/Enum.h"
#include "panes/PaneAlerts.h"

namespace quillmar {
namespace {

using DestructiveAction = BackupSettingsModel::BackupDestructiveAction;

constexpr std::string_view exportPrefix = "export.";
constexpr std::string_view importPrefix = "import.";

constexpr std::string_view idOf(BackupSettingsModel::BackupDisclosureSection card) {
    switch (card) {
        case BackupSettingsModel::BackupDisclosureSection::exportSettings: return "export";
        case BackupSettingsModel::BackupDisclosureSection::importBackup: return "import";
        case BackupSettingsModel::BackupDisclosureSection::reset: return "reset";
    }
    return {};
}

void addSections(SettingsGroup& card, std::string_view prefix, const SettingsBackupSections& offered,
                 const SettingsBackupSections& chosen, GeneralLanguage language) {
    for (const SettingsBackupSection section : offered) {
        card.rows.push_back({.id = std::string(prefix) + std::string(enumName(section)),
                             .title = localized(backupSectionLabel(section), language),
                             .control = SettingsRow::Toggle{chosen.contains(section)}});
    }
}

std::vector<FileQuestion::Type> backupTypes(GeneralLanguage language) {
    return {{localized("Backups"_key, language), {"*.json", "*.backup"}},
            {localized("All Files"_key, language), {"*"}}};
}

}  // namespace

BackupPane::BackupPane(MainLoop& loop, BackupSettingsModel::Services services, AlertPresenting& alerts,
                       FileChoosing& files, std::function<void()> changed)
    : services_(services),
      alerts_(alerts),
      files_(files),
      changed_(std::move(changed)),
      backup_(std::in_place, std::move(services)),
      tasks_(loop) {}

SettingsPane BackupPane::content() const {
    return {.groups = {exportCard(), importCard(), resetCard()}, .isBusy = backup_->isWorking()};
}

SettingsGroup BackupPane::card(Card which, TextKey title) const {
    return {.id = std::string(idOf(which)),
            .title = localized(title, language()),
            .isExpanded = backup_->expandedSections.contains(which)};
}

SettingsGroup BackupPane::exportCard() const {
    SettingsGroup group = card(Card::exportSettings, "Export a Backup"_key);
    group.description = localized(
        "Writes the chosen settings to a file. Pictures and folders that they name are not in it."_key,
        language());
    addSections(group, exportPrefix, allBackupSections(), backup_->exportSections, language());
    SettingsRow row{.id = "export",
                    .title = localized("Export the chosen sections"_key, language()),
                    .control = SettingsRow::Action{localized("Export…"_key, language())},
                    .isEnabled = !backup_->exportSections.empty()};
    // What is in memory then is not what the user has configured.
    if (const auto& error = services_.settingsModel.loadError()) {
        row.subtitle = localized("The settings could not be read, so there is nothing to back up: %@"_key,
                                 language(), {*error});
        row.isWarning = true;
        row.isEnabled = false;
    }
    group.rows.push_back(std::move(row));
    return group;
}

SettingsGroup BackupPane::importCard() const {
    SettingsGroup group = card(Card::importBackup, "Restore a Backup"_key);
    group.description =
        localized("Replaces the sections that you choose by those of a backup file."_key, language());
    SettingsRow file{.id = "load",
                     .title = localized("No backup chosen"_key, language()),
                     .control = SettingsRow::Action{localized("Choose Backup…"_key, language())}};
    if (!backup_->importedDocument()) {
        group.rows.push_back(std::move(file));
        return group;
    }
    file.title = backup_->importedFile()->filename().string();
    file.subtitle = backup_->importedDescription();
    group.rows.push_back(std::move(file));
    addSections(group, importPrefix, backup_->importedDocument()->availableSections(),
                backup_->importSections, language());
    group.rows.push_back(
        {.id = "restore",
         .title = localized("Restore the chosen sections"_key, language()),
         .control = SettingsRow::Action{localized("Restore Selected Settings…"_key, language()), true},
         .isEnabled = !backup_->importSections.empty()});
    return group;
}

SettingsGroup BackupPane::resetCard() const {
    SettingsGroup group = card(Card::reset, "Reset"_key);
    group.description = localized("Goes back to the settings of a first start."_key, language());
    group.rows.push_back(
        {.id = "reset",
         .title = localized("Back to the defaults"_key, language()),
         .subtitle =
             localized("Resets the General, Wallpaper, Lock Screen, Screensaver, Hot Corners and Menu "
                       "settings. Cached media are not changed."_key,
                       language()),
         .control = SettingsRow::Action{localized("Reset All Settings…"_key, language()), true}});
    return group;
}

void BackupPane::setExpanded(const std::string& group, bool isExpanded) {
    for (const Card which : {Card::exportSettings, Card::importBackup, Card::reset}) {
        if (group != idOf(which)) continue;
        if (isExpanded) {
            backup_->expandedSections.insert(which);
        } else {
            backup_->expandedSections.erase(which);
        }
    }
    changed_();
}

bool BackupPane::choose(SettingsBackupSections& chosen, std::string_view prefix,
                        const SettingsIntent& intent) {
    const bool* isOn = std::get_if<bool>(&intent.value);
    if (!isOn || !intent.row.starts_with(prefix)) return false;
    const auto section =
        enumFromName<SettingsBackupSection>(std::string_view(intent.row).substr(prefix.size()));
    if (!section) return false;
    if (*isOn) {
        chosen.insert(*section);
    } else {
        chosen.erase(*section);
    }
    changed_();
    return true;
}

void BackupPane::act(const SettingsIntent& intent) {
    // What an operation has taken it goes on with, so nothing is changed under it.
    if (backup_->isWorking() || tasks_.runningCount() > 0) return;
    if (choose(backup_->exportSections, exportPrefix, intent)) return;
    if (backup_->importedDocument() && choose(backup_->importSections, importPrefix, intent)) return;
    if (intent.row == "export") begin(exportSettings());
    if (intent.row == "load") begin(load());
    if (intent.row == "restore") begin(replace(DestructiveAction::restore));
    if (intent.row == "reset") begin(replace(DestructiveAction::reset));
}

void BackupPane::reset() {
    if (tasks_.runningCount() == 0) backup_.emplace(services_);
}

void BackupPane::begin(Task<void> operation) { tasks_.spawn(run(std::move(operation))); }

Task<void> BackupPane::run(Task<void> operation) {
    co_await std::move(operation);
    changed_();
    co_await showNotice();
}

Task<void> BackupPane::showNotice() {
    if (!backup_->notice() || backup_->notice()->id == shownNotice_) co_return;
    const BackupSettingsModel::BackupNotice notice = *backup_->notice();
    shownNotice_ = notice.id;
    co_await tell(alerts_, notice.title, notice.message, language(),
                  notice.isFailure ? Alert::Style::warning : Alert::Style::informational);
}

Task<void> BackupPane::exportSettings() {
    const std::optional<std::filesystem::path> file =
        co_await files_.choose({.purpose = FileQuestion::Purpose::save,
                                .title = localized("Export Quillmar Backup"_key, language()),
                                .accept = localized("Export"_key, language()),
                                .cancel = localized("Cancel"_key, language()),
                                .suggestedName = backup_->suggestedFileName() + ".json",
                                .types = backupTypes(language())});
    if (!file) co_return;
    changed_();
    co_await backup_->exportTo(*file);
}

Task<void> BackupPane::load() {
    const std::optional<std::filesystem::path> file =
        co_await files_.choose({.title = localized("Choose Quillmar Backup"_key, language()),
                                .accept = localized("Choose"_key, language()),
                                .cancel = localized("Cancel"_key, language()),
                                .types = backupTypes(language())});
    if (!file) co_return;
    changed_();
    co_await backup_->load(*file);
}

Task<void> BackupPane::replace(DestructiveAction action) {
    backup_->request(action);
    const bool isConfirmed =
        action == DestructiveAction::restore
            ? co_await confirm(alerts_, "Restore Selected Settings?"_key,
                               "The selected settings will replace their current values. Other sections will "
                               "remain unchanged."_key,
                               "Restore Settings"_key, language())
            : co_await confirm(
                  alerts_, "Reset All Settings?"_key,
                  "This replaces the current settings with Quillmar defaults. This action cannot "
                  "be undone."_key,
                  "Reset All Settings"_key, language());
    if (!isConfirmed) {
        backup_->cancelPendingAction();
        co_return;
    }
    changed_();
    if (co_await backup_->confirmPendingAction()) co_return;
    if (const auto& error = services_.settingsModel.saveError())
        co_await tell(alerts_, "Quillmar Couldn’t Save Settings"_key, *error, language());
}

}  // namespace quillmar

#include "settings/backup/BackupSettingsModel.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "base/LocalDateTime.h"

namespace quillmar {

/// Marks the model as busy while an operation runs, on every path out of it.
class BackupSettingsModel::Working {
public:
    explicit Working(BackupSettingsModel& model) : model_(model) { model_.isWorking_ = true; }
    Working(const Working&) = delete;
    Working& operator=(const Working&) = delete;
    ~Working() { model_.isWorking_ = false; }

private:
    BackupSettingsModel& model_;
};

/// Lets the program hold still while the settings are replaced, whatever comes of it.
class BackupSettingsModel::Replacing {
public:
    explicit Replacing(SettingsRestoreFollowing& following) : following_(following) {
        following_.settingsWillBeReplaced();
    }
    Replacing(const Replacing&) = delete;
    Replacing& operator=(const Replacing&) = delete;
    ~Replacing() { following_.settingsReplacementDidEnd(); }

private:
    SettingsRestoreFollowing& following_;
};

std::string BackupSettingsModel::suggestedFileName() const {
    const LocalDateTime now = localDateTime(services_.clock.now());
    return fmt::format("Quillmar-Backup-{:04}{:02}{:02}-{:02}{:02}{:02}", now.year, now.month, now.day,
                       now.hour, now.minute, now.second);
}

std::string BackupSettingsModel::importedDescription() const {
    if (!importedDocument_) return {};
    return localized(
        "Created with Quillmar %@ on %@"_key, language(),
        {importedDocument_->appVersion, shortLocalText(importedDocument_->createdAt, language())});
}

SettingsBackupDocument BackupSettingsModel::exported() const {
    return SettingsBackupDocument::make(services_.settingsModel.settings(), exportSections,
                                        services_.appVersion, services_.clock.now());
}

Task<std::optional<std::string>> BackupSettingsModel::exportText() {
    const Working working(*this);
    try {
        std::string text = co_await services_.backupService.text(exported());
        services_.sendAnalytics("backup_export");
        co_return text;
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception& error) {
        notify("Couldn’t Export Backup"_key, errorText(error, language()), true);
    }
    co_return std::nullopt;
}

Task<void> BackupSettingsModel::exportTo(std::filesystem::path file) {
    const Working working(*this);
    try {
        co_await services_.backupService.write(exported(), file);
        notify("Backup Exported"_key, localized("Saved %@."_key, language(), {file.filename().string()}),
               false);
        services_.sendAnalytics("backup_export");
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception& error) {
        notify("Couldn’t Export Backup"_key, errorText(error, language()), true);
    }
}

Task<void> BackupSettingsModel::load(std::filesystem::path file) {
    const Working working(*this);
    try {
        importedDocument_ = co_await services_.backupService.read(file);
        importedFile_ = std::move(file);
        importSections = importedDocument_->availableSections();
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception& error) {
        forgetImport();
        notify("Couldn’t Read Backup"_key, errorText(error, language()), true);
    }
}

Task<bool> BackupSettingsModel::confirmPendingAction() {
    const auto action = std::exchange(pendingAction_, std::nullopt);
    if (!action || isWorking_) co_return false;
    const Working working(*this);
    co_return co_await (*action == BackupDestructiveAction::restore ? restore() : reset());
}

Task<bool> BackupSettingsModel::restore() {
    if (!importedDocument_) co_return false;
    SettingsBackupSections sections;
    std::ranges::set_intersection(importSections, importedDocument_->availableSections(),
                                  std::inserter(sections, sections.end()));
    // Of the document as it is when its turn has come: somebody may have edited the file by then.
    const bool isReplaced =
        co_await replaceSettings([imported = *importedDocument_, sections](AppSettings& settings) {
            settings = imported.appliedTo(settings, sections);
        });
    if (!isReplaced) co_return false;
    const std::vector<std::string> warnings = co_await runAfterSteps(sections);
    forgetImport();
    finish("Settings Restored"_key, "Settings Restored with Warnings"_key,
           "The selected settings were restored successfully."_key, warnings);
    services_.sendAnalytics("backup_import");
    co_return true;
}

Task<bool> BackupSettingsModel::reset() {
    if (!co_await replaceSettings([this](AppSettings& settings) { settings = services_.defaults; }))
        co_return false;
    const std::vector<std::string> warnings = co_await runAfterSteps(allBackupSections());
    forgetImport();
    finish("Settings Reset"_key, "Settings Reset with Warnings"_key,
           "Quillmar settings were reset to their default values."_key, warnings);
    services_.sendAnalytics("backup_reset");
    co_return true;
}

Task<bool> BackupSettingsModel::replaceSettings(SettingsUpdate mutation) {
    const auto hold = co_await services_.settingsModel.transactionGate().acquire();
    const Replacing replacing(services_.following);
    co_return co_await services_.settingsModel.replaceSettings(std::move(mutation));
}

Task<std::vector<std::string>> BackupSettingsModel::runAfterSteps(SettingsBackupSections sections) {
    std::vector<std::string> warnings;
    if (sections.contains(SettingsBackupSection::general)) {
        const bool launchAtLogin = services_.settingsModel.settings().general.launchAtLogin;
        if (auto failure = co_await services_.following.updateLoginItem(launchAtLogin)) {
            warnings.push_back(failure->empty()
                                   ? localized("The login item could not be updated."_key, language())
                                   : *std::move(failure));
        }
    }
    if (sections.contains(SettingsBackupSection::wallpaper)) {
        std::ranges::move(co_await services_.following.applyWallpapers(), std::back_inserter(warnings));
    }
    if (sections.contains(SettingsBackupSection::lockScreen))
        services_.following.lockScreenSettingsDidChange();
    co_return warnings;
}

void BackupSettingsModel::finish(TextKey title, TextKey titleWithWarnings, TextKey message,
                                 const std::vector<std::string>& warnings) {
    std::string text =
        warnings.empty() ? localized(message, language()) : fmt::format("{}", fmt::join(warnings, "\n"));
    if (const auto& kept = services_.settingsModel.replacedFile()) {
        text += "\n" +
                localized("The file that could not be read is kept as %@."_key, language(), {kept->string()});
    }
    notify(warnings.empty() ? title : titleWithWarnings, std::move(text), false);
}

void BackupSettingsModel::notify(TextKey title, std::string message, bool isFailure) {
    notice_ = BackupNotice{Uuid::random(), localized(title, language()), std::move(message), isFailure};
}

void BackupSettingsModel::forgetImport() {
    importedDocument_.reset();
    importedFile_.reset();
    importSections.clear();
}

}  // namespace quillmar

#pragma once
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "async/TaskScope.h"
#include "async/WallClock.h"
#include "base/Uuid.h"
#include "settings/AppSettingsModel.h"
#include "settings/backup/SettingsBackupService.h"

namespace quillmar {

/// What happens in the running program before and after restored settings are on disk. Main thread.
class SettingsRestoreFollowing {
public:
    virtual ~SettingsRestoreFollowing() = default;
    /// Work that writes into the settings by itself holds still between these two.
    virtual void settingsWillBeReplaced() = 0;
    virtual void settingsReplacementDidEnd() = 0;
    /// Makes the login item what the settings say; a text when that failed.
    virtual Task<std::optional<std::string>> updateLoginItem(bool launchAtLogin) = 0;
    /// Applies the wallpapers to all displays; a line for each display that failed.
    virtual Task<std::vector<std::string>> applyWallpapers() = 0;
    /// The settings of the Lock Screen may have changed.
    virtual void lockScreenSettingsDidChange() = 0;
};

/// What the Backup pane, or the command line in its place, knows and does: the order of the steps of an
/// export, a restore and a reset. Its owner keeps it until its operations have ended. Main thread.
class BackupSettingsModel {
public:
    enum class BackupDisclosureSection { exportSettings, importBackup, reset };
    enum class BackupDestructiveAction { restore, reset };
    /// What the user is told after an operation.
    struct BackupNotice {
        Uuid id;
        std::string title;
        std::string message;
        bool isFailure = false;
    };
    struct Services {
        AppSettingsModel& settingsModel;
        SettingsBackupService& backupService;
        SettingsRestoreFollowing& following;
        const WallClock& clock;
        AppSettings defaults;    ///< what a reset leads to
        std::string appVersion;  ///< of this build
        std::function<void(const std::string&)> sendAnalytics;
    };
    explicit BackupSettingsModel(Services services) : services_(std::move(services)) {}

    std::set<BackupDisclosureSection> expandedSections;
    SettingsBackupSections exportSections = allBackupSections();
    SettingsBackupSections importSections;

    /// The backup that was loaded and waits for its restore.
    const std::optional<SettingsBackupDocument>& importedDocument() const { return importedDocument_; }
    /// Where it was loaded from.
    const std::optional<std::filesystem::path>& importedFile() const { return importedFile_; }
    /// What was asked for and waits for its confirmation.
    std::optional<BackupDestructiveAction> pendingAction() const { return pendingAction_; }
    /// What the last operation told the user.
    const std::optional<BackupNotice>& notice() const { return notice_; }
    /// Whether an operation runs; no restore or reset begins meanwhile.
    bool isWorking() const { return isWorking_; }

    /// "Quillmar-Backup-" and the local time, to be offered as the file's name.
    std::string suggestedFileName() const;
    /// "Created with Quillmar 1.2.3 on ..." of the loaded file; empty without one.
    std::string importedDescription() const;

    /// Each ends with a notice, but for a restore or reset whose save was refused: there
    /// `AppSettingsModel::saveError` says why, and the loaded file stays.
    Task<void> exportTo(std::filesystem::path file);
    Task<void> load(std::filesystem::path file);
    /// The same backup as text; empty, with a notice, where it cannot be made.
    Task<std::optional<std::string>> exportText();
    /// A restore or reset is asked for first and confirmed or cancelled then.
    void request(BackupDestructiveAction action) { pendingAction_ = action; }
    /// Nothing is done of what was asked for.
    void cancelPendingAction() { pendingAction_.reset(); }
    /// True when the settings were replaced.
    Task<bool> confirmPendingAction();

private:
    class Working;
    class Replacing;
    SettingsBackupDocument exported() const;
    Task<bool> replaceSettings(SettingsUpdate mutation);
    Task<bool> restore();
    Task<bool> reset();
    Task<std::vector<std::string>> runAfterSteps(SettingsBackupSections sections);
    void finish(TextKey title, TextKey titleWithWarnings, TextKey message,
                const std::vector<std::string>& warnings);
    void notify(TextKey title, std::string message, bool isFailure);
    void forgetImport();
    GeneralLanguage language() const { return services_.settingsModel.settings().general.language; }

    Services services_;
    std::optional<SettingsBackupDocument> importedDocument_;
    std::optional<std::filesystem::path> importedFile_;
    std::optional<BackupDestructiveAction> pendingAction_;
    std::optional<BackupNotice> notice_;
    bool isWorking_ = false;
};

}  // namespace quillmar

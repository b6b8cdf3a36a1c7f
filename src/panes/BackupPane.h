#pragma once
#include <functional>
#include <optional>

#include "async/TaskScope.h"
#include "panes/PaneModel.h"
#include "platform/AlertPresenting.h"
#include "platform/FileChoosing.h"
#include "settings/backup/BackupSettingsModel.h"

namespace quillmar {

/// Export, restore and reset of the settings, each a card with what it takes. The only pane that changes
/// settings while their file cannot be read.
class BackupPane final : public PaneModel {
public:
    BackupPane(MainLoop& loop, BackupSettingsModel::Services services, AlertPresenting& alerts,
               FileChoosing& files, std::function<void()> changed);

    SettingsPane content() const override;
    void act(const SettingsIntent& intent) override;
    void setExpanded(const std::string& group, bool isExpanded) override;
    /// The window has closed: what was chosen and loaded is forgotten, unless it is being worked with.
    void reset();

private:
    using Card = BackupSettingsModel::BackupDisclosureSection;

    SettingsGroup exportCard() const;
    SettingsGroup importCard() const;
    SettingsGroup resetCard() const;
    SettingsGroup card(Card which, TextKey title) const;
    bool choose(SettingsBackupSections& chosen, std::string_view prefix, const SettingsIntent& intent);

    void begin(Task<void> operation);
    Task<void> run(Task<void> operation);
    Task<void> exportSettings();
    Task<void> load();
    Task<void> replace(BackupSettingsModel::BackupDestructiveAction action);
    Task<void> showNotice();
    GeneralLanguage language() const { return services_.settingsModel.settings().general.language; }

    BackupSettingsModel::Services services_;
    AlertPresenting& alerts_;
    FileChoosing& files_;
    std::function<void()> changed_;
    std::optional<BackupSettingsModel> backup_;
    std::optional<Uuid> shownNotice_;
    TaskScope tasks_;
};

}  // namespace quillmar

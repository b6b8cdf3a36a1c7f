#pragma once
#include <optional>

#include "async/EventBus.h"
#include "panes/AboutPane.h"
#include "panes/BackupPane.h"
#include "panes/GeneralPane.h"
#include "panes/SettingsUnsavedChangesCoordinator.h"
#include "panes/wallpaper/WallpaperPane.h"

namespace quillmar {

/// The Settings window without a widget: its sections, the one that is shown, and what stays between one
/// opening and the next. Main thread.
class SettingsWindowModel final : public SettingsContent {
public:
    struct Services {
        MainLoop& loop;
        EventBus& notifications;
        AlertPresenting& alerts;
        FileChoosing& files;
        GeneralCommand::Services general;
        WallpaperPane::Services wallpaper;
        BackupSettingsModel::Services backup;
        AboutPane::Services about;
        std::function<void()> quit;          ///< the user's explicit wish to end
        std::function<bool()> isRecovering;  ///< the start was limited: the settings could not be read
    };
    explicit SettingsWindowModel(Services services);

    SettingsFrame frame() const override;
    SettingsPane pane() const override { return paneOf(section_).content(); }
    void setChangeHandler(std::function<void()> handler) override { handler_ = std::move(handler); }
    void navigate(const std::string& section) override;
    void act(SettingsIntent intent) override;
    void setExpanded(const std::string& group, bool isExpanded) override;
    void requestClose(std::function<void()> close) override;
    void quit() override;
    /// To be told when monitors came, went or were moved.
    void displaysDidChange() { wallpaper_.displaysDidChange(); }

    SettingsSection section() const { return section_; }
    /// Where panes with drafts register them.
    SettingsUnsavedChangesCoordinator& unsavedChanges() { return unsavedChanges_; }

private:
    PaneModel& paneOf(SettingsSection section);
    const PaneModel& paneOf(SettingsSection section) const;
    std::string banner() const;
    void changed();
    GeneralLanguage language() const { return settingsModel_.settings().general.language; }

    MainLoop& loop_;
    AppSettingsModel& settingsModel_;
    std::function<void()> quit_;
    std::function<bool()> isRecovering_;
    GeneralPane general_;
    WallpaperPane wallpaper_;
    BackupPane backup_;
    AboutPane about_;
    SettingsSection section_ = SettingsSection::general;
    std::function<void()> handler_;
    SettingsUnsavedChangesCoordinator unsavedChanges_;
    EventBus::Observation changes_;
    Scheduled telling_;
};

}  // namespace quillmar

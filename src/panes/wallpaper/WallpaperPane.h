#pragma once
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "panes/PaneModel.h"
#include "panes/SettingsUnsavedChangesCoordinator.h"
#include "panes/wallpaper/DraftFiles.h"
#include "panes/wallpaper/DraftPreview.h"
#include "panes/wallpaper/ModeEditor.h"
#include "panes/wallpaper/ShownThumbnails.h"
#include "wallpaper/WallpaperRotationCoordinator.h"

namespace quillmar {

/// What each display shows: the displays to choose one by, its mode, the editor of that mode's settings. What
/// is changed is a draft until it is applied. Main thread.
class WallpaperPane final : public PaneModel {
public:
    struct Services {
        MainLoop& loop;
        AppSettingsModel& settingsModel;
        WallpaperCoordinator& coordinator;
        const WallpaperRotationCoordinator& rotation;
        const PictureMemory& pictures;
        const DisplayProviding& displays;
        DesktopPictures& desktop;
        PictureWriter& writer;
        WallpaperRenderer& renderer;
        MediaImportCoordinator& imports;
        const CacheFileProtection& cacheFiles;
        Executor& files;  ///< where the user's files are looked at
    };
    /// `changed` is called when the content became another one for other reasons than other settings.
    WallpaperPane(Services services, AlertPresenting& alerts, FileChoosing& chooser,
                  std::function<void()> changed);

    SettingsPane content() const override;
    void act(const SettingsIntent& intent) override;
    void setExpanded(const std::string& group, bool isExpanded) override;
    void didAppear() override;
    void didDisappear() override;
    /// To be told when the settings have changed, and when displays came, went or were moved.
    void settingsDidChange();
    void displaysDidChange();

    /// For whoever leaves the pane while something is not applied.
    SettingsUnsavedChangesCoordinator::Registration unsavedDraft();

private:
    enum class Work { next, retry };

    // What is shown.
    SettingsArrangement arrangement() const;
    SettingsArrangement::Display shown(const std::string& displayID, const DisplayInfo* info) const;
    std::optional<SettingsPreview> preview() const;
    SettingsGroup picker() const;
    std::vector<SettingsGroup> editor() const;
    SettingsGroup state() const;
    void addFailures(SettingsGroup& group) const;
    void addDraftNotes(SettingsGroup& group) const;
    SettingsGroup actionsGroup() const;
    std::vector<SettingsPaneAction> footer() const;
    std::string progress() const;
    std::string nowText() const;
    std::string nextAttempt() const;

    // What is known.
    std::optional<DisplayInfo> connected(const std::string& displayID) const;
    std::vector<std::string> absentDisplays() const;
    std::string nameOf(const std::string& displayID) const;
    /// Why a draft cannot be applied as it is.
    struct Obstacle {
        std::string displayID;
        std::string message;
    };
    std::optional<Obstacle> firstObstacle() const;
    bool mayEdit() const { return services_.settingsModel.canPersist(); }
    GeneralLanguage language() const { return services_.settingsModel.settings().general.language; }

    // What is done.
    void leaveGoneDisplay();
    void select(const std::string& displayID);
    void chooseMode(const std::string& kind);
    void copyToOthers();
    void revert();
    void edited(const std::string& displayID);
    void refreshPreview();
    Task<bool> apply();
    Task<bool> mayOverwrite(std::vector<std::string> displayIDs);
    Task<void> applyAndTell();
    void note(const WallpaperApplyBatchResult& batch, const std::vector<std::string>& displayIDs,
              const DisplayIDs& passedOver);
    Task<void> work(Work work, std::string displayID);
    Task<void> setPaused(bool isPaused);

    Services services_;
    AlertPresenting& alerts_;
    std::function<void()> changed_;
    WallpaperDrafts drafts_;
    DraftFiles draftFiles_;
    ShownThumbnails thumbnails_;
    DraftPreview preview_;
    std::string selected_;                         ///< a display
    std::map<std::string, std::string> names_;     ///< of the displays that were connected, by ID
    std::map<std::string, std::string> failures_;  ///< by display: why its draft was not applied
    std::map<std::string, bool> unfolded_;         ///< by group
    bool isApplying_ = false;
    std::set<std::string> working_;  ///< displays that were asked for a picture
    bool isVisible_ = false;
    EventBus::Observation following_;
    TaskScope tasks_;
};

}  // namespace quillmar

#pragma once
#include "loginitem/LoginItemService.h"
#include "settings/backup/BackupSettingsModel.h"
#include "wallpaper/WallpaperRotationCoordinator.h"

namespace quillmar {

/// Makes the running program follow restored settings. Wallpapers do not change by themselves meanwhile, and
/// begin anew after it.
class RestoreFollowing final : public SettingsRestoreFollowing {
public:
    RestoreFollowing(WallpaperCoordinator& wallpapers, WallpaperRotationCoordinator& rotation,
                     LoginItemService& loginItem)
        : wallpapers_(wallpapers), rotation_(rotation), loginItem_(loginItem) {}
    void settingsWillBeReplaced() override;
    void settingsReplacementDidEnd() override;
    /// The program is about to end: a restore that ends later begins nothing any more.
    void stop() { wasRotating_ = false; }
    Task<std::optional<std::string>> updateLoginItem(bool launchAtLogin) override;
    Task<std::vector<std::string>> applyWallpapers() override;
    void lockScreenSettingsDidChange() override {}

private:
    WallpaperCoordinator& wallpapers_;
    WallpaperRotationCoordinator& rotation_;
    LoginItemService& loginItem_;
    bool wasRotating_ = false;
};

}  // namespace quillmar

#pragma once
#include "settings/backup/BackupSettingsModel.h"
#include "wallpaper/WallpaperCoordinator.h"

namespace quillmar {

/// Makes the running program follow restored settings.
class RestoreFollowing final : public SettingsRestoreFollowing {
public:
    explicit RestoreFollowing(WallpaperCoordinator& wallpapers) : wallpapers_(wallpapers) {}
    Task<std::optional<std::string>> updateLoginItem(bool launchAtLogin) override;
    Task<std::vector<std::string>> applyWallpapers() override;
    void lockScreenSettingsDidChange() override {}

private:
    WallpaperCoordinator& wallpapers_;
};

/// Where no program runs nothing follows: the next start reads the restored file.
class NothingFollows final : public SettingsRestoreFollowing {
public:
    Task<std::optional<std::string>> updateLoginItem(bool) override { co_return std::nullopt; }
    Task<std::vector<std::string>> applyWallpapers() override { co_return std::vector<std::string>{}; }
    void lockScreenSettingsDidChange() override {}
};

}  // namespace quillmar

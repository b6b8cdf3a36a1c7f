#include "app/Subsystems.h"

#include "settings/SettingsStore.h"
#include "settings/records/SettingsCodec.h"

namespace quillmar {

Subsystems::Subsystems(const Platform& platform)
    : defaults(defaultSettings(platform.bundle)),
      cacheExecutor(platform.backgroundPool),
      cacheMaintenance(cacheExecutor, cacheFiles, createdCacheDirectory(platform.environment), {}),
      settingsExecutor(platform.backgroundPool),
      settingsStore(
          makeSettingsStore([&] { return createdApplicationSupportDirectory(platform.environment); },
                            defaults, settingsExecutor)),
      settingsModel(platform.loop, notifications, *settingsStore, defaults, cacheFiles),
      displays(platform.screens),
      wallpaperRenderer(
          applicationSupportDirectoryOrNowhere(platform.environment) / "Cache/GeneratedWallpapers",
          platform.pictureRendering, platform.clock),
      wallpaperService(displays, platform.desktopPicture, wallpaperGate, wallpaperRenderer,
                       platform.backgroundPool, cacheFiles, platform.randomIndex),
      wallpaperTransactions(wallpaperService),
      wallpaperCoordinator(platform.loop, displays, wallpaperService, &wallpaperTransactions, settingsModel,
                           wallpaperGate, platform.clock),
      backupExecutor(platform.backgroundPool) {}

}  // namespace quillmar

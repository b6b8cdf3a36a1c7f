#pragma once
#include <memory>

#include "app/Ports.h"
#include "app/RemoteErrorNotificationService.h"
#include "app/RestoreFollowing.h"
#include "async/EventBus.h"
#include "async/ThreadPool.h"
#include "desktop/LastShownKeeper.h"
#include "display/DisplayService.h"
#include "history/PictureMemory.h"
#include "imports/MediaImportCoordinator.h"
#include "imports/MediaImportRepository.h"
#include "loginitem/LoginItemService.h"
#include "remote/RemoteImageResolver.h"
#include "remote/fetching/RemoteImageFetcher.h"
#include "settings/AppSettingsModel.h"
#include "storage/CacheMaintenanceService.h"
#include "updates/SoftwareUpdateController.h"
#include "wallpaper/StaticPictures.h"
#include "wallpaper/WallpaperCoordinator.h"
#include "wallpaper/WallpaperRotationCoordinator.h"
#include "wallpaper/WallpaperService.h"

namespace quillmar {

/// The features of the primary instance, each made once, from the bottom up. Making them starts the load of
/// the settings and nothing else; the application delegate starts and stops them.
class Subsystems {
public:
    explicit Subsystems(const Ports& platform);

    const AppSettings defaults;  ///< of a first run
    EventBus notifications;
    CacheFileProtection cacheFiles;
    SerialExecutor cacheExecutor;
    CacheMaintenanceService cacheMaintenance;
    SerialExecutor settingsExecutor;
    std::unique_ptr<SettingsStoring> settingsStore;
    AppSettingsModel settingsModel;
    LoginItemService loginItem;
    SerialExecutor importClaims;
    MediaImportRepository mediaImportFiles;
    MediaImportCoordinator mediaImports;
    SerialExecutor updateFiles;
    SoftwareUpdateController softwareUpdates;
    DisplayService displays;
    SerialExecutor historyFiles;
    PictureMemory pictureMemory;
    RemoteServices remoteServices;
    RemoteImageFetcher remoteImageFetcher;
    RemoteImageResolver remoteImages;
    RemoteErrorNotificationService remoteErrorNotifications;
    WallpaperApplicationGate wallpaperGate;
    SerialExecutor pictureFiles;
    PictureWriter pictureWriter;
    SerialExecutor desktopFiles;
    DesktopPictures desktopPictures;
    LastShownKeeper lastShownKeeper;
    WallpaperRenderer wallpaperRenderer;
    StaticPictures staticPictures;
    WallpaperService wallpaperService;
    WallpaperSettingsTransactionService wallpaperTransactions;
    WallpaperCoordinator wallpaperCoordinator;
    WallpaperRotationCoordinator wallpaperRotation;
    SerialExecutor backupExecutor;
    SettingsBackupService backupService{backupExecutor};
    RestoreFollowing restoreFollowing{wallpaperCoordinator, wallpaperRotation, loginItem};
};

}  // namespace quillmar

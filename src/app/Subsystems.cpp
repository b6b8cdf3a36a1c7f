#include "app/Subsystems.h"

#include "settings/SettingsStore.h"
#include "settings/records/SettingsCodec.h"

namespace quillmar {
namespace {

/// Below it every write fails where the user has no folder for passing files.
std::filesystem::path temporaryDirectoryOrNowhere(const Environment& environment) {
    try {
        return temporaryDirectory(environment);
    } catch (const ApplicationDirectoryError&) {
        return "/dev/null";
    }
}

}  // namespace

Subsystems::Subsystems(const Ports& platform)
    : defaults(defaultSettings(platform.bundle)),
      cacheExecutor(platform.backgroundPool),
      cacheMaintenance(cacheExecutor, cacheFiles, createdCacheDirectory(platform.environment), {}),
      settingsExecutor(platform.backgroundPool),
      settingsStore(
          makeSettingsStore([&] { return createdApplicationSupportDirectory(platform.environment); },
                            defaults, settingsExecutor)),
      settingsModel(platform.loop, notifications, *settingsStore, defaults, cacheFiles),
      loginItem(platform.loginItem, settingsModel),
      importClaims(platform.backgroundPool),
      mediaImportFiles({.copying = platform.backgroundPool,
                        .executor = importClaims,
                        .rendering = platform.pictureRendering,
                        .cacheFiles = cacheFiles,
                        .cacheRoot = applicationSupportDirectoryOrNowhere(platform.environment) / "Cache"}),
      mediaImports(platform.loop, notifications, mediaImportFiles),
      updateFiles(platform.backgroundPool),
      softwareUpdates(SoftwareUpdateConfiguration::of(platform.bundle),
                      {.loop = platform.loop,
                       .clock = platform.clock,
                       .session = platform.webSession,
                       .files = updateFiles,
                       .notificationCenter = platform.notificationCenter,
                       .settingsModel = settingsModel,
                       .currentVersion = platform.bundle.semanticVersion("unknown"),
                       .userAgent = "Quillmar/" + platform.bundle.semanticVersion("unknown"),
                       .memory = applicationStateDirectory(platform.environment) / "updates",
                       .downloads = applicationSupportDirectoryOrNowhere(platform.environment) / "Updates"}),
      displays(platform.screens),
      historyFiles(platform.backgroundPool),
      pictureMemory(historyFiles, applicationStateDirectory(platform.environment), platform.clock),
      remoteServices(RemoteServices::of(platform.bundle)),
      remoteImageFetcher(
          platform.webSession, platform.backgroundPool, platform.pictureRendering, platform.clock,
          {.cache = applicationSupportDirectoryOrNowhere(platform.environment) / "Cache/Images",
           .temporary = temporaryDirectoryOrNowhere(platform.environment),
           .userAgent = remoteServices.userAgent}),
      remoteImages({.fetching = remoteImageFetcher,
                    .services = remoteServices,
                    .clock = platform.clock,
                    .files = platform.backgroundPool,
                    .cacheFiles = cacheFiles,
                    .cacheDirectory = remoteImageFetcher.cacheDirectory(),
                    .randomIndex = platform.randomIndex}),
      remoteErrorNotifications(platform.notificationCenter, settingsModel, &logNotificationDiagnostic),
      pictureFiles(platform.backgroundPool),
      pictureWriter(platform.loop, platform.pictureEncoding, pictureFiles, cacheFiles),
      desktopFiles(platform.backgroundPool),
      desktopPictures({.loop = platform.loop,
                       .displays = displays,
                       .screens = platform.screens,
                       .choosing = platform.desktop,
                       .rendering = platform.pictureRendering,
                       .encoding = platform.pictureEncoding,
                       .writer = pictureWriter,
                       .cacheFiles = cacheFiles,
                       .executor = desktopFiles,
                       .folder = applicationSupportDirectoryOrNowhere(platform.environment) / "Desktop"}),
      lastShownKeeper(
          {.loop = platform.loop,
           .pictures = desktopPictures,
           .displays = displays,
           .rendering = platform.pictureRendering,
           .writer = pictureWriter,
           .executor = desktopFiles,
           .folder = applicationSupportDirectoryOrNowhere(platform.environment) / "Cache/LastShown"}),
      wallpaperRenderer({.cacheDirectory = applicationSupportDirectoryOrNowhere(platform.environment) /
                                           "Cache/GeneratedWallpapers",
                         .rendering = platform.pictureRendering,
                         .desktop = desktopPictures,
                         .executor = platform.backgroundPool,
                         .cacheFiles = cacheFiles,
                         .clock = platform.clock}),
      staticPictures({.desktop = desktopPictures,
                      .writer = pictureWriter,
                      .gate = wallpaperGate,
                      .renderer = wallpaperRenderer,
                      .executor = platform.backgroundPool,
                      .cacheFiles = cacheFiles,
                      .remoteImages = remoteImages,
                      .memory = pictureMemory,
                      .randomIndex = platform.randomIndex}),
      wallpaperService(displays, desktopPictures, wallpaperGate, {&staticPictures}),
      wallpaperTransactions(wallpaperService),
      wallpaperCoordinator(platform.loop, displays, wallpaperService, &wallpaperTransactions, settingsModel,
                           pictureMemory, wallpaperGate, platform.clock, &remoteErrorNotifications),
      wallpaperRotation(platform.loop, notifications, settingsModel, wallpaperCoordinator, platform.clock),
      backupExecutor(platform.backgroundPool) {}

}  // namespace quillmar

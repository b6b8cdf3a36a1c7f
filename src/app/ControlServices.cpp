#include "app/ControlServices.h"

namespace quillmar {
namespace {

Task<bool> mayNotify(RemoteErrorNotificationService* notifications) {
    co_await notifications->ensureAuthorization();
    co_return notifications->isAuthorized();
}

}  // namespace

ControlService::Services controlServices(const Ports& ports, Subsystems& subsystems,
                                         ApplicationWishes wishes) {
    const std::string version = ports.bundle.semanticVersion("unknown");
    const auto sendAnalytics = [&usage = ports.usageReporting](const std::string& message) {
        usage.sendMessage(message);
    };
    return {.loop = ports.loop,
            .notifications = subsystems.notifications,
            .channel = ports.control,
            .backup = {.settingsModel = subsystems.settingsModel,
                       .backupService = subsystems.backupService,
                       .following = subsystems.restoreFollowing,
                       .clock = ports.clock,
                       .defaults = subsystems.defaults,
                       .appVersion = version,
                       .sendAnalytics = sendAnalytics},
            .wallpaper = {.settingsModel = subsystems.settingsModel,
                          .coordinator = subsystems.wallpaperCoordinator,
                          .rotation = subsystems.wallpaperRotation,
                          .clock = ports.clock,
                          .version = version,
                          .displays = subsystems.displays,
                          .desktop = subsystems.desktopPictures,
                          .pictures = subsystems.pictureMemory,
                          .loginItem = subsystems.loginItem,
                          .updates = subsystems.softwareUpdates,
                          .files = ports.backgroundPool},
            .picture = {.settingsModel = subsystems.settingsModel,
                        .coordinator = subsystems.wallpaperCoordinator,
                        .displays = subsystems.displays,
                        .pictures = subsystems.pictureMemory,
                        .addresses = ports.addresses,
                        .files = ports.backgroundPool,
                        .environment = ports.environment},
            .general = {.settingsModel = subsystems.settingsModel,
                        .loginItem = subsystems.loginItem,
                        .version = version,
                        .mayNotify =
                            [service = &subsystems.remoteErrorNotifications] { return mayNotify(service); }},
            .update = {.settingsModel = subsystems.settingsModel,
                       .updates = subsystems.softwareUpdates,
                       .version = version},
            .quit = std::move(wishes.quit),
            .openSettings = std::move(wishes.openSettings),
            .isRecovering = std::move(wishes.isRecovering)};
}

SettingsWindowModel::Services settingsWindowServices(const Ports& ports, Subsystems& subsystems,
                                                     ApplicationWishes wishes) {
    auto openChangelog = wishes.openChangelog;
    ControlService::Services shared = controlServices(ports, subsystems, std::move(wishes));
    return {.loop = ports.loop,
            .notifications = subsystems.notifications,
            .alerts = ports.alerts,
            .files = ports.files,
            .general = std::move(shared.general),
            .wallpaper = {.loop = ports.loop,
                          .settingsModel = subsystems.settingsModel,
                          .coordinator = subsystems.wallpaperCoordinator,
                          .rotation = subsystems.wallpaperRotation,
                          .pictures = subsystems.pictureMemory,
                          .displays = subsystems.displays,
                          .desktop = subsystems.desktopPictures,
                          .writer = subsystems.pictureWriter,
                          .renderer = subsystems.wallpaperRenderer,
                          .imports = subsystems.mediaImports,
                          .cacheFiles = subsystems.cacheFiles,
                          .files = ports.backgroundPool},
            .backup = std::move(shared.backup),
            .about = {.bundle = ports.bundle,
                      .environment = ports.environment,
                      .displays = subsystems.displays,
                      .settingsModel = subsystems.settingsModel,
                      .addresses = ports.addresses,
                      .clipboard = ports.clipboard,
                      .openChangelog = std::move(openChangelog)},
            .quit = std::move(shared.quit),
            .isRecovering = std::move(shared.isRecovering)};
}

}  // namespace quillmar

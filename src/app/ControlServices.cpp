#include "app/ControlServices.h"

namespace quillmar {
namespace {

Task<bool> mayNotify(RemoteErrorNotificationService* notifications) {
    co_await notifications->ensureAuthorization();
    co_return notifications->isAuthorized();
}

}  // namespace

ControlService::Services controlServices(const Ports& ports, Subsystems& subsystems,
                                         std::function<void()> quit, std::function<bool()> isRecovering) {
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
            .quit = std::move(quit),
            .isRecovering = std::move(isRecovering)};
}

}  // namespace quillmar

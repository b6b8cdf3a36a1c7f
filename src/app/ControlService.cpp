#include "app/ControlService.h"

#include <fmt/format.h>

#include <system_error>

#include "base/Files.h"
#include "base/Text.h"
#include "storage/StoredFileGrant.h"

namespace quillmar {
namespace {

/// Keys are tens of characters; whatever is longer was chosen by mistake.
constexpr std::size_t maximumKeyBytes = 4096;

}  // namespace

ControlService::ControlService(const Ports& platform, Subsystems& subsystems, std::function<void()> quit)
    : backup_({.settingsModel = subsystems.settingsModel,
               .backupService = subsystems.backupService,
               .following = subsystems.restoreFollowing,
               .clock = platform.clock,
               .defaults = subsystems.defaults,
               .appVersion = platform.bundle.semanticVersion("Unknown"),
               .sendAnalytics = [&usage = platform.usageReporting](
                                    const std::string& message) { usage.sendMessage(message); }}),
      wallpaper_({.settingsModel = subsystems.settingsModel,
                  .coordinator = subsystems.wallpaperCoordinator,
                  .rotation = subsystems.wallpaperRotation,
                  .clock = platform.clock,
                  .version = platform.bundle.semanticVersion("unknown"),
                  .displays = subsystems.displays,
                  .desktop = subsystems.desktopPictures,
                  .grantFor =
                      [files = &platform.backgroundPool](Url url) { return grantFor(files, std::move(url)); },
                  .readKey = [files = &platform.backgroundPool](
                                 std::filesystem::path file) { return readKey(files, std::move(file)); }}),
      general_(subsystems.settingsModel, subsystems.remoteErrorNotifications),
      quit_(std::move(quit)),
      loop_(platform.loop) {}

Task<std::optional<Bytes>> ControlService::grantFor(Executor* files, Url url) {
    co_return co_await files->run([url = std::move(url)]() -> std::optional<Bytes> {
        const auto path = url.filePath();
        if (!path) return std::nullopt;
        try {
            return makeStoredFileGrant(*path);
        } catch (const std::system_error&) {
            return std::nullopt;  // what is not there is said when it is read
        }
    });
}

Task<std::string> ControlService::readKey(Executor* files, std::filesystem::path file) {
    co_return co_await files->run([file = std::move(file)] {
        try {
            return std::string(trimmed(readFile(file, maximumKeyBytes)));
        } catch (const std::system_error& error) {
            throw std::runtime_error(
                fmt::format("The key file {} cannot be read: {}.", file.string(), error.code().message()));
        }
    });
}

Task<ControlReply> ControlService::handle(ControlCall call) {
    const std::string command = call.arguments.empty() ? "" : call.arguments.front();
    if (command == "backup") co_return co_await backup_.run(std::move(call));
    if (command == "wallpaper" || command == "status") co_return co_await wallpaper_.run(std::move(call));
    if (command == "general") co_return co_await general_.run(std::move(call));
    if (command == "quit" && call.arguments.size() == 1) {
        // Later, so that the answer is on its way before the program is.
        quitting_ = Scheduled(loop_, quit_);
        co_return ControlReply{};
    }
    co_return ControlReply{.status = 2, .errors = fmt::format("There is no command \"{}\".\n", command)};
}

}  // namespace quillmar

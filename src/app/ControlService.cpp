#include "app/ControlService.h"

#include <fmt/format.h>

namespace quillmar {

ControlService::ControlService(const Platform& platform, Subsystems& subsystems, std::function<void()> quit)
    : backup_({.settingsModel = subsystems.settingsModel,
               .backupService = subsystems.backupService,
               .following = subsystems.restoreFollowing,
               .clock = platform.clock,
               .defaults = subsystems.defaults,
               .appVersion = platform.bundle.semanticVersion("Unknown"),
               .sendAnalytics = [&usage = platform.usageReporting](
                                    const std::string& message) { usage.sendMessage(message); }}),
      quit_(std::move(quit)),
      loop_(platform.loop) {}

Task<ControlReply> ControlService::handle(ControlCall call) {
    const std::string command = call.arguments.empty() ? "" : call.arguments.front();
    if (command == "backup") co_return co_await backup_.run(std::move(call));
    if (command == "quit" && call.arguments.size() == 1) {
        // Later, so that the answer is on its way before the program is.
        quitting_ = Scheduled(loop_, quit_);
        co_return ControlReply{};
    }
    co_return ControlReply{.status = 2, .errors = fmt::format("There is no command \"{}\".\n", command)};
}

}  // namespace quillmar

#include "control/ControlService.h"

#include "commandline/Help.h"
#include "control/DisplayList.h"

namespace quillmar {

ControlService::ControlService(Services services)
    : backup_(std::move(services.backup)),
      wallpaper_(services.wallpaper),
      picture_(std::move(services.picture)),
      general_(std::move(services.general)),
      displays_(services.wallpaper.displays),
      version_(services.wallpaper.version),
      coordinator_(services.wallpaper.coordinator),
      changes_({.loop = services.loop,
                .notifications = services.notifications,
                .settingsModel = services.wallpaper.settingsModel,
                .wallpapers = wallpaper_,
                .channel = services.channel,
                .version = version_}),
      quit_(std::move(services.quit)),
      loop_(services.loop) {
    coordinator_.setChangeHandler([this](const std::string& id) { changes_.displayDidChange(id); });
}

Task<ControlReply> ControlService::handle(ControlCall call) {
    ControlReply reply;
    try {
        CommandLine line = CommandLine::parse(call.arguments);
        judge(line);
        reply = co_await carryOut(std::move(line), call.workingDirectory);
    } catch (const CancellationError&) {
        throw;
    } catch (const UsageError& error) {
        reply = {.status = usageStatus, .errors = error.complaint(language()) + versionNote(call)};
    } catch (const std::exception& error) {
        reply = {.status = 1, .errors = errorText(error, language()) + "\n"};
    }
    co_return reply;
}

Task<ControlReply> ControlService::carryOut(CommandLine line, std::string folder) {
    if (line.wish == CommandLine::Wish::help)
        co_return ControlReply{.output = helpText(line.helpOn, language())};
    if (line.wish != CommandLine::Wish::command)
        co_return ControlReply{.output = "Quillmar " + version_ + "\n"};
    const std::string& words = line.command->words;
    if (words.starts_with("backup")) co_return co_await backup_.run(std::move(line), std::move(folder));
    if (words.starts_with("general")) co_return co_await general_.run(std::move(line));
    if (PictureCommand::carriesOut(line)) co_return co_await picture_.run(std::move(line));
    if (words == "displays") {
        const auto displays = displays_.displays();
        co_return ControlReply{.output = line.wantsJson() ? displaysAsJson(displays, version_)
                                                          : displaysAsText(displays, language())};
    }
    if (words == "watch") {
        const ControlEvent now = changes_.present();
        co_return ControlReply{.output = line.wantsJson() ? now.json + "\n" : now.text};
    }
    if (words == "quit") {
        // Later, so that the answer is on its way before the program is.
        quitting_ = Scheduled(loop_, quit_);
        co_return ControlReply{};
    }
    co_return co_await wallpaper_.run(std::move(line), std::move(folder));
}

std::string ControlService::versionNote(const ControlCall& call) const {
    if (call.version.empty() || call.version == version_) return {};
    return localized(
               "Quillmar %@ is running, and this command is of version %@: quit Quillmar and start it "
               "again."_key,
               language(), {version_, call.version}) +
           "\n";
}

}  // namespace quillmar

#include "control/ControlService.h"

#include "commandline/Help.h"
#include "control/DisplayList.h"

namespace quillmar {

ControlService::ControlService(Services services)
    : settingsModel_(services.wallpaper.settingsModel),
      backup_(std::move(services.backup)),
      wallpaper_(services.wallpaper),
      picture_(std::move(services.picture)),
      general_(std::move(services.general)),
      update_(std::move(services.update)),
      displays_(services.wallpaper.displays),
      version_(services.wallpaper.version),
      changes_({.loop = services.loop,
                .notifications = services.notifications,
                .settingsModel = services.wallpaper.settingsModel,
                .wallpapers = wallpaper_,
                .channel = services.channel,
                .version = version_}),
      following_(services.wallpaper.coordinator.observeChanges(
          [this](const std::string& id) { changes_.displayDidChange(id); })),
      quit_(std::move(services.quit)),
      openSettings_(std::move(services.openSettings)),
      isRecovering_(std::move(services.isRecovering)),
      loop_(services.loop) {}

Task<ControlReply> ControlService::handle(ControlCall call) {
    ControlReply reply;
    try {
        CommandLine line = CommandLine::parse(call.arguments);
        judge(line);
        if (line.wish == CommandLine::Wish::command) co_await followSettingsFile();
        reply = co_await carryOut(std::move(line), call.workingDirectory);
    } catch (const CancellationError&) {
        throw;
    } catch (const UsageError& error) {
        reply = {.status = usageStatus, .errors = error.complaint(language()) + versionNote(call)};
    } catch (const std::exception& error) {
        reply = {.status = 1, .errors = errorText(error, language()) + "\n"};
    }
    reply.errors += recoveryNote();
    co_return reply;
}

/// An edit is older than the command that comes after it, whoever hears of it first.
Task<void> ControlService::followSettingsFile() {
    const auto hold = co_await settingsModel_.transactionGate().acquire();
    co_await settingsModel_.followFile();
}

std::string ControlService::recoveryNote() const {
    if (!settingsModel_.isLoaded() || (settingsModel_.canPersist() && !isRecovering_())) return {};
    const auto note = [&](TextKey sentence) {
        const std::string reason = settingsModel_.loadError().value_or("");
        return localized(sentence, language(), {reason}) + "\n";
    };
    if (settingsModel_.canPersist()) {
        return note(
            "Quillmar is still in recovery mode, though its settings can be read again: quit it and start it again."_key);
    }
    if (isRecovering_()) {
        return note(
            "Quillmar is in recovery mode, because it cannot read its settings (%@). Mend the file, or use \"quillmar backup restore FILE\" or \"quillmar backup reset\"; then quit it and start it again."_key);
    }
    return note(
        "The settings file cannot be read, so nothing is saved (%@). Mend it, or use \"quillmar backup restore FILE\" or \"quillmar backup reset\"."_key);
}

Task<ControlReply> ControlService::carryOut(CommandLine line, std::string folder) {
    if (line.wish == CommandLine::Wish::help)
        co_return ControlReply{.output = helpText(line.helpOn, language())};
    if (line.wish != CommandLine::Wish::command)
        co_return ControlReply{.output = "Quillmar " + version_ + "\n"};
    const std::string& words = line.command->words;
    if (words.starts_with("backup")) co_return co_await backup_.run(std::move(line), std::move(folder));
    if (words == "settings") co_return co_await showSettings(std::move(line));
    if (words.starts_with("general")) co_return co_await general_.run(std::move(line));
    if (words.starts_with("update")) co_return co_await update_.run(std::move(line));
    if (PictureCommand::carriesOut(line)) co_return co_await picture_.run(std::move(line));
    if (words == "displays") {
        const auto displays = displays_.displays();
        co_return ControlReply{.output = line.wantsJson() ? displaysAsJson(displays, version_)
                                                          : displaysAsText(displays, language())};
    }
    // Without settings there is no next picture; the note says the rest.
    if (words == "wallpaper next" && isRecovering_()) co_return ControlReply{.status = 1};
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

Task<ControlReply> ControlService::showSettings(CommandLine line) {
    co_await settingsModel_.loaded();
    openSettings_(line.operands.empty() ? "" : line.operands.front());
    co_return ControlReply{};
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

#include "control/WallpaperCommand.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "base/Files.h"
#include "base/Text.h"
#include "control/CommandError.h"
#include "control/DisplayList.h"
#include "storage/StoredFileGrant.h"

namespace quillmar {
namespace {

/// Keys are tens of characters; whatever is longer was chosen by mistake.
constexpr std::size_t maximumKeyBytes = 4096;

/// Gives the displays the mode. With `keepsKey` the key that a display has for the service stays: nobody
/// types it twice.
void choose(const WallpaperMode& mode, bool keepsKey, const DisplayIDs& ids, WallpaperSettings& settings) {
    settings.ensureEntries(std::vector<std::string>(ids.begin(), ids.end()));
    for (const std::string& id : ids) {
        DisplayWallpaperSettings* entry = findEntry(settings.displays, id);
        entry->selectMode(mode.kind());
        WallpaperMode former = std::exchange(entry->mode, mode);
        if (std::string* key = keyOf(entry->mode).text; key && keepsKey) *key = *keyOf(former).text;
    }
}

}  // namespace

Task<ControlReply> WallpaperCommand::run(CommandLine line, std::filesystem::path folder) {
    co_await services_.settingsModel.loaded();
    if (line.is("wallpaper set"))
        co_return co_await set(parseWallpaperMode(line, folder), line.operands.front());
    const std::string display = line.operands.empty() ? "all" : line.operands.front();
    if (line.is("wallpaper next")) co_return co_await show(HistoryStep::forward, matching(display));
    if (line.is("wallpaper previous")) co_return co_await show(HistoryStep::back, matching(display));
    if (line.is("wallpaper info")) co_return co_await info(matching(display), line.wantsJson());
    const bool isWhole = line.is("status");
    if (isWhole) co_await services_.loginItem.refresh();
    const ProgramStatus found = co_await status();
    if (line.wantsJson())
        co_return ControlReply{.output = isWhole ? statusAsJson(found) : displaysStatusAsJson(found)};
    co_return ControlReply{.output = isWhole ? statusAsText(found, language())
                                             : displaysStatusAsText(found.displays, language())};
}

DisplayIDs WallpaperCommand::matching(const std::string& name) const {
    return displaysCalled(name, services_.displays.displays());
}

Task<std::optional<Bytes>> WallpaperCommand::grantFor(std::optional<Url> url) {
    const auto path = url ? url->filePath() : std::nullopt;
    if (!path) co_return std::nullopt;
    co_return co_await grantIfThere(services_.files, *path);
}

Task<std::string> WallpaperCommand::readKey(std::filesystem::path file) {
    co_return co_await services_.files.run([file = std::move(file)] {
        try {
            return std::string(trimmed(readFile(file, maximumKeyBytes)));
        } catch (const std::system_error& error) {
            throw CommandError("The key file %@ cannot be read: %@."_key,
                               {file.string(), error.code().message()});
        }
    });
}

Task<ControlReply> WallpaperCommand::set(WallpaperModeArguments arguments, std::string display) {
    auto [mode, keyFile, namesKey] = std::move(arguments);
    const bool keepsKey = !keyFile && !namesKey;
    const DisplayIDs ids = matching(display);
    if (keyFile) *keyOf(mode).text = co_await readKey(*std::move(keyFile));
    if (auto* image = std::get_if<ImagePresentationSettings>(&mode.value)) {
        image->imageBookmark = co_await grantFor(image->imageURL);
    }
    if (auto* slideshow = std::get_if<SlideshowPresentationSettings>(&mode.value)) {
        slideshow->folderBookmark = co_await grantFor(slideshow->folderURL);
    }
    const auto change = [ids, chosen = std::move(mode), keepsKey](auto& settings) {
        choose(chosen, keepsKey, ids, settings);
    };
    co_return replyOf(co_await services_.coordinator.apply(change, ids));
}

Task<ControlReply> WallpaperCommand::show(HistoryStep step, DisplayIDs displays) {
    WallpaperCoordinator& coordinator = services_.coordinator;
    co_return replyOf(step == HistoryStep::back ? co_await coordinator.showPrevious(std::move(displays))
                                                : co_await coordinator.showNext(std::move(displays)));
}

Task<ControlReply> WallpaperCommand::info(DisplayIDs displays, bool wantsJson) const {
    ProgramStatus found = co_await status();
    std::erase_if(found.displays,
                  [&](const WallpaperStatus& status) { return !displays.contains(status.display.id); });
    if (wantsJson) co_return ControlReply{.output = displaysStatusAsJson(std::move(found))};
    co_return ControlReply{.output = infoAsText(found.displays, language())};
}

ControlReply WallpaperCommand::replyOf(const WallpaperApplyBatchResult& batch) const {
    ControlReply reply;
    for (const WallpaperDisplayApplyResult& display : batch.displays) {
        if (display.isFailed()) {
            reply.errors += fmt::format("{}: {}\n", display.displayName, *display.failureMessage);
        } else {
            reply.output += localized("%@: applied"_key, language(), {display.displayName}) + "\n";
        }
    }
    for (const WallpaperRollbackFailure& failure : batch.rollbackFailures) {
        reply.errors += localized("%@: could not be taken back: %@"_key, language(),
                                  {failure.displayName, failure.message}) +
                        "\n";
    }
    if (batch.transactionFailureMessage) reply.errors += *batch.transactionFailureMessage + "\n";
    reply.status = batch.hasFailure() ? 1 : 0;
    return reply;
}

Task<ProgramStatus> WallpaperCommand::status() const {
    // Each display's line holds together only when nothing is waited for between its parts.
    const auto shown = co_await services_.desktop.shown();
    ProgramStatus program = statusWithoutDesktop();
    if (const auto obstacle = services_.desktop.obstacle())
        program.desktopFault = errorText(obstacle, language());
    for (WallpaperStatus& status : program.displays) {
        if (const auto file = shown.find(status.display.id); file != shown.end())
            status.shows = file->second.string();
    }
    co_return program;
}

ProgramStatus WallpaperCommand::statusWithoutDesktop() const {
    const AppSettingsModel& model = services_.settingsModel;
    ProgramStatus program{.version = services_.version,
                          .areRotationsPaused = model.settings().general.pauseRotations,
                          .displays = {},
                          .settingsFault = model.loadError(),
                          .saveFailure = model.saveError(),
                          .unsavedSettings = {},
                          .loginItem = services_.loginItem.status(),
                          .loginItemDifference = services_.loginItem.difference(),
                          .update = services_.updates.available(),
                          .updateFailure = services_.updates.lastFailure()};
    if (const auto& file = model.unsavedFile()) program.unsavedSettings = file->string();
    for (const DisplayInfo& display : services_.displays.displays()) {
        program.displays.push_back(statusOf(display));
    }
    return program;
}

WallpaperStatus WallpaperCommand::statusOf(const DisplayInfo& display) const {
    const auto& entries = services_.rotation.schedule().entries;
    const auto& failures = services_.coordinator.lastFailures();
    const auto* entry = findEntry(services_.settingsModel.settings().wallpaper.displays, display.id);
    WallpaperStatus status{display, entry ? entry->mode : WallpaperMode{}};
    if (const auto found = entries.find(display.id); found != entries.end()) {
        const auto& [descriptor, next, failureCount] = found->second;
        const Seconds wait = next - services_.clock.now();
        status.rotation = {descriptor.interval.count(), next, std::max(wait.count(), 0.0), failureCount};
    }
    if (const auto* picture = services_.pictures.history().current(display.id)) status.picture = *picture;
    const auto& leftOut = services_.coordinator.leftOut();
    if (const auto found = leftOut.find(display.id); found != leftOut.end()) {
        status.leftOut.emplace();
        for (const auto& [message, date] : found->second) status.leftOut->push_back({message, date});
    }
    if (const auto found = failures.find(display.id); found != failures.end()) {
        status.lastFailure = {found->second.message, found->second.date};
    }
    return status;
}

}  // namespace quillmar

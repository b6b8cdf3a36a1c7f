#include "app/WallpaperCommand.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "app/WallpaperModeArguments.h"
#include "base/Text.h"

namespace quillmar {
namespace {

constexpr std::string_view usage =
    "Usage: quillmar wallpaper [--json]\n"
    "       quillmar wallpaper set DISPLAY|all KIND...\n"
    "       quillmar wallpaper next [DISPLAY|all]\n"
    "DISPLAY is an ID, a name or \"main\". KIND is one of\n"
    "  colour #RRGGBB\n"
    "  image FILE [--layout LAYOUT] [--background #RRGGBB]\n"
    "  slideshow FOLDER [--interval SECONDS] [--shuffle] [--subfolders] [--layout LAYOUT] [--background "
    "#RRGGBB]\n"
    "  apod, nasa-epic, bing, spotlight, unsplash, wallhaven or museums, with options that are called as\n"
    "  the service's settings: --locale de-DE, --switchAutomatically, --sources rijksmuseum,smkDenmark ...;\n"
    "  a key is given as --apiKeyFile FILE, --accessKeyFile FILE or --smithsonianAPIKeyFile FILE\n"
    "  mode JSON\n"
    "  disabled\n"
    "LAYOUT is center, tile, stretch, fit or fill.\n";

/// A line for each display.
ControlReply replyOf(const WallpaperApplyBatchResult& batch) {
    ControlReply reply;
    for (const WallpaperDisplayApplyResult& display : batch.displays) {
        if (display.isFailed()) {
            reply.errors += fmt::format("{}: {}\n", display.displayName, *display.failureMessage);
        } else {
            reply.output += fmt::format("{}: applied\n", display.displayName);
        }
    }
    for (const WallpaperRollbackFailure& failure : batch.rollbackFailures) {
        reply.errors +=
            fmt::format("{}: could not be taken back: {}\n", failure.displayName, failure.message);
    }
    if (batch.transactionFailureMessage) reply.errors += *batch.transactionFailureMessage + "\n";
    reply.status = batch.hasFailure() ? 1 : 0;
    return reply;
}

bool isJsonAsked(const std::vector<std::string>& words) {
    const bool isAsked = words.size() == 1 && words.front() == "--json";
    if (!isAsked && !words.empty()) throw UsageError(fmt::format("There is no option \"{}\".", words.back()));
    return isAsked;
}

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

DisplayIDs idsOf(const std::vector<DisplayInfo>& displays) {
    DisplayIDs ids;
    for (const DisplayInfo& display : displays) ids.insert(display.id);
    return ids;
}

}  // namespace

Task<ControlReply> WallpaperCommand::run(ControlCall call) {
    co_await services_.settingsModel.loaded();
    std::vector<std::string> words(std::next(call.arguments.begin()), call.arguments.end());
    try {
        if (call.arguments.front() == "status") co_return co_await status(std::move(words));
        if (words.empty() || words.front().starts_with("--")) co_return co_await list(std::move(words));
        if (words.front() == "set")
            co_return co_await set(std::move(words), std::move(call.workingDirectory));
        if (words.front() == "next") co_return co_await showNext(std::move(words));
        throw UsageError(fmt::format("\"wallpaper\" has no command \"{}\".", words.front()));
    } catch (const UsageError& error) {
        co_return ControlReply{.status = 2, .errors = std::string(error.what()) + "\n" + std::string(usage)};
    }
}

std::vector<DisplayInfo> WallpaperCommand::matching(const std::string& name) const {
    std::vector<DisplayInfo> displays = services_.displays.displays();
    if (name == "all") return displays;
    std::erase_if(displays, [&](const DisplayInfo& display) {
        return display.id != name && lowercased(display.localizedName) != lowercased(name) &&
               !(name == "main" && display.isMain);
    });
    if (displays.empty()) throw std::runtime_error(fmt::format("No display \"{}\" is connected.", name));
    if (displays.size() > 1) {
        throw std::runtime_error(fmt::format("Several displays are called \"{}\"; use an ID.", name));
    }
    return displays;
}

Task<ControlReply> WallpaperCommand::set(std::vector<std::string> words, std::string workingDirectory) {
    if (words.size() < 2) throw UsageError("The display was not named.");
    auto [mode, keyFile, namesKey] = parseWallpaperMode(std::span(words).subspan(2), workingDirectory);
    const bool keepsKey = !keyFile && !namesKey;
    const DisplayIDs ids = idsOf(matching(words[1]));
    if (keyFile) *keyOf(mode).text = co_await services_.readKey(*std::move(keyFile));
    if (auto* image = std::get_if<ImagePresentationSettings>(&mode.value); image && image->imageURL) {
        image->imageBookmark = co_await services_.grantFor(*image->imageURL);
    }
    if (auto* slideshow = std::get_if<SlideshowPresentationSettings>(&mode.value);
        slideshow && slideshow->folderURL) {
        slideshow->folderBookmark = co_await services_.grantFor(*slideshow->folderURL);
    }
    const auto change = [ids, chosen = std::move(mode), keepsKey](auto& settings) {
        choose(chosen, keepsKey, ids, settings);
    };
    co_return replyOf(co_await services_.coordinator.apply(change, ids));
}

Task<ControlReply> WallpaperCommand::showNext(std::vector<std::string> words) {
    if (words.size() > 2) throw UsageError(fmt::format("\"wallpaper next\" does not take \"{}\".", words[2]));
    const DisplayIDs ids = idsOf(matching(words.size() == 2 ? words[1] : "all"));
    co_return replyOf(co_await services_.coordinator.enqueue(ids, WallpaperApplyReason::rotation));
}

Task<ControlReply> WallpaperCommand::list(std::vector<std::string> words) const {
    std::vector<WallpaperStatus> displays = co_await statuses();
    co_return ControlReply{.output = isJsonAsked(words) ? statusAsJson(std::move(displays))
                                                        : statusAsText(displays)};
}

Task<ControlReply> WallpaperCommand::status(std::vector<std::string> words) const {
    ProgramStatus program{services_.version, services_.settingsModel.settings().general.pauseRotations,
                          co_await statuses()};
    co_return ControlReply{.output =
                               isJsonAsked(words) ? statusAsJson(std::move(program)) : statusAsText(program)};
}

Task<std::vector<WallpaperStatus>> WallpaperCommand::statuses() const {
    const auto shown = co_await services_.desktop.shown();
    std::vector<WallpaperStatus> displays;
    const auto& entries = services_.rotation.schedule().entries;
    const auto& failures = services_.coordinator.lastFailures();
    for (const ConnectedDisplay& connected : services_.displays.connectedDisplays()) {
        const auto* entry =
            findEntry(services_.settingsModel.settings().wallpaper.displays, connected.info.id);
        WallpaperStatus status{connected.info, entry ? entry->mode : WallpaperMode{}};
        if (const auto file = shown.find(connected.info.id); file != shown.end())
            status.shows = file->second.string();
        if (const auto found = entries.find(connected.info.id); found != entries.end()) {
            const auto& [descriptor, next, failureCount] = found->second;
            const Seconds wait = next - services_.clock.now();
            status.rotation = {descriptor.interval.count(), next, std::max(wait.count(), 0.0), failureCount};
        }
        if (const auto found = failures.find(connected.info.id); found != failures.end()) {
            status.lastFailure = {found->second.message, found->second.date};
        }
        displays.push_back(std::move(status));
    }
    co_return displays;
}

}  // namespace quillmar

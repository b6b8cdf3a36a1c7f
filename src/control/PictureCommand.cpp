#include "control/PictureCommand.h"

#include "base/FileError.h"
#include "control/CommandError.h"
#include "control/DisplayList.h"
#include "history/FavouritePictures.h"
#include "storage/PicturesFolder.h"

namespace quillmar {
namespace {

bool isWebAddress(const Url& url) { return url.scheme() == "https" || url.scheme() == "http"; }

/// The page about a picture, or else the picture itself.
Url addressOf(const ShownPicture& picture) {
    const auto page = picture.credit.sourceURL ? Url::parse(*picture.credit.sourceURL) : std::nullopt;
    return page && isWebAddress(*page) ? *page : *picture.fileURL;
}

}  // namespace

bool PictureCommand::carriesOut(const CommandLine& line) {
    return line.is("wallpaper open") || line.is("wallpaper favourite") || line.is("wallpaper trash");
}

Task<ControlReply> PictureCommand::run(CommandLine line) {
    co_await services_.settingsModel.loaded();
    ControlReply reply;
    for (Target& target : targets(line)) {
        try {
            if (line.is("wallpaper open"))
                co_await open(std::move(target), &reply);
            else if (line.is("wallpaper favourite"))
                co_await keep(std::move(target), &reply);
            else
                co_await trash(std::move(target), &reply);
        } catch (const AppLocalizableError& error) {
            reply.status = 1;
            reply.errors += error.message(language()) + "\n";
        }
    }
    co_return reply;
}

std::vector<PictureCommand::Target> PictureCommand::targets(const CommandLine& line) const {
    const std::vector<DisplayInfo> connected = services_.displays.displays();
    const DisplayIDs ids = displaysCalled(line.operands.empty() ? "main" : line.operands.front(), connected);
    std::vector<Target> found;
    for (const DisplayInfo& display : connected) {
        const ShownPicture* picture = services_.pictures.history().current(display.id);
        if (ids.contains(display.id) && picture && picture->fileURL) found.push_back({display, *picture});
    }
    if (found.empty()) throw CommandError("Quillmar shows no picture of a file there."_key);
    return found;
}

Task<void> PictureCommand::open(Target target, ControlReply* reply) {
    const Url address = addressOf(target.picture);
    if (!co_await services_.addresses.open(address))
        throw CommandError("No program of this desktop opens %@."_key, {address.displayPath()});
    reply->output += address.displayPath() + "\n";
}

Task<void> PictureCommand::keep(Target target, ControlReply* reply) {
    const FavouritePicture kept = co_await services_.files.run(
        [picture = std::move(target.picture), environment = services_.environment] {
            return keepFavourite(picture, favouritesFolder(environment));
        });
    reply->output += kept.isNew ? localized("%@: copied"_key, language(), {kept.file.string()})
                                : localized("%@: was there already"_key, language(), {kept.file.string()});
    reply->output += "\n";
}

/// A file that somebody gave the display by its name comes as long as nobody gives it another. One that was
/// gone back to is none.
bool PictureCommand::wasChosen(const DisplayInfo& display, const ShownPicture& picture) const {
    const auto* entry = findEntry(services_.settingsModel.settings().wallpaper.displays, display.id);
    return entry && entry->mode.kind() == WallpaperModeKind::image &&
           picture.kind == WallpaperModeKind::image;
}

Task<void> PictureCommand::trash(Target target, ControlReply* reply) {
    if (wasChosen(target.display, target.picture)) {
        throw CommandError("%@ shows a file that was chosen for it: give it another wallpaper."_key,
                           {target.display.localizedName});
    }
    const Url file = *target.picture.fileURL;
    services_.pictures.ban(file);
    try {
        co_await services_.pictures.bansAreKept();
        reply->output += localized("%@: in the trash"_key, language(), {file.displayPath()}) + "\n";
    } catch (const FileError& error) {
        // It is left out until the next start at least, so the display goes on.
        reply->status = 1;
        reply->errors += error.message(language()) + "\n";
    }
    DisplayIDs showing;
    for (const DisplayInfo& display : services_.displays.displays()) {
        const ShownPicture* now = services_.pictures.history().current(display.id);
        if (now && now->fileURL == file && !wasChosen(display, *now)) showing.insert(display.id);
    }
    if (!showing.empty()) co_await goOn(std::move(showing), reply);
}

/// To the next picture; where there is none to be had, back to an earlier one.
Task<void> PictureCommand::goOn(DisplayIDs displays, ControlReply* reply) {
    const auto batch = co_await services_.coordinator.enqueue(displays, WallpaperApplyReason::rotation);
    DisplayIDs stuck;
    for (const WallpaperDisplayApplyResult& result : batch.displays) {
        if (!result.isFailed()) continue;
        stuck.insert(result.displayID);
        reply->errors += result.displayName + ": " + *result.failureMessage + "\n";
    }
    if (stuck.empty()) co_return;
    const auto back = co_await services_.coordinator.showPrevious(std::move(stuck));
    for (const WallpaperDisplayApplyResult& result : back.displays) {
        if (!result.isFailed()) continue;
        reply->status = 1;
        reply->errors += result.displayName + ": " + *result.failureMessage + "\n";
    }
}

}  // namespace quillmar

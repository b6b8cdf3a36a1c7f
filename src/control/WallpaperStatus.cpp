#include "control/WallpaperStatus.h"

#include <fmt/format.h>

#include <cmath>

#include "base/JsonRecord.h"
#include "base/LocalDateTime.h"
#include "commandline/WallpaperModeArguments.h"
#include "control/UpdateCommand.h"

namespace quillmar {
namespace {

/// The part of `ProgramStatus` that "quillmar wallpaper" says.
struct DisplaysDocument {
    std::string version;
    std::vector<WallpaperStatus> displays;

    static void describe(auto& self, auto& io) {
        io.required("version", self.version).required("displays", self.displays);
    }
};

void redactKeys(std::vector<WallpaperStatus>& displays) {
    for (WallpaperStatus& status : displays) {
        if (std::string* key = keyOf(status.mode).text; key && !key->empty()) *key = redactedKey;
    }
}

/// What tells one mode of its kind from another at a glance.
std::string detail(const WallpaperMode& mode) {
    const auto path = [](const std::optional<Url>& url) {
        return url ? " " + url->displayPath() : std::string();
    };
    if (const auto* color = std::get_if<SolidColorPresentationSettings>(&mode.value))
        return " " + color->hexColor;
    if (const auto* image = std::get_if<ImagePresentationSettings>(&mode.value)) return path(image->imageURL);
    if (const auto* show = std::get_if<SlideshowPresentationSettings>(&mode.value))
        return path(show->folderURL);
    return {};
}

std::string headingOf(const DisplayInfo& display, const WallpaperMode& mode, GeneralLanguage language) {
    return fmt::format("{} {} ({}): {}{}\n", display.isMain ? '*' : ' ', display.localizedName, display.id,
                       localized(title(mode.kind()), language), detail(mode));
}

/// In one line; empty when nothing is known.
std::string creditLine(const PictureCredit& credit) {
    std::string line;
    for (const auto& part : {credit.title, credit.author, credit.licence, credit.sourceURL}) {
        if (part) line += (line.empty() ? "" : ", ") + *part;
    }
    return line;
}

std::string lengthOf(double seconds) {
    const auto whole = static_cast<std::int64_t>(std::llround(seconds));
    if (whole < 60) return fmt::format("{} s", whole);
    if (whole < 3600) return fmt::format("{} min {} s", whole / 60, whole % 60);
    return fmt::format("{} h {} min", whole / 3600, whole / 60 % 60);
}

}  // namespace

std::string statusAsJson(ProgramStatus program) {
    redactKeys(program.displays);
    return json::encode(program);
}

std::string displaysStatusAsJson(ProgramStatus program) {
    redactKeys(program.displays);
    return json::encode(DisplaysDocument{std::move(program.version), std::move(program.displays)});
}

std::string changeAsJson(ChangeDocument change) {
    redactKeys(change.displays);
    return json::encodeCompact(change);
}

std::string statusAsText(const ProgramStatus& program, GeneralLanguage language) {
    const std::string pause =
        program.areRotationsPaused ? localized(", rotations are paused"_key, language) : std::string();
    std::string text = fmt::format("Quillmar {}{}\n", program.version, pause);
    if (program.desktopFault) text += *program.desktopFault + "\n";
    if (program.saveFailure) {
        text += localized("The settings could not be saved: %@"_key, language, {*program.saveFailure}) + "\n";
    }
    if (program.unsavedSettings) {
        text += localized(
                    "The settings file was edited while a change was not saved yet, which is kept in %@."_key,
                    language, {*program.unsavedSettings}) +
                "\n";
    }
    if (program.loginItemDifference) text += *program.loginItemDifference + "\n";
    if (program.update) text += updateAsText(*program.update, language);
    if (program.updateFailure) {
        text += localized("The last look for a newer version failed: %@"_key, language,
                          {*program.updateFailure}) +
                "\n";
    }
    return text + displaysStatusAsText(program.displays, language);
}

std::string displaysStatusAsText(const std::vector<WallpaperStatus>& displays, GeneralLanguage language) {
    if (displays.empty()) return localized("No display is connected."_key, language) + "\n";
    std::string text;
    const auto line = [&](const std::string& words) { text += "    " + words + "\n"; };
    for (const auto& [display, mode, shows, picture, rotation, lastFailure, leftOut] : displays) {
        text += headingOf(display, mode, language);
        if (shows) line(localized("shows %@"_key, language, {*shows}));
        if (const std::string credit = picture ? creditLine(picture->credit) : ""; !credit.empty())
            line(localized("that is: %@"_key, language, {credit}));
        if (rotation) {
            std::string change = localized("changes in %@"_key, language, {lengthOf(rotation->waitSeconds)});
            if (rotation->consecutiveFailures > 0) {
                change += localized(", failed %lldx in a row"_key, language, {rotation->consecutiveFailures});
            }
            line(change);
        }
        if (lastFailure) line(localized("failed: %@"_key, language, {lastFailure->message}));
        for (const FailureStatus& one : leftOut.value_or(std::vector<FailureStatus>{}))
            line(localized("left out: %@"_key, language, {one.message}));
    }
    return text;
}

std::string infoAsText(const std::vector<WallpaperStatus>& displays, GeneralLanguage language) {
    std::string text;
    for (const WallpaperStatus& status : displays) {
        text += headingOf(status.display, status.mode, language);
        const auto line = [&](TextKey words, const std::optional<std::string>& value) {
            if (value) text += "    " + localized(words, language, {*value}) + "\n";
        };
        if (!status.picture) {
            text += "    " + localized("Quillmar shows no picture here."_key, language) + "\n";
            continue;
        }
        const auto& [kind, date, fileURL, color, layout, background, caption, credit] = *status.picture;
        line("title: %@"_key, credit.title);
        line("author: %@"_key, credit.author);
        line("licence: %@"_key, credit.licence);
        line("source: %@"_key, credit.sourceURL);
        line("file: %@"_key, fileURL ? std::optional(fileURL->displayPath()) : std::nullopt);
        line("colour: %@"_key, color);
        line("since: %@"_key, shortLocalText(date, language));
    }
    return text;
}

}  // namespace quillmar

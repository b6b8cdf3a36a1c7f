#include "control/WallpaperStatus.h"

#include <fmt/format.h>

#include <cmath>

#include "base/JsonRecord.h"
#include "commandline/WallpaperModeArguments.h"

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

void redactKeys(ProgramStatus& program) {
    for (WallpaperStatus& status : program.displays) {
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

std::string lengthOf(double seconds) {
    const auto whole = static_cast<std::int64_t>(std::llround(seconds));
    if (whole < 60) return fmt::format("{} s", whole);
    if (whole < 3600) return fmt::format("{} min {} s", whole / 60, whole % 60);
    return fmt::format("{} h {} min", whole / 3600, whole / 60 % 60);
}

}  // namespace

std::string statusAsJson(ProgramStatus program) {
    redactKeys(program);
    return json::encode(program);
}

std::string displaysStatusAsJson(ProgramStatus program) {
    redactKeys(program);
    return json::encode(DisplaysDocument{std::move(program.version), std::move(program.displays)});
}

std::string statusAsText(const ProgramStatus& program, GeneralLanguage language) {
    const std::string pause =
        program.areRotationsPaused ? localized(", rotations are paused"_key, language) : std::string();
    std::string text = fmt::format("Quillmar {}{}\n", program.version, pause);
    if (program.saveFailure) {
        text += localized("The settings could not be saved: %@"_key, language, {*program.saveFailure}) + "\n";
    }
    if (program.unsavedSettings) {
        text += localized(
                    "The settings file was edited while a change was not saved yet, which is kept in %@."_key,
                    language, {*program.unsavedSettings}) +
                "\n";
    }
    return text + displaysStatusAsText(program.displays, language);
}

std::string displaysStatusAsText(const std::vector<WallpaperStatus>& displays, GeneralLanguage language) {
    if (displays.empty()) return localized("No display is connected."_key, language) + "\n";
    std::string text;
    const auto line = [&](const std::string& words) { text += "    " + words + "\n"; };
    for (const auto& [display, mode, shows, rotation, lastFailure] : displays) {
        text += fmt::format("{} {} ({}): {}{}\n", display.isMain ? '*' : ' ', display.localizedName,
                            display.id, localized(title(mode.kind()), language), detail(mode));
        if (shows) line(localized("shows %@"_key, language, {*shows}));
        if (rotation) {
            std::string change = localized("changes in %@"_key, language, {lengthOf(rotation->waitSeconds)});
            if (rotation->consecutiveFailures > 0) {
                change += localized(", failed %lldx in a row"_key, language, {rotation->consecutiveFailures});
            }
            line(change);
        }
        if (lastFailure) line(localized("failed: %@"_key, language, {lastFailure->message}));
    }
    return text;
}

}  // namespace quillmar

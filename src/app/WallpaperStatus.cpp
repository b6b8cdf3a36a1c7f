#include "app/WallpaperStatus.h"

#include <fmt/format.h>

#include <cmath>

#include "app/WallpaperModeArguments.h"
#include "base/JsonRecord.h"

namespace quillmar {
namespace {

void redact(std::string& key) {
    if (!key.empty()) key = "[redacted]";
}

void redactKeys(WallpaperMode& mode) {
    if (std::string* key = keyOf(mode).text) redact(*key);
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
    for (WallpaperStatus& status : program.displays) redactKeys(status.mode);
    return json::encode(program);
}

std::string statusAsText(const ProgramStatus& program) {
    return fmt::format("Quillmar {}{}\n{}", program.version,
                       program.areRotationsPaused ? ", rotations are paused" : "",
                       statusAsText(program.displays));
}

std::string statusAsJson(std::vector<WallpaperStatus> displays) {
    for (WallpaperStatus& status : displays) redactKeys(status.mode);
    return json::encode(displays);
}

std::string statusAsText(const std::vector<WallpaperStatus>& displays) {
    if (displays.empty()) return "No display is connected.\n";
    std::string text;
    for (const auto& [display, mode, shows, rotation, lastFailure] : displays) {
        text += fmt::format("{} {} ({}): {}{}\n", display.isMain ? '*' : ' ', display.localizedName,
                            display.id, enumName(mode.kind()), detail(mode));
        if (shows) text += fmt::format("    shows {}\n", *shows);
        if (rotation) text += fmt::format("    changes in {}", lengthOf(rotation->waitSeconds));
        if (rotation && rotation->consecutiveFailures > 0)
            text += fmt::format(", failed {}x in a row", rotation->consecutiveFailures);
        if (rotation) text += "\n";
        if (lastFailure) text += fmt::format("    failed: {}\n", lastFailure->message);
    }
    return text;
}

}  // namespace quillmar

#include "app/WallpaperStatus.h"

#include <fmt/format.h>

#include "base/JsonRecord.h"

namespace quillmar {
namespace {

void redact(std::string& key) {
    if (!key.empty()) key = "[redacted]";
}

void redactKeys(WallpaperMode& mode) {
    if (auto* apod = std::get_if<APODSettings>(&mode.value)) redact(apod->apiKey);
    if (auto* wallhaven = std::get_if<WallhavenSettings>(&mode.value)) redact(wallhaven->apiKey);
    if (auto* unsplash = std::get_if<UnsplashSettings>(&mode.value)) redact(unsplash->accessKey);
    if (auto* museums = std::get_if<MuseumsSettings>(&mode.value)) redact(museums->smithsonianAPIKey);
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

}  // namespace

std::string statusAsJson(std::vector<WallpaperStatus> displays) {
    for (WallpaperStatus& status : displays) redactKeys(status.mode);
    return json::encode(displays);
}

std::string statusAsText(const std::vector<WallpaperStatus>& displays) {
    if (displays.empty()) return "No display is connected.\n";
    std::string text;
    for (const auto& [display, mode, shows] : displays) {
        text += fmt::format("{} {} ({}): {}{}\n", display.isMain ? '*' : ' ', display.localizedName,
                            display.id, enumName(mode.kind()), detail(mode));
        if (shows) text += fmt::format("    shows {}\n", *shows);
    }
    return text;
}

}  // namespace quillmar

#include "app/WallpaperModeArguments.h"

#include <fmt/format.h>

#include <charconv>

#include "base/Enum.h"
#include "base/JsonError.h"
#include "settings/records/SettingsCodec.h"

namespace quillmar {
namespace {

/// The words behind a mode's name, taken one by one.
class Words {
public:
    Words(std::string mode, std::span<const std::string> words) : mode_(std::move(mode)), words_(words) {}

    bool isEmpty() const { return words_.empty(); }
    std::string take(std::string_view what) {
        if (words_.empty()) throw UsageError(fmt::format("\"{}\" needs {}.", mode_, what));
        std::string word = words_.front();
        words_ = words_.subspan(1);
        return word;
    }
    std::optional<std::string> takeIfAny() {
        if (words_.empty()) return std::nullopt;
        return take("");
    }
    [[noreturn]] void refuse(const std::string& word) const {
        throw UsageError(fmt::format("\"{}\" does not take \"{}\".", mode_, word));
    }

private:
    std::string mode_;
    std::span<const std::string> words_;
};

Url fileURL(const std::string& word, const std::filesystem::path& folder) {
    return Url::fromFilePath((folder / word).lexically_normal());
}

ImagePresentationLayout layout(const std::string& word) {
    const auto found = enumFromName<ImagePresentationLayout>(word);
    if (!found)
        throw UsageError(
            fmt::format("There is no layout \"{}\": choose center, tile, stretch, fit or fill.", word));
    return *found;
}

double seconds(const std::string& word) {
    double value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (error != std::errc() || end != word.data() + word.size()) {
        throw UsageError(fmt::format("\"{}\" is not a number of seconds.", word));
    }
    return value;
}

/// The options of every mode that fits pictures into a display.
bool takePictureOption(const std::string& word, Words& words, auto& settings) {
    if (word == "--layout") {
        settings.layout = layout(words.take("a layout behind --layout"));
    } else if (word == "--background") {
        settings.backgroundHexColor = words.take("a colour behind --background");
    } else {
        return false;
    }
    return true;
}

SolidColorPresentationSettings solidColor(Words words) {
    SolidColorPresentationSettings settings{words.take("a colour such as #1F6F8B")};
    if (!words.isEmpty()) words.refuse(words.take(""));
    return settings;
}

ImagePresentationSettings image(Words words, const std::filesystem::path& folder) {
    ImagePresentationSettings settings;
    settings.imageURL = fileURL(words.take("a file"), folder);
    while (!words.isEmpty()) {
        const std::string word = words.take("");
        if (!takePictureOption(word, words, settings)) words.refuse(word);
    }
    return settings;
}

SlideshowPresentationSettings slideshow(Words words, const std::filesystem::path& folder) {
    auto settings = std::get<SlideshowPresentationSettings>(
        WallpaperMode::defaultMode(WallpaperModeKind::slideshow).value);
    settings.folderURL = fileURL(words.take("a folder"), folder);
    while (!words.isEmpty()) {
        const std::string word = words.take("");
        if (word == "--shuffle") {
            settings.shuffle = true;
        } else if (word == "--subfolders") {
            settings.includeSubfolders = true;
        } else if (word == "--interval") {
            settings.rotationIntervalSeconds = seconds(words.take("seconds behind --interval"));
        } else if (!takePictureOption(word, words, settings)) {
            words.refuse(word);
        }
    }
    return settings;
}

/// The modes of picture services: every option is called as the field of the record that it sets. A key may
/// be in a file instead, where no list of processes shows it.
template <class Settings>
WallpaperModeArguments remote(WallpaperModeKind kind, Words words, const std::filesystem::path& folder) {
    WallpaperModeArguments arguments{.mode = WallpaperMode::defaultMode(kind)};
    auto& settings = std::get<Settings>(arguments.mode.value);
    while (!words.isEmpty()) {
        auto [name, text] =
            OptionWord::parse(words.take(""), "Only options stand behind the name of a service.");
        const ServiceKey key = keyOf(arguments.mode);
        if (key.text && name == std::string(key.name) + "File") {
            arguments.keyFile = folder / (text ? *text : words.take("a file behind --" + name));
            continue;
        }
        arguments.namesKey |= name == key.name;
        if (name == "background") name = "backgroundHexColor";
        if (name == "interval") name = "rotationIntervalSeconds";
        RecordOption option(name, std::move(text), [&words] { return words.takeIfAny(); });
        Settings::describe(settings, option);
        if (!option.isKnown()) words.refuse("--" + name);
    }
    return arguments;
}

WallpaperMode decoded(Words words) {
    const std::string text = words.take("a mode as JSON");
    if (!words.isEmpty()) words.refuse(words.take(""));
    try {
        return decodeWallpaperMode(text);
    } catch (const JsonRecordError& error) {
        throw UsageError(fmt::format("The mode cannot be read: {}", error.what()));
    }
}

}  // namespace

ServiceKey keyOf(WallpaperMode& mode) {
    if (auto* apod = std::get_if<APODSettings>(&mode.value)) return {"apiKey", &apod->apiKey};
    if (auto* wallhaven = std::get_if<WallhavenSettings>(&mode.value)) return {"apiKey", &wallhaven->apiKey};
    if (auto* unsplash = std::get_if<UnsplashSettings>(&mode.value))
        return {"accessKey", &unsplash->accessKey};
    if (auto* museums = std::get_if<MuseumsSettings>(&mode.value))
        return {"smithsonianAPIKey", &museums->smithsonianAPIKey};
    return {};
}

WallpaperModeArguments parseWallpaperMode(std::span<const std::string> words,
                                          const std::filesystem::path& folder) {
    if (words.empty()) throw UsageError("What the display should show was not said.");
    const std::string& name = words.front();
    const Words rest(name, words.subspan(1));
    using Kind = WallpaperModeKind;
    if (name == "colour" || name == "color") return {.mode = {solidColor(rest)}};
    if (name == "image") return {.mode = {image(rest, folder)}};
    if (name == "slideshow") return {.mode = {slideshow(rest, folder)}};
    if (name == "apod") return remote<APODSettings>(Kind::apod, rest, folder);
    if (name == "nasa-epic") return remote<NasaEpicSettings>(Kind::nasaEpic, rest, folder);
    if (name == "bing") return remote<BingSettings>(Kind::bing, rest, folder);
    if (name == "spotlight") return remote<WindowsSpotlightSettings>(Kind::windowsSpotlight, rest, folder);
    if (name == "unsplash") return remote<UnsplashSettings>(Kind::unsplash, rest, folder);
    if (name == "wallhaven") return remote<WallhavenSettings>(Kind::wallhaven, rest, folder);
    if (name == "museums") return remote<MuseumsSettings>(Kind::museums, rest, folder);
    if (name == "mode") return {.mode = decoded(rest)};
    if (name == "disabled") {
        if (!rest.isEmpty()) rest.refuse(words[1]);
        return {};
    }
    throw UsageError(fmt::format("There is no kind of wallpaper \"{}\".", name));
}

}  // namespace quillmar

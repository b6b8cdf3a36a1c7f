#include "commandline/WallpaperModeArguments.h"

#include <algorithm>

#include "base/Enum.h"
#include "base/JsonError.h"
#include "settings/records/SettingsCodec.h"

namespace quillmar {
namespace {

constexpr std::string_view wholeMode = "mode";

/// Names that are easier to type than the record's own.
struct ShortName {
    std::string_view field, name;
};
constexpr auto shortNames = std::to_array<ShortName>({{"backgroundHexColor", "background"},
                                                      {"rotationIntervalSeconds", "interval"},
                                                      {"includeSubfolders", "subfolders"}});

// What a kind needs is its operand and no option.
std::optional<OperandRow> operandOf(const auto&) { return std::nullopt; }
std::optional<OperandRow> operandOf(const SolidColorPresentationSettings&) {
    return OperandRow{"#RRGGBB", "a colour such as #1F6F8B"_key};
}
std::optional<OperandRow> operandOf(const ImagePresentationSettings&) {
    return OperandRow{"FILE", "a file"_key, WordKind::file};
}
std::optional<OperandRow> operandOf(const SlideshowPresentationSettings&) {
    return OperandRow{"FOLDER", "a folder"_key, WordKind::folder};
}

Url fileURL(const std::string& word, const std::filesystem::path& folder) {
    return Url::fromFilePath((folder / word).lexically_normal());
}
void setOperand(auto&, const std::string&, const std::filesystem::path&) {}
void setOperand(SolidColorPresentationSettings& settings, const std::string& word,
                const std::filesystem::path&) {
    settings.hexColor = word;
}
void setOperand(ImagePresentationSettings& settings, const std::string& word,
                const std::filesystem::path& folder) {
    settings.imageURL = fileURL(word, folder);
}
void setOperand(SlideshowPresentationSettings& settings, const std::string& word,
                const std::filesystem::path& folder) {
    settings.folderURL = fileURL(word, folder);
}

/// The options of a kind: each sets the field of the record that it is called as.
template <class Settings>
std::vector<OptionRow> optionsOf(std::string_view keyField) {
    if constexpr (std::is_same_v<Settings, std::monostate> ||
                  std::is_same_v<Settings, SolidColorPresentationSettings>) {
        return {};
    } else {
        std::vector<OptionRow> rows = recordOptions<Settings>();
        for (OptionRow& row : rows) {
            const auto found = std::ranges::find(shortNames, row.field, &ShortName::field);
            if (found != shortNames.end()) row.name = found->name;
            // Every user of the machine can see the arguments of a command.
            row.isHidden = row.field == keyField;
        }
        if (!keyField.empty()) {
            rows.push_back({.name = std::string(keyField) + "File",
                            .value = "FILE",
                            .word = WordKind::file,
                            .text = "a file with the key of the service"_key});
        }
        return rows;
    }
}

CommandRow rowOfKind(const PresentationKindRow& kind, WallpaperMode mode) {
    CommandRow row{.words = std::string(kind.word),
                   .summary = *kind.wallpaperSubtitle,
                   .takesSecrets = kind.nature == PresentationNature::service};
    const std::string_view key = keyOf(mode).name;
    std::visit(
        [&]<class Settings>(const Settings& settings) {
            if (const auto operand = operandOf(settings)) row.operands.push_back(*operand);
            row.options = optionsOf<Settings>(key);
        },
        mode.value);
    return row;
}

WallpaperModeKind kindCalled(std::string_view word) {
    return *std::ranges::find_if(wallpaperPickerOrder, [&](WallpaperModeKind kind) {
        return rowOf(presentationKind(kind)).word == word;
    });
}

WallpaperModeArguments decoded(const std::string& text) {
    try {
        WallpaperModeArguments arguments{.mode = decodeWallpaperMode(text)};
        const std::string* key = keyOf(arguments.mode).text;
        // What was printed without its key is no wish to lose that.
        arguments.namesKey = key && !key->empty() && *key != redactedKey;
        return arguments;
    } catch (const JsonRecordError& error) {
        throw UsageError("The mode cannot be read: %@"_key, {std::string(error.what())});
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

const std::vector<CommandRow>& wallpaperKinds() {
    static const std::vector<CommandRow> rows = [] {
        std::vector<CommandRow> all;
        for (const WallpaperModeKind kind : wallpaperPickerOrder) {
            const PresentationKindRow& row = rowOf(presentationKind(kind));
            if (!row.word.empty()) all.push_back(rowOfKind(row, WallpaperMode::defaultMode(kind)));
        }
        all.push_back({.words = std::string(wholeMode),
                       .operands = {{"JSON", "a mode as JSON"_key}},
                       .summary = "Any kind, as it stands under \"mode\" in the settings file"_key});
        return all;
    }();
    return rows;
}

WallpaperModeArguments parseWallpaperMode(const CommandLine& line, const std::filesystem::path& folder) {
    if (line.kind->words == wholeMode) return decoded(line.operands.back());
    WallpaperModeArguments arguments{.mode = WallpaperMode::defaultMode(kindCalled(line.kind->words))};
    const std::string_view key = keyOf(arguments.mode).name;
    std::visit(
        [&]<class Settings>(Settings& settings) {
            setOperand(settings, line.operands.back(), folder);
            for (const GivenOption& given : line.options) {
                if (given.row->field.empty()) {
                    arguments.keyFile = folder / given.text.value();
                    continue;
                }
                arguments.namesKey |= given.row->field == key;
                if constexpr (requires { Settings::describe(settings, std::declval<RecordOption&>()); }) {
                    RecordOption option(given.row->field, {given.row->name, given.text});
                    Settings::describe(settings, option);
                }
            }
        },
        arguments.mode.value);
    return arguments;
}

}  // namespace quillmar

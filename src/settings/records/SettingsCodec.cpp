#include "settings/records/SettingsCodec.h"

#include "base/JsonRecord.h"
#include "settings/records/SettingsSchemaError.h"

namespace quillmar {

std::string encodeSettings(const AppSettings& settings) {
    // More than a usual document; what is not needed of it is never touched.
    constexpr std::size_t roomForDocument = 1u << 20;
    return json::encode(settings, roomForDocument);
}

AppSettings decodeSettings(std::string_view text) {
    AppSettings settings;
    json::parse(text, [&](const nlohmann::json& document) {
        const json::Place top;
        std::int64_t version = 0;
        json::Reader(document, top).required("schemaVersion", version);
        if (version != AppSettings::requiredSchemaVersion) {
            throw SettingsSchemaError(version, AppSettings::requiredSchemaVersion);
        }
        json::read(document, settings, top);
    });
    return settings;
}

AppSettings defaultSettings(const BundleInfo& bundle) {
    AppSettings settings;
    settings.lastLaunchedAppVersion = bundle.semanticVersion("Unknown");
    settings.customMenu = defaultCustomMenu(bundle);
    return settings;
}

WallpaperMode decodeWallpaperMode(std::string_view text) { return json::decode<WallpaperMode>(text); }

}  // namespace quillmar

#include "linux/desktop/BackgroundSettings.h"

#include <array>
#include <stdexcept>

#include "base/Url.h"
#include "linux/desktop/VariantText.h"

namespace quillmar {

namespace {

struct Family {
    std::string_view desktop;
    const char* schema;
};
constexpr const char* gnomeSchema = "org.gnome.desktop.background";
constexpr const char* cinnamonSchema = "org.cinnamon.desktop.background";
constexpr Family families[]{
    {"GNOME", gnomeSchema},       {"GNOME-Classic", gnomeSchema}, {"GNOME-Flashback", gnomeSchema},
    {"Unity", gnomeSchema},       {"Budgie", gnomeSchema},        {"Pantheon", gnomeSchema},
    {"Cinnamon", cinnamonSchema}, {"X-Cinnamon", cinnamonSchema}, {"MATE", "org.mate.background"},
};

/// The picture by its place: as a URL, as one for dark themes, or as a path.
constexpr std::array<const char*, 3> pictureKeys{"picture-uri", "picture-uri-dark", "picture-filename"};
constexpr const char* layoutKey = "picture-options";
constexpr const char* colorKey = "primary-color";

bool holdsUrl(std::string_view key) { return key != "picture-filename"; }

}  // namespace

std::unique_ptr<BackgroundSettings> BackgroundSettings::open(std::string_view desktop) {
    GSettingsSchemaSource* source = g_settings_schema_source_get_default();
    if (!source) return nullptr;
    for (const Family& family : families) {
        if (family.desktop != desktop) continue;
        GSettingsSchema* schema = g_settings_schema_source_lookup(source, family.schema, TRUE);
        if (schema) return std::unique_ptr<BackgroundSettings>(new BackgroundSettings(schema));
    }
    return nullptr;
}

BackgroundSettings::BackgroundSettings(GSettingsSchema* schema)
    : schema_(schema, &g_settings_schema_unref),
      settings_(Ref<GSettings>::adopt(g_settings_new_full(schema, nullptr, nullptr))) {
    // A change of several values is to be seen as one.
    g_settings_delay(settings_.get());
}

bool BackgroundSettings::has(const char* key) const { return g_settings_schema_has_key(schema_.get(), key); }

std::filesystem::path BackgroundSettings::file() const {
    for (const char* key : pictureKeys) {
        if (!has(key)) continue;
        const Owned<char> text(g_settings_get_string(settings_.get(), key));
        if (!holdsUrl(key)) return text.get();
        const auto url = Url::parse(text.get());
        return url ? url->filePath().value_or(std::filesystem::path()) : std::filesystem::path();
    }
    return {};
}

DesktopImageOptions BackgroundSettings::options() const {
    DesktopImageOptions options;
    const auto put = [&](const char* key) {
        if (!has(key)) return;
        const Owned<GVariant> value(g_settings_get_user_value(settings_.get(), key));
        options.emplace(key, value ? variantText(value.get()) : "");
    };
    for (const char* key : pictureKeys) put(key);
    put(layoutKey);
    return options;
}

std::string BackgroundSettings::layout(const DesktopImageOptions& options) const {
    const auto found = options.find(layoutKey);
    if (found != options.end() && !found->second.empty()) return stringOfVariantText(found->second);
    const Owned<GVariant> value(g_settings_get_default_value(settings_.get(), layoutKey));
    return value ? g_variant_get_string(value.get(), nullptr) : "";
}

RgbColor BackgroundSettings::color() const {
    if (!has(colorKey)) return {};
    const Owned<char> text(g_settings_get_string(settings_.get(), colorKey));
    return parseHexColor(normalizedHexColor(text.get())).value_or(RgbColor{});
}

void BackgroundSettings::span(const std::filesystem::path& file) {
    apply(file, {{layoutKey, variantText(g_variant_new_string("spanned"))}});
}

void BackgroundSettings::apply(const std::filesystem::path& file, const DesktopImageOptions& options) {
    DesktopImageOptions wanted = options;
    for (const char* key : pictureKeys) wanted.emplace(key, pictureText(key, file));
    for (const auto& [key, text] : wanted) {
        if (has(key.c_str()) && !g_settings_is_writable(settings_.get(), key.c_str())) {
            throw std::runtime_error("The desktop's setting \"" + key + "\" is locked.");
        }
    }
    for (const auto& [key, text] : wanted) {
        if (!has(key.c_str())) continue;
        if (text.empty()) {
            g_settings_reset(settings_.get(), key.c_str());
        } else {
            g_settings_set_value(settings_.get(), key.c_str(), variantOfText(text).get());
        }
    }
    g_settings_apply(settings_.get());
}

std::string BackgroundSettings::pictureText(const char* key, const std::filesystem::path& file) const {
    const std::string text = holdsUrl(key) ? Url::fromFilePath(file).string() : file.string();
    return variantText(g_variant_new_string(text.c_str()));
}

}  // namespace quillmar

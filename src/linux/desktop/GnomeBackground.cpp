#include "linux/desktop/GnomeBackground.h"

#include <gio/gio.h>

#include <array>

#include "base/Url.h"
#include "linux/desktop/VariantText.h"
#include "linux/glib/Ref.h"
#include "platform/DesktopPictureError.h"

namespace quillmar {

namespace {

/// The picture by its place: as a URL, as one for dark themes, or as a path.
constexpr std::array<const char*, 3> pictureKeys{"picture-uri", "picture-uri-dark", "picture-filename"};
constexpr const char* layoutKey = "picture-options";
constexpr const char* colorKey = "primary-color";

bool holdsUrl(std::string_view key) { return key != "picture-filename"; }

using Schema = std::unique_ptr<GSettingsSchema, decltype(&g_settings_schema_unref)>;

Schema schemaOf(const std::string& name) {
    GSettingsSchemaSource* source = g_settings_schema_source_get_default();
    return {source ? g_settings_schema_source_lookup(source, name.c_str(), TRUE) : nullptr,
            &g_settings_schema_unref};
}

/// The settings on one thread for the length of one operation.
class Settings {
public:
    explicit Settings(const std::string& schema)
        : schema_(schemaOf(schema)),
          settings_(Ref<GSettings>::adopt(g_settings_new_full(schema_.get(), nullptr, nullptr))) {
        // A change of several values is to be seen as one.
        g_settings_delay(settings_.get());
    }

    SpannedDesktopPicturing::Present present() const {
        SpannedDesktopPicturing::Present present{.file = file(), .options = options(), .color = color()};
        present.layout = layout();
        return present;
    }
    /// Throws `DesktopPictureError`, with nothing changed, when the settings are locked.
    void apply(const std::filesystem::path& file, DesktopImageOptions wanted) {
        for (const char* key : pictureKeys) wanted.emplace(key, pictureText(key, file));
        for (const auto& [key, text] : wanted) {
            if (has(key.c_str()) && !g_settings_is_writable(settings_.get(), key.c_str())) {
                throw DesktopPictureError(DesktopPictureError::Case::locked, key, "");
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

private:
    /// Closed before the settings are: they notify where they were made.
    class OwnContext {
    public:
        OwnContext() : context_(g_main_context_new()) { g_main_context_push_thread_default(context_); }
        OwnContext(const OwnContext&) = delete;
        OwnContext& operator=(const OwnContext&) = delete;
        ~OwnContext() {
            g_main_context_pop_thread_default(context_);
            g_main_context_unref(context_);
        }

    private:
        GMainContext* context_;
    };

    bool has(const char* key) const { return g_settings_schema_has_key(schema_.get(), key); }
    std::filesystem::path file() const {
        for (const char* key : pictureKeys) {
            if (!has(key)) continue;
            const Owned<char> text(g_settings_get_string(settings_.get(), key));
            if (!holdsUrl(key)) return text.get();
            const auto url = Url::parse(text.get());
            return url ? url->filePath().value_or(std::filesystem::path()) : std::filesystem::path();
        }
        return {};
    }
    DesktopImageOptions options() const {
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
    SpannedDesktopPicturing::Layout layout() const {
        using enum SpannedDesktopPicturing::Layout;
        static constexpr std::array<std::pair<std::string_view, SpannedDesktopPicturing::Layout>, 6> words{
            {{"wallpaper", tile},
             {"centered", center},
             {"scaled", fit},
             {"stretched", stretch},
             {"zoom", fill},
             {"spanned", spanned}}};
        const Owned<char> text(g_settings_get_string(settings_.get(), layoutKey));
        for (const auto& [word, layout] : words) {
            if (word == text.get()) return layout;
        }
        return none;
    }
    RgbColor color() const {
        if (!has(colorKey)) return {};
        const Owned<char> text(g_settings_get_string(settings_.get(), colorKey));
        return parseHexColor(normalizedHexColor(text.get())).value_or(RgbColor{});
    }
    std::string pictureText(const char* key, const std::filesystem::path& file) const {
        const std::string text = holdsUrl(key) ? Url::fromFilePath(file).string() : file.string();
        return variantText(g_variant_new_string(text.c_str()));
    }

    OwnContext context_;
    Schema schema_;
    Ref<GSettings> settings_;
};

}  // namespace

Task<std::unique_ptr<GnomeBackground>> GnomeBackground::open(std::string schema, Executor& pool) {
    const bool isInstalled = co_await pool.run([schema] { return schemaOf(schema) != nullptr; });
    if (!isInstalled) co_return nullptr;
    co_return std::unique_ptr<GnomeBackground>(new GnomeBackground(std::move(schema), pool));
}

Task<SpannedDesktopPicturing::Present> GnomeBackground::present() {
    co_return co_await executor_.run([schema = schema_] { return Settings(schema).present(); });
}

Task<void> GnomeBackground::set(std::filesystem::path file, std::optional<DesktopImageOptions> options) {
    DesktopImageOptions wanted =
        options ? *options : DesktopImageOptions{{layoutKey, variantText(g_variant_new_string("spanned"))}};
    co_await executor_.run(
        [schema = schema_, file, wanted = std::move(wanted)] { Settings(schema).apply(file, wanted); });
}

}  // namespace quillmar

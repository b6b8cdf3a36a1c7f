#pragma once
#include <gio/gio.h>

#include <memory>
#include <optional>
#include <string_view>

#include "base/HexColor.h"
#include "linux/glib/Ref.h"
#include "platform/DesktopPicture.h"

namespace quillmar {

/// A desktop's one picture for all monitors, as GSettings keep it. The options are the values of its keys as
/// GVariant texts; an empty text stands for a value that the user has not set.
class BackgroundSettings {
public:
    /// Those of a desktop by its name in XDG_CURRENT_DESKTOP; nothing when it is of another family or its
    /// schema is not installed.
    static std::unique_ptr<BackgroundSettings> open(std::string_view desktop);

    /// The picture's file, whether it exists or not; empty when there is none.
    std::filesystem::path file() const;
    DesktopImageOptions options() const;
    /// "zoom", "spanned", ...: how these options lay a picture out.
    std::string layout(const DesktopImageOptions& options) const;
    /// What is around the picture; black when it is no colour.
    RgbColor color() const;

    /// Lays the file over all monitors at once. Throws `std::runtime_error`, with nothing changed, when the
    /// settings are locked.
    void span(const std::filesystem::path& file);
    /// Sets the values of `options`; those that they do not name show `file`. Throws as `span`.
    void apply(const std::filesystem::path& file, const DesktopImageOptions& options);

private:
    explicit BackgroundSettings(GSettingsSchema* schema);
    bool has(const char* key) const;
    std::string pictureText(const char* key, const std::filesystem::path& file) const;

    std::shared_ptr<GSettingsSchema> schema_;
    Ref<GSettings> settings_;
};

}  // namespace quillmar

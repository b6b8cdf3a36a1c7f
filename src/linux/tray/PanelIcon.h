#pragma once
#include <gdk-pixbuf/gdk-pixbuf.h>

#include <filesystem>
#include <optional>
#include <vector>

#include "linux/glib/Ref.h"
#include "platform/StatusIcon.h"

namespace quillmar {

/// Where on the screen the icon was clicked, in the toolkit's points from the top left.
struct PanelPlace {
    int x = 0;
    int y = 0;
};

/// The icon's pictures, in a folder like those of icon themes.
class PanelIconFiles {
public:
    /// `themes` is the folder that "hicolor" lies in.
    explicit PanelIconFiles(std::filesystem::path themes) : themes_(std::move(themes)) {}

    const std::filesystem::path& themes() const { return themes_; }
    /// The icon's name in a theme.
    static const char* name(StatusIconStyle style);
    /// The picture that is best shown `size` pixels wide, at that size. Null where the files are missing.
    Ref<GdkPixbuf> pixels(StatusIconStyle style, int size) const;
    /// One of each size that there is.
    std::vector<Ref<GdkPixbuf>> allSizes(StatusIconStyle style) const;

private:
    std::filesystem::path file(StatusIconStyle style, int size) const;

    std::filesystem::path themes_;
};

}  // namespace quillmar

#include "linux/tray/PanelIcon.h"

#include <fmt/format.h>

#include <array>

namespace quillmar {
namespace {

/// What the build draws, from small to large.
constexpr std::array sizes{16, 22, 24, 32, 48, 64};

}  // namespace

const char* PanelIconFiles::name(StatusIconStyle style) {
    return style == StatusIconStyle::colorful ? "com.quillmar.Quillmar"
                                              : "com.quillmar.Quillmar-panel-symbolic";
}

std::filesystem::path PanelIconFiles::file(StatusIconStyle style, int size) const {
    return themes_ / "hicolor" / fmt::format("{0}x{0}/apps/{1}.png", size, name(style));
}

Ref<GdkPixbuf> PanelIconFiles::pixels(StatusIconStyle style, int size) const {
    int best = sizes.back();
    for (std::size_t i = sizes.size(); i-- > 0;)
        if (sizes[i] >= size) best = sizes[i];
    return Ref<GdkPixbuf>::adopt(
        gdk_pixbuf_new_from_file_at_size(file(style, best).c_str(), size, size, nullptr));
}

std::vector<Ref<GdkPixbuf>> PanelIconFiles::allSizes(StatusIconStyle style) const {
    std::vector<Ref<GdkPixbuf>> all;
    for (const int size : sizes)
        if (auto picture = pixels(style, size)) all.push_back(std::move(picture));
    return all;
}

}  // namespace quillmar

#pragma once
#include <array>
#include <string_view>

namespace quillmar {

/// What a display can be given as its wallpaper. The order is that of `WallpaperMode`'s cases.
enum class WallpaperModeKind {
    disabled,
    solidColor,
    colorFader,
    image,
    slideshow,
    apod,
    nasaEpic,
    wallhaven,
    unsplash,
    bing,
    windowsSpotlight,
    museums,
    webpage,
    video,
    videoPlaylist,
    pdf,
    matrix,
    hexells
};
constexpr auto enumNames(WallpaperModeKind) {
    return std::to_array<std::string_view>({"disabled", "solidColor", "colorFader", "image", "slideshow",
                                            "apod", "nasaEpic", "wallhaven", "unsplash", "bing",
                                            "windowsSpotlight", "museums", "webpage", "video",
                                            "videoPlaylist", "pdf", "matrix", "hexells"});
}

/// Whether the mode's pictures come from a picture service.
constexpr bool isRemote(WallpaperModeKind kind) {
    return kind >= WallpaperModeKind::apod && kind <= WallpaperModeKind::museums;
}

}  // namespace quillmar

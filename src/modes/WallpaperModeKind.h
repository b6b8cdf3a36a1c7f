#pragma once
#include <array>

#include "modes/PresentationKind.h"

namespace quillmar {

/// What a display can be given as its wallpaper, each under its name of `PresentationKind`. The order is that
/// of `WallpaperMode`'s cases.
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
constexpr auto enumNames(WallpaperModeKind) { return caseNames<WallpaperModeKind>; }

/// The order in which the kinds are offered to the user.
inline constexpr auto wallpaperPickerOrder = [] {
    using enum WallpaperModeKind;
    return std::to_array({disabled, solidColor, colorFader, image, slideshow, apod, nasaEpic, wallhaven,
                          unsplash, bing, windowsSpotlight, museums, video, videoPlaylist, pdf, matrix,
                          webpage, hexells});
}();
static_assert(wallpaperPickerOrder.size() == caseCount<WallpaperModeKind>());

}  // namespace quillmar

#pragma once
#include <array>
#include <string_view>

namespace quillmar {

/// The wallpaper's kinds under their names, then those that only a screensaver has.
enum class ManagedScreensaverModeKind {
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
    hexells,
    shadertoy,
    alarmClock,
    countdownTimer,
    stopwatch
};
constexpr auto enumNames(ManagedScreensaverModeKind) {
    return std::to_array<std::string_view>(
        {"disabled",  "solidColor", "colorFader",     "image",    "slideshow",        "apod",
         "nasaEpic",  "wallhaven",  "unsplash",       "bing",     "windowsSpotlight", "museums",
         "webpage",   "video",      "videoPlaylist",  "pdf",      "matrix",           "hexells",
         "shadertoy", "alarmClock", "countdownTimer", "stopwatch"});
}

/// Whether the kind shows pictures in turn, and so has a transition to set.
constexpr bool offersTransition(ManagedScreensaverModeKind kind) {
    return kind >= ManagedScreensaverModeKind::slideshow && kind <= ManagedScreensaverModeKind::museums;
}

}  // namespace quillmar

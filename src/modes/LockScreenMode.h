#pragma once
#include "modes/WallpaperMode.h"

namespace quillmar {

/// The wallpaper's kinds that stand still, each under its name of `PresentationKind`.
enum class LockScreenModeKind {
    disabled,
    solidColor,
    image,
    slideshow,
    apod,
    nasaEpic,
    museums,
    unsplash,
    wallhaven,
    bing,
    windowsSpotlight
};
constexpr auto enumNames(LockScreenModeKind) { return caseNames<LockScreenModeKind>; }

/// What a display shows while the session is locked: those of the wallpaper's modes that stand still.
struct LockScreenMode {
    using Value = std::variant<std::monostate, SolidColorPresentationSettings, ImagePresentationSettings,
                               SlideshowPresentationSettings, APODSettings, NasaEpicSettings, MuseumsSettings,
                               UnsplashSettings, WallhavenSettings, BingSettings, WindowsSpotlightSettings>;
    Value value;

    static constexpr auto caseNames() { return enumNames(LockScreenModeKind{}); }
    LockScreenModeKind kind() const { return static_cast<LockScreenModeKind>(value.index()); }

    /// What a kind starts with when the user chooses it for the first time.
    static LockScreenMode defaultMode(LockScreenModeKind kind);
    /// The wallpaper mode of the same name with the same settings.
    WallpaperMode wallpaperMode() const;
    /// Whether its pictures come from a service.
    bool isRemote() const { return quillmar::isRemote(kind()); }

    bool operator==(const LockScreenMode&) const = default;
};

}  // namespace quillmar

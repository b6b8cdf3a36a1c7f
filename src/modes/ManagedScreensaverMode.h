#pragma once
#include "modes/ManagedScreensaverModeKind.h"
#include "modes/ManagedScreensaverValidationError.h"
#include "modes/TimedScreensaverSettings.h"
#include "modes/WallpaperMode.h"

namespace quillmar {

/// A shader of shadertoy.com, by the ID in its address.
struct ShadertoyScreensaverSettings {
    std::string shaderID = "XsBXWt";
    bool isMuted = true;

    bool operator==(const ShadertoyScreensaverSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("shaderID", self.shaderID).required("isMuted", self.isMuted);
    }
};

/// Why a screensaver's mode cannot be presented. The kinds that wallpapers have too fail as those do.
using ManagedScreensaverModeError =
    std::variant<ManagedScreensaverValidationError, WallpaperApplicationError>;
/// The message of the error that it holds.
std::string errorText(const ManagedScreensaverModeError& error, GeneralLanguage language);
/// Throws the error that it holds.
[[noreturn]] void raise(const ManagedScreensaverModeError& error);

/// What a display's screensaver shows: one case per kind, each with its settings. A new one is `disabled`.
struct ManagedScreensaverMode {
    using Value =
        std::variant<std::monostate, SolidColorPresentationSettings, ColorFaderPresentationSettings,
                     ImagePresentationSettings, SlideshowPresentationSettings, APODSettings, NasaEpicSettings,
                     WallhavenSettings, UnsplashSettings, BingSettings, WindowsSpotlightSettings,
                     MuseumsSettings, WebpagePresentationSettings, VideoPlaybackSettings,
                     VideoPlaylistPlaybackSettings, PDFPresentationSettings, MatrixPresentationSettings,
                     HexellsPresentationSettings, ShadertoyScreensaverSettings, AlarmClockScreensaverSettings,
                     CountdownTimerScreensaverSettings, StopwatchScreensaverSettings>;
    Value value;

    static constexpr auto caseNames() { return enumNames(ManagedScreensaverModeKind{}); }
    ManagedScreensaverModeKind kind() const { return static_cast<ManagedScreensaverModeKind>(value.index()); }

    /// What a kind starts with when the user chooses it for the first time.
    static ManagedScreensaverMode defaultMode(ManagedScreensaverModeKind kind);
    /// The wallpaper mode of the same name with the same settings; nothing where wallpapers have no such
    /// kind.
    std::optional<WallpaperMode> wallpaperMode() const;
    /// The first reason why the mode cannot be presented. Asks for the readability of video and PDF files
    /// only.
    std::optional<ManagedScreensaverModeError> validationError(
        FileReadable isReadable = isReadableFile) const;

    bool operator==(const ManagedScreensaverMode&) const = default;
};

}  // namespace quillmar

#pragma once
#include <optional>
#include <variant>

#include "base/WallTime.h"
#include "modes/ColorFaderPresentationSettings.h"
#include "modes/DailyImageSettings.h"
#include "modes/FileReadable.h"
#include "modes/HexellsPresentationSettings.h"
#include "modes/LivePresentationSettings.h"
#include "modes/MatrixPresentationSettings.h"
#include "modes/MuseumsSettings.h"
#include "modes/NasaEpicSettings.h"
#include "modes/SearchImageSettings.h"
#include "modes/StaticPresentationSettings.h"
#include "modes/WallpaperApplicationError.h"
#include "modes/WallpaperModeKind.h"

namespace quillmar {

/// What a display should show: one case per kind, each with its settings. A new one is `disabled`.
struct WallpaperMode {
    using Value = std::variant<std::monostate, SolidColorPresentationSettings, ColorFaderPresentationSettings,
                               ImagePresentationSettings, SlideshowPresentationSettings, APODSettings,
                               NasaEpicSettings, WallhavenSettings, UnsplashSettings, BingSettings,
                               WindowsSpotlightSettings, MuseumsSettings, WebpagePresentationSettings,
                               VideoPlaybackSettings, VideoPlaylistPlaybackSettings, PDFPresentationSettings,
                               MatrixPresentationSettings, HexellsPresentationSettings>;
    Value value;

    static constexpr auto caseNames() { return enumNames(WallpaperModeKind{}); }
    WallpaperModeKind kind() const { return static_cast<WallpaperModeKind>(value.index()); }

    /// What a kind starts with when the user chooses it for the first time.
    static WallpaperMode defaultMode(WallpaperModeKind kind);
    /// Of every mode that says how pictures meet the edges; nothing of the others.
    std::optional<ImagePresentation> imagePresentation() const;
    /// How often the mode changes what it shows, at least as an attempt; nothing when it never does.
    std::optional<Seconds> rotationInterval() const;
    /// The first reason why the mode cannot be applied. Asks for the readability of video and PDF files only.
    std::optional<WallpaperApplicationError> validationError(FileReadable isReadable = isReadableFile) const;

    bool operator==(const WallpaperMode&) const = default;
};

}  // namespace quillmar

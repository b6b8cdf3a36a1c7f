#pragma once
#include <string>

#include "base/Localization.h"
#include "base/Url.h"

namespace quillmar {

/// Why a display does not show what it should. Carries what its message names.
class WallpaperApplicationError final : public AppLocalizableError {
public:
    enum class Case {
        // With a value: a display ID, a colour, an address, a device's name.
        unavailableDisplay,
        invalidSolidColor,
        invalidFaderColor,
        invalidWebpageURL,
        webpageLoadFailed,  ///< the value is the reason
        unreadableVideo,    ///< the value is the path, as for the next
        unreadablePDF,
        matrixCameraUnavailable,     ///< without a value: no camera at all
        unreadableImage,             ///< the value is the path
        cacheDirectoryUnavailable,   ///< the value is the path, with a reason
        cacheWriteFailed,            ///< the value is the path, with a reason
        desktopSnapshotUnavailable,  ///< the value is a display ID
        // Without a value.
        tooFewFaderColors,
        tooManyFaderColors,
        invalidFaderDuration,
        missingImage,
        missingSlideshowFolder,
        invalidSlideshowInterval,
        missingUnsplashAccessKey,
        missingWallhavenNSFWAPIKey,
        emptyWallhavenCategories,
        emptyWallhavenPurities,
        missingUnsplashFilterValue,
        emptyMuseumsSources,
        emptyMuseumsCategories,
        missingSmithsonianAPIKey,
        invalidRemoteRotationInterval,
        invalidNasaEpicObservationDuration,
        invalidNasaEpicRecentDays,
        invalidHexellsInterval,
        missingWebpageURL,
        webpageLoadTimedOut,
        missingVideo,
        videoPlayerUnavailable,
        videoPlaybackFailed,
        videoLoadTimedOut,
        missingVideoPlaylistFolder,
        missingPDF,
        pdfViewerUnavailable,
        pdfLoadFailed,
        pdfLoadTimedOut,
        matrixLoadFailed,
        matrixLoadTimedOut,
        matrixCameraAccessDenied,
        hexellsLoadFailed,
        hexellsLoadTimedOut,
        unsupportedMode,
        solidColorRenderingFailed,
        imageRenderingFailed,
        suppressedWhileLocked,
        noEarlierPicture,
        remoteImagesInTrash,
    };

    explicit WallpaperApplicationError(Case errorCase, std::string value = {}, std::string reason = {})
        : case_(errorCase), value_(std::move(value)), reason_(std::move(reason)) {}

    /// Which failure it is; the message is made from it.
    Case errorCase() const { return case_; }
    /// What the message names; empty for cases without a value.
    const std::string& value() const { return value_; }
    /// Why a cache folder or file could not be made, in the system's words.
    const std::string& reason() const { return reason_; }
    std::string message(GeneralLanguage language) const override;

    bool operator==(const WallpaperApplicationError& other) const {
        return case_ == other.case_ && value_ == other.value_ && reason_ == other.reason_;
    }

private:
    Case case_;
    std::string value_;
    std::string reason_;
};

}  // namespace quillmar

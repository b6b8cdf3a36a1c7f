#pragma once
#include <filesystem>
#include <optional>
#include <string>
#include <variant>

#include "async/Task.h"
#include "base/Enum.h"
#include "display/DisplayInfo.h"
#include "modes/RemoteImagePresentation.h"
#include "modes/WallpaperMode.h"
#include "platform/DesktopPicture.h"
#include "storage/CacheFileLease.h"

namespace quillmar {

enum class WallpaperApplyReason { userInitiated, rotation };
constexpr auto enumNames(WallpaperApplyReason) {
    return std::to_array<std::string_view>({"userInitiated", "rotation"});
}

/// One display and what it should show.
struct WallpaperApplyRequest {
    DisplayInfo display;
    WallpaperMode mode;
    WallpaperApplyReason reason = WallpaperApplyReason::userInitiated;
    RemoteImagePresentation presentation = RemoteImagePresentation::wallpaper;
};

/// What an application chose by itself and the settings should remember. Empty for a mode that chooses
/// nothing.
struct WallpaperApplyOutcome {
    std::optional<CacheFileLease> selectionLease;  ///< on the picture of `windowsSpotlightSelection`
    std::optional<Url> selectedSlideshowImageURL;
    std::optional<WindowsSpotlightSelection> windowsSpotlightSelection;
};

/// A picture rendered for one display, ready to be set.
struct PreparedWallpaperImage {
    std::optional<CacheFileLease> selectionLease;  ///< on the picture of `windowsSpotlightSelection`
    CacheFileLease cacheLease;                     ///< on `image`
    std::filesystem::path image;
    std::optional<Url> selectedSlideshowImageURL;
    std::optional<WindowsSpotlightSelection> windowsSpotlightSelection;
};

/// A request that has nothing left that could fail before the desktop is touched. Without an image it has
/// nothing to render in advance.
struct PreparedWallpaperApplication {
    WallpaperApplyRequest request;
    std::optional<PreparedWallpaperImage> image;
};

/// What a display showed before the program took it over.
struct WallpaperDesktopSnapshot {
    std::string displayID;
    std::filesystem::path image;
    DesktopImageOptions options;
    CacheFileLease cacheLease;  ///< on `image`
};

/// Makes displays show modes. Main thread. Every operation throws `WallpaperApplicationError` or the error of
/// the port that refused.
class WallpaperApplying {
public:
    virtual ~WallpaperApplying() = default;
    /// The whole path for one display: prepare, set, stop what showed before.
    virtual Task<WallpaperApplyOutcome> apply(WallpaperApplyRequest request) = 0;
};

/// The application in two halves, and the way back.
class WallpaperTransactionOperationApplying : public WallpaperApplying {
public:
    /// Does everything that can be done without touching the desktop.
    virtual Task<PreparedWallpaperApplication> prepare(WallpaperApplyRequest request) = 0;
    virtual Task<WallpaperApplyOutcome> applyPrepared(PreparedWallpaperApplication application) = 0;
    virtual WallpaperDesktopSnapshot captureDesktop(const std::string& displayID) = 0;
    virtual void restoreDesktop(const WallpaperDesktopSnapshot& snapshot) = 0;
};

}  // namespace quillmar

#pragma once
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "async/Task.h"
#include "base/Enum.h"
#include "desktop/DesktopPictures.h"
#include "display/DisplayInfo.h"
#include "history/ShownPicture.h"
#include "modes/RemoteImagePresentation.h"
#include "modes/WallpaperMode.h"
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
    std::optional<ShownPicture> again = {};  ///< a former picture, which `mode` is made from
};

/// What an application has come to: what is shown, where that can be shown again, and what it chose by
/// itself, which the settings should remember.
struct WallpaperApplyOutcome {
    std::optional<ShownPicture> shown;
    std::vector<std::exception_ptr> leftOut;  ///< files that a slideshow passed over, each with the reason
    std::optional<CacheFileLease> selectionLease;  ///< on the picture of `windowsSpotlightSelection`
    std::optional<Url> selectedSlideshowImageURL;
    std::optional<WindowsSpotlightSelection> windowsSpotlightSelection;
};

/// What a display shows, from its preparation to its end: its destruction ends what runs for it. Main thread.
class WallpaperPresentation {
public:
    virtual ~WallpaperPresentation() = default;
    /// Puts it on the display. Called once; a failure leaves the display with what it showed.
    virtual Task<WallpaperApplyOutcome> present() = 0;
};

/// Makes the presentations of some kinds of modes. Main thread.
class WallpaperPresenting {
public:
    virtual ~WallpaperPresenting() = default;
    virtual bool presents(WallpaperModeKind kind) const = 0;
    /// Does all that can fail, without touching the desktop. The mode is valid and of a kind that it
    /// presents.
    virtual Task<std::unique_ptr<WallpaperPresentation>> prepare(WallpaperApplyRequest request) = 0;
};

/// A request that has nothing left that could fail before the desktop is touched. Without a presentation the
/// display is no longer managed.
struct PreparedWallpaperApplication {
    WallpaperApplyRequest request;
    std::unique_ptr<WallpaperPresentation> presentation;
};

/// What a display showed before the program took it over.
using WallpaperDesktopSnapshot = DesktopSnapshot;

/// Makes displays show modes. Main thread. Every operation throws `WallpaperApplicationError` or the error of
/// the port that refused.
class WallpaperApplying {
public:
    virtual ~WallpaperApplying() = default;
    /// The whole path for one display: prepare, present, stop what showed before.
    virtual Task<WallpaperApplyOutcome> apply(WallpaperApplyRequest request) = 0;
};

/// The application in two halves, and the way back.
class WallpaperTransactionOperationApplying : public WallpaperApplying {
public:
    /// Does everything that can be done without touching the desktop.
    virtual Task<PreparedWallpaperApplication> prepare(WallpaperApplyRequest request) = 0;
    virtual Task<WallpaperApplyOutcome> applyPrepared(PreparedWallpaperApplication application) = 0;
    virtual Task<WallpaperDesktopSnapshot> captureDesktop(std::string displayID) = 0;
    virtual Task<void> restoreDesktop(WallpaperDesktopSnapshot snapshot) = 0;
};

}  // namespace quillmar

#pragma once
#include <map>
#include <vector>

#include "wallpaper/WallpaperApplicationGate.h"
#include "wallpaper/WallpaperRequests.h"

namespace quillmar {

/// Turns a request into what the display shows: finds who presents the kind, and ends what the display showed
/// before once the new is up. It knows neither queues nor settings. Main thread.
class WallpaperService final : public WallpaperTransactionOperationApplying {
public:
    /// The presenters, of which each kind has at most one, outlive this.
    WallpaperService(const DisplayService& displays, DesktopPictures& desktop,
                     const WallpaperApplicationGate& gate, std::vector<WallpaperPresenting*> presenters)
        : displays_(displays), desktop_(desktop), gate_(gate), presenters_(std::move(presenters)) {}

    Task<WallpaperApplyOutcome> apply(WallpaperApplyRequest request) override;
    Task<PreparedWallpaperApplication> prepare(WallpaperApplyRequest request) override;
    Task<WallpaperApplyOutcome> applyPrepared(PreparedWallpaperApplication application) override;
    Task<WallpaperDesktopSnapshot> captureDesktop(std::string displayID) override;
    Task<void> restoreDesktop(WallpaperDesktopSnapshot snapshot) override;
    /// Shows again what the display showed last, where the desktop has forgotten it: until its picture is
    /// there.
    Task<void> recallDesktop(std::string displayID);

private:
    WallpaperPresenting* presenterOf(WallpaperModeKind kind) const;
    void requireConnected(const std::string& displayID) const;

    const DisplayService& displays_;
    DesktopPictures& desktop_;
    const WallpaperApplicationGate& gate_;
    std::vector<WallpaperPresenting*> presenters_;
    std::map<std::string, std::unique_ptr<WallpaperPresentation>> presentations_;  ///< by display
};

}  // namespace quillmar

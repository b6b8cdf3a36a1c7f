#include "wallpaper/WallpaperNotices.h"

#include "diagnostics/Log.h"

namespace quillmar {
namespace {

/// What a person reads; the log has all.
constexpr std::size_t maximumLeftOut = 10;

}  // namespace

void WallpaperNotices::leftOut(const std::string& displayID, const std::vector<std::exception_ptr>& reasons) {
    for (const std::exception_ptr& reason : reasons) {
        logWarning("A slideshow left out a file.", "wallpaper", reason, {{"display_id", displayID}});
        std::vector<WallpaperFailure>& known = leftOut_[displayID];
        if (known.size() == maximumLeftOut) known.erase(known.begin());
        known.push_back({errorText(reason, settingsModel_.settings().general.language), clock_.now()});
    }
}

void WallpaperNotices::failed(const std::string& displayID, std::string message) {
    lastFailures_.insert_or_assign(displayID, WallpaperFailure{std::move(message), clock_.now()});
}

Task<void> WallpaperNotices::report(WallpaperApplyRequest request, std::exception_ptr error,
                                    std::string logMessage, bool namesReason) {
    const WallpaperModeKind kind = request.mode.kind();
    if (remoteErrorNotifier_ && isRemote(kind) &&
        settingsModel_.settings().general.showRemoteErrorNotifications) {
        co_await remoteErrorNotifier_->notify(error, request.display, request.mode);
    }
    LogMetadata metadata{{"display_id", request.display.id}, {"mode", std::string(enumName(kind))}};
    if (namesReason) metadata.emplace("reason", std::string(enumName(request.reason)));
    logWarning(logMessage, "wallpaper", error, metadata);
}

void WallpaperNotices::reportRollback(const DisplayInfo& display, const std::exception_ptr& error) {
    logError("A wallpaper settings transaction could not restore a display.", "wallpaper", error,
             {{"display_id", display.id}});
}

}  // namespace quillmar

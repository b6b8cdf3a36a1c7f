#include "wallpaper/WallpaperNotices.h"

#include "diagnostics/Log.h"

namespace quillmar {

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

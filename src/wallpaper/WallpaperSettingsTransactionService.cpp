#include "wallpaper/WallpaperSettingsTransactionService.h"

namespace quillmar {

Task<WallpaperSettingsTransactionResult> WallpaperSettingsTransactionService::applyTransaction(
    std::vector<WallpaperApplyRequest> requests, std::map<std::string, WallpaperMode> previousModes) {
    WallpaperSettingsTransactionResult result;
    for (const WallpaperApplyRequest& request : requests) {
        const auto previous = previousModes.find(request.display.id);
        WallpaperMode previousMode = previous == previousModes.end() ? WallpaperMode{} : previous->second;
        co_await applyOne(request, std::move(previousMode), &result);
    }
    co_return result;
}

Task<void> WallpaperSettingsTransactionService::applyOne(WallpaperApplyRequest request,
                                                         WallpaperMode previousMode,
                                                         WallpaperSettingsTransactionResult* result) {
    std::optional<WallpaperDesktopSnapshot> snapshot;
    bool hasTouchedDesktop = false;
    std::exception_ptr failure;
    try {
        // A display that is not managed at present can only be taken back to what it shows, so nothing of
        // ours is set before that is captured.
        if (previousMode.kind() == WallpaperModeKind::disabled) {
            snapshot = co_await operationApplier_.captureDesktop(request.display.id);
        }
        PreparedWallpaperApplication prepared = co_await operationApplier_.prepare(request);
        hasTouchedDesktop = true;
        WallpaperApplyOutcome outcome = co_await operationApplier_.applyPrepared(std::move(prepared));
        result->applied.push_back({request, std::move(outcome)});
    } catch (...) {
        failure = std::current_exception();
    }
    if (!failure) co_return;
    result->failures.push_back({request, failure});
    if (!hasTouchedDesktop) co_return;
    try {
        co_await rollBack(request, std::move(previousMode), std::move(snapshot));
    } catch (...) {
        result->rollbackFailures.push_back({request.display, std::current_exception()});
    }
}

Task<void> WallpaperSettingsTransactionService::rollBack(WallpaperApplyRequest request,
                                                         WallpaperMode previousMode,
                                                         std::optional<WallpaperDesktopSnapshot> snapshot) {
    if (snapshot) {
        co_await operationApplier_.restoreDesktop(*std::move(snapshot));
        co_return;
    }
    request.mode = std::move(previousMode);
    co_await operationApplier_.apply(std::move(request));
}

}  // namespace quillmar

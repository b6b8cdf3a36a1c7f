#include "app/RestoreFollowing.h"

namespace quillmar {

void RestoreFollowing::settingsWillBeReplaced() {
    wasRotating_ = rotation_.isMonitoring();
    rotation_.stop();
}

void RestoreFollowing::settingsReplacementDidEnd() {
    // A start that was limited by unreadable settings stays so until the next one.
    if (wasRotating_) rotation_.start();
}

Task<std::optional<std::string>> RestoreFollowing::updateLoginItem(bool launchAtLogin) {
    if (co_await loginItem_.setEnabled(launchAtLogin)) co_return std::nullopt;
    co_return loginItem_.errorMessage().value_or("");
}

Task<std::vector<std::string>> RestoreFollowing::applyWallpapers() {
    const WallpaperApplyBatchResult batch =
        co_await wallpapers_.enqueue(std::nullopt, WallpaperApplyReason::userInitiated);
    std::vector<std::string> failures;
    for (const WallpaperDisplayApplyResult& display : batch.displays) {
        if (display.isFailed()) failures.push_back(display.displayName + ": " + *display.failureMessage);
    }
    co_return failures;
}

}  // namespace quillmar

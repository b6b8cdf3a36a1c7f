#include "app/RestoreFollowing.h"

namespace quillmar {

Task<std::optional<std::string>> RestoreFollowing::updateLoginItem(bool) { co_return std::nullopt; }

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

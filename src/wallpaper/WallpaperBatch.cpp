#include "wallpaper/WallpaperBatch.h"

#include <algorithm>

namespace quillmar {

std::size_t WallpaperApplyBatchResult::failedDisplayCount() const {
    return static_cast<std::size_t>(std::ranges::count_if(displays, &WallpaperDisplayApplyResult::isFailed));
}

bool WallpaperApplyBatchResult::hasFailure() const {
    return failedDisplayCount() > 0 || !rollbackFailures.empty() || transactionFailureMessage.has_value();
}

}  // namespace quillmar

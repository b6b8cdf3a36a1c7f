#pragma once
#include <optional>
#include <string>
#include <vector>

#include "wallpaper/WallpaperRequests.h"

namespace quillmar {

struct WallpaperDisplayApplyResult {
    std::string displayID;
    std::string displayName;
    WallpaperApplyReason reason = WallpaperApplyReason::userInitiated;
    std::optional<std::string> failureMessage;  ///< absent: the mode was applied

    bool isFailed() const { return failureMessage.has_value(); }
    bool operator==(const WallpaperDisplayApplyResult&) const = default;
};

/// A display that failed and could not be taken back to what it showed.
struct WallpaperRollbackFailure {
    std::string displayID;
    std::string displayName;
    std::string message;
    bool operator==(const WallpaperRollbackFailure&) const = default;
};

/// The one result of everything that goes through `WallpaperCoordinator`. It is returned, never thrown.
struct WallpaperApplyBatchResult {
    std::vector<WallpaperDisplayApplyResult> displays;
    std::vector<WallpaperRollbackFailure> rollbackFailures;
    std::optional<std::string> transactionFailureMessage;

    std::size_t failedDisplayCount() const;
    bool hasFailure() const;
    bool operator==(const WallpaperApplyBatchResult&) const = default;
};

}  // namespace quillmar

#pragma once
#include <exception>
#include <map>
#include <string>
#include <vector>

#include "wallpaper/WallpaperRequests.h"

namespace quillmar {

struct WallpaperSettingsTransactionAppliedDisplay {
    WallpaperApplyRequest request;
    WallpaperApplyOutcome outcome;
};
struct WallpaperSettingsTransactionFailure {
    WallpaperApplyRequest request;
    std::exception_ptr error;
};
struct WallpaperSettingsTransactionRollbackFailure {
    DisplayInfo display;
    std::exception_ptr error;
};
struct WallpaperSettingsTransactionResult {
    std::vector<WallpaperSettingsTransactionAppliedDisplay> applied;
    std::vector<WallpaperSettingsTransactionFailure> failures;
    std::vector<WallpaperSettingsTransactionRollbackFailure> rollbackFailures;
};

/// The apply half of a settings transaction. Main thread.
class WallpaperSettingsTransactionApplying {
public:
    virtual ~WallpaperSettingsTransactionApplying() = default;
    /// Applies each request in order and for itself: a display that fails is taken back to its previous mode,
    /// or to what it showed when it had none, and neither stops nor undoes the others.
    virtual Task<WallpaperSettingsTransactionResult> applyTransaction(
        std::vector<WallpaperApplyRequest> requests, std::map<std::string, WallpaperMode> previousModes) = 0;
};

class WallpaperSettingsTransactionService final : public WallpaperSettingsTransactionApplying {
public:
    explicit WallpaperSettingsTransactionService(WallpaperTransactionOperationApplying& operationApplier)
        : operationApplier_(operationApplier) {}
    Task<WallpaperSettingsTransactionResult> applyTransaction(
        std::vector<WallpaperApplyRequest> requests,
        std::map<std::string, WallpaperMode> previousModes) override;

private:
    Task<void> applyOne(WallpaperApplyRequest request, WallpaperMode previousMode,
                        WallpaperSettingsTransactionResult* result);
    Task<void> rollBack(WallpaperApplyRequest request, WallpaperMode previousMode,
                        std::optional<WallpaperDesktopSnapshot> snapshot);

    WallpaperTransactionOperationApplying& operationApplier_;
};

}  // namespace quillmar

#pragma once
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "async/TaskScope.h"
#include "async/WallClock.h"
#include "remote/RemoteWallpaperErrorNotifying.h"
#include "settings/AppSettingsModel.h"
#include "wallpaper/WallpaperApplicationGate.h"
#include "wallpaper/WallpaperBatch.h"
#include "wallpaper/WallpaperSettingsTransactionService.h"

namespace quillmar {

using WallpaperSettingsChange = std::function<void(WallpaperSettings&)>;

struct WallpaperFailure {
    std::string message;
    WallTime date;
};

/// The one door to wallpapers: puts every request in line, merges what can be merged, and answers each with a
/// result per display. One application runs at a time. Main thread only.
class WallpaperCoordinator {
public:
    WallpaperCoordinator(MainLoop& loop, const DisplayProviding& displayProvider, WallpaperApplying& applier,
                         WallpaperSettingsTransactionApplying* settingsTransactionApplier,
                         AppSettingsModel& settingsModel, const WallpaperApplicationGate& gate,
                         const WallClock& clock,
                         RemoteWallpaperErrorNotifying* remoteErrorNotifier = nullptr);

    /// Applies what the settings say to the given displays, or to all of them.
    Task<WallpaperApplyBatchResult> enqueue(std::optional<DisplayIDs> displayIDs,
                                            WallpaperApplyReason reason);
    /// The settings transaction: saves `settings` and applies them to all displays as one step; displays that
    /// fail are taken back, on screen and in the settings.
    Task<WallpaperApplyBatchResult> apply(WallpaperSettings settings);
    /// As above, with a change of what the settings say when its turn has come, applied to the given displays
    /// alone. One of them that is gone by then fails.
    Task<WallpaperApplyBatchResult> apply(WallpaperSettingsChange change, DisplayIDs displayIDs);
    /// True from the start of work until the line is empty.
    bool isApplying() const { return isApplying_; }
    /// What each display's last application failed of, by display ID; none for one that succeeded.
    const std::map<std::string, WallpaperFailure>& lastFailures() const { return lastFailures_; }

private:
    /// Somebody's place in the line. The waiter and the line share it, so that either may end first.
    struct Ticket {
        std::optional<DisplayIDs> requestedDisplayIDs;
        std::optional<WallpaperApplyBatchResult> result;
        WaitList answered;
    };
    struct PendingCurrentRequest {
        std::optional<DisplayIDs> displayIDs;  ///< absent: all displays
        WallpaperApplyReason reason;
        std::vector<std::shared_ptr<Ticket>> waiters;
    };
    struct PendingSettingsRequest {
        WallpaperSettingsChange change;
        std::optional<DisplayIDs> displayIDs;  ///< absent: all displays
        std::shared_ptr<Ticket> waiter;
    };
    using PendingRequest = std::variant<PendingCurrentRequest, PendingSettingsRequest>;

    static Task<WallpaperApplyBatchResult> answer(std::shared_ptr<Ticket> ticket);
    static void resolve(Ticket& ticket, WallpaperApplyBatchResult batch);
    void addToLine(PendingCurrentRequest request);
    void startDraining();
    Task<void> drain();
    Task<WallpaperApplyBatchResult> applyCurrentSettings(std::optional<DisplayIDs> displayIDs,
                                                         WallpaperApplyReason reason);
    Task<WallpaperDisplayApplyResult> applyDisplay(DisplayInfo display, WallpaperMode mode,
                                                   WallpaperApplyReason reason);
    Task<WallpaperApplyBatchResult> addToLine(WallpaperSettingsChange change,
                                              std::optional<DisplayIDs> displayIDs);
    Task<WallpaperApplyBatchResult> runSettingsTransaction(WallpaperSettingsChange change,
                                                           std::optional<DisplayIDs> displayIDs);
    Task<bool> commitWallpaper(WallpaperSettings settings);
    static WallpaperApplyBatchResult batchOf(const WallpaperSettingsTransactionResult& result,
                                             GeneralLanguage spoken);
    Task<void> reportFailures(const WallpaperSettingsTransactionResult* result);
    Task<void> notifyIfRemote(std::exception_ptr error, DisplayInfo display, WallpaperMode mode);
    void noteResult(const WallpaperDisplayApplyResult& result);
    WallpaperApplyBatchResult suppressedBatch(const std::optional<DisplayIDs>& displayIDs,
                                              WallpaperApplyReason reason) const;
    std::vector<DisplayInfo> displays(const std::optional<DisplayIDs>& displayIDs) const;
    WallpaperDisplayApplyResult unavailable(const std::string& displayID, WallpaperApplyReason reason) const;
    void addUnavailable(std::vector<WallpaperDisplayApplyResult>& results,
                        const std::optional<DisplayIDs>& requested, const std::vector<DisplayInfo>& connected,
                        WallpaperApplyReason reason) const;
    WallpaperApplyBatchResult sliceFor(const Ticket& waiter, const WallpaperApplyBatchResult& batch,
                                       WallpaperApplyReason reason) const;
    void rememberSelection(const std::string& displayID, const WallpaperApplyOutcome& outcome);
    GeneralLanguage language() const { return settingsModel_.settings().general.language; }

    const DisplayProviding& displayProvider_;
    WallpaperApplying& applier_;
    WallpaperSettingsTransactionApplying* settingsTransactionApplier_;
    AppSettingsModel& settingsModel_;
    const WallpaperApplicationGate& gate_;
    const WallClock& clock_;
    RemoteWallpaperErrorNotifying* remoteErrorNotifier_;
    bool isApplying_ = false;
    std::map<std::string, WallpaperFailure> lastFailures_;
    std::deque<PendingRequest> pendingRequests_;
    TaskScope tasks_;
};

}  // namespace quillmar

#pragma once
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "wallpaper/WallpaperApplicationGate.h"
#include "wallpaper/WallpaperSettingsChange.h"

namespace quillmar {

/// The one door to wallpapers: puts every request in the lines of its displays, merges what can be merged,
/// and answers each with a result per display. Main thread only.
class WallpaperCoordinator {
public:
    WallpaperCoordinator(MainLoop& loop, const DisplayProviding& displayProvider, WallpaperApplying& applier,
                         WallpaperSettingsTransactionApplying* settingsTransactionApplier,
                         AppSettingsModel& settingsModel, PictureMemory& pictures,
                         const WallpaperApplicationGate& gate, const WallClock& clock,
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
    /// Shows on each of the displays the picture that it showed before, without changing what the settings
    /// say. Those that are gone are passed over.
    Task<WallpaperApplyBatchResult> showPrevious(DisplayIDs displayIDs);
    /// Shows the next one: of those that were gone back from, or else a new one.
    Task<WallpaperApplyBatchResult> showNext(DisplayIDs displayIDs);
    /// Calls back with the display's ID when it shows another picture or mode, or has failed to, until the
    /// returned observation ends.
    [[nodiscard]] EventBus::Observation observeChanges(std::function<void(const std::string&)> callback) {
        return observers_.observe(displayDidChange, std::move(callback));
    }
    /// The connected displays whose picture was made for another size, or that were away when it was their
    /// turn: they came back too soon to be another arrangement.
    DisplayIDs outOfDate() const;
    /// True from the start of work until nothing is left to do.
    bool isApplying() const { return queue_.isWorking(); }
    /// What each display fails of at present, by display ID.
    const std::map<std::string, WallpaperFailure>& lastFailures() const { return notices_.lastFailures(); }
    /// The files that each display's slideshow left out lately, by display ID.
    const std::map<std::string, std::vector<WallpaperFailure>>& leftOut() const { return notices_.leftOut(); }

private:
    static constexpr NotificationName<std::string> displayDidChange{"displayDidChange"};

    Task<void> work(std::string displayID, WallpaperWork work);
    bool isOutOfDate(const DisplayInfo& display) const;
    Task<WallpaperDisplayApplyResult> applyCurrent(std::string displayID, WallpaperApplyReason reason);
    Task<WallpaperDisplayApplyResult> applyAgain(std::string displayID, HistoryStep step);
    Task<std::exception_ptr> tryApplying(WallpaperApplyRequest request);
    Task<void> fail(WallpaperDisplayApplyResult* result, WallpaperApplyRequest request,
                    std::exception_ptr failure);
    const ShownPicture* neighbour(const std::string& displayID, HistoryStep step) const;
    Task<void> applyChange(std::string displayID, std::shared_ptr<WallpaperSettingsChangeInProgress> change);
    Task<WallpaperApplyBatchResult> addChange(WallpaperSettingsChange change,
                                              std::optional<DisplayIDs> displayIDs);
    std::shared_ptr<WallpaperTicket> ticketFor(const std::optional<DisplayIDs>& displayIDs) const;
    std::optional<DisplayInfo> display(const std::string& displayID) const;
    WallpaperDisplayApplyResult suppressed(const std::string& displayID, WallpaperApplyReason reason) const;
    WallpaperDisplayApplyResult unavailable(const std::string& displayID, WallpaperApplyReason reason) const;
    WallpaperApplyBatchResult suppressedBatch(const std::optional<DisplayIDs>& displayIDs,
                                              WallpaperApplyReason reason) const;
    GeneralLanguage language() const { return settingsModel_.settings().general.language; }

    const DisplayProviding& displayProvider_;
    WallpaperApplying& applier_;
    AppSettingsModel& settingsModel_;
    PictureMemory& pictures_;
    const WallpaperApplicationGate& gate_;
    EventBus observers_;
    std::map<std::string, std::optional<PixelSize>>
        madeFor_;  ///< by display: its size at its last turn; nothing when it was away
    WallpaperNotices notices_;
    WallpaperSelectionMemory memory_;
    WallpaperSettingsChanges changes_;
    WallpaperQueue queue_;
};

}  // namespace quillmar

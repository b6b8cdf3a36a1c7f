#include "wallpaper/WallpaperCoordinator.h"

#include <algorithm>

#include "diagnostics/Log.h"
#include "modes/WallpaperApplicationError.h"

namespace quillmar {
namespace {

using Error = WallpaperApplicationError;

std::map<std::string, WallpaperMode> modesByDisplay(const WallpaperSettings& settings) {
    std::map<std::string, WallpaperMode> modes;
    for (const auto& entry : settings.displays) modes.emplace(entry.displayID, entry.mode);
    return modes;
}

WallpaperMode modeOf(const std::map<std::string, WallpaperMode>& modes, const std::string& displayID) {
    const auto found = modes.find(displayID);
    return found == modes.end() ? WallpaperMode{} : found->second;
}

/// What the file must say when some displays of `wanted` kept what they showed under `previous`.
WallpaperSettings mergedAfterFailure(WallpaperSettings wanted, WallpaperSettings previous,
                                     const DisplayIDs& failedDisplayIDs) {
    for (const std::string& id : failedDisplayIDs) {
        DisplayWallpaperSettings* before = findEntry(previous.displays, id);
        DisplayWallpaperSettings* now = findEntry(wanted.displays, id);
        if (before && now) {
            *now = *before;
        } else if (before) {
            wanted.displays.push_back(*before);
        } else {
            std::erase_if(wanted.displays, [&](const auto& entry) { return entry.displayID == id; });
        }
    }
    return wanted;
}

}  // namespace

WallpaperCoordinator::WallpaperCoordinator(MainLoop& loop, const DisplayProviding& displayProvider,
                                           WallpaperApplying& applier,
                                           WallpaperSettingsTransactionApplying* settingsTransactionApplier,
                                           AppSettingsModel& settingsModel,
                                           const WallpaperApplicationGate& gate, const WallClock& clock,
                                           RemoteWallpaperErrorNotifying* remoteErrorNotifier)
    : displayProvider_(displayProvider),
      applier_(applier),
      settingsTransactionApplier_(settingsTransactionApplier),
      settingsModel_(settingsModel),
      gate_(gate),
      clock_(clock),
      remoteErrorNotifier_(remoteErrorNotifier),
      tasks_(loop) {}

Task<WallpaperApplyBatchResult> WallpaperCoordinator::enqueue(std::optional<DisplayIDs> displayIDs,
                                                              WallpaperApplyReason reason) {
    if (gate_.isLockScreenOverrideActive) co_return suppressedBatch(displayIDs, reason);
    auto ticket = std::make_shared<Ticket>();
    ticket->requestedDisplayIDs = displayIDs;
    addToLine({std::move(displayIDs), reason, {ticket}});
    co_return co_await answer(ticket);
}

Task<WallpaperApplyBatchResult> WallpaperCoordinator::apply(WallpaperSettings settings) {
    co_return co_await addToLine(
        [wanted = std::move(settings)](WallpaperSettings& present) { present = wanted; }, std::nullopt);
}

Task<WallpaperApplyBatchResult> WallpaperCoordinator::apply(WallpaperSettingsChange change,
                                                            DisplayIDs displayIDs) {
    co_return co_await addToLine(std::move(change), std::move(displayIDs));
}

Task<WallpaperApplyBatchResult> WallpaperCoordinator::addToLine(WallpaperSettingsChange change,
                                                                std::optional<DisplayIDs> displayIDs) {
    if (gate_.isLockScreenOverrideActive) {
        co_return suppressedBatch(displayIDs, WallpaperApplyReason::userInitiated);
    }
    auto ticket = std::make_shared<Ticket>();
    pendingRequests_.push_back(PendingSettingsRequest{std::move(change), std::move(displayIDs), ticket});
    startDraining();
    co_return co_await answer(ticket);
}

Task<WallpaperApplyBatchResult> WallpaperCoordinator::answer(std::shared_ptr<Ticket> ticket) {
    while (!ticket->result) co_await ticket->answered.wait();
    co_return *std::move(ticket->result);
}

void WallpaperCoordinator::resolve(Ticket& ticket, WallpaperApplyBatchResult batch) {
    ticket.result = std::move(batch);
    ticket.answered.resumeAll();
}

void WallpaperCoordinator::addToLine(PendingCurrentRequest request) {
    // Only the last in line may take another in: whatever stands between must keep its place.
    PendingCurrentRequest* last = nullptr;
    if (!pendingRequests_.empty()) last = std::get_if<PendingCurrentRequest>(&pendingRequests_.back());
    if (last && last->reason == request.reason) {
        if (!request.displayIDs) {
            last->displayIDs.reset();
        } else if (last->displayIDs) {
            last->displayIDs->merge(*request.displayIDs);
        }
        std::ranges::move(request.waiters, std::back_inserter(last->waiters));
    } else {
        pendingRequests_.push_back(std::move(request));
    }
    startDraining();
}

void WallpaperCoordinator::startDraining() {
    if (std::exchange(isApplying_, true)) return;
    tasks_.spawn(drain());
}

Task<void> WallpaperCoordinator::drain() {
    while (!pendingRequests_.empty()) {
        PendingRequest request = std::move(pendingRequests_.front());
        pendingRequests_.pop_front();
        if (auto* settings = std::get_if<PendingSettingsRequest>(&request)) {
            resolve(*settings->waiter, co_await runSettingsTransaction(std::move(settings->change),
                                                                       std::move(settings->displayIDs)));
            continue;
        }
        const auto& current = std::get<PendingCurrentRequest>(request);
        WallpaperApplyBatchResult batch;
        if (gate_.isLockScreenOverrideActive) {
            batch = suppressedBatch(current.displayIDs, current.reason);
        } else {
            batch = co_await applyCurrentSettings(current.displayIDs, current.reason);
        }
        for (const auto& waiter : current.waiters) resolve(*waiter, sliceFor(*waiter, batch, current.reason));
    }
    isApplying_ = false;
}

WallpaperApplyBatchResult WallpaperCoordinator::sliceFor(const Ticket& waiter,
                                                         const WallpaperApplyBatchResult& batch,
                                                         WallpaperApplyReason reason) const {
    if (!waiter.requestedDisplayIDs) return batch;
    WallpaperApplyBatchResult slice;
    DisplayIDs missing = *waiter.requestedDisplayIDs;
    for (const auto& display : batch.displays) {
        if (!waiter.requestedDisplayIDs->contains(display.displayID)) continue;
        slice.displays.push_back(display);
        missing.erase(display.displayID);
    }
    for (const std::string& id : missing) slice.displays.push_back(unavailable(id, reason));
    return slice;
}

Task<WallpaperApplyBatchResult> WallpaperCoordinator::applyCurrentSettings(
    std::optional<DisplayIDs> displayIDs, WallpaperApplyReason reason) {
    const std::vector<DisplayInfo> connected = displays(displayIDs);
    // As they are now: a change of the settings meanwhile is another request's.
    std::vector<WallpaperMode> modes;
    for (const DisplayInfo& display : connected) {
        const auto* entry = findEntry(settingsModel_.settings().wallpaper.displays, display.id);
        modes.push_back(entry ? entry->mode : WallpaperMode{});
    }
    WallpaperApplyBatchResult batch;
    addUnavailable(batch.displays, displayIDs, connected, reason);
    for (std::size_t i = 0; i < connected.size(); ++i) {
        batch.displays.push_back(co_await applyDisplay(connected[i], std::move(modes[i]), reason));
    }
    co_return batch;
}

Task<WallpaperDisplayApplyResult> WallpaperCoordinator::applyDisplay(DisplayInfo display, WallpaperMode mode,
                                                                     WallpaperApplyReason reason) {
    WallpaperDisplayApplyResult result{display.id, display.localizedName, reason, {}};
    if (gate_.isLockScreenOverrideActive) {
        result.failureMessage = Error(Error::Case::suppressedWhileLocked).message(language());
        co_return result;
    }
    std::exception_ptr failure;
    try {
        rememberSelection(display.id, co_await applier_.apply({display, mode, reason}));
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception& error) {
        result.failureMessage = errorText(error, language());
        failure = std::current_exception();
    }
    noteResult(result);
    if (failure) {
        co_await notifyIfRemote(failure, display, mode);
        logWarning("A wallpaper apply operation failed.", "wallpaper", failure,
                   {{"display_id", display.id},
                    {"reason", std::string(enumName(reason))},
                    {"mode", std::string(enumName(mode.kind()))}});
    }
    co_return result;
}

Task<WallpaperApplyBatchResult> WallpaperCoordinator::runSettingsTransaction(
    WallpaperSettingsChange change, std::optional<DisplayIDs> displayIDs) {
    constexpr auto reason = WallpaperApplyReason::userInitiated;
    WallpaperApplyBatchResult batch;
    const GeneralLanguage spoken = language();
    if (gate_.isLockScreenOverrideActive) co_return suppressedBatch(displayIDs, reason);
    if (!settingsTransactionApplier_) {
        batch.transactionFailureMessage =
            localized("Quillmar could not start the wallpaper transaction."_key, spoken);
        co_return batch;
    }
    const WallpaperSettings previous = settingsModel_.settings().wallpaper;
    WallpaperSettings settings = previous;
    change(settings);
    if (!co_await commitWallpaper(settings)) {
        batch.transactionFailureMessage = localized(
            "Quillmar could not save the wallpaper settings. Review the settings save error before trying "
            "again."_key,
            spoken);
        co_return batch;
    }
    const std::vector<DisplayInfo> connected = displays(displayIDs);
    const auto modes = modesByDisplay(settings);
    std::vector<WallpaperApplyRequest> requests;
    for (const DisplayInfo& display : connected) requests.push_back({display, modeOf(modes, display.id)});
    const WallpaperSettingsTransactionResult result =
        co_await settingsTransactionApplier_->applyTransaction(std::move(requests), modesByDisplay(previous));
    batch = batchOf(result, spoken);
    for (const WallpaperDisplayApplyResult& display : batch.displays) noteResult(display);
    addUnavailable(batch.displays, displayIDs, connected, reason);
    co_await reportFailures(&result);
    DisplayIDs failed;
    for (const WallpaperDisplayApplyResult& display : batch.displays) {
        if (display.isFailed()) failed.insert(display.displayID);
    }
    if (!failed.empty()) {
        if (!co_await commitWallpaper(mergedAfterFailure(settings, previous, failed))) {
            batch.transactionFailureMessage = localized(
                "Quillmar could not roll back the failed wallpaper change. Review the settings save error "
                "before trying again."_key,
                spoken);
        }
    }
    for (const auto& applied : result.applied) rememberSelection(applied.request.display.id, applied.outcome);
    co_return batch;
}

Task<bool> WallpaperCoordinator::commitWallpaper(WallpaperSettings settings) {
    const auto hold = co_await settingsModel_.transactionGate().acquire();
    co_return co_await settingsModel_.commit(
        [settings = std::move(settings)](AppSettings& document) { document.wallpaper = settings; });
}

void WallpaperCoordinator::noteResult(const WallpaperDisplayApplyResult& result) {
    if (result.isFailed()) {
        lastFailures_.insert_or_assign(result.displayID,
                                       WallpaperFailure{*result.failureMessage, clock_.now()});
    } else {
        lastFailures_.erase(result.displayID);
    }
}

Task<void> WallpaperCoordinator::notifyIfRemote(std::exception_ptr error, DisplayInfo display,
                                                WallpaperMode mode) {
    if (!remoteErrorNotifier_ || !isRemote(mode.kind())) co_return;
    if (!settingsModel_.settings().general.showRemoteErrorNotifications) co_return;
    co_await remoteErrorNotifier_->notify(std::move(error), std::move(display), std::move(mode));
}

Task<void> WallpaperCoordinator::reportFailures(const WallpaperSettingsTransactionResult* result) {
    for (const auto& [request, error] : result->failures) {
        co_await notifyIfRemote(error, request.display, request.mode);
        logWarning(
            "A wallpaper settings transaction failed.", "wallpaper", error,
            {{"display_id", request.display.id}, {"mode", std::string(enumName(request.mode.kind()))}});
    }
    for (const auto& [display, error] : result->rollbackFailures) {
        logError("A wallpaper settings transaction could not restore a display.", "wallpaper", error,
                 {{"display_id", display.id}});
    }
}

WallpaperApplyBatchResult WallpaperCoordinator::batchOf(const WallpaperSettingsTransactionResult& result,
                                                        GeneralLanguage spoken) {
    WallpaperApplyBatchResult batch;
    for (const auto& [request, outcome] : result.applied) {
        batch.displays.push_back({request.display.id, request.display.localizedName, request.reason, {}});
    }
    for (const auto& [request, error] : result.failures) {
        batch.displays.push_back(
            {request.display.id, request.display.localizedName, request.reason, errorText(error, spoken)});
    }
    for (const auto& [display, error] : result.rollbackFailures) {
        batch.rollbackFailures.push_back({display.id, display.localizedName, errorText(error, spoken)});
    }
    return batch;
}

WallpaperApplyBatchResult WallpaperCoordinator::suppressedBatch(const std::optional<DisplayIDs>& displayIDs,
                                                                WallpaperApplyReason reason) const {
    const std::vector<DisplayInfo> connected = displays(displayIDs);
    WallpaperApplyBatchResult batch;
    for (const DisplayInfo& display : connected) {
        batch.displays.push_back({display.id, display.localizedName, reason,
                                  Error(Error::Case::suppressedWhileLocked).message(language())});
    }
    addUnavailable(batch.displays, displayIDs, connected, reason);
    return batch;
}

std::vector<DisplayInfo> WallpaperCoordinator::displays(const std::optional<DisplayIDs>& displayIDs) const {
    std::vector<DisplayInfo> connected = displayProvider_.displays();
    if (displayIDs) {
        std::erase_if(connected,
                      [&](const DisplayInfo& display) { return !displayIDs->contains(display.id); });
    }
    return connected;
}

void WallpaperCoordinator::addUnavailable(std::vector<WallpaperDisplayApplyResult>& results,
                                          const std::optional<DisplayIDs>& requested,
                                          const std::vector<DisplayInfo>& connected,
                                          WallpaperApplyReason reason) const {
    if (!requested) return;
    for (const std::string& id : *requested) {
        if (std::ranges::find(connected, id, &DisplayInfo::id) != connected.end()) continue;
        results.push_back(unavailable(id, reason));
    }
}

WallpaperDisplayApplyResult WallpaperCoordinator::unavailable(const std::string& displayID,
                                                              WallpaperApplyReason reason) const {
    return {displayID, displayID, reason,
            Error(Error::Case::unavailableDisplay, displayID).message(language())};
}

void WallpaperCoordinator::rememberSelection(const std::string& displayID,
                                             const WallpaperApplyOutcome& outcome) {
    if (const auto& image = outcome.selectedSlideshowImageURL) {
        settingsModel_.update([displayID, image](AppSettings& settings) {
            auto* entry = findEntry(settings.wallpaper.displays, displayID);
            auto* slideshow =
                entry ? std::get_if<SlideshowPresentationSettings>(&entry->mode.value) : nullptr;
            if (slideshow) slideshow->lastImageURL = *image;
        });
    }
    if (auto selection = outcome.windowsSpotlightSelection) {
        // A remembered picture keeps the moment of its real change, so that its interval runs on.
        if (!selection->appliedAt) selection->appliedAt = clock_.now();
        settingsModel_.update([displayID, selection](AppSettings& settings) {
            auto* entry = findEntry(settings.wallpaper.displays, displayID);
            auto* spotlight = entry ? std::get_if<WindowsSpotlightSettings>(&entry->mode.value) : nullptr;
            if (spotlight && spotlight->locale == selection->locale) spotlight->lastSelection = *selection;
        });
    }
}

}  // namespace quillmar

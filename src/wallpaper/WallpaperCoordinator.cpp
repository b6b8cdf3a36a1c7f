#include "wallpaper/WallpaperCoordinator.h"

#include <algorithm>

#include "modes/WallpaperApplicationError.h"
#include "platform/DesktopPictureError.h"
#include "wallpaper/PictureSource.h"

namespace quillmar {
namespace {

using Error = WallpaperApplicationError;

/// Whether the display was away or on the move, and may show its picture when it is back.
bool isFaultOfArrangement(const std::exception_ptr& failure) {
    try {
        std::rethrow_exception(failure);
    } catch (const Error& error) {
        return error.errorCase() == Error::Case::unavailableDisplay;
    } catch (const DesktopPictureError& error) {
        return error.errorCase() == DesktopPictureError::Case::disconnected ||
               error.errorCase() == DesktopPictureError::Case::rearranged;
    } catch (...) {
        return false;
    }
}

}  // namespace

WallpaperCoordinator::WallpaperCoordinator(MainLoop& loop, const DisplayProviding& displayProvider,
                                           WallpaperApplying& applier,
                                           WallpaperSettingsTransactionApplying* settingsTransactionApplier,
                                           AppSettingsModel& settingsModel, PictureMemory& pictures,
                                           const WallpaperApplicationGate& gate, const WallClock& clock,
                                           RemoteWallpaperErrorNotifying* remoteErrorNotifier)
    : displayProvider_(displayProvider),
      applier_(applier),
      settingsModel_(settingsModel),
      pictures_(pictures),
      gate_(gate),
      notices_(settingsModel, clock, remoteErrorNotifier),
      memory_(settingsModel, pictures, clock),
      changes_(settingsModel, settingsTransactionApplier, notices_, memory_),
      queue_(loop, [this](std::string displayID, WallpaperWork next) {
          return work(std::move(displayID), std::move(next));
      }) {}

Task<WallpaperApplyBatchResult> WallpaperCoordinator::enqueue(std::optional<DisplayIDs> displayIDs,
                                                              WallpaperApplyReason reason) {
    if (gate_.isLockScreenOverrideActive) co_return suppressedBatch(displayIDs, reason);
    const auto ticket = ticketFor(displayIDs);
    for (const std::string& id : ticket->displayIDs) queue_.add(id, WallpaperPass{reason, {ticket}});
    co_return co_await WallpaperTicket::wait(ticket);
}

Task<WallpaperApplyBatchResult> WallpaperCoordinator::showPrevious(DisplayIDs displayIDs) {
    const auto ticket = ticketFor(displayIDs);
    for (const std::string& id : ticket->displayIDs)
        queue_.add(id, WallpaperReturn{HistoryStep::back, ticket});
    co_return co_await WallpaperTicket::wait(ticket);
}

Task<WallpaperApplyBatchResult> WallpaperCoordinator::showNext(DisplayIDs displayIDs) {
    const auto ticket = ticketFor(displayIDs);
    for (const std::string& id : ticket->displayIDs) {
        // New pictures that are asked for at the same time are one picture; steps are counted.
        const bool isStep = neighbour(id, HistoryStep::forward) != nullptr;
        queue_.add(id, isStep ? WallpaperWork(WallpaperReturn{HistoryStep::forward, ticket})
                              : WallpaperWork(WallpaperPass{WallpaperApplyReason::rotation, {ticket}}));
    }
    co_return co_await WallpaperTicket::wait(ticket);
}

Task<WallpaperApplyBatchResult> WallpaperCoordinator::apply(WallpaperSettings settings) {
    co_return co_await addChange(
        [wanted = std::move(settings)](WallpaperSettings& present) { present = wanted; }, std::nullopt);
}

Task<WallpaperApplyBatchResult> WallpaperCoordinator::apply(WallpaperSettingsChange change,
                                                            DisplayIDs displayIDs) {
    co_return co_await addChange(std::move(change), std::move(displayIDs));
}

Task<WallpaperApplyBatchResult> WallpaperCoordinator::addChange(WallpaperSettingsChange change,
                                                                std::optional<DisplayIDs> displayIDs) {
    if (gate_.isLockScreenOverrideActive) {
        co_return suppressedBatch(displayIDs, WallpaperApplyReason::userInitiated);
    }
    auto progress = std::make_shared<WallpaperSettingsChangeInProgress>();
    progress->change = std::move(change);
    progress->ticket = ticketFor(displayIDs);
    for (const std::string& id : progress->ticket->displayIDs) queue_.add(id, progress);
    if (progress->ticket->displayIDs.empty()) co_await changes_.save(progress);
    WallpaperApplyBatchResult batch = co_await WallpaperTicket::wait(progress->ticket);
    std::ranges::sort(batch.displays, {}, [&](const WallpaperDisplayApplyResult& result) {
        const auto place = std::ranges::find(progress->ticket->displayIDs, result.displayID);
        return std::pair(result.isFailed(), place);
    });
    co_return batch;
}

DisplayIDs WallpaperCoordinator::outOfDate() const {
    DisplayIDs ids;
    for (const DisplayInfo& display : displayProvider_.displays()) {
        // Work that is in line looks at the display by itself.
        if (!queue_.isWorking(display.id) && isOutOfDate(display)) ids.insert(display.id);
    }
    return ids;
}

bool WallpaperCoordinator::isOutOfDate(const DisplayInfo& display) const {
    const auto* entry = findEntry(settingsModel_.settings().wallpaper.displays, display.id);
    if (!entry || entry->mode.kind() == WallpaperModeKind::disabled) return false;
    const auto made = madeFor_.find(display.id);
    return made == madeFor_.end() || made->second != display.pixelSize;
}

Task<void> WallpaperCoordinator::work(std::string displayID, WallpaperWork work) {
    const auto before = display(displayID);
    madeFor_.insert_or_assign(displayID, before ? before->pixelSize : std::nullopt);
    if (auto* pass = std::get_if<WallpaperPass>(&work)) {
        const WallpaperDisplayApplyResult result = co_await applyCurrent(displayID, pass->reason);
        for (const auto& ticket : pass->tickets) ticket->deliver(result);
    } else if (const auto* back = std::get_if<WallpaperReturn>(&work)) {
        back->ticket->deliver(co_await applyAgain(displayID, back->step));
    } else {
        co_await applyChange(displayID,
                             std::get<std::shared_ptr<WallpaperSettingsChangeInProgress>>(std::move(work)));
    }
    observers_.post(displayDidChange, displayID);
    // It may have its former size back before anybody looks, and then nothing seems to have changed.
    const auto after = display(displayID);
    if (before && after && before->pixelSize != after->pixelSize && isOutOfDate(*after)) {
        queue_.add(displayID, WallpaperPass{WallpaperApplyReason::userInitiated, {}});
    }
}

Task<WallpaperDisplayApplyResult> WallpaperCoordinator::applyCurrent(std::string displayID,
                                                                     WallpaperApplyReason reason) {
    if (gate_.isLockScreenOverrideActive) co_return suppressed(displayID, reason);
    const auto connected = display(displayID);
    if (!connected) co_return unavailable(displayID, reason);
    WallpaperDisplayApplyResult result{displayID, connected->localizedName, reason, {}};
    // As it is now: a change of the settings meanwhile is another request's.
    const auto* entry = findEntry(settingsModel_.settings().wallpaper.displays, displayID);
    const WallpaperApplyRequest request{*connected, entry ? entry->mode : WallpaperMode{}, reason};
    if (const auto failure = co_await tryApplying(request)) co_await fail(&result, request, failure);
    co_return result;
}

/// Why it failed; null where it did not.
Task<std::exception_ptr> WallpaperCoordinator::tryApplying(WallpaperApplyRequest request) {
    try {
        const WallpaperApplyOutcome outcome = co_await applier_.apply(request);
        if (request.again) {
            pictures_.returned(request.display.id, *request.again);
        } else {
            memory_.remember(request.display.id, outcome);
        }
        notices_.succeeded(request.display.id);
        notices_.leftOut(request.display.id, outcome.leftOut);
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception&) {
        const auto failure = std::current_exception();
        if (isFaultOfArrangement(failure)) madeFor_.insert_or_assign(request.display.id, std::nullopt);
        co_return failure;
    }
    co_return nullptr;
}

Task<void> WallpaperCoordinator::fail(WallpaperDisplayApplyResult* result, WallpaperApplyRequest request,
                                      std::exception_ptr failure) {
    result->failureMessage = errorText(failure, language());
    notices_.failed(result->displayID, *result->failureMessage);
    co_await notices_.report(std::move(request), failure, "A wallpaper apply operation failed.", true);
}

/// A display that shows nothing of ours at present has no pictures to go to.
const ShownPicture* WallpaperCoordinator::neighbour(const std::string& displayID, HistoryStep step) const {
    const auto* entry = findEntry(settingsModel_.settings().wallpaper.displays, displayID);
    if (!entry || entry->mode.kind() == WallpaperModeKind::disabled) return nullptr;
    return pictures_.history().neighbour(displayID, step);
}

Task<WallpaperDisplayApplyResult> WallpaperCoordinator::applyAgain(std::string displayID, HistoryStep step) {
    constexpr auto reason = WallpaperApplyReason::userInitiated;
    const auto connected = display(displayID);
    while (const ShownPicture* found = neighbour(displayID, step)) {
        if (gate_.isLockScreenOverrideActive) co_return suppressed(displayID, reason);
        if (!connected) co_return unavailable(displayID, reason);
        const ShownPicture picture = *found;
        WallpaperDisplayApplyResult result{displayID, connected->localizedName, reason, {}};
        WallpaperApplyRequest request{*connected, picture.mode(), reason};
        request.again = picture;
        const auto failure = co_await tryApplying(request);
        if (failure && isFaultOfFile(failure)) {
            pictures_.forget(displayID, picture);
            continue;
        }
        if (failure) co_await fail(&result, request, failure);
        co_return result;
    }
    if (step == HistoryStep::forward)
        co_return co_await applyCurrent(displayID, WallpaperApplyReason::rotation);
    if (!connected) co_return unavailable(displayID, reason);
    co_return WallpaperDisplayApplyResult{displayID, connected->localizedName, reason,
                                          Error(Error::Case::noEarlierPicture).message(language())};
}

Task<void> WallpaperCoordinator::applyChange(std::string displayID,
                                             std::shared_ptr<WallpaperSettingsChangeInProgress> change) {
    constexpr auto reason = WallpaperApplyReason::userInitiated;
    if (change->state == WallpaperSettingsChangeInProgress::State::waiting &&
        gate_.isLockScreenOverrideActive) {
        change->ticket->deliver(suppressed(displayID, reason));
        co_return;
    }
    if (!co_await changes_.save(change)) co_return;
    if (auto connected = display(displayID)) {
        co_await changes_.applyTo(*std::move(connected), change);
    } else {
        co_await changes_.refuseFor(unavailable(displayID, reason), change);
    }
}

/// Displays that are not connected come first in the answer, then the others in the system's order.
std::shared_ptr<WallpaperTicket> WallpaperCoordinator::ticketFor(
    const std::optional<DisplayIDs>& displayIDs) const {
    auto ticket = std::make_shared<WallpaperTicket>();
    const std::vector<DisplayInfo> connected = displayProvider_.displays();
    for (const std::string& id : displayIDs.value_or(DisplayIDs{})) {
        if (std::ranges::find(connected, id, &DisplayInfo::id) == connected.end()) {
            ticket->displayIDs.push_back(id);
        }
    }
    for (const DisplayInfo& display : connected) {
        if (!displayIDs || displayIDs->contains(display.id)) ticket->displayIDs.push_back(display.id);
    }
    return ticket;
}

std::optional<DisplayInfo> WallpaperCoordinator::display(const std::string& displayID) const {
    const std::vector<DisplayInfo> connected = displayProvider_.displays();
    const auto found = std::ranges::find(connected, displayID, &DisplayInfo::id);
    return found == connected.end() ? std::nullopt : std::optional(*found);
}

WallpaperApplyBatchResult WallpaperCoordinator::suppressedBatch(const std::optional<DisplayIDs>& displayIDs,
                                                                WallpaperApplyReason reason) const {
    WallpaperApplyBatchResult batch;
    for (const std::string& id : ticketFor(displayIDs)->displayIDs) {
        batch.displays.push_back(suppressed(id, reason));
    }
    return batch;
}

WallpaperDisplayApplyResult WallpaperCoordinator::suppressed(const std::string& displayID,
                                                             WallpaperApplyReason reason) const {
    const auto connected = display(displayID);
    if (!connected) return unavailable(displayID, reason);
    return {displayID, connected->localizedName, reason,
            Error(Error::Case::suppressedWhileLocked).message(language())};
}

WallpaperDisplayApplyResult WallpaperCoordinator::unavailable(const std::string& displayID,
                                                              WallpaperApplyReason reason) const {
    return {displayID, displayID, reason,
            Error(Error::Case::unavailableDisplay, displayID).message(language())};
}

}  // namespace quillmar

#include "wallpaper/WallpaperSettingsChange.h"

namespace quillmar {
namespace {

using State = WallpaperSettingsChangeInProgress::State;
constexpr auto reason = WallpaperApplyReason::userInitiated;

WallpaperMode modeIn(const WallpaperSettings& settings, const std::string& displayID) {
    const auto* entry = findEntry(settings.displays, displayID);
    return entry ? entry->mode : WallpaperMode{};
}

/// The record that the display had before, or none.
void putBack(WallpaperSettings& settings, const WallpaperSettings& previous, const std::string& displayID) {
    const DisplayWallpaperSettings* before = findEntry(previous.displays, displayID);
    DisplayWallpaperSettings* now = findEntry(settings.displays, displayID);
    if (before && now) {
        *now = *before;
    } else if (before) {
        settings.displays.push_back(*before);
    } else {
        std::erase_if(settings.displays, [&](const auto& entry) { return entry.displayID == displayID; });
    }
}

}  // namespace

Task<bool> WallpaperSettingsChanges::save(std::shared_ptr<WallpaperSettingsChangeInProgress> change) {
    while (change->state == State::saving) co_await change->saved.wait();
    if (change->state != State::waiting) co_return change->state == State::saved;
    change->state = State::saving;
    WallpaperApplyBatchResult& batch = change->ticket->batch;
    const GeneralLanguage spoken = language();
    if (!applier_) {
        batch.transactionFailureMessage =
            localized("Quillmar could not start the wallpaper transaction."_key, spoken);
    } else {
        // Made again, on top of it, where an edit of the file came before.
        if (!co_await commit([change](WallpaperSettings& settings) {
                change->previous = settings;
                change->change(settings);
                change->wanted = settings;
            })) {
            batch.transactionFailureMessage = localized(
                "Quillmar could not save the wallpaper settings. Review the settings save error before "
                "trying again."_key,
                spoken);
        }
    }
    const bool isSaved = !batch.transactionFailureMessage;
    change->state = isSaved ? State::saved : State::refused;
    if (!isSaved) change->ticket->answer();
    change->saved.resumeAll();
    co_return isSaved;
}

Task<void> WallpaperSettingsChanges::applyTo(DisplayInfo display,
                                             std::shared_ptr<WallpaperSettingsChangeInProgress> change) {
    const GeneralLanguage spoken = language();
    WallpaperDisplayApplyResult result{display.id, display.localizedName, reason, {}};
    WallpaperApplyRequest request{display, modeIn(change->wanted, display.id)};
    const WallpaperSettingsTransactionResult outcome = co_await applier_->applyTransaction(
        {std::move(request)}, {{display.id, modeIn(change->previous, display.id)}});
    for (const auto& applied : outcome.applied) {
        notices_.succeeded(display.id);
        notices_.forgetLeftOut(display.id);
        notices_.leftOut(display.id, applied.outcome.leftOut);
        memory_.remember(display.id, applied.outcome);
    }
    for (const auto& [failed, error] : outcome.failures) {
        result.failureMessage = errorText(error, spoken);
        co_await notices_.report(failed, error, "A wallpaper settings transaction failed.", false);
    }
    for (const auto& [failed, error] : outcome.rollbackFailures) {
        change->ticket->batch.rollbackFailures.push_back(
            {failed.id, failed.localizedName, errorText(error, spoken)});
        WallpaperNotices::reportRollback(failed, error);
        // Where it was taken back the display fails of nothing: it shows what the settings say.
        notices_.failed(display.id, *result.failureMessage);
    }
    if (result.isFailed()) co_await takeBack(display.id, change);
    change->ticket->deliver(std::move(result));
}

Task<void> WallpaperSettingsChanges::refuseFor(WallpaperDisplayApplyResult result,
                                               std::shared_ptr<WallpaperSettingsChangeInProgress> change) {
    co_await takeBack(result.displayID, change);
    change->ticket->deliver(std::move(result));
}

/// Of this display alone: what others say meanwhile stands.
Task<void> WallpaperSettingsChanges::takeBack(std::string displayID,
                                              std::shared_ptr<WallpaperSettingsChangeInProgress> change) {
    const bool isTakenBack = co_await commit(
        [change, displayID](WallpaperSettings& settings) { putBack(settings, change->previous, displayID); });
    if (isTakenBack) co_return;
    change->ticket->batch.transactionFailureMessage = localized(
        "Quillmar could not roll back the failed wallpaper change. Review the settings save error before "
        "trying again."_key,
        language());
}

Task<bool> WallpaperSettingsChanges::commit(std::function<void(WallpaperSettings&)> mutation) {
    const auto hold = co_await settingsModel_.transactionGate().acquire();
    co_return co_await settingsModel_.commit(
        [mutation = std::move(mutation)](AppSettings& document) { mutation(document.wallpaper); });
}

}  // namespace quillmar

#include "wallpaper/WallpaperService.h"

#include <algorithm>

#include "modes/WallpaperApplicationError.h"

namespace quillmar {
namespace {

using Error = WallpaperApplicationError;

}  // namespace

WallpaperPresenting* WallpaperService::presenterOf(WallpaperModeKind kind) const {
    const auto found = std::ranges::find_if(
        presenters_, [kind](const WallpaperPresenting* presenter) { return presenter->presents(kind); });
    return found == presenters_.end() ? nullptr : *found;
}

void WallpaperService::requireConnected(const std::string& displayID) const {
    if (!displays_.screen(displayID)) throw Error(Error::Case::unavailableDisplay, displayID);
}

Task<WallpaperApplyOutcome> WallpaperService::apply(WallpaperApplyRequest request) {
    co_return co_await applyPrepared(co_await prepare(std::move(request)));
}

Task<PreparedWallpaperApplication> WallpaperService::prepare(WallpaperApplyRequest request) {
    requireConnected(request.display.id);
    if (const auto error = request.mode.validationError()) throw Error(*error);
    PreparedWallpaperApplication prepared{std::move(request), nullptr};
    const WallpaperModeKind kind = prepared.request.mode.kind();
    if (kind == WallpaperModeKind::disabled) co_return prepared;
    WallpaperPresenting* presenter = presenterOf(kind);
    if (!presenter) throw Error(Error::Case::unsupportedMode);
    prepared.presentation = co_await presenter->prepare(prepared.request);
    co_return prepared;
}

Task<WallpaperApplyOutcome> WallpaperService::applyPrepared(PreparedWallpaperApplication application) {
    const std::string displayID = application.request.display.id;
    if (!application.presentation) {
        presentations_.erase(displayID);
        if (!gate_.isLockScreenOverrideActive) co_await desktop_.giveBack(displayID);
        co_return WallpaperApplyOutcome{};
    }
    WallpaperApplyOutcome outcome = co_await application.presentation->present();
    // Only now ends what the display showed before.
    presentations_[displayID] = std::move(application.presentation);
    co_return outcome;
}

Task<WallpaperDesktopSnapshot> WallpaperService::captureDesktop(std::string displayID) {
    WallpaperDesktopSnapshot snapshot = co_await desktop_.capture(std::move(displayID));
    co_await desktop_.keepFormer(snapshot.displayID, snapshot.image, snapshot.options);
    co_return snapshot;
}

Task<void> WallpaperService::restoreDesktop(WallpaperDesktopSnapshot snapshot) {
    const std::string displayID = snapshot.displayID;
    std::exception_ptr failure;
    try {
        if (gate_.isLockScreenOverrideActive) throw Error(Error::Case::suppressedWhileLocked);
        co_await desktop_.restore(std::move(snapshot));
    } catch (...) {
        failure = std::current_exception();
    }
    presentations_.erase(displayID);
    if (failure) std::rethrow_exception(failure);
}

Task<void> WallpaperService::recallDesktop(std::string displayID) {
    if (gate_.isLockScreenOverrideActive) co_return;
    co_await desktop_.recall(std::move(displayID));
}

}  // namespace quillmar

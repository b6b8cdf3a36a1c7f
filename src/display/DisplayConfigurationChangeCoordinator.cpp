#include "display/DisplayConfigurationChangeCoordinator.h"

#include "async/Sleep.h"
#include "diagnostics/Log.h"

namespace quillmar {

DisplayConfigurationChangeCoordinator::DisplayConfigurationChangeCoordinator(
    MainLoop& loop, const DisplayProviding& displayProvider, Actions actions, Delays delays)
    : displayProvider_(displayProvider), actions_(std::move(actions)), delays_(delays), tasks_(loop) {}

DisplayTopologySnapshot DisplayConfigurationChangeCoordinator::snapshot() const {
    return DisplayTopologySnapshot::of(displayProvider_.displays());
}

void DisplayConfigurationChangeCoordinator::start() {
    if (std::exchange(isMonitoring_, true)) return;
    lastHandledTopology_ = snapshot();
}

void DisplayConfigurationChangeCoordinator::stop() {
    isMonitoring_ = false;
    std::exchange(settleTask_, {}).cancel();
    std::exchange(deferredApplyTask_, {}).cancel();
}

void DisplayConfigurationChangeCoordinator::screenParametersDidChange() {
    if (!isMonitoring_) return;
    settleTask_.cancel();
    settleTask_ = tasks_.start(settle());
}

Task<void> DisplayConfigurationChangeCoordinator::settle() {
    co_await sleepFor(delays_.settle);
    if (co_await isCancelled()) co_return;
    settleTask_.reset();
    if (!isMonitoring_) co_return;

    DisplayTopologySnapshot present = snapshot();
    if (lastHandledTopology_ == present) co_return;
    const std::size_t displayCount = present.displays.size();
    lastHandledTopology_ = std::move(present);
    logInfo("Display topology changed.", "display", {{"display_count", std::to_string(displayCount)}});
    actions_.topologyDidChange();
    if (actions_.isWallpaperApplicationSuppressed()) {
        logInfo("Wallpaper reapplication was deferred while the Lock Screen override was active.", "display");
        if (!deferredApplyTask_) deferredApplyTask_ = tasks_.start(applyWhenAllowed());
        co_return;
    }
    co_await reapply();
}

Task<void> DisplayConfigurationChangeCoordinator::applyWhenAllowed() {
    while (actions_.isWallpaperApplicationSuppressed()) {
        co_await sleepFor(delays_.deferredCheck);
        if (!isMonitoring_) co_return;
    }
    if (co_await isCancelled()) co_return;
    deferredApplyTask_.reset();
    co_await reapply();
}

Task<void> DisplayConfigurationChangeCoordinator::reapply() {
    const TopologyApplyResult result = co_await actions_.applyWallpaper();
    if (result.hasFailure && !actions_.isWallpaperApplicationSuppressed()) actions_.reportFailure(result);
}

}  // namespace quillmar

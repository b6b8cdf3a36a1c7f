#include "app/ConfiguredWallpapers.h"

#include "diagnostics/Log.h"

namespace quillmar {
namespace {

/// From the last of a burst of changes to a look at what is painted; the displays' coordinator waits as long.
constexpr std::chrono::milliseconds displaySettleDelay{500};
/// From the first route to names that can be resolved.
constexpr std::chrono::seconds networkSettleDelay{3};

DisplayIDs displaysOfServices(const Subsystems& subsystems) {
    const auto& entries = subsystems.settingsModel.settings().wallpaper.displays;
    DisplayIDs ids;
    for (const DisplayInfo& display : subsystems.displays.displays()) {
        const auto* entry = findEntry(entries, display.id);
        if (entry && isRemote(entry->mode.kind())) ids.insert(display.id);
    }
    return ids;
}

}  // namespace

Task<void> LastServicePictures::recall() {
    for (const std::string& id : displaysOfServices(subsystems_)) {
        co_await subsystems_.wallpaperService.recallDesktop(id);
    }
}

ConfiguredWallpapers::ConfiguredWallpapers(const Ports& ports, Subsystems& subsystems,
                                           LastServicePictures& lastPictures)
    : subsystems_(subsystems),
      lastPictures_(lastPictures),
      coordinator_(ports.loop, subsystems.displays,
                   DisplayConfigurationChangeCoordinator::Actions{
                       .isWallpaperApplicationSuppressed =
                           [this] { return subsystems_.wallpaperGate.isLockScreenOverrideActive; },
                       .applyWallpaper = [this] { return applyAll(); },
                       .reportFailure =
                           [](const TopologyApplyResult& result) {
                               logError("One or more wallpapers failed after a display topology change.",
                                        "wallpaper", nullptr,
                                        {{"failure_count", std::to_string(result.failureCount)}});
                           },
                       .topologyDidChange = [] {},
                   },
                   {.settle = displaySettleDelay}),
      settling_(ports.loop),
      tasks_(ports.loop) {}

Task<void> ConfiguredWallpapers::start() {
    co_await subsystems_.desktopPictures.shown();
    if (const auto obstacle = subsystems_.desktopPictures.obstacle())
        logError("No display can be given a picture in this session.", "wallpaper", obstacle);
    const WallpaperApplyBatchResult batch =
        co_await subsystems_.wallpaperCoordinator.enqueue(std::nullopt, WallpaperApplyReason::userInitiated);
    co_await throwIfCancelled();
    if (batch.hasFailure() && !subsystems_.wallpaperGate.isLockScreenOverrideActive) {
        logError("One or more wallpapers failed to apply during startup.", "wallpaper", nullptr,
                 {{"failure_count", std::to_string(batch.failedDisplayCount())}});
    }
    // Only now: the first application itself must not look like a change of the arrangement.
    follow();
}

void ConfiguredWallpapers::follow() {
    isFollowing_ = true;
    coordinator_.start();
}

void ConfiguredWallpapers::resume() { follow(); }

Task<void> ConfiguredWallpapers::stop() {
    isFollowing_ = false;
    coordinator_.stop();
    settling_.cancel();
    co_return;
}

void ConfiguredWallpapers::screenParametersDidChange() {
    if (!isFollowing_) return;
    coordinator_.screenParametersDidChange();
    // A monitor that went and came back at once is no other arrangement, but its picture may be lost.
    settling_.set(displaySettleDelay, [this] { tasks_.spawn(repair()); });
}

Task<void> ConfiguredWallpapers::repair() {
    co_await subsystems_.desktopPictures.repaintForgotten();
    // All that is about to be put in line is up to date then.
    (co_await recalling_.acquire()).release();
    DisplayIDs rest = subsystems_.wallpaperCoordinator.outOfDate();
    if (rest.empty()) co_return;
    co_await subsystems_.wallpaperCoordinator.enqueue(std::move(rest), WallpaperApplyReason::userInitiated);
}

Task<TopologyApplyResult> ConfiguredWallpapers::applyAll() {
    auto hold = co_await recalling_.acquire();
    co_await lastPictures_.recall();
    hold.release();
    const WallpaperApplyBatchResult batch =
        co_await subsystems_.wallpaperCoordinator.enqueue(std::nullopt, WallpaperApplyReason::userInitiated);
    co_return TopologyApplyResult{.hasFailure = batch.hasFailure(),
                                  .failureCount = batch.failedDisplayCount()};
}

NetworkRecovery::NetworkRecovery(const Ports& ports, Subsystems& subsystems)
    : events_(ports.systemEvents), subsystems_(subsystems), settling_(ports.loop), tasks_(ports.loop) {}

Task<void> NetworkRecovery::start() {
    follow();
    co_return;
}

void NetworkRecovery::follow() {
    events_.setNetworkHandler(
        [this] { settling_.set(networkSettleDelay, [this] { tasks_.spawn(retry()); }); });
}

Task<void> NetworkRecovery::stop() {
    events_.setNetworkHandler({});
    settling_.cancel();
    co_return;
}

Task<void> NetworkRecovery::retry() {
    WallpaperCoordinator& wallpapers = subsystems_.wallpaperCoordinator;
    DisplayIDs failed = displaysOfServices(subsystems_);
    std::erase_if(failed, [&](const std::string& id) { return !wallpapers.lastFailures().contains(id); });
    if (!failed.empty()) co_await wallpapers.enqueue(std::move(failed), WallpaperApplyReason::userInitiated);
}

}  // namespace quillmar

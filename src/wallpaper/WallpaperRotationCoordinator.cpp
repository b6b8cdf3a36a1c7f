#include "wallpaper/WallpaperRotationCoordinator.h"

#include <algorithm>
#include <utility>

namespace quillmar {
namespace {

constexpr std::chrono::microseconds shortestDelay{100'000};

}  // namespace

WallpaperRotationCoordinator::WallpaperRotationCoordinator(MainLoop& loop, EventBus& notifications,
                                                           AppSettingsModel& settingsModel,
                                                           WallpaperCoordinator& wallpaperCoordinator,
                                                           const WallClock& clock)
    : notifications_(notifications),
      settingsModel_(settingsModel),
      wallpaperCoordinator_(wallpaperCoordinator),
      clock_(clock),
      timer_(loop),
      tasks_(loop) {}

void WallpaperRotationCoordinator::start() {
    if (std::exchange(isMonitoring_, true)) return;
    observation_ = notifications_.observe<AppSettings>(appSettingsDidChange,
                                                       [this](const AppSettings&) { reschedule(); });
    reschedule();
}

void WallpaperRotationCoordinator::stop() {
    if (!std::exchange(isMonitoring_, false)) return;
    ++generation_;
    observation_.cancel();
    timer_.cancel();
    schedule_.entries.clear();
    wasPaused_.reset();
}

void WallpaperRotationCoordinator::setSuspendedForLockScreen(bool isSuspended) {
    if (std::exchange(isSuspendedForLockScreen_, isSuspended) != isSuspended) reschedule();
}

void WallpaperRotationCoordinator::reschedule() {
    // Whoever is late to hear that it was stopped must not begin anew.
    if (!isMonitoring_) return;
    timer_.cancel();
    if (isSuspendedForLockScreen_) {
        schedule_.entries.clear();
        return;
    }
    if (arePaused()) {
        schedule_.entries.clear();
        wasPaused_ = true;
        return;
    }
    const WallTime now = clock_.now();
    schedule_.update(rotationDescriptors(settingsModel_.settings().wallpaper), now, wasPaused_ == true);
    wasPaused_ = false;
    if (isRotating_) return;
    const auto next = schedule_.nextDate();
    if (!next) return;
    timer_.set(std::max<std::chrono::microseconds>(*next - now, shortestDelay),
               [this] { tasks_.spawn(tick()); });
}

Task<void> WallpaperRotationCoordinator::tick() {
    if (isRotating_ || isSuspendedForLockScreen_) co_return;
    if (arePaused()) {
        reschedule();
        co_return;
    }
    isRotating_ = true;
    const int generation = generation_;
    for (const std::string& displayID : schedule_.dueDisplayIDs(clock_.now())) {
        if (generation == generation_) co_await attempt(displayID, generation);
    }
    isRotating_ = false;
    reschedule();
}

Task<void> WallpaperRotationCoordinator::attempt(std::string displayID, int generation) {
    const WallpaperApplyBatchResult batch =
        co_await wallpaperCoordinator_.enqueue(DisplayIDs{displayID}, WallpaperApplyReason::rotation);
    // As the settings are now: they may have changed meanwhile, by the attempt itself too.
    auto descriptor = rotationDescriptor(settingsModel_.settings().wallpaper, displayID);
    if (generation != generation_ || !descriptor) co_return;
    schedule_.record(*std::move(descriptor), clock_.now(), !batch.hasFailure());
}

}  // namespace quillmar

#include "app/CacheUpkeep.h"

#include "diagnostics/Log.h"
#include "settings/ReferencedFiles.h"
#include "storage/Leftovers.h"

namespace quillmar {
namespace {

/// Some file systems note times no more exactly.
constexpr std::chrono::milliseconds clockTick{20};

}  // namespace

CacheUpkeep::CacheUpkeep(const Ports& ports, Subsystems& subsystems)
    : ports_(ports),
      subsystems_(subsystems),
      beginning_(ports.clock.now() - clockTick),
      scheduler_(ports.loop, [this] { return sweepPeriodically(); }) {
    const auto makeRoomFor = [this](std::filesystem::path written) { return makeRoom(std::move(written)); };
    subsystems_.pictureWriter.setWrittenHandler(makeRoomFor);
    subsystems_.remoteImages.setFoundHandler(makeRoomFor);
}

Task<void> CacheUpkeep::start() {
    FilePaths shown = co_await shownFiles();
    const CacheSweepResult swept =
        co_await subsystems_.cacheMaintenance.sweep(filesOfSettings(), std::move(shown), ports_.clock.now());
    co_await throwIfCancelled();
    if (swept.removedItems > 0) {
        logInfo("Startup cache maintenance completed.", "cache",
                {{"removed_items", std::to_string(swept.removedItems)},
                 {"reclaimed_bytes", std::to_string(swept.reclaimedBytes)}});
    }
    co_await removeLeftovers();
    scheduler_.start();
}

Task<void> CacheUpkeep::stop() {
    scheduler_.stop();
    co_return;
}

Task<void> CacheUpkeep::sweepPeriodically() {
    co_await subsystems_.cacheMaintenance.periodicSweep(filesOfSettings(), co_await shownFiles(),
                                                        ports_.clock.now());
}

Task<void> CacheUpkeep::removeLeftovers() const {
    co_await subsystems_.remoteImageFetcher.removeLeftovers();
    co_await subsystems_.desktopPictures.removeForgottenFormer();
    co_await ports_.backgroundPool.run([environment = ports_.environment, before = beginning_] {
        quillmar::removeLeftovers(environment, before);
    });
}

/// A fast slideshow of large pictures fills the cache long before the next half hour is over.
Task<void> CacheUpkeep::makeRoom(std::filesystem::path written) {
    CacheMaintenanceService& cache = subsystems_.cacheMaintenance;
    const bool hasRoom = co_await cache.hasRoomAfter(std::move(written));
    if (!hasRoom) co_await cache.makeRoom(filesOfSettings(), co_await shownFiles(), ports_.clock.now());
}

Task<FilePaths> CacheUpkeep::shownFiles() {
    FilePaths files;
    for (auto& [display, file] : co_await subsystems_.desktopPictures.shown()) files.insert(file);
    co_return files;
}

/// Nothing when the settings could not be read: what they refer to is then unknown.
std::optional<FilePaths> CacheUpkeep::filesOfSettings() const {
    const AppSettingsModel& model = subsystems_.settingsModel;
    if (!model.canPersist()) return std::nullopt;
    return referencedFiles(model.settings());
}

}  // namespace quillmar

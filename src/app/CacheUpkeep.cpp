#include "app/CacheUpkeep.h"

#include "diagnostics/Log.h"
#include "settings/ReferencedFiles.h"

namespace quillmar {

Task<void> CacheUpkeep::start() {
    const CacheSweepResult swept =
        co_await subsystems_.cacheMaintenance.sweep(filesOfSettings(), co_await shownFiles(), clock_.now());
    co_await throwIfCancelled();
    if (swept.removedItems > 0) {
        logInfo("Startup cache maintenance completed.", "cache",
                {{"removed_items", std::to_string(swept.removedItems)},
                 {"reclaimed_bytes", std::to_string(swept.reclaimedBytes)}});
    }
    co_await subsystems_.remoteImageFetcher.removeLeftovers();
    scheduler_.start();
}

Task<void> CacheUpkeep::stop() {
    scheduler_.stop();
    co_return;
}

Task<void> CacheUpkeep::sweepPeriodically() {
    co_await subsystems_.cacheMaintenance.periodicSweep(filesOfSettings(), co_await shownFiles(),
                                                        clock_.now());
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

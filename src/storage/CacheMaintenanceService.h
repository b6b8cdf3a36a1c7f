#pragma once
#include <map>
#include <memory>
#include <optional>

#include "async/Executor.h"
#include "storage/CacheSweep.h"

namespace quillmar {

/// Keeps the cache in bounds, away from the main thread. A failure to remove something is silent: it stays
/// for the next sweep.
class CacheMaintenanceService {
public:
    struct Policy {
        std::chrono::seconds remoteImageMaximumAge{2592000};
        std::int64_t remoteImageMaximumBytes = 536870912;
        std::chrono::seconds generatedWallpaperMaximumAge{1209600};
        std::int64_t generatedWallpaperMaximumBytes = 536870912;
        std::chrono::seconds faviconMaximumAge{5184000};
        std::int64_t faviconMaximumBytes = 33554432;
        std::chrono::seconds stalePlaybackWorkspaceAge{86400};
        std::chrono::seconds staleMediaImportStagingAge{86400};
        std::chrono::seconds staleLastShownAge{7776000};  ///< of displays that nobody plugs in any more
    };

    /// `executor` is a serial one of this service alone, so that no two sweeps overlap. Without a `cacheRoot`
    /// every sweep reports nothing removed. The protection outlives the executor.
    CacheMaintenanceService(Executor& executor, CacheFileProtection& protection,
                            std::optional<std::filesystem::path> cacheRoot, Policy policy);

    /// The full sweep, for the start, when no import is under way. `referencedFiles` are those that the
    /// settings name; nothing when the settings could not be read, and then no imported file is touched,
    /// since all of them would look forgotten. `protectedFiles` are in use elsewhere. Main thread.
    Task<CacheSweepResult> sweep(std::optional<FilePaths> referencedFiles, FilePaths protectedFiles,
                                 WallTime now) const;
    /// The part that is safe at any time: downloaded images and generated wallpapers. Main thread.
    Task<CacheSweepResult> periodicSweep(std::optional<FilePaths> referencedFiles, FilePaths protectedFiles,
                                         WallTime now) const;

    /// Takes note of a file that was written into one of these two folders: whether it and what may still be
    /// written leave them within their limits. Main thread.
    Task<bool> hasRoomAfter(std::filesystem::path file);
    /// As `periodicSweep`, but leaves some room, so that not every file that follows asks for another one.
    Task<CacheSweepResult> makeRoom(std::optional<FilePaths> referencedFiles, FilePaths protectedFiles,
                                    WallTime now) const;

private:
    /// Bytes that may still be written, by folder; on the executor alone.
    using Room = std::map<std::filesystem::path, std::int64_t>;
    static CacheSweepResult reproducibleFiles(CacheSweep& sweep, const std::filesystem::path& root,
                                              const Policy& policy, std::int64_t spare, Room& room);
    Task<CacheSweepResult> sweepReproducible(FilePaths keep, WallTime now, std::int64_t spare) const;
    Executor& executor_;
    CacheFileProtection& protection_;
    std::optional<std::filesystem::path> cacheRoot_;
    Policy policy_;
    std::shared_ptr<Room> room_ = std::make_shared<Room>();
};

}  // namespace quillmar

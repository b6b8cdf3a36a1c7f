#include "storage/CacheMaintenanceService.h"

namespace quillmar {
namespace {

/// What tells the program's downloads from the user's imports, which lie in the same folder.
constexpr std::string_view downloadPrefix = "remote-";
/// A limit's part that is kept free where files come fast.
constexpr std::int64_t spareParts = 16;

FilePaths merged(std::optional<FilePaths> referencedFiles, FilePaths protectedFiles) {
    if (referencedFiles) protectedFiles.merge(*referencedFiles);
    return protectedFiles;
}

}  // namespace

/// Removes `1 / spare` of the limits' bytes more than has to be, where `spare` is not 0.
CacheSweepResult CacheMaintenanceService::reproducibleFiles(CacheSweep& sweep,
                                                            const std::filesystem::path& root,
                                                            const Policy& policy, std::int64_t spare,
                                                            Room& room) {
    CacheSweepResult result;
    const auto bound = [&](const char* name, std::string_view prefix, std::int64_t bytes,
                           std::chrono::seconds age) {
        const std::filesystem::path folder = root / name;
        result += sweep.byAgeAndSize(folder, prefix, spare == 0 ? bytes : bytes - bytes / spare, age);
        room[folder] = bytes - sweep.remainingBytes();
    };
    bound("Images", downloadPrefix, policy.remoteImageMaximumBytes, policy.remoteImageMaximumAge);
    // A service that keeps one display waiting must not let the pictures of the others pile up.
    if (spare != 0) sweep.passOverFolderLeases();
    bound("GeneratedWallpapers", {}, policy.generatedWallpaperMaximumBytes,
          policy.generatedWallpaperMaximumAge);
    return result;
}

CacheMaintenanceService::CacheMaintenanceService(Executor& executor, CacheFileProtection& protection,
                                                 std::optional<std::filesystem::path> cacheRoot,
                                                 Policy policy)
    : executor_(executor), protection_(protection), cacheRoot_(std::move(cacheRoot)), policy_(policy) {}

Task<CacheSweepResult> CacheMaintenanceService::sweep(std::optional<FilePaths> referencedFiles,
                                                      FilePaths protectedFiles, WallTime now) const {
    if (!cacheRoot_) co_return CacheSweepResult{};
    const bool areSettingsKnown = referencedFiles.has_value();
    auto work = [&protection = protection_, root = *cacheRoot_, policy = policy_, room = room_,
                 areSettingsKnown, now,
                 keep = merged(std::move(referencedFiles), std::move(protectedFiles))] {
        CacheSweep sweep(protection, keep, now);
        CacheSweep unprotected(protection, {}, now);
        CacheSweepResult result = reproducibleFiles(sweep, root, policy, 0, *room);
        result += unprotected.byAgeAndSize(root / "Favicons", {}, policy.faviconMaximumBytes,
                                           policy.faviconMaximumAge);
        result += sweep.staleFolders(root / "VideoPlayback", policy.stalePlaybackWorkspaceAge);
        result += sweep.staleFiles(root / "MediaImportStaging", policy.staleMediaImportStagingAge);
        result += sweep.staleFiles(root / "LastShown", policy.staleLastShownAge);
        if (!areSettingsKnown) return result;
        result += sweep.unreferencedFiles(root / "Images", downloadPrefix);
        result += sweep.unreferencedFiles(root / "Videos", {});
        result += sweep.unreferencedFiles(root / "PDFs", {});
        return result;
    };
    co_return co_await executor_.run(std::move(work));
}

Task<CacheSweepResult> CacheMaintenanceService::periodicSweep(std::optional<FilePaths> referencedFiles,
                                                              FilePaths protectedFiles, WallTime now) const {
    co_return co_await sweepReproducible(merged(std::move(referencedFiles), std::move(protectedFiles)), now,
                                         0);
}

Task<CacheSweepResult> CacheMaintenanceService::makeRoom(std::optional<FilePaths> referencedFiles,
                                                         FilePaths protectedFiles, WallTime now) const {
    co_return co_await sweepReproducible(merged(std::move(referencedFiles), std::move(protectedFiles)), now,
                                         spareParts);
}

Task<CacheSweepResult> CacheMaintenanceService::sweepReproducible(FilePaths keep, WallTime now,
                                                                  std::int64_t spare) const {
    if (!cacheRoot_) co_return CacheSweepResult{};
    auto work = [&protection = protection_, root = *cacheRoot_, policy = policy_, room = room_, now, spare,
                 keep = std::move(keep)] {
        CacheSweep sweep(protection, keep, now);
        return reproducibleFiles(sweep, root, policy, spare, *room);
    };
    co_return co_await executor_.run(std::move(work));
}

Task<bool> CacheMaintenanceService::hasRoomAfter(std::filesystem::path file) {
    if (!cacheRoot_) co_return true;
    co_return co_await executor_.run([room = room_, file = std::move(file)] {
        std::error_code failure;
        const std::uintmax_t size = std::filesystem::file_size(file, failure);
        std::int64_t& left = (*room)[file.parent_path()];  // before the first sweep: none
        left -= failure ? 0 : static_cast<std::int64_t>(size);
        return left >= 0;
    });
}

}  // namespace quillmar

#include "storage/CacheMaintenanceService.h"

namespace quillmar {
namespace {

using Policy = CacheMaintenanceService::Policy;

/// What tells the program's downloads from the user's imports, which lie in the same folder.
constexpr std::string_view downloadPrefix = "remote-";

FilePaths merged(std::optional<FilePaths> referencedFiles, FilePaths protectedFiles) {
    if (referencedFiles) protectedFiles.merge(*referencedFiles);
    return protectedFiles;
}

CacheSweepResult reproducibleFiles(CacheSweep& sweep, const std::filesystem::path& root,
                                   const Policy& policy) {
    CacheSweepResult result;
    result += sweep.byAgeAndSize(root / "Images", downloadPrefix, policy.remoteImageMaximumBytes,
                                 policy.remoteImageMaximumAge);
    result += sweep.byAgeAndSize(root / "GeneratedWallpapers", {}, policy.generatedWallpaperMaximumBytes,
                                 policy.generatedWallpaperMaximumAge);
    return result;
}

}  // namespace

CacheMaintenanceService::CacheMaintenanceService(Executor& executor, CacheFileProtection& protection,
                                                 std::optional<std::filesystem::path> cacheRoot,
                                                 Policy policy)
    : executor_(executor), protection_(protection), cacheRoot_(std::move(cacheRoot)), policy_(policy) {}

Task<CacheSweepResult> CacheMaintenanceService::sweep(std::optional<FilePaths> referencedFiles,
                                                      FilePaths protectedFiles, WallTime now) const {
    if (!cacheRoot_) co_return CacheSweepResult{};
    const bool areSettingsKnown = referencedFiles.has_value();
    auto work = [&protection = protection_, root = *cacheRoot_, policy = policy_, areSettingsKnown, now,
                 keep = merged(std::move(referencedFiles), std::move(protectedFiles))] {
        CacheSweep sweep(protection, keep, now);
        CacheSweep unprotected(protection, {}, now);
        CacheSweepResult result = reproducibleFiles(sweep, root, policy);
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
    if (!cacheRoot_) co_return CacheSweepResult{};
    auto work = [&protection = protection_, root = *cacheRoot_, policy = policy_, now,
                 keep = merged(std::move(referencedFiles), std::move(protectedFiles))] {
        CacheSweep sweep(protection, keep, now);
        return reproducibleFiles(sweep, root, policy);
    };
    co_return co_await executor_.run(std::move(work));
}

}  // namespace quillmar

#pragma once
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "base/WallTime.h"
#include "storage/CacheFileProtection.h"

namespace quillmar {

using FilePaths = std::set<std::filesystem::path>;

struct CacheSweepResult {
    std::int64_t removedItems = 0;
    std::int64_t reclaimedBytes = 0;

    CacheSweepResult& operator+=(const CacheSweepResult& other);
    bool operator==(const CacheSweepResult&) const = default;
};

/// One regular file during a sweep.
struct CacheEntry {
    std::string path;  ///< resolved
    std::int64_t size = 0;
    WallTime lastUsed;         ///< the later of change and stamp
    bool countsStamp = false;  ///< else the change alone, so far: stamps are slow to read
};

/// The kinds of sweep, each over the direct content of one folder and blind to hidden names. They wait for
/// the disk. No failure stops one: what cannot be listed, read or removed stays as it is.
class CacheSweep {
public:
    /// `protectedFiles` stay, besides what is leased.
    CacheSweep(CacheFileProtection& protection, const FilePaths& protectedFiles, WallTime now);
    /// From now on, leases on folders keep nothing: for a folder whose users lease each file before they look
    /// whether it is there.
    void passOverFolderLeases() { countsFolderLeases_ = false; }

    /// Removes the files whose name has the prefix and that were last used longer ago than `maximumAge`, then
    /// the least recently used of the others until at most `maximumBytes` remain. Files that stay protected
    /// may keep the total above that.
    CacheSweepResult byAgeAndSize(const std::filesystem::path& folder, std::string_view prefix,
                                  std::int64_t maximumBytes, std::chrono::seconds maximumAge);
    /// What the last one of these has left.
    std::int64_t remainingBytes() const { return remainingBytes_; }
    /// Removes the folders that were changed longer ago than `age`, with all that is in them, leased or not.
    CacheSweepResult staleFolders(const std::filesystem::path& folder, std::chrono::seconds age);
    /// Removes the files that were changed longer ago than `age` unless they are leased.
    CacheSweepResult staleFiles(const std::filesystem::path& folder, std::chrono::seconds age);
    /// Removes every file that is not protected, however new. Names with the prefix, when it is not empty,
    /// are left alone.
    CacheSweepResult unreferencedFiles(const std::filesystem::path& folder, std::string_view excludedPrefix);

private:
    bool isProtected(const CacheEntry& entry) const { return protectedPaths_.contains(entry.path); }
    void removeDownTo(std::int64_t maximumBytes, std::vector<CacheEntry> entries, CacheSweepResult& result);
    /// Removes the file and adds it to the result; false when it stays.
    bool remove(const CacheEntry& entry, CacheSweepResult& result);

    CacheFileProtection& protection_;
    std::unordered_set<std::string> protectedPaths_;
    WallTime now_;
    bool countsFolderLeases_ = true;
    std::int64_t remainingBytes_ = 0;
};

}  // namespace quillmar

#include "storage/CacheSweep.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <queue>

#include "storage/LastUsedStamp.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;

struct Item {
    std::string path;
    struct stat status{};
};

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

/// The visible items whose names `isWanted`. A link stands for itself, so the paths are resolved as soon as
/// the folder's is.
std::vector<Item> itemsIn(const fs::path& folder, const std::function<bool(std::string_view)>& isWanted) {
    std::vector<Item> items;
    const std::unique_ptr<DIR, CloseFolder> listing(::opendir(folder.c_str()));
    if (!listing) return items;
    const std::string resolved = resolvedPath(folder).native() + "/";
    while (const dirent* entry = ::readdir(listing.get())) {
        const char* name = entry->d_name;
        if (name[0] == '.' || !isWanted(name)) continue;
        Item item{resolved + name};
        if (::fstatat(::dirfd(listing.get()), name, &item.status, AT_SYMLINK_NOFOLLOW) != 0) continue;
        items.push_back(std::move(item));
    }
    return items;
}

bool isAny(std::string_view) { return true; }

WallTime modificationTime(const struct stat& status) {
    // A damaged file system may claim moments that no `WallTime` can hold.
    constexpr std::int64_t farthest = 1'000'000'000'000;
    const std::chrono::seconds seconds(std::clamp<std::int64_t>(status.st_mtim.tv_sec, -farthest, farthest));
    const std::chrono::nanoseconds rest(status.st_mtim.tv_nsec);
    return WallTime(seconds + std::chrono::floor<std::chrono::microseconds>(rest));
}

std::vector<CacheEntry> filesAmong(std::vector<Item> items) {
    std::vector<CacheEntry> entries;
    entries.reserve(items.size());
    for (Item& item : items) {
        if (!S_ISREG(item.status.st_mode)) continue;
        entries.push_back({std::move(item.path), item.status.st_size, modificationTime(item.status)});
    }
    return entries;
}

std::int64_t allocatedSize(const fs::path& folder) {
    std::int64_t bytes = 0;
    std::error_code failure;
    for (fs::recursive_directory_iterator file(folder, failure), end; !failure && file != end;
         file.increment(failure)) {
        struct stat status{};
        if (::lstat(file->path().c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
            bytes += status.st_blocks * 512;
        }
    }
    return bytes;
}

void addStamp(CacheEntry& entry) {
    if (const auto stamp = lastUsedStamp(entry.path)) entry.lastUsed = std::max(entry.lastUsed, *stamp);
    entry.countsStamp = true;
}

/// Puts the least recently used first in a queue.
struct WasUsedLater {
    bool operator()(const CacheEntry& a, const CacheEntry& b) const {
        return a.lastUsed != b.lastUsed ? a.lastUsed > b.lastUsed : a.path > b.path;
    }
};

}  // namespace

CacheSweepResult& CacheSweepResult::operator+=(const CacheSweepResult& other) {
    removedItems += other.removedItems;
    reclaimedBytes += other.reclaimedBytes;
    return *this;
}

CacheSweep::CacheSweep(CacheFileProtection& protection, const FilePaths& protectedFiles, WallTime now)
    : protection_(protection), now_(now) {
    for (const fs::path& file : protectedFiles) protectedPaths_.insert(resolvedPath(file).native());
}

CacheSweepResult CacheSweep::byAgeAndSize(const fs::path& folder, std::string_view prefix,
                                          std::int64_t maximumBytes, std::chrono::seconds maximumAge) {
    auto entries =
        filesAmong(itemsIn(folder, [&](std::string_view name) { return name.starts_with(prefix); }));
    CacheSweepResult result;
    const WallTime cutoff = now_ - maximumAge;
    std::erase_if(entries, [&](CacheEntry& entry) {
        if (entry.lastUsed < cutoff) addStamp(entry);
        return entry.lastUsed < cutoff && !isProtected(entry) && remove(entry, result);
    });
    removeDownTo(maximumBytes, std::move(entries), result);
    return result;
}

void CacheSweep::removeDownTo(std::int64_t maximumBytes, std::vector<CacheEntry> entries,
                              CacheSweepResult& result) {
    remainingBytes_ = 0;
    for (const CacheEntry& entry : entries) remainingBytes_ += entry.size;
    if (remainingBytes_ <= maximumBytes) return;
    std::priority_queue<CacheEntry, std::vector<CacheEntry>, WasUsedLater> oldestFirst({},
                                                                                       std::move(entries));
    while (remainingBytes_ > maximumBytes && !oldestFirst.empty()) {
        CacheEntry entry = oldestFirst.top();
        oldestFirst.pop();
        if (!entry.countsStamp) {
            // A stamp can only move a file back in the line, so those at its end are never read.
            addStamp(entry);
            oldestFirst.push(std::move(entry));
        } else if (!isProtected(entry) && remove(entry, result)) {
            remainingBytes_ -= entry.size;
        }
    }
}

CacheSweepResult CacheSweep::staleFolders(const fs::path& folder, std::chrono::seconds age) {
    CacheSweepResult result;
    for (const Item& item : itemsIn(folder, isAny)) {
        if (!S_ISDIR(item.status.st_mode) || modificationTime(item.status) >= now_ - age) continue;
        const std::int64_t bytes = allocatedSize(item.path);
        std::error_code failure;
        fs::remove_all(item.path, failure);
        if (!failure) result += {1, bytes};
    }
    return result;
}

CacheSweepResult CacheSweep::staleFiles(const fs::path& folder, std::chrono::seconds age) {
    CacheSweepResult result;
    for (const CacheEntry& entry : filesAmong(itemsIn(folder, isAny))) {
        if (entry.lastUsed < now_ - age) remove(entry, result);
    }
    return result;
}

CacheSweepResult CacheSweep::unreferencedFiles(const fs::path& folder, std::string_view excludedPrefix) {
    CacheSweepResult result;
    const auto isWanted = [&](std::string_view name) {
        return excludedPrefix.empty() || !name.starts_with(excludedPrefix);
    };
    for (const CacheEntry& entry : filesAmong(itemsIn(folder, isWanted))) {
        if (!isProtected(entry)) remove(entry, result);
    }
    return result;
}

bool CacheSweep::remove(const CacheEntry& entry, CacheSweepResult& result) {
    const bool isRemoved = countsFolderLeases_ ? protection_.removeIfFree(entry.path)
                                               : protection_.removeUnlessLeasedItself(entry.path);
    if (!isRemoved) return false;
    result += {1, entry.size};
    return true;
}

}  // namespace quillmar

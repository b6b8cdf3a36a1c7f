#pragma once
#include <filesystem>
#include <memory>

namespace quillmar {

class CacheFileLease;

/// The files that somebody uses or is about to use, and the one way to remove a file that nobody does. One
/// for the program. Any thread; leases may outlive it.
class CacheFileProtection {
public:
    CacheFileProtection();
    CacheFileProtection(const CacheFileProtection&) = delete;
    CacheFileProtection& operator=(const CacheFileProtection&) = delete;

    /// Removes a file (no folder) unless a lease covers it: one on the file itself or on a folder above it.
    /// No lease can begin between the check and the removal. `file` is a path as `resolvedPath` gives it.
    /// True when the file was removed; a failure to remove counts as not removed.
    bool removeIfFree(const std::filesystem::path& file);
    /// The same, but only a lease on the file itself counts.
    bool removeUnlessLeasedItself(const std::filesystem::path& file);

private:
    friend class CacheFileLease;
    class References;
    std::shared_ptr<References> references_;
};

/// The path with its symbolic links, "." and ".." resolved, as far as it exists, and without a slash at its
/// end.
std::filesystem::path resolvedPath(const std::filesystem::path& path);

}  // namespace quillmar

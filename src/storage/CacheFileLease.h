#pragma once
#include "base/Uuid.h"
#include "storage/CacheFileProtection.h"

namespace quillmar {

/// Keeps a cache file, or all that lies in a folder, from being swept. Take it before you touch the file:
/// what was swept before that is gone, lease or not. Copies share the one lease, which ends with the last of
/// them. Any thread.
class CacheFileLease {
public:
    /// The path need not exist.
    CacheFileLease(const CacheFileProtection& protection, const std::filesystem::path& path,
                   bool isDirectory = false);

    const Uuid& id() const { return hold_->id; }
    /// Resolved, as `resolvedPath` says.
    const std::filesystem::path& path() const { return hold_->path; }
    bool isDirectory() const { return hold_->isDirectory; }
    /// Whether they are one lease; two on the same file are not.
    bool operator==(const CacheFileLease& other) const { return id() == other.id(); }

private:
    struct Hold {
        Hold(std::shared_ptr<CacheFileProtection::References> in, std::filesystem::path path,
             bool isDirectory);
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;
        ~Hold();

        std::shared_ptr<CacheFileProtection::References> references;
        std::filesystem::path path;
        bool isDirectory;
        Uuid id;
    };
    std::shared_ptr<const Hold> hold_;
};

}  // namespace quillmar

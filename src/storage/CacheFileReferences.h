#pragma once
#include <map>
#include <mutex>
#include <string>

#include "base/Uuid.h"
#include "storage/CacheFileProtection.h"

namespace quillmar {

/// The table behind the protection. It knows no lease, only their identifiers; each lease keeps it alive, so
/// that one which ends late still finds it.
class CacheFileProtection::References {
public:
    /// Begins a reference to a resolved path.
    Uuid add(std::string path, bool isDirectory);
    void remove(const Uuid& id);
    bool removeIfFree(const std::string& file, bool countsFolders);

private:
    struct Reference {
        std::string path;
        bool isDirectory = false;
        bool covers(const std::string& file) const;
    };
    std::mutex mutex_;
    std::map<Uuid, Reference> byID_;
};

}  // namespace quillmar

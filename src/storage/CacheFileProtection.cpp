#include "storage/CacheFileProtection.h"

#include <unistd.h>

#include "storage/CacheFileReferences.h"

namespace quillmar {

CacheFileProtection::CacheFileProtection() : references_(std::make_shared<References>()) {}

bool CacheFileProtection::removeIfFree(const std::filesystem::path& file) {
    return references_->removeIfFree(file.native(), true);
}

bool CacheFileProtection::removeUnlessLeasedItself(const std::filesystem::path& file) {
    return references_->removeIfFree(file.native(), false);
}

Uuid CacheFileProtection::References::add(std::string path, bool isDirectory) {
    const Uuid id = Uuid::random();
    const std::scoped_lock lock(mutex_);
    byID_.emplace(id, Reference{std::move(path), isDirectory});
    return id;
}

void CacheFileProtection::References::remove(const Uuid& id) {
    const std::scoped_lock lock(mutex_);
    byID_.erase(id);
}

bool CacheFileProtection::References::removeIfFree(const std::string& file, bool countsFolders) {
    const std::scoped_lock lock(mutex_);
    for (const auto& [id, reference] : byID_) {
        if ((countsFolders || !reference.isDirectory) && reference.covers(file)) return false;
    }
    return ::unlink(file.c_str()) == 0;
}

bool CacheFileProtection::References::Reference::covers(const std::string& file) const {
    if (file == path) return true;
    return isDirectory && file.size() > path.size() && file[path.size()] == '/' && file.starts_with(path);
}

std::filesystem::path resolvedPath(const std::filesystem::path& path) {
    std::error_code failure;
    std::filesystem::path resolved = std::filesystem::weakly_canonical(path, failure);
    // A folder on the way that may not be searched: the text is then all there is to go by.
    if (failure) resolved = path.lexically_normal();
    return resolved.has_filename() || resolved == resolved.root_path() ? resolved : resolved.parent_path();
}

}  // namespace quillmar

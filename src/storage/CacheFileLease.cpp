#include "storage/CacheFileLease.h"

#include "storage/CacheFileReferences.h"

namespace quillmar {

CacheFileLease::CacheFileLease(const CacheFileProtection& protection, const std::filesystem::path& path,
                               bool isDirectory)
    : hold_(std::make_shared<const Hold>(protection.references_, resolvedPath(path), isDirectory)) {}

CacheFileLease::Hold::Hold(std::shared_ptr<CacheFileProtection::References> in,
                           std::filesystem::path resolved, bool isFolder)
    : references(std::move(in)),
      path(std::move(resolved)),
      isDirectory(isFolder),
      id(references->add(path.native(), isFolder)) {}

CacheFileLease::Hold::~Hold() { references->remove(id); }

}  // namespace quillmar

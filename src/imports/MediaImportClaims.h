#pragma once
#include <map>
#include <optional>
#include <set>

#include "imports/MediaImport.h"
#include "imports/StagedFile.h"
#include "storage/CacheFileLease.h"

namespace quillmar {

/// Which imports claim which file, and what becomes of a file when its last claim ends. One thread at a time;
/// it waits for the disk.
class MediaImportClaims {
public:
    MediaImportClaims(CacheFileProtection& cacheFiles, std::filesystem::path cacheRoot)
        : cacheFiles_(cacheFiles), cacheRoot_(std::move(cacheRoot)) {}
    MediaImportClaims(const MediaImportClaims&) = delete;
    MediaImportClaims& operator=(const MediaImportClaims&) = delete;

    /// Gives the file its place and claims it. Throws `std::system_error`.
    CommittedMediaImport commit(const PreparedMediaImport& prepared);
    /// `isAccepted`: somebody has taken the file.
    void end(const CommittedMediaImport& committed, bool isAccepted);
    /// At once, or with the last claim. Nothing happens to a file that no import brought.
    void removeImportedFile(const std::filesystem::path& file);

private:
    struct State {
        CacheFileLease lease;
        std::set<Uuid> activeClaimIDs = {};
        bool didAcceptClaim = false;
        bool createdFile = false;
        bool removalRequested = false;

        bool isUnwanted() const { return removalRequested || (createdFile && !didAcceptClaim); }
    };
    bool isImported(const std::filesystem::path& resolved) const;

    CacheFileProtection& cacheFiles_;
    std::filesystem::path cacheRoot_;
    std::map<std::filesystem::path, State> states_;  ///< by resolved path
    /// Of files that were taken: a draft may hold them, of which no sweep knows.
    std::map<std::filesystem::path, CacheFileLease> taken_;
};

}  // namespace quillmar

#include "imports/MediaImportClaims.h"

#include <sys/stat.h>

namespace quillmar {
namespace {

namespace fs = std::filesystem;

/// Whether the file that has this content's name can be it. What a damaged disk or a hand left there is
/// replaced.
bool isThere(const fs::path& destination, const fs::path& staging) {
    struct stat present{};
    struct stat wanted{};
    return ::lstat(destination.c_str(), &present) == 0 && S_ISREG(present.st_mode) &&
           ::lstat(staging.c_str(), &wanted) == 0 && present.st_size == wanted.st_size;
}

}  // namespace

CommittedMediaImport MediaImportClaims::commit(const PreparedMediaImport& prepared) {
    StagedFile staged(prepared.staging);
    const fs::path key = resolvedPath(prepared.destination);
    // Before the look, so that no sweep takes the file between the two.
    CacheFileLease lease(cacheFiles_, key);
    const bool createdFile = !isThere(prepared.destination, staged.path());
    if (createdFile) staged.moveTo(prepared.destination);
    State& state = states_.try_emplace(key, State{std::move(lease)}).first->second;
    state.activeClaimIDs.insert(prepared.id);
    state.createdFile |= createdFile;
    state.removalRequested = false;
    return {prepared.id, prepared.destination, createdFile};
}

void MediaImportClaims::end(const CommittedMediaImport& committed, bool isAccepted) {
    const fs::path key = resolvedPath(committed.file);
    const auto found = states_.find(key);
    if (found == states_.end()) return;
    State& state = found->second;
    state.activeClaimIDs.erase(committed.id);
    state.didAcceptClaim |= isAccepted;
    if (!state.activeClaimIDs.empty()) return;
    const bool isUnwanted = state.isUnwanted();
    if (state.didAcceptClaim) taken_.insert_or_assign(key, state.lease);
    states_.erase(found);
    if (isUnwanted) removeImportedFile(key);
}

void MediaImportClaims::removeImportedFile(const fs::path& file) {
    const fs::path key = resolvedPath(file);
    if (!isImported(key)) return;
    if (const auto found = states_.find(key); found != states_.end()) {
        found->second.removalRequested = true;
        return;
    }
    taken_.erase(key);
    // One that stays, because it is in use or cannot be removed, is forgotten at the next start.
    cacheFiles_.removeIfFree(key);
}

bool MediaImportClaims::isImported(const fs::path& resolved) const {
    if (!resolved.filename().string().starts_with(importPrefix)) return false;
    for (const auto kind : {MediaImportKind::image, MediaImportKind::video, MediaImportKind::pdf}) {
        if (resolved.parent_path() == resolvedPath(cacheRoot_ / importFolderName(kind))) return true;
    }
    return false;
}

}  // namespace quillmar

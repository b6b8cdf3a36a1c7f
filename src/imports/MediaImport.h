#pragma once
#include <compare>
#include <filesystem>
#include <string>

#include "async/Task.h"
#include "base/Url.h"
#include "base/Uuid.h"

namespace quillmar {

/// What a chosen file has to be.
enum class MediaImportKind { image, video, pdf };

/// One place on one display that a file can be chosen for.
struct MediaImportSlot {
    enum class Role { image, video, pdf, matrixImage, matrixVideo };

    std::string displayID;
    Role role = Role::image;
    auto operator<=>(const MediaImportSlot&) const = default;
};

/// A file that was copied and found to be what it claims, before it has its place in the cache.
struct PreparedMediaImport {
    Uuid id;  ///< of this import, and of its claim
    Url sourceURL;
    std::filesystem::path staging;
    std::filesystem::path destination;
};

/// A file in its place, claimed by one import.
struct CommittedMediaImport {
    Uuid id;
    std::filesystem::path file;
    bool createdFile = false;  ///< this import put it there; it was not there before
};

/// The program's own copies of files that the user chose, one for each content. Main thread. The waits for
/// the disk and for the decoder are elsewhere; those after `commit` come to their end even when the task is
/// cancelled.
class MediaImportStoring {
public:
    virtual ~MediaImportStoring() = default;
    /// Copies the file and looks whether it is of that kind. Throws `MediaImportError`, or
    /// `CancellationError` when the task was cancelled; nothing is left behind then.
    virtual Task<PreparedMediaImport> prepare(Url source, MediaImportKind kind) = 0;
    /// Gives the copy its place, where the same content may be already, and claims it. Throws as `prepare`
    /// does, and then the copy is gone.
    virtual Task<CommittedMediaImport> commit(PreparedMediaImport prepared) = 0;
    /// Ends the claim: somebody has taken the file.
    virtual Task<void> acceptClaim(CommittedMediaImport committed) = 0;
    /// Ends the claim: nobody has. A file that nothing but released claims brought in is removed.
    virtual Task<void> releaseClaim(CommittedMediaImport committed) = 0;
    /// Removes an imported file that nobody refers to any more: at once, or when the claims on it have ended.
    /// Any other file is left alone, and so is one that a lease covers.
    virtual Task<void> removeImportedFile(std::filesystem::path file) = 0;
    /// Removes the copy of an import that is not to be committed.
    virtual Task<void> discard(PreparedMediaImport prepared) = 0;
};

}  // namespace quillmar

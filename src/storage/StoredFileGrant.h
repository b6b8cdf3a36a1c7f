#pragma once
#include <filesystem>
#include <optional>

#include "async/Executor.h"
#include "base/Bytes.h"

namespace quillmar {

// A stored grant finds a file or folder that the user chose again, even after it was renamed within its
// folder. To everybody else it is a string of bytes that is kept beside the file's URL. All functions ask
// the file system.

/// The grant for a file that is there now, to be made when the user chooses it. Throws `std::system_error`.
Bytes makeStoredFileGrant(const std::filesystem::path& file);

/// Where the file is now: under its path, whatever has become of its content there, else under another name
/// in the same folder. Nothing when it is in neither place, or when the bytes are no grant.
std::optional<std::filesystem::path> resolveStoredFileGrant(const Bytes& grant);

/// The grant for a file that the user names, which may not be there: then there is none, and that is said
/// when the file is read.
Task<std::optional<Bytes>> grantIfThere(Executor& files, std::filesystem::path file);

}  // namespace quillmar

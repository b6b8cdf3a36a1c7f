#pragma once
#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace quillmar {

/// The environment variables that say where a user's files lie.
using Environment = std::map<std::string, std::string, std::less<>>;

/// The folder "Quillmar" under the user's data directory: `$XDG_DATA_HOME`, else `$HOME/.local/share`. Throws
/// `std::runtime_error` when neither names an absolute path.
std::filesystem::path applicationSupportDirectory(const Environment& environment);
/// The same; where there is no such place, a path below which nothing can be made, so that every write there
/// fails.
std::filesystem::path applicationSupportDirectoryOrNowhere(const Environment& environment);
/// The folder "Quillmar" for what the program remembers of this machine: `$XDG_STATE_HOME`, else
/// `$HOME/.local/state`; where neither names an absolute path, one below which nothing can be made.
std::filesystem::path applicationStateDirectory(const Environment& environment);
/// The first, created with its parents when it is missing. Throws also when that fails, with the place and
/// reason.
std::filesystem::path createdApplicationSupportDirectory(const Environment& environment);

/// The folder "Cache" in the first, created when it is missing: all that the program generates or copies.
/// Nothing when it cannot be made.
std::optional<std::filesystem::path> createdCacheDirectory(const Environment& environment);

/// A folder of this user alone for files that end with the session: `$XDG_RUNTIME_DIR`, else a folder of the
/// user's own, made when missing, in `$TMPDIR` or "/tmp". Throws `std::runtime_error` when there is none.
std::filesystem::path temporaryDirectory(const Environment& environment);

}  // namespace quillmar

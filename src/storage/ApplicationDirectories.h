#pragma once
#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "base/Localization.h"

namespace quillmar {

/// The environment variables that say where a user's files lie.
using Environment = std::map<std::string, std::string, std::less<>>;

/// A folder of the program that there is no place for.
class ApplicationDirectoryError final : public AppLocalizableError {
public:
    enum class Case { noDataFolder, sharedTemporaryFolder };

    explicit ApplicationDirectoryError(Case which, std::filesystem::path folder = {})
        : case_(which), folder_(std::move(folder)) {}
    std::string message(GeneralLanguage language) const override;

private:
    Case case_;
    std::filesystem::path folder_;
};

/// The folder "Quillmar" under the user's data directory: `$XDG_DATA_HOME`, else `$HOME/.local/share`. Throws
/// `ApplicationDirectoryError` when neither names an absolute path.
std::filesystem::path applicationSupportDirectory(const Environment& environment);
/// The same; where there is no such place, a path below which nothing can be made, so that every write there
/// fails.
std::filesystem::path applicationSupportDirectoryOrNowhere(const Environment& environment);
/// The folder "Quillmar" for what the program remembers of this machine: `$XDG_STATE_HOME`, else
/// `$HOME/.local/state`; where neither names an absolute path, one below which nothing can be made.
std::filesystem::path applicationStateDirectory(const Environment& environment);
/// The first, created with its parents when it is missing. Throws `FileError` when that fails.
std::filesystem::path createdApplicationSupportDirectory(const Environment& environment);

/// The folder "Cache" in the first, created when it is missing: all that the program generates or copies.
/// Nothing when it cannot be made.
std::optional<std::filesystem::path> createdCacheDirectory(const Environment& environment);

/// A folder of this user alone for files that end with the session: `$XDG_RUNTIME_DIR`, else a folder of the
/// user's own, made when missing, in `$TMPDIR` or "/tmp". Throws `ApplicationDirectoryError` when there is
/// none.
std::filesystem::path temporaryDirectory(const Environment& environment);

}  // namespace quillmar

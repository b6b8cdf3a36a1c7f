#include "storage/ApplicationDirectories.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <system_error>

#include "base/FileError.h"
#include "base/Files.h"

namespace quillmar {
namespace {

/// The variable's value when it is an absolute path: a relative one would depend on where the program was
/// started.
std::filesystem::path absolutePath(const Environment& environment, std::string_view name) {
    const auto found = environment.find(name);
    if (found == environment.end()) return {};
    const std::filesystem::path path = found->second;
    return path.is_absolute() ? path : std::filesystem::path{};
}

bool isOwnPrivateFolder(const std::filesystem::path& folder) {
    struct stat status{};
    return ::lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::getuid() &&
           (status.st_mode & 0022) == 0;
}

}  // namespace

std::string ApplicationDirectoryError::message(GeneralLanguage language) const {
    return case_ == Case::noDataFolder
               ? localized("neither XDG_DATA_HOME nor HOME names a folder"_key, language)
               : localized("%@ is not a folder of this user alone"_key, language, {folder_.string()});
}

std::filesystem::path applicationSupportDirectory(const Environment& environment) {
    if (const auto data = absolutePath(environment, "XDG_DATA_HOME"); !data.empty()) return data / "Quillmar";
    if (const auto home = absolutePath(environment, "HOME"); !home.empty())
        return home / ".local/share/Quillmar";
    throw ApplicationDirectoryError(ApplicationDirectoryError::Case::noDataFolder);
}

std::filesystem::path applicationSupportDirectoryOrNowhere(const Environment& environment) {
    try {
        return applicationSupportDirectory(environment);
    } catch (const ApplicationDirectoryError&) {
        return "/dev/null/Quillmar";
    }
}

std::filesystem::path applicationStateDirectory(const Environment& environment) {
    if (const auto state = absolutePath(environment, "XDG_STATE_HOME"); !state.empty())
        return state / "Quillmar";
    if (const auto home = absolutePath(environment, "HOME"); !home.empty())
        return home / ".local/state/Quillmar";
    return "/dev/null/Quillmar";
}

std::filesystem::path createdApplicationSupportDirectory(const Environment& environment) {
    const std::filesystem::path folder = applicationSupportDirectory(environment);
    try {
        createDirectories(folder, 0700);
    } catch (const std::system_error& error) {
        throw FileError(folder, error);
    }
    return folder;
}

std::optional<std::filesystem::path> createdCacheDirectory(const Environment& environment) {
    try {
        const std::filesystem::path folder = createdApplicationSupportDirectory(environment) / "Cache";
        createDirectories(folder, 0700);
        return folder;
    } catch (const std::exception&) {  // whoever needs the cache says what fails
        return std::nullopt;
    }
}

std::filesystem::path temporaryDirectory(const Environment& environment) {
    if (const auto runtime = absolutePath(environment, "XDG_RUNTIME_DIR"); isOwnPrivateFolder(runtime)) {
        return runtime;
    }
    std::filesystem::path shared = absolutePath(environment, "TMPDIR");
    if (shared.empty()) shared = "/tmp";
    const std::filesystem::path own = shared / fmt::format("quillmar-{}", ::getuid());
    ::mkdir(own.c_str(), 0700);
    // In a folder that everybody writes to, somebody else may have made it first.
    if (!isOwnPrivateFolder(own)) {
        throw ApplicationDirectoryError(ApplicationDirectoryError::Case::sharedTemporaryFolder, own);
    }
    return own;
}

}  // namespace quillmar

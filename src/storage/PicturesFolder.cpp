#include "storage/PicturesFolder.h"

#include <algorithm>

#include "base/Files.h"
#include "base/Text.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t maximumBytes = 1 << 16;
constexpr std::string_view key = "XDG_PICTURES_DIR=";

fs::path absoluteOrEmpty(const Environment& environment, std::string_view name) {
    const auto found = environment.find(name);
    const fs::path path = found == environment.end() ? fs::path() : fs::path(found->second);
    return path.is_absolute() ? path : fs::path();
}

/// A value in double quotes, as a shell reads it.
std::string unquoted(std::string_view value) {
    if (value.size() < 2 || value.front() != '"' || value.back() != '"') return {};
    std::string text;
    for (std::size_t i = 1; i + 1 < value.size(); ++i) {
        if (value[i] == '\\' && i + 2 < value.size()) ++i;
        text += value[i];
    }
    return text;
}

/// Empty where the file does not say.
fs::path namedIn(std::string_view text, const fs::path& home) {
    fs::path folder;
    while (!text.empty()) {
        const std::string_view line = trimmed(text.substr(0, text.find('\n')));
        text.remove_prefix(std::min(text.find('\n'), text.size() - 1) + 1);
        if (!line.starts_with(key)) continue;
        const std::string value = unquoted(line.substr(key.size()));
        constexpr std::string_view variable = "$HOME";
        if (value.starts_with(variable)) {
            folder = home.string() + value.substr(variable.size());
        } else if (value.starts_with('/')) {
            folder = value;
        }
    }
    return folder;
}

std::string textOf(const fs::path& file) {
    try {
        return readFile(file, maximumBytes);
    } catch (const std::system_error&) {
        return {};  // most users never had one
    }
}

}  // namespace

fs::path userPicturesFolder(const Environment& environment) {
    const fs::path home = absoluteOrEmpty(environment, "HOME");
    if (home.empty()) throw ApplicationDirectoryError(ApplicationDirectoryError::Case::noDataFolder);
    fs::path configuration = absoluteOrEmpty(environment, "XDG_CONFIG_HOME");
    if (configuration.empty()) configuration = home / ".config";
    const fs::path named = namedIn(textOf(configuration / "user-dirs.dirs"), home);
    return named.empty() ? home / "Pictures" : named;
}

fs::path favouritesFolder(const Environment& environment) {
    return userPicturesFolder(environment) / "Quillmar";
}

}  // namespace quillmar

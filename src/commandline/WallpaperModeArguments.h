#pragma once
#include <filesystem>
#include <optional>
#include <string>

#include "commandline/CommandLine.h"
#include "commandline/RecordOptions.h"
#include "modes/WallpaperMode.h"

namespace quillmar {

/// What a command line says of a mode.
struct WallpaperModeArguments {
    WallpaperMode mode;
    std::optional<std::filesystem::path> keyFile;  ///< where the key of the mode's service is written
    bool namesKey = false;                         ///< the line says a key, or that there is none
};

/// The mode that a line of "wallpaper set" names. Relative paths start from `folder`. Throws `UsageError`.
WallpaperModeArguments parseWallpaperMode(const CommandLine& line, const std::filesystem::path& folder);

/// The user's key to a picture service, as a field of the mode's record.
struct ServiceKey {
    std::string_view name;
    std::string* text = nullptr;  ///< null: the mode has none
};
ServiceKey keyOf(WallpaperMode& mode);
/// What stands in place of a key where a mode is printed.
inline constexpr std::string_view redactedKey = "[redacted]";

}  // namespace quillmar

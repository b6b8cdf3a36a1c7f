#pragma once
#include <filesystem>
#include <span>
#include <string>

#include "app/RecordOptions.h"
#include "modes/WallpaperMode.h"

namespace quillmar {

/// What the words of a command line say of a mode.
struct WallpaperModeArguments {
    WallpaperMode mode;
    std::optional<std::filesystem::path> keyFile;  ///< where the key of the mode's service is written
    bool namesKey = false;                         ///< the words say a key, or that there is none
};

/// The mode that words such as "image", "holiday.jpg", "--layout", "fill" name. Relative paths start from
/// `folder`. Throws `UsageError`.
WallpaperModeArguments parseWallpaperMode(std::span<const std::string> words,
                                          const std::filesystem::path& folder);

/// The user's key to a picture service, as a field of the mode's record.
struct ServiceKey {
    std::string_view name;
    std::string* text = nullptr;  ///< null: the mode has none
};
ServiceKey keyOf(WallpaperMode& mode);

}  // namespace quillmar

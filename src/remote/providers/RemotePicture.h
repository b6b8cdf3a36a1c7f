#pragma once
#include <filesystem>
#include <optional>
#include <string>

#include "modes/DailyImageSettings.h"
#include "modes/RemoteImagePresentation.h"
#include "modes/SearchImageSettings.h"

namespace quillmar {

/// Whose place in a sequence is meant: each presentation on each display keeps its own.
struct RemoteImageSelectionContext {
    RemoteImagePresentation presentation = RemoteImagePresentation::wallpaper;
    std::string displayID;
    auto operator<=>(const RemoteImageSelectionContext&) const = default;
};

/// What a provider found.
struct RemotePicture {
    std::filesystem::path image;                   ///< in the cache
    std::optional<std::string> sourceDescription;  ///< credit or title
    std::optional<std::string> overlayCaption;     ///< to be drawn over the picture
    std::optional<WindowsSpotlightSelection> windowsSpotlightSelection;
};

}  // namespace quillmar

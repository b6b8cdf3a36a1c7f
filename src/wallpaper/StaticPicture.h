#pragma once
#include <optional>

#include "modes/WallpaperMode.h"
#include "wallpaper/SlideshowImageLibrary.h"
#include "wallpaper/WallpaperRenderer.h"

namespace quillmar {

/// Whether a mode becomes one picture that is set as the desktop's.
bool isStaticKind(WallpaperModeKind kind);

/// A picture in the cache, and which file of a slideshow it was made from.
struct StaticPicture {
    std::filesystem::path image;
    std::optional<Url> selectedSlideshowImageURL;
};

/// Finds the picture of a static mode among the user's files and renders it for the display. Reads and writes
/// files, so it belongs on a background thread. Throws `WallpaperApplicationError`,
/// `SlideshowImageLibraryError` or `SecurityScopedFileAccessError`.
StaticPicture renderStaticPicture(const WallpaperMode& mode, const DisplayInfo& display,
                                  const WallpaperRenderer& renderer, const RandomIndex& randomIndex);

}  // namespace quillmar

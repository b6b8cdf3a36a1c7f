#pragma once
#include <filesystem>
#include <memory>
#include <optional>

#include "base/RandomIndex.h"
#include "modes/WallpaperMode.h"

namespace quillmar {

class SecurityScopedFileLease;

/// A file of the user's that is to be shown.
struct PictureSource {
    std::filesystem::path file;
    std::shared_ptr<const SecurityScopedFileLease> access;  ///< to `file`, while it is read; null: not needed
    std::optional<Url> selectedSlideshowImageURL;           ///< of a slideshow, the file as its URL
};

// Both ask the file system, so they belong on a background thread. They throw `WallpaperApplicationError` and
// `SecurityScopedFileAccessError`, a slideshow also `SlideshowImageLibraryError`.
PictureSource pictureSource(const ImagePresentationSettings& settings);
/// The next picture of the folder.
PictureSource pictureSource(const SlideshowPresentationSettings& settings, const RandomIndex& randomIndex);

}  // namespace quillmar

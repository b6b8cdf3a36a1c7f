#pragma once
#include <exception>
#include <filesystem>
#include <functional>
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
/// The next picture of the folder that is not left out; whether it can be read is found out by reading it.
PictureSource pictureSource(const SlideshowPresentationSettings& settings, const RandomIndex& randomIndex,
                            std::function<bool(const Url&)> isLeftOut);

/// Whether a picture was not made because of its file, so that another one may do.
bool isFaultOfFile(const std::exception_ptr& failure);
/// Whether the same file may do the next time: a decoder is also ended by others, such as a system short of
/// memory.
bool mayPassWithTime(const std::exception_ptr& failure);

}  // namespace quillmar

#pragma once
#include <functional>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "base/Localization.h"
#include "base/RandomIndex.h"
#include "base/Url.h"

namespace quillmar {

/// Why a folder has no next picture.
class SlideshowImageLibraryError final : public AppLocalizableError {
public:
    enum class Case { unreadableFolder, noImages, allLeftOut };

    SlideshowImageLibraryError(Case errorCase, Url folder) : case_(errorCase), folder_(std::move(folder)) {}
    Case errorCase() const { return case_; }
    std::string message(GeneralLanguage language) const override;

private:
    Case case_;
    Url folder_;
};

/// How a slideshow goes through its folder.
struct SlideshowSelection {
    bool includeSubfolders = false;
    bool shuffle = false;
    std::optional<Url> lastImageURL;  ///< what was shown last
    std::function<bool(const Url&)> isLeftOut = {};

    bool leavesOut(const Url& image) const { return isLeftOut && isLeftOut(image); }
};

/// What the names of pictures that can be shown end with, in lower case: ".avif", ".bmp", ...
std::span<const std::string_view> slideshowImageExtensions();

/// The pictures of a folder that can be shown, in no order: regular files that are not hidden, with the name
/// of an image. Links to folders are not followed, so that circles end. Throws `SlideshowImageLibraryError`
/// for what is no readable folder. Reads the file system.
std::vector<Url> slideshowImages(const Url& folder, bool includeSubfolders);

/// The picture to show next: in the order in which people read file names the one after the last, or any
/// other one when shuffled. Throws `SlideshowImageLibraryError`. Reads the file system.
Url nextSlideshowImage(const Url& folder, const SlideshowSelection& selection,
                       const RandomIndex& randomIndex);

}  // namespace quillmar

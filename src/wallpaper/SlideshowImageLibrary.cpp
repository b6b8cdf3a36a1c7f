#include "wallpaper/SlideshowImageLibrary.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>

#include "base/Text.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;
using Error = SlideshowImageLibraryError;

/// The names of what the picture pipeline decodes.
constexpr auto imageExtensions =
    std::to_array<std::string_view>({".avif", ".bmp", ".gif", ".heic", ".heif", ".jpe", ".jpeg", ".jpg",
                                     ".png", ".svg", ".tif", ".tiff", ".webp"});

bool isHidden(const fs::path& path) { return path.filename().native().starts_with('.'); }

bool isImageName(const fs::path& path) {
    return std::ranges::binary_search(imageExtensions, lowercased(path.extension().native()));
}

void addIfImage(const fs::directory_entry& entry, std::vector<Url>& images) {
    std::error_code unknown;  // what cannot be looked at drops out
    if (isHidden(entry.path()) || !isImageName(entry.path()) || !entry.is_regular_file(unknown)) return;
    images.push_back(Url::fromFilePath(entry.path()));
}

void addBelow(const fs::path& folder, std::vector<Url>& images, std::error_code& error) {
    constexpr auto options = fs::directory_options::skip_permission_denied;
    fs::recursive_directory_iterator entry(folder, options, error);
    // The option hides a refusal of the folder itself, too.
    if (!error) fs::directory_iterator(folder, error);
    while (!error && entry != fs::recursive_directory_iterator()) {
        std::error_code unknown;
        if (isHidden(entry->path()) && entry->is_directory(unknown)) entry.disable_recursion_pending();
        addIfImage(*entry, images);
        entry.increment(error);
    }
}

void addDirectly(const fs::path& folder, std::vector<Url>& images, std::error_code& error) {
    fs::directory_iterator entry(folder, error);
    while (!error && entry != fs::directory_iterator()) {
        addIfImage(*entry, images);
        entry.increment(error);
    }
}

bool comesBefore(const Url& left, const Url& right) {
    return localizedStandardCompare(left.displayPath(), right.displayPath()) < 0;
}

/// The next in order and, behind the last one, the first: found without sorting, which a folder of a hundred
/// thousand pictures would feel. Null when all are left out.
const Url* nextInOrder(const std::vector<Url>& images, const SlideshowSelection& selection) {
    const auto& last = selection.lastImageURL;
    // One that is left out is still a place to go on from.
    const auto current =
        last ? std::ranges::find(images, last->standardized(), &Url::standardized) : images.end();
    const Url* next = nullptr;
    const Url* first = nullptr;
    for (const Url& image : images) {
        if (selection.leavesOut(image)) continue;
        if (!first || comesBefore(image, *first)) first = &image;
        if (current != images.end() && comesBefore(*current, image) && (!next || comesBefore(image, *next)))
            next = &image;
    }
    return next ? next : first;
}

/// Any but the last one, where there is a choice. Null when all are left out.
const Url* nextAtRandom(std::vector<Url>& images, const SlideshowSelection& selection,
                        const RandomIndex& randomIndex) {
    std::erase_if(images, [&](const Url& image) { return selection.leavesOut(image); });
    if (images.size() > 1 && selection.lastImageURL) {
        const Url last = selection.lastImageURL->standardized();
        std::erase_if(images, [&](const Url& image) { return image.standardized() == last; });
    }
    return images.empty() ? nullptr : &images[randomIndex(images.size())];
}

}  // namespace

std::string SlideshowImageLibraryError::message(GeneralLanguage language) const {
    if (case_ == Case::unreadableFolder) {
        return localized("Quillmar cannot read the slideshow folder at %@. Choose the folder again."_key,
                         language, {folder_.displayPath()});
    }
    if (case_ == Case::allLeftOut) {
        return localized("Every image in %@ is in the trash or cannot be read."_key, language,
                         {folder_.displayPath()});
    }
    return localized("No supported images were found in %@."_key, language, {folder_.displayPath()});
}

std::span<const std::string_view> slideshowImageExtensions() { return imageExtensions; }

std::vector<Url> slideshowImages(const Url& folder, bool includeSubfolders) {
    const auto path = folder.filePath();
    std::error_code error;
    if (!path || !fs::is_directory(*path, error)) throw Error(Error::Case::unreadableFolder, folder);
    std::vector<Url> images;
    includeSubfolders ? addBelow(*path, images, error) : addDirectly(*path, images, error);
    if (error) throw Error(Error::Case::unreadableFolder, folder);
    return images;
}

Url nextSlideshowImage(const Url& folder, const SlideshowSelection& selection,
                       const RandomIndex& randomIndex) {
    std::vector<Url> images = slideshowImages(folder, selection.includeSubfolders);
    if (images.empty()) throw Error(Error::Case::noImages, folder);
    const Url* next =
        selection.shuffle ? nextAtRandom(images, selection, randomIndex) : nextInOrder(images, selection);
    if (!next) throw Error(Error::Case::allLeftOut, folder);
    return *next;
}

}  // namespace quillmar

#include "panes/wallpaper/DraftFiles.h"

#include <algorithm>
#include <utility>

#include "base/IsAmong.h"
#include "base/Text.h"
#include "storage/StoredFileGrant.h"
#include "wallpaper/SlideshowImageLibrary.h"

namespace quillmar {
namespace {

std::vector<FileQuestion::Type> pictureTypes(GeneralLanguage language) {
    FileQuestion::Type pictures{.name = localized("Pictures"_key, language), .patterns = {}};
    for (const std::string_view extension : slideshowImageExtensions()) {
        pictures.patterns.push_back("*" + std::string(extension));
        pictures.patterns.push_back("*" + uppercased(extension));
    }
    return {std::move(pictures), {.name = localized("All files"_key, language), .patterns = {"*"}}};
}

/// The copies that a display's entry names.
void addCopies(const DisplayWallpaperSettings& entry, std::vector<Url>& copies) {
    const auto add = [&](const WallpaperMode& mode) {
        const auto* image = std::get_if<ImagePresentationSettings>(&mode.value);
        if (image && image->cachedImageURL) copies.push_back(*image->cachedImageURL);
    };
    add(entry.mode);
    for (const auto& [kind, mode] : entry.savedModes) add(mode);
}

}  // namespace

DraftFiles::~DraftFiles() { forgetAll(); }

void DraftFiles::forgetAll() {
    problems_.clear();
    MediaImportSlots slots;
    for (const std::string& id : std::exchange(importing_, {})) slots.insert(slotOf(id));
    services_.imports.cancelImports(slots);
    waiting_.resumeAll();
}

Task<std::optional<std::string>> DraftFiles::settled() {
    std::set<std::string> waitedFor;
    while (isImporting()) {
        waitedFor.insert(importing_.begin(), importing_.end());
        co_await waiting_.wait();
    }
    for (const std::string& id : waitedFor) {
        if (problems_.contains(id)) co_return id;
    }
    co_return std::nullopt;
}

void DraftFiles::choose(const std::string& displayID) {
    const WallpaperModeKind kind = drafts_.of(displayID).mode.kind();
    if (kind == WallpaperModeKind::image) tasks_.spawn(chooseImage(displayID));
    if (kind == WallpaperModeKind::slideshow) tasks_.spawn(chooseFolder(displayID));
}

std::string DraftFiles::problemOf(const std::string& displayID) const {
    const auto found = problems_.find(displayID);
    return found == problems_.end() ? std::string() : found->second.message(language());
}

Task<void> DraftFiles::chooseImage(std::string displayID) {
    const auto file =
        co_await services_.chooser.choose({.purpose = FileQuestion::Purpose::open,
                                           .title = localized("Choose an Image"_key, language()),
                                           .accept = localized("Choose"_key, language()),
                                           .cancel = localized("Cancel"_key, language()),
                                           .types = pictureTypes(language())});
    if (!file) co_return;
    const Url source = Url::fromFilePath(*file);
    const auto grant = co_await grantIfThere(services_.files, *file);
    if (drafts_.of(displayID).mode.kind() != WallpaperModeKind::image) co_return;
    problems_.erase(displayID);
    importing_.insert(displayID);
    services_.imports.startImport(
        slotOf(displayID), source, MediaImportKind::image,
        [this, displayID, source, grant](const auto& copy) { take(displayID, source, grant, copy); });
    changed_(displayID);
}

void DraftFiles::take(const std::string& displayID, const Url& source, const std::optional<Bytes>& grant,
                      const std::expected<Url, MediaImportError>& copy) {
    importing_.erase(displayID);
    waiting_.resumeAll();
    if (copy) {
        copies_.emplace(*copy, CacheFileLease(services_.cacheFiles, copy->filePath().value_or("")));
        drafts_.edit(displayID, [&](DisplayWallpaperSettings& entry) {
            auto* image = std::get_if<ImagePresentationSettings>(&entry.mode.value);
            if (!image) return;
            image->imageURL = source;
            image->imageBookmark = grant;
            image->cachedImageURL = *copy;
        });
        cleanUp();
    } else {
        problems_.insert_or_assign(displayID, copy.error());
    }
    changed_(displayID);
}

Task<void> DraftFiles::chooseFolder(std::string displayID) {
    const auto folder =
        co_await services_.chooser.choose({.purpose = FileQuestion::Purpose::openFolder,
                                           .title = localized("Choose a Folder"_key, language()),
                                           .accept = localized("Choose"_key, language()),
                                           .cancel = localized("Cancel"_key, language())});
    if (!folder) co_return;
    const auto grant = co_await grantIfThere(services_.files, *folder);
    drafts_.edit(displayID, [&](DisplayWallpaperSettings& entry) {
        auto* slideshow = std::get_if<SlideshowPresentationSettings>(&entry.mode.value);
        if (!slideshow) return;
        slideshow->folderURL = Url::fromFilePath(*folder);
        slideshow->folderBookmark = grant;
    });
    changed_(displayID);
}

void DraftFiles::forget(const std::string& displayID) {
    problems_.erase(displayID);
    if (importing_.erase(displayID) == 0) return;
    services_.imports.cancelImports({slotOf(displayID)});
    waiting_.resumeAll();
}

void DraftFiles::cleanUp() {
    std::vector<Url> named;
    for (const auto& entry : services_.settingsModel.settings().wallpaper.displays) {
        addCopies(entry, named);
        addCopies(drafts_.of(entry.displayID), named);
    }
    for (const std::string& id : drafts_.displays()) addCopies(drafts_.of(id), named);
    std::vector<Url> forgotten;
    for (const auto& [copy, lease] : copies_) {
        if (!isAmong(copy, named)) forgotten.push_back(copy);
    }
    for (const Url& copy : forgotten) copies_.erase(copy);
    services_.imports.cleanup(forgotten, named);
}

}  // namespace quillmar

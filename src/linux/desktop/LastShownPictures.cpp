#include "linux/desktop/LastShownPictures.h"

#include "base/Files.h"
#include "base/JsonRecord.h"
#include "diagnostics/Log.h"
#include "linux/desktop/DesktopFile.h"

namespace quillmar {
namespace {

constexpr std::size_t maximumBytes = 1 << 20;

std::string keyOf(const Screen& screen) {
    return screen.uuid ? screen.uuid->lowercaseString() : screen.connector;
}

}  // namespace

LastShownPictures::LastShownPictures(std::filesystem::path file) : file_(std::move(file)) {
    if (!existingFile(file_)) return;
    try {
        pictures_ = json::decode<decltype(pictures_)>(readFile(file_, maximumBytes));
    } catch (const std::exception&) {
        logWarning("The last desktop pictures could not be read.", "wallpaper", std::current_exception());
    }
}

void LastShownPictures::note(const Screen& screen, const std::filesystem::path& picture) {
    std::string& last = pictures_[keyOf(screen)];
    if (last == picture.string()) return;
    last = picture.string();
    try {
        createDirectories(file_.parent_path(), 0700);
        writeFileAtomically(file_, json::encode(pictures_), 0600, Durability::reproducible);
    } catch (const std::exception&) {
        logWarning("The last desktop pictures could not be kept.", "wallpaper", std::current_exception());
    }
}

std::optional<std::filesystem::path> LastShownPictures::pictureOf(const Screen& screen) const {
    const auto found = pictures_.find(keyOf(screen));
    return found == pictures_.end() ? std::nullopt : existingFile(found->second);
}

}  // namespace quillmar

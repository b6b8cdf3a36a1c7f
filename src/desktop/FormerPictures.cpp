#include "desktop/FormerPictures.h"

#include "base/Files.h"
#include "base/JsonRecord.h"
#include "diagnostics/Log.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t maximumBytes = 1 << 20;
/// As the desktops' adapters name what they take from the screen.
constexpr std::string_view capturePrefix = "captured-";

bool isBelow(const fs::path& folder, const fs::path& file) {
    return file.native().starts_with((folder / "").native());
}

/// Where the file can be kept; nothing for one of the program's own pictures.
std::optional<fs::path> keptFile(const fs::path& folder, const fs::path& programFolder,
                                 const fs::path& file) {
    // One that was given back, and is about to be covered again, is here already.
    if (!isBelow(programFolder, file) || isBelow(folder, file)) return file;
    if (!file.filename().string().starts_with(capturePrefix)) return std::nullopt;
    if (isBelow(folder, file)) return file;  // given back before
    createDirectories(folder, 0700);
    fs::path kept = folder / file.filename();
    fs::copy_file(file, kept, fs::copy_options::overwrite_existing);
    return kept;
}

}  // namespace

Task<void> FormerPictures::keep(std::string displayID, fs::path file, DesktopImageOptions options) {
    const auto hold = co_await order_.acquire();
    co_await load();
    const auto kept = co_await executor_.run(
        [folder = folder_, program = programFolder_, file]() -> std::optional<fs::path> {
            try {
                return keptFile(folder, program, file);
            } catch (const std::exception&) {
                logWarning("The desktop's former picture could not be kept.", "wallpaper",
                           std::current_exception());
                return std::nullopt;
            }
        });
    if (!kept) co_return;
    pictures_->insert_or_assign(displayID, FormerPicture{Url::fromFilePath(*kept), std::move(options)});
    co_await save();
}

Task<std::optional<FormerPicture>> FormerPictures::find(std::string displayID) {
    const auto hold = co_await order_.acquire();
    co_await load();
    const auto found = pictures_->find(displayID);
    if (found == pictures_->end()) co_return std::nullopt;
    const FormerPicture picture = found->second;
    const bool isThere = co_await executor_.run([url = picture.fileURL] {
        std::error_code ignored;
        return fs::is_regular_file(url.filePath().value_or(""), ignored);
    });
    co_return isThere ? std::optional(picture) : std::nullopt;
}

Task<void> FormerPictures::forget(std::string displayID) {
    const auto hold = co_await order_.acquire();
    co_await load();
    if (pictures_->erase(displayID) > 0) co_await save();
}

Task<void> FormerPictures::removeForgotten(FilePaths shown) {
    const auto hold = co_await order_.acquire();
    co_await load();
    for (const auto& [id, picture] : *pictures_) shown.insert(picture.fileURL.filePath().value_or(""));
    co_await executor_.run([folder = folder_, kept = std::move(shown)] {
        std::error_code ignored;  // what stays is tried again at the next start
        for (const auto& entry : fs::directory_iterator(folder, ignored)) {
            const bool isCopy = entry.path().filename().string().starts_with(capturePrefix);
            if (isCopy && !kept.contains(entry.path())) fs::remove(entry.path(), ignored);
        }
    });
}

Task<void> FormerPictures::load() {
    if (pictures_) co_return;
    pictures_ = co_await executor_.run([from = file()]() -> Pictures {
        std::error_code ignored;
        if (!fs::is_regular_file(from, ignored)) return {};
        try {
            return json::decode<Pictures>(readFile(from, maximumBytes));
        } catch (const std::exception&) {
            logWarning("The desktop's former pictures could not be read.", "wallpaper",
                       std::current_exception());
            return {};
        }
    });
}

Task<void> FormerPictures::save() {
    co_await executor_.run([to = file(), pictures = *pictures_] {
        try {
            createDirectories(to.parent_path(), 0700);
            writeFileAtomically(to, json::encode(pictures), 0600, Durability::reproducible);
        } catch (const std::exception&) {
            logWarning("The desktop's former picture could not be kept.", "wallpaper",
                       std::current_exception());
        }
    });
}

}  // namespace quillmar

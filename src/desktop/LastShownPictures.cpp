#include "desktop/LastShownPictures.h"

#include "base/Files.h"
#include "base/JsonRecord.h"
#include "diagnostics/Log.h"

namespace quillmar {
namespace {

constexpr std::size_t maximumBytes = 1 << 20;

bool isThere(const std::filesystem::path& file) {
    std::error_code ignored;
    return file.is_absolute() && std::filesystem::is_regular_file(file, ignored);
}

}  // namespace

std::string screenKey(const Screen& screen) {
    return screen.uuid ? screen.uuid->lowercaseString() : screen.connector;
}

Task<void> LastShownPictures::load() {
    if (pictures_) co_return;
    pictures_ = co_await executor_.run([file = file_]() -> Pictures {
        if (!isThere(file)) return {};
        try {
            return json::decode<Pictures>(readFile(file, maximumBytes));
        } catch (const std::exception&) {
            logWarning("The last desktop pictures could not be read.", "wallpaper", std::current_exception());
            return {};
        }
    });
}

Task<void> LastShownPictures::note(Screen screen, std::filesystem::path picture) {
    const auto hold = co_await order_.acquire();
    co_await load();
    std::string& last = (*pictures_)[screenKey(screen)];
    if (last == picture.string()) co_return;
    last = picture.string();
    co_await executor_.run([file = file_, pictures = *pictures_] {
        try {
            createDirectories(file.parent_path(), 0700);
            writeFileAtomically(file, json::encode(pictures), 0600, Durability::reproducible);
        } catch (const std::exception&) {
            logWarning("The last desktop pictures could not be kept.", "wallpaper", std::current_exception());
        }
    });
}

Task<std::optional<std::filesystem::path>> LastShownPictures::pictureOf(Screen screen) {
    const auto hold = co_await order_.acquire();
    co_await load();
    const auto found = pictures_->find(screenKey(screen));
    if (found == pictures_->end()) co_return std::nullopt;
    std::filesystem::path picture = found->second;
    const bool isPresent = co_await executor_.run([picture] { return isThere(picture); });
    co_return isPresent ? std::optional(std::move(picture)) : std::nullopt;
}

}  // namespace quillmar

#include "wallpaper/UnreadablePictures.h"

namespace quillmar {
namespace {

std::filesystem::file_time_type changedAt(const Url& fileURL) {
    std::error_code ignored;  // what is not there has not changed either
    return std::filesystem::last_write_time(fileURL.filePath().value_or(""), ignored);
}

}  // namespace

UnreadablePictures UnreadablePictures::with(const Url& fileURL) const {
    Files files = files_ && files_->size() < maximum ? *files_ : Files{};
    files.insert_or_assign(fileURL.string(), changedAt(fileURL));
    UnreadablePictures all;
    all.files_ = std::make_shared<const Files>(std::move(files));
    return all;
}

bool UnreadablePictures::contains(const Url& fileURL) const {
    if (!files_) return false;
    const auto found = files_->find(fileURL.string());
    return found != files_->end() && found->second == changedAt(fileURL);
}

}  // namespace quillmar

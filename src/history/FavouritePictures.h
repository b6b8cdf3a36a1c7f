#pragma once
#include <filesystem>

#include "history/ShownPicture.h"

namespace quillmar {

/// A copy of a picture among the user's own.
struct FavouritePicture {
    std::filesystem::path file;
    bool isNew = false;  ///< it was not there before
};

/// Copies the file of a picture into the folder, which is made when needed, under a name that says what it
/// is, and with its title, author, source and licence where a service has said them: within JPEG and PNG
/// files, else in a file ".xmp" beside it. The same picture is copied once. Throws `FileError`; nothing half
/// is left behind. Works on files, so it belongs on another thread.
FavouritePicture keepFavourite(const ShownPicture& picture, const std::filesystem::path& folder);

}  // namespace quillmar

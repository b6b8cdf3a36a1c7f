#pragma once
#include "storage/ApplicationDirectories.h"

namespace quillmar {

/// The user's folder of pictures, as "user-dirs.dirs" in the user's folder of configurations names it, by
/// default "Pictures" at home. Throws `ApplicationDirectoryError` where there is no home. Reads a file.
std::filesystem::path userPicturesFolder(const Environment& environment);
/// The folder in it where favourites are kept. The same.
std::filesystem::path favouritesFolder(const Environment& environment);

}  // namespace quillmar

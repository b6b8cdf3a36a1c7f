#pragma once
#include <filesystem>

#include "storage/ApplicationDirectories.h"

namespace quillmar {

/// Shows on every display of the X root window what it showed last, from the rows of `LastShownRows` in
/// `folder`, and says where it comes from as the program itself does. Nothing happens where a desktop has a
/// way of its own, and on displays whose rows are not at hand in their size. Needs neither toolkit nor main
/// loop; waits for the X server and the disk. How many displays were painted; failures leave the desktop as
/// it was.
int paintLastShown(const std::filesystem::path& folder, const Environment& environment);

}  // namespace quillmar

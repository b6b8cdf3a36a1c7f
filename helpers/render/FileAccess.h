#pragma once
#include <string>
#include <vector>

namespace quillmar::sandbox {

using Folders = std::vector<std::string>;

/// Where the system and the user keep fonts and what is set for them.
Folders fontFolders();
/// Of all files in the system only those below these folders can be opened from here on, and only to be read.
/// A folder that is not there is left out. For the calling thread and those that it starts. No, and nothing
/// is restricted, where the kernel knows no such restriction.
bool restrictFiles(const Folders& folders);

}  // namespace quillmar::sandbox

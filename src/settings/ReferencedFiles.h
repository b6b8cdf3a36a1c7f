#pragma once
#include <filesystem>
#include <set>

#include "settings/records/AppSettings.h"

namespace quillmar {

/// Every local file and folder that the wallpapers, Lock Screens and screensavers of the document name: those
/// of the present modes and of the modes that the user may come back to, of all displays.
std::set<std::filesystem::path> referencedFiles(const AppSettings& document);

}  // namespace quillmar

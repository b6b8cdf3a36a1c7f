#pragma once
#include <string>
#include <vector>

#include "base/Localization.h"
#include "display/DisplayInfo.h"
#include "modes/DisplayEntries.h"

namespace quillmar {

/// The IDs of those that a person means by a name: an ID, what a monitor is called, "main" or "all". Throws
/// `CommandError` for none and, but for "all", for several.
DisplayIDs displaysCalled(const std::string& name, std::vector<DisplayInfo> displays);

/// For people: a line for each display, the main one marked.
std::string displaysAsText(const std::vector<DisplayInfo>& displays, GeneralLanguage language);
/// For scripts; `version` is the program's.
std::string displaysAsJson(std::vector<DisplayInfo> displays, const std::string& version);

}  // namespace quillmar

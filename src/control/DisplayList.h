#pragma once
#include <string>
#include <vector>

#include "base/Localization.h"
#include "display/DisplayInfo.h"

namespace quillmar {

/// For people: a line for each display, the main one marked.
std::string displaysAsText(const std::vector<DisplayInfo>& displays, GeneralLanguage language);
/// For scripts; `version` is the program's.
std::string displaysAsJson(std::vector<DisplayInfo> displays, const std::string& version);

}  // namespace quillmar

#pragma once
#include <string>
#include <vector>

#include "storage/ApplicationDirectories.h"

namespace quillmar {

/// The locale names that the environment asks for, the most wanted first, for where no settings say a
/// language.
std::vector<std::string> localeLanguages(const Environment& environment);

}  // namespace quillmar

#pragma once
#include <string>
#include <vector>

namespace quillmar {

/// The locale names of the user's languages, the most wanted first.
std::vector<std::string> preferredLanguages();

}  // namespace quillmar

#pragma once
#include <cstdint>
#include <string>

#include "base/Localization.h"

namespace quillmar {

/// A size for a person to read, in powers of 1000 as file managers count: "512 bytes", "536.9 MB", "21,47
/// GB".
std::string byteCountText(std::int64_t bytes, GeneralLanguage language);

}  // namespace quillmar

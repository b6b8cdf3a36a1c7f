#include "base/Hash.h"

#include <fmt/format.h>

namespace quillmar {

std::string hexadecimal(std::uint64_t value) { return fmt::format("{:x}", value); }

}  // namespace quillmar

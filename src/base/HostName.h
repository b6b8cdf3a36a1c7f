#pragma once
#include <string_view>

namespace quillmar {

/// Whether a name (not a numeric address) is one of this machine or its own network: "localhost", "nas",
/// "nas.local". Case does not matter.
bool isLocalHostName(std::string_view name);

}  // namespace quillmar

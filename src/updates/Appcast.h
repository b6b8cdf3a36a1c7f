#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Bytes.h"
#include "base/SemanticVersion.h"
#include "base/Url.h"

namespace quillmar {

/// A version in the list of versions.
struct AppcastItem {
    SemanticVersion version;
    std::string versionText;
    std::optional<Url> page;  ///< that tells of it
    Url file;
    Bytes signature;                     ///< of the file; empty where there is none
    std::optional<std::int64_t> length;  ///< of the file, in bytes
};

/// The versions for this system that a list at `base` holds; items that are none for it, or have no file or
/// no version, are passed over. Throws `SoftwareUpdateError` for what is no list of versions.
std::vector<AppcastItem> parseAppcast(std::string_view text, const Url& base);

/// The newest one beyond `current`; null when there is none.
const AppcastItem* newest(const std::vector<AppcastItem>& items, const SemanticVersion& current);

}  // namespace quillmar

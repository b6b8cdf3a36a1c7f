#pragma once
#include <span>
#include <string_view>

#include "base/Localization.h"

namespace quillmar {

struct ChangelogSection {
    TextKey title;
    std::span<const TextKey> items;
};

/// What a version brought.
struct ChangelogRelease {
    std::string_view version;
    TextKey label;
    std::span<const ChangelogSection> sections;
};

/// Of all versions, the newest first.
std::span<const ChangelogRelease> releaseNotes();

}  // namespace quillmar

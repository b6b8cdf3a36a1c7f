#pragma once
#include <compare>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillmar {

/// A version of the form MAJOR.MINOR.PATCH[-PRERELEASE][+BUILD], ordered by the rules of semantic versioning.
struct SemanticVersion {
    int major = 0;
    int minor = 0;
    int patch = 0;
    std::vector<std::string> prerelease;  ///< dot-separated identifiers; empty for a release

    /// Nothing for any other text.
    static std::optional<SemanticVersion> parse(std::string_view text);
    std::strong_ordering operator<=>(const SemanticVersion& other) const;
    bool operator==(const SemanticVersion& other) const { return (*this <=> other) == 0; }
};

}  // namespace quillmar

#pragma once
#include <array>
#include <compare>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillmar {

/// A version of the form 1.2.3-beta.1+7. Two are ordered by precedence, for which what stands behind the "+"
/// does not count.
class SemanticVersion {
public:
    /// Nothing for a text of another form.
    static std::optional<SemanticVersion> parse(std::string_view text);

    std::weak_ordering operator<=>(const SemanticVersion& other) const;
    bool operator==(const SemanticVersion& other) const { return std::is_eq(*this <=> other); }

private:
    SemanticVersion() = default;
    std::array<std::string, 3> numbers_;  ///< in digits: there is no largest one
    std::vector<std::string> preRelease_;
};

}  // namespace quillmar

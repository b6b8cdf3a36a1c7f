#include "base/SemanticVersion.h"

#include <algorithm>
#include <charconv>
#include <tuple>

namespace quillmar {
namespace {

bool isNumeric(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

bool isIdentifier(std::string_view text) {
    const auto isAllowed = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-';
    };
    return !text.empty() && std::ranges::all_of(text, isAllowed);
}

bool hasLeadingZero(std::string_view number) { return number.size() > 1 && number.front() == '0'; }

std::vector<std::string> splitAtDots(std::string_view text) {
    std::vector<std::string> parts;
    for (std::size_t dot = text.find('.'); dot != std::string_view::npos; dot = text.find('.')) {
        parts.emplace_back(text.substr(0, dot));
        text.remove_prefix(dot + 1);
    }
    parts.emplace_back(text);
    return parts;
}

bool readNumber(std::string_view text, int& number) {
    if (!isNumeric(text) || hasLeadingZero(text)) return false;
    return std::from_chars(text.data(), text.data() + text.size(), number).ec == std::errc();
}

/// Numbers by value and below words; words by their bytes. Numbers may be longer than any machine number.
std::strong_ordering compareIdentifiers(const std::string& left, const std::string& right) {
    const bool leftIsNumber = isNumeric(left);
    const bool rightIsNumber = isNumeric(right);
    if (leftIsNumber != rightIsNumber) {
        return leftIsNumber ? std::strong_ordering::less : std::strong_ordering::greater;
    }
    if (leftIsNumber && left.size() != right.size()) return left.size() <=> right.size();
    return left <=> right;
}

}  // namespace

std::optional<SemanticVersion> SemanticVersion::parse(std::string_view text) {
    SemanticVersion version;
    if (const std::size_t plus = text.find('+'); plus != std::string_view::npos) {
        if (!std::ranges::all_of(splitAtDots(text.substr(plus + 1)), isIdentifier)) return std::nullopt;
        text = text.substr(0, plus);
    }
    if (const std::size_t dash = text.find('-'); dash != std::string_view::npos) {
        version.prerelease = splitAtDots(text.substr(dash + 1));
        const auto isAllowed = [](const std::string& part) {
            return isIdentifier(part) && !(isNumeric(part) && hasLeadingZero(part));
        };
        if (!std::ranges::all_of(version.prerelease, isAllowed)) return std::nullopt;
        text = text.substr(0, dash);
    }
    const std::vector<std::string> numbers = splitAtDots(text);
    if (numbers.size() != 3) return std::nullopt;
    if (!readNumber(numbers[0], version.major)) return std::nullopt;
    if (!readNumber(numbers[1], version.minor)) return std::nullopt;
    if (!readNumber(numbers[2], version.patch)) return std::nullopt;
    return version;
}

std::strong_ordering SemanticVersion::operator<=>(const SemanticVersion& other) const {
    if (const auto order = std::tie(major, minor, patch) <=> std::tie(other.major, other.minor, other.patch);
        order != 0) {
        return order;
    }
    // A release stands above all its pre-releases.
    if (prerelease.empty() || other.prerelease.empty())
        return prerelease.empty() <=> other.prerelease.empty();
    const std::size_t shared = std::min(prerelease.size(), other.prerelease.size());
    for (std::size_t i = 0; i < shared; ++i) {
        if (const auto order = compareIdentifiers(prerelease[i], other.prerelease[i]); order != 0)
            return order;
    }
    return prerelease.size() <=> other.prerelease.size();
}

}  // namespace quillmar

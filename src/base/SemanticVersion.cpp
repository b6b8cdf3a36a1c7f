#include "base/SemanticVersion.h"

#include <algorithm>
#include <utility>

namespace quillmar {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isIdentifierCharacter(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-';
}
bool isAllDigits(std::string_view text) { return !text.empty() && std::ranges::all_of(text, isDigit); }
bool isNumber(std::string_view text) { return isAllDigits(text) && (text.size() == 1 || text[0] != '0'); }
bool isIdentifier(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, isIdentifierCharacter);
}

std::vector<std::string> splitAtDots(std::string_view text) {
    std::vector<std::string> parts;
    for (;;) {
        const std::size_t end = text.find('.');
        parts.emplace_back(text.substr(0, end));
        if (end == std::string_view::npos) return parts;
        text.remove_prefix(end + 1);
    }
}

/// What stands behind the sign, which goes with it; nothing where there is none.
std::optional<std::string_view> takeBehind(std::string_view& text, char sign) {
    const std::size_t at = text.find(sign);
    if (at == std::string_view::npos) return std::nullopt;
    const std::string_view behind = text.substr(at + 1);
    text = text.substr(0, at);
    return behind;
}

std::weak_ordering orderOfNumbers(const std::string& left, const std::string& right) {
    if (left.size() != right.size()) return left.size() <=> right.size();
    return left.compare(right) <=> 0;
}

std::weak_ordering orderOfIdentifiers(const std::string& left, const std::string& right) {
    const bool isLeftNumber = isAllDigits(left);
    if (isLeftNumber != isAllDigits(right))
        return isLeftNumber ? std::weak_ordering::less : std::weak_ordering::greater;
    return isLeftNumber ? orderOfNumbers(left, right) : left.compare(right) <=> 0;
}

}  // namespace

std::optional<SemanticVersion> SemanticVersion::parse(std::string_view text) {
    SemanticVersion version;
    if (const auto build = takeBehind(text, '+')) {
        if (!std::ranges::all_of(splitAtDots(*build), isIdentifier)) return std::nullopt;
    }
    if (const auto preRelease = takeBehind(text, '-')) {
        version.preRelease_ = splitAtDots(*preRelease);
        const auto isSound = [](const std::string& part) {
            return isIdentifier(part) && (!isAllDigits(part) || isNumber(part));
        };
        if (!std::ranges::all_of(version.preRelease_, isSound)) return std::nullopt;
    }
    std::vector<std::string> numbers = splitAtDots(text);
    if (numbers.size() != version.numbers_.size() || !std::ranges::all_of(numbers, isNumber))
        return std::nullopt;
    std::ranges::move(numbers, version.numbers_.begin());
    return version;
}

std::weak_ordering SemanticVersion::operator<=>(const SemanticVersion& other) const {
    for (std::size_t i = 0; i < numbers_.size(); ++i) {
        if (const auto order = orderOfNumbers(numbers_[i], other.numbers_[i]); std::is_neq(order))
            return order;
    }
    // What comes before a release has a smaller precedence than the release.
    if (preRelease_.empty() != other.preRelease_.empty())
        return preRelease_.empty() ? std::weak_ordering::greater : std::weak_ordering::less;
    return std::lexicographical_compare_three_way(preRelease_.begin(), preRelease_.end(),
                                                  other.preRelease_.begin(), other.preRelease_.end(),
                                                  orderOfIdentifiers);
}

}  // namespace quillmar

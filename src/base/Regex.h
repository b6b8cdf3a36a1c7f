#pragma once
#include <memory>
#include <string>
#include <string_view>

namespace quillmar {

/// A regular expression, compiled once. Any thread may use it, several at once.
class Regex {
public:
    /// Throws `std::invalid_argument` with the pattern and the reason when it is no regular expression.
    explicit Regex(std::string_view pattern);
    Regex(Regex&&) noexcept;
    Regex& operator=(Regex&&) noexcept;
    ~Regex();

    /// The text with every match replaced; "\1" in `replacement` stands for the first group. Bytes that are
    /// not UTF-8, and zero bytes, become U+FFFD first. Throws `std::runtime_error` when the search is given
    /// up, as for a text that makes the expression backtrack beyond all bounds.
    std::string replacingMatches(std::string_view text, const std::string& replacement) const;

    /// A pattern that matches exactly `text`.
    static std::string escaped(std::string_view text);

private:
    struct Compiled;
    std::unique_ptr<const Compiled> compiled_;
};

}  // namespace quillmar

#pragma once
#include <cstddef>
#include <string>
#include <string_view>

namespace quillmar {

/// Without the whitespace and newlines (Unicode's) at both ends.
std::string_view trimmed(std::string_view text);
/// Lower case by Unicode's rules; bytes that are not UTF-8 stay as they are.
std::string lowercased(std::string_view text);
/// Upper case by Unicode's rules; bytes that are not UTF-8 stay as they are.
std::string uppercased(std::string_view text);
bool isValidUtf8(std::string_view text);
/// Bytes that are not UTF-8 become U+FFFD.
std::string repairedUtf8(std::string_view text);
/// True when every character is a letter or a number in the Unicode sense. True for an empty text.
bool isAlphanumeric(std::string_view text);
/// Each Unicode scalar that is no letter, mark or number becomes `replacement`.
std::string replacingNonAlphanumerics(std::string_view text, char replacement);
/// Order of file names as a person reads them: by language, digits by their value. Negative, zero or
/// positive.
int localizedStandardCompare(std::string_view left, std::string_view right);
/// Number as its shortest decimal text that reads back the same, always with a fraction: "3.0", "0.25".
std::string shortestDecimal(double value);

}  // namespace quillmar

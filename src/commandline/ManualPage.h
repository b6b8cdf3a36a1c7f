#pragma once
#include <string>
#include <string_view>

namespace quillmar {

/// The manual page in English: `frame` with the table's commands in place of the lines "@SYNOPSIS@",
/// "@COMMANDS@" and "@KINDS@".
std::string manualPage(std::string_view frame);

}  // namespace quillmar

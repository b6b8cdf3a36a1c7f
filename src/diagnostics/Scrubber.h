#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "base/Regex.h"
#include "diagnostics/Log.h"

namespace quillmar {

/// Takes addresses, paths and secrets out of texts before they leave the program. Any thread may use one,
/// several at once; nothing here fails: a text that cannot be searched is replaced as a whole.
class Scrubber {
public:
    /// `personalDirectories`: absolute paths of this user that become "[path]" with all that stands below
    /// them.
    explicit Scrubber(const std::vector<std::string>& personalDirectories = {});

    std::string text(std::string_view text) const;
    /// Values of sensitive keys become "[redacted]", all others are scrubbed; keys stay.
    LogMetadata metadata(const LogMetadata& metadata) const;

private:
    /// A rule is tried only on texts with one of `signs`, without which it cannot match: most lines have
    /// none.
    struct Rule {
        std::string signs;
        Regex pattern;
        std::string replacement;
    };
    void addRule(std::string signs, const std::string& pattern, std::string replacement);
    std::vector<Rule> rules_;
};

/// The user's own folders as an environment names them: HOME, and each XDG_..._HOME, XDG_..._DIR.
/// `environment` is a list of "NAME=value" that ends with a null pointer, as `environ` is.
std::vector<std::string> personalDirectories(const char* const* environment);

}  // namespace quillmar

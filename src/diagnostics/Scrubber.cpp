#include "diagnostics/Scrubber.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "base/Text.h"
#include "base/Url.h"

namespace quillmar {
namespace {

constexpr auto sensitiveWords = std::to_array<std::string_view>(
    {"api_key", "apikey", "authorization", "cookie", "dsn", "password", "secret", "token"});

constexpr std::string_view redacted = "[redacted]";

/// A path below one of `roots`, an alternation of patterns, up to where a sentence goes on.
std::string pathBelow(const std::string& roots) {
    return R"((?<![A-Za-z0-9])(?:)" + roots + R"()(?:/[^\s\]\[\)\(<>"']*)?)";
}

bool isSensitive(std::string_view key) {
    std::string normal = lowercased(key);
    std::ranges::replace(normal, '-', '_');
    return std::ranges::any_of(sensitiveWords,
                               [&](std::string_view word) { return normal.find(word) != std::string::npos; });
}

/// The alternatives of a pattern that match these folders, as paths are written and as URLs spell them.
std::string alternatives(std::vector<std::string> directories) {
    for (const std::string& directory : std::vector(directories)) {
        const std::string encoded = Url::fromFilePath(directory).string();
        directories.push_back(encoded.substr(encoded.find("://") + 3));
    }
    // The longest first: a folder within another one is to go as a whole.
    std::ranges::sort(directories, [](const std::string& left, const std::string& right) {
        return left.size() != right.size() ? left.size() > right.size() : left < right;
    });
    const auto repeated = std::ranges::unique(directories);
    directories.erase(repeated.begin(), repeated.end());
    std::string joined;
    for (const std::string& directory : directories) {
        joined += (joined.empty() ? "" : "|") + Regex::escaped(directory);
    }
    return joined;
}

}  // namespace

Scrubber::Scrubber(const std::vector<std::string>& personalDirectories) {
    addRule("/", R"(https?://[^\s\]\[\)\(<>"']+)", "[url]");
    addRule("/", pathBelow("/Users|/private|/var|/tmp|/Volumes|/Library|/Applications"), "[path]");
    addRule("@", R"(\b[A-Z0-9._%+-]+@[A-Z0-9.-]+\.[A-Z]{2,}\b)", "[email]");
    addRule(":=", R"((?i)\b(api[_-]?key|authorization|password|secret|token)\s*[:=]\s*[^\s,;]+)",
            R"(\1=[redacted])");
    addRule("/", pathBelow("/home|/root|/run/user"), "[path]");
    // Tried at the start of a word only, and never given back: a long text costs one pass.
    addRule("@", R"((?i)(?<![A-Z0-9._%+-])[A-Z0-9._%+-]++@[A-Z0-9.-]+\.[A-Z]{2,}\b)", "[email]");

    std::vector<std::string> directories;
    for (std::string directory : personalDirectories) {
        directory = repairedUtf8(directory);
        while (directory.ends_with('/')) directory.pop_back();
        if (directory.starts_with('/')) directories.push_back(std::move(directory));
    }
    if (!directories.empty()) addRule("/", pathBelow(alternatives(std::move(directories))), "[path]");
}

void Scrubber::addRule(std::string signs, const std::string& pattern, std::string replacement) {
    try {
        rules_.push_back({std::move(signs), Regex(pattern), std::move(replacement)});
    } catch (const std::invalid_argument&) {
        // The text goes on to the next rule: a folder's odd name must not cost the program its log.
    }
}

std::string Scrubber::text(std::string_view text) const {
    try {
        std::string scrubbed = isValidUtf8(text) ? std::string(text) : repairedUtf8(text);
        for (const Rule& rule : rules_) {
            if (scrubbed.find_first_of(rule.signs) == std::string::npos) continue;
            scrubbed = rule.pattern.replacingMatches(scrubbed, rule.replacement);
        }
        return scrubbed;
    } catch (const std::runtime_error&) {
        return std::string(redacted);  // rather no text than one that was not searched
    }
}

LogMetadata Scrubber::metadata(const LogMetadata& metadata) const {
    LogMetadata scrubbed;
    for (const auto& [key, value] : metadata) {
        scrubbed.emplace(repairedUtf8(key), isSensitive(key) ? std::string(redacted) : text(value));
    }
    return scrubbed;
}

std::vector<std::string> personalDirectories(const char* const* environment) {
    std::vector<std::string> directories;
    for (; *environment; ++environment) {
        const std::string_view line = *environment;
        const std::string_view name = line.substr(0, line.find('='));
        const bool isPersonal = name == "HOME" || (name.starts_with("XDG_") &&
                                                   (name.ends_with("_HOME") || name.ends_with("_DIR")));
        if (isPersonal && name.size() < line.size()) directories.emplace_back(line.substr(name.size() + 1));
    }
    return directories;
}

}  // namespace quillmar

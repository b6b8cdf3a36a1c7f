#include "diagnostics/OperatingSystemVersion.h"

#include <sys/utsname.h>

#include <system_error>

#include "base/Files.h"
#include "base/Text.h"

namespace quillmar {
namespace {

/// A value as a shell reads it: within quotes, "\" makes the next character plain.
std::string unquoted(std::string_view value) {
    const bool isQuoted = value.size() >= 2 && (value.front() == '"' || value.front() == '\'');
    if (isQuoted) value = value.substr(1, value.size() - 2);
    std::string plain;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '\\' && i + 1 < value.size()) ++i;
        plain += value[i];
    }
    return plain;
}

std::string prettyName(std::string_view osRelease) {
    constexpr std::string_view key = "PRETTY_NAME=";
    while (!osRelease.empty()) {
        const std::string_view line = trimmed(osRelease.substr(0, osRelease.find('\n')));
        if (line.starts_with(key)) return unquoted(line.substr(key.size()));
        const std::size_t end = osRelease.find('\n');
        osRelease.remove_prefix(end == std::string_view::npos ? osRelease.size() : end + 1);
    }
    return {};
}

}  // namespace

std::string operatingSystemVersionText(std::string_view osRelease, std::string_view kernelRelease) {
    const std::string name = repairedUtf8(prettyName(osRelease));
    return (name.empty() ? "" : name + ", ") + "Linux " + std::string(kernelRelease);
}

std::string operatingSystemVersionText() {
    utsname kernel{};
    const bool isKnown = ::uname(&kernel) == 0;
    for (const char* file : {"/etc/os-release", "/usr/lib/os-release"}) {
        try {
            return operatingSystemVersionText(readFile(file, 64 << 10), isKnown ? kernel.release : "");
        } catch (const std::system_error&) {
            // The next place, and then the kernel alone: a version text is never worth a failure.
        }
    }
    return operatingSystemVersionText("", isKnown ? kernel.release : "");
}

}  // namespace quillmar

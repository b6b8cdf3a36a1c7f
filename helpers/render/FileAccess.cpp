#include "render/FileAccess.h"

#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdlib>

#include "base/FileDescriptor.h"

namespace quillmar::sandbox {
namespace {

/// All rights to files that the first version of the interface knows; later versions add to them.
constexpr std::uint64_t firstRights = (LANDLOCK_ACCESS_FS_MAKE_SYM << 1) - 1;
constexpr std::uint64_t reading = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;

std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}
/// A folder of the desktop's standard, in the user's own place or in the usual one below the home folder.
std::string userFolder(const char* name, const char* usual, const char* below) {
    const std::string own = variable(name);
    return (own.empty() ? variable("HOME") + usual : own) + below;
}

}  // namespace

Folders fontFolders() {
    return {"/etc/fonts",
            "/usr/share/fonts",
            "/usr/share/fontconfig",
            "/usr/local/share/fonts",
            "/var/cache/fontconfig",
            variable("HOME") + "/.fonts",
            variable("HOME") + "/.fonts.conf",
            userFolder("XDG_DATA_HOME", "/.local/share", "/fonts"),
            userFolder("XDG_CONFIG_HOME", "/.config", "/fontconfig"),
            userFolder("XDG_CACHE_HOME", "/.cache", "/fontconfig")};
}

bool restrictFiles(const Folders& folders) {
    const landlock_ruleset_attr rights{.handled_access_fs = firstRights};
    // Without its newest fields the record is one that every version takes.
    const FileDescriptor rules(static_cast<int>(
        ::syscall(SYS_landlock_create_ruleset, &rights, sizeof rights.handled_access_fs, 0)));
    if (!rules) return false;
    for (const std::string& folder : folders) {
        const FileDescriptor parent(::open(folder.c_str(), O_PATH | O_CLOEXEC));
        if (!parent) continue;
        landlock_path_beneath_attr rule{.allowed_access = reading, .parent_fd = parent.get()};
        if (::syscall(SYS_landlock_add_rule, rules.get(), LANDLOCK_RULE_PATH_BENEATH, &rule, 0) == 0)
            continue;
        rule.allowed_access = LANDLOCK_ACCESS_FS_READ_FILE;  // it is a file itself
        ::syscall(SYS_landlock_add_rule, rules.get(), LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
    }
    return ::syscall(SYS_landlock_restrict_self, rules.get(), 0) == 0;
}

}  // namespace quillmar::sandbox

#include "linux/glib/AutostartEntry.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <vector>

#include "base/FileError.h"
#include "base/Files.h"
#include "linux/glib/Ref.h"
#include "platform/LoginItemError.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;
using Status = LoginItemRegistrationStatus;
using KeyFile = std::unique_ptr<GKeyFile, decltype(&g_key_file_unref)>;
using Texts = std::unique_ptr<char*, decltype(&g_strfreev)>;

constexpr const char* fileName = "com.quillmar.Quillmar.desktop";
constexpr const char* group = G_KEY_FILE_DESKTOP_GROUP;
constexpr const char* gnomeSwitch = "X-GNOME-Autostart-enabled";
constexpr std::size_t maximumBytes = 65536;

std::string textOf(GKeyFile* entry, const char* key) {
    const Owned<char> text(g_key_file_get_string(entry, group, key, nullptr));
    return text ? text.get() : "";
}

bool isOn(GKeyFile* entry, const char* key, bool otherwise) {
    Owned<GError> error;
    const bool value = g_key_file_get_boolean(entry, group, key, GErrorOut(error));
    return error ? otherwise : value;
}

/// The program that the entry starts; empty where that cannot be told.
std::string programOf(GKeyFile* entry) {
    char** words = nullptr;
    if (!g_shell_parse_argv(textOf(entry, G_KEY_FILE_DESKTOP_KEY_EXEC).c_str(), nullptr, &words, nullptr))
        return {};
    const Texts held(words, &g_strfreev);
    std::string program = words[0];
    for (std::size_t at = 0; (at = program.find("%%", at)) != std::string::npos; ++at) program.erase(at, 1);
    return program;
}

/// An entry that only switches off, as tools of sessions write it, is of whatever has its name.
bool isOurs(GKeyFile* entry) {
    const std::string program = programOf(entry);
    if (program.empty()) return isOn(entry, G_KEY_FILE_DESKTOP_KEY_HIDDEN, false);
    return fs::path(program).filename() == "quillmar";
}

bool isThere(const std::string& program) {
    return !program.empty() && Owned<char>(g_find_program_in_path(program.c_str())) != nullptr;
}

bool names(GKeyFile* entry, const char* key, const std::string& desktops) {
    const Texts listed(g_key_file_get_string_list(entry, group, key, nullptr, nullptr), &g_strfreev);
    const Texts running(g_strsplit(desktops.c_str(), ":", -1), &g_strfreev);
    for (char** desktop = running.get(); listed && *desktop; ++desktop) {
        if (g_strv_contains(listed.get(), *desktop)) return true;
    }
    return false;
}

/// Whether the entry is meant for other desktops than the running one.
bool isForOthers(GKeyFile* entry, const std::string& desktops) {
    if (g_key_file_has_key(entry, group, G_KEY_FILE_DESKTOP_KEY_ONLY_SHOW_IN, nullptr))
        return !names(entry, G_KEY_FILE_DESKTOP_KEY_ONLY_SHOW_IN, desktops);
    return names(entry, G_KEY_FILE_DESKTOP_KEY_NOT_SHOW_IN, desktops);
}

/// The entry of ours at the path; null when there is no file. Throws `LoginItemError` for one of another
/// program and for what is no entry, and `FileError`.
KeyFile ownEntry(const fs::path& file) {
    std::string text;
    try {
        text = readFile(file, maximumBytes);
    } catch (const std::system_error& error) {
        if (error.code() == std::errc::no_such_file_or_directory) return {nullptr, &g_key_file_unref};
        throw FileError(file, error);
    }
    KeyFile entry(g_key_file_new(), &g_key_file_unref);
    constexpr auto whole =
        static_cast<GKeyFileFlags>(G_KEY_FILE_KEEP_COMMENTS | G_KEY_FILE_KEEP_TRANSLATIONS);
    const bool isEntry = g_key_file_load_from_data(entry.get(), text.data(), text.size(), whole, nullptr);
    if (!isEntry || !isOurs(entry.get()))
        throw LoginItemError(LoginItemError::Case::foreignEntry, file.string());
    return entry;
}

/// The path as the one word of a command in an entry.
std::string quoted(const fs::path& program) {
    std::string word = "\"";
    for (const char c : program.string()) {
        if (c == '"' || c == '`' || c == '$' || c == '\\') word += '\\';
        word += c;
        if (c == '%') word += c;
    }
    return word + "\"";
}

fs::path autostartFile(const Environment& environment) {
    for (const auto& [variable, rest] : {std::pair("XDG_CONFIG_HOME", "."), std::pair("HOME", ".config")}) {
        const auto found = environment.find(variable);
        if (found != environment.end() && fs::path(found->second).is_absolute())
            return (fs::path(found->second) / rest / "autostart" / fileName).lexically_normal();
    }
    return {};
}

std::string desktopsOf(const Environment& environment) {
    const auto found = environment.find("XDG_CURRENT_DESKTOP");
    return found == environment.end() ? "" : found->second;
}

}  // namespace

AutostartEntry::AutostartEntry(Executor& files, const Environment& environment, fs::path program)
    : files_(files),
      place_{.file = autostartFile(environment),
             .program = std::move(program),
             .desktops = desktopsOf(environment)} {}

Status AutostartEntry::statusOf(const Place& place) {
    if (place.file.empty()) return Status::notFound;
    try {
        const KeyFile entry = ownEntry(place.file);
        if (!entry || isOn(entry.get(), G_KEY_FILE_DESKTOP_KEY_HIDDEN, false) ||
            !isOn(entry.get(), gnomeSwitch, true)) {
            return Status::notRegistered;
        }
        if (!isThere(programOf(entry.get()))) return Status::notFound;
        return isForOthers(entry.get(), place.desktops) ? Status::requiresApproval : Status::enabled;
    } catch (const AppLocalizableError&) {
        return Status::notFound;  // what stands there; who wants it changed is told why that fails
    }
}

void AutostartEntry::write(const Place& place) {
    if (place.file.empty()) throw LoginItemError(LoginItemError::Case::noFolder);
    if (!isThere(place.program)) throw LoginItemError(LoginItemError::Case::noProgram, place.program);
    KeyFile entry = ownEntry(place.file);
    if (!entry) entry.reset(g_key_file_new());
    const auto set = [&](const char* key, const std::string& value) {
        g_key_file_set_string(entry.get(), group, key, value.c_str());
    };
    set(G_KEY_FILE_DESKTOP_KEY_TYPE, G_KEY_FILE_DESKTOP_TYPE_APPLICATION);
    if (textOf(entry.get(), G_KEY_FILE_DESKTOP_KEY_NAME).empty())
        set(G_KEY_FILE_DESKTOP_KEY_NAME, "Quillmar");
    if (!isThere(programOf(entry.get()))) {
        set(G_KEY_FILE_DESKTOP_KEY_EXEC, quoted(place.program));
        // The session skips the entry in silence once the program was taken off the machine.
        set(G_KEY_FILE_DESKTOP_KEY_TRY_EXEC, place.program);
    }
    if (textOf(entry.get(), G_KEY_FILE_DESKTOP_KEY_ICON).empty())
        set(G_KEY_FILE_DESKTOP_KEY_ICON, "com.quillmar.Quillmar");
    g_key_file_remove_key(entry.get(), group, G_KEY_FILE_DESKTOP_KEY_HIDDEN, nullptr);
    g_key_file_set_boolean(entry.get(), group, gnomeSwitch, TRUE);
    gsize length = 0;
    const Owned<char> text(g_key_file_to_data(entry.get(), &length, nullptr));
    try {
        createDirectories(place.file.parent_path(), 0700);
        writeFileAtomically(linkTarget(place.file), {text.get(), length});
    } catch (const std::system_error& error) {
        throw FileError(place.file, error);
    }
}

void AutostartEntry::remove(const Place& place) {
    if (place.file.empty() || !ownEntry(place.file)) return;
    if (::unlink(place.file.c_str()) != 0 && errno != ENOENT)
        throw FileError(place.file, std::error_code(errno, std::generic_category()));
}

Task<Status> AutostartEntry::status() {
    co_return co_await files_.run([place = place_] { return statusOf(place); });
}

Task<void> AutostartEntry::registerItem() {
    co_await files_.run([place = place_] { write(place); });
}

Task<void> AutostartEntry::unregister() {
    co_await files_.run([place = place_] { remove(place); });
}

}  // namespace quillmar

#include "settings/SettingsFile.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>

#include "base/AtomicFile.h"
#include "base/FileError.h"
#include "base/JsonError.h"
#include "settings/records/SettingsCodec.h"
#include "settings/records/SettingsSchemaError.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;

/// The file holds the user's keys of picture services.
constexpr mode_t fileMode = 0600;
constexpr mode_t folderMode = 0700;

std::string encoded(const AppSettings& settings) {
    std::string text = encodeSettings(settings);
    if (text.size() > SettingsFile::maximumBytes) throw SettingsTooLargeError();
    return text;
}

AppSettings decoded(const fs::path& file, const std::string& text) {
    const auto broken = [&](std::optional<json::JsonPosition> position) {
        return SettingsFileError(file, position, std::current_exception());
    };
    try {
        return decodeSettings(text);
    } catch (const JsonRecordError& error) {
        // Where the whole document is at fault, the reason says the place itself.
        if (error.place().empty()) throw broken(std::nullopt);
        throw broken(json::positionOf(text, error.place()));
    } catch (const SettingsSchemaError&) {
        throw broken(json::positionOf(text, "schemaVersion"));
    }
}

[[noreturn]] void throwErrno() { throw std::system_error(errno, std::generic_category()); }

/// Gives the file a second name. One that may not be read gets it too.
void giveSecondName(const fs::path& file, const fs::path& name) {
    if (::link(file.c_str(), name.c_str()) == 0) return;
    if (errno == EEXIST) throwErrno();
    if (fs::is_directory(file)) {
        if (::rename(file.c_str(), name.c_str()) != 0) throwErrno();
    } else {
        fs::copy_file(file, name);  // not every file system knows second names
    }
}

}  // namespace

SettingsLoadResult SettingsFile::load() {
    try {
        removeUnfinished(linkTarget(path_));
        return {read(), false};
    } catch (const std::system_error& error) {
        std::error_code unknown;
        if (error.code() != std::errc::no_such_file_or_directory || fs::is_symlink(path_, unknown))
            throw FileError(path_, error);
    }
    if (writesFirstRun_) save(defaults_);
    return {defaults_, true};
}

AppSettings SettingsFile::read() {
    known_.reset();
    // Looked at first: what is written while it is read counts as a later change.
    const auto seen = identityOf(path_);
    if (seen) wasThere_ = true;
    std::string text;
    try {
        text = readFile(path_, maximumBytes);
    } catch (const std::system_error& error) {
        if (error.code() != std::errc::file_too_large) throw;
        throw SettingsFileError(path_, std::nullopt, std::make_exception_ptr(SettingsTooLargeError()));
    }
    AppSettings settings = decoded(path_, text);
    known_ = seen;
    return settings;
}

SettingsFileChange SettingsFile::reload() {
    using What = SettingsFileChange::What;
    const auto present = identityOf(path_);
    std::error_code unknown;
    if (!present && !fs::is_symlink(path_, unknown)) {
        // One that could not even be made is no better for not being there.
        return wasThere_ ? SettingsFileChange{What::removed, {}} : SettingsFileChange{};
    }
    if (present && present == known_) return {};
    try {
        return {What::edited, read()};
    } catch (const std::system_error& error) {
        throw FileError(path_, error);
    }
}

void SettingsFile::save(const AppSettings& settings) {
    std::error_code unknown;
    // What it leads to may be on a disk that comes back: only who replaces the settings makes a file there.
    if (fs::is_symlink(path_, unknown) && !identityOf(path_)) throw SettingsFileChangedError();
    write(settings);
}

void SettingsFile::write(const AppSettings& settings) {
    const std::string text = encoded(settings);
    try {
        createDirectories(path_.parent_path(), folderMode);
        // A linked file stays a link: people keep their settings under version control.
        const fs::path target = linkTarget(path_);
        createDirectories(target.parent_path(), folderMode);
        const auto present = identityOf(target);
        if (present && present != known_) throw SettingsFileChangedError();
        AtomicFile file(target, fileMode, Durability::durable);
        file.append(asBytes(text));
        const auto written = file.commitOver(present);
        if (!written) throw SettingsFileChangedError();
        known_ = written;
        wasThere_ = true;
    } catch (const std::system_error& error) {
        throw FileError(path_, error);
    }
}

std::optional<fs::path> SettingsFile::replace(const AppSettings& settings) {
    encoded(settings);  // before anything is moved
    std::optional<fs::path> copy;
    try {
        const fs::path target = linkTarget(path_);
        const auto present = identityOf(target);
        if (present && present != known_) copy = keepCopy(target);
        known_ = identityOf(target);
    } catch (const std::system_error& error) {
        throw FileError(path_, error);
    }
    write(settings);
    return copy;
}

std::optional<fs::path> SettingsFile::keepCopy(const fs::path& target) const {
    constexpr int mostCopies = 100;
    for (int number = 1; number < mostCopies; ++number) {
        const std::string end = number == 1 ? "" : fmt::format("-{}", number);
        fs::path copy = path_.parent_path() / (path_.filename().string() + ".unreadable" + end);
        try {
            giveSecondName(target, copy);
            return copy;
        } catch (const std::system_error& error) {
            if (error.code() != std::errc::file_exists) throw;
        }
    }
    throw std::system_error(EEXIST, std::generic_category());
}

fs::path SettingsFile::keepUnsaved(const AppSettings& settings) const {
    fs::path file = path_.parent_path() / (path_.filename().string() + ".unsaved");
    try {
        writeFileAtomically(file, encoded(settings), fileMode);
    } catch (const std::system_error& error) {
        throw FileError(file, error);
    }
    return file;
}

std::string SettingsFileError::message(GeneralLanguage language) const {
    const std::string reason = errorText(reason_, language);
    if (!position_) return file_.string() + ": " + reason;
    return localized("%@, line %lld, column %lld: %@"_key, language,
                     {file_.string(), static_cast<std::int64_t>(position_->line),
                      static_cast<std::int64_t>(position_->column), reason});
}

std::string SettingsTooLargeError::message(GeneralLanguage language) const {
    return localized("Quillmar reads and writes no settings above %lld MB."_key, language,
                     {static_cast<int>(SettingsFile::maximumBytes >> 20)});
}

}  // namespace quillmar

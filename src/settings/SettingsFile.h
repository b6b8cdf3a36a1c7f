#pragma once
#include <exception>
#include <filesystem>
#include <optional>

#include "base/FileIdentity.h"
#include "base/JsonPosition.h"
#include "settings/SettingsStoring.h"

namespace quillmar {

/// The settings file, written whole and in one step, and only while it is as this program last saw it: people
/// and other programs write it too. Every operation waits for the disk and throws an error with place and
/// reason. One thread at a time.
class SettingsFile {
public:
    /// A document of more is refused, on its way in and on its way out.
    static constexpr std::size_t maximumBytes = 16u << 20;

    SettingsFile(std::filesystem::path path, AppSettings defaults, bool writesFirstRun)
        : path_(std::move(path)), defaults_(std::move(defaults)), writesFirstRun_(writesFirstRun) {}

    SettingsLoadResult load();
    /// Throws `SettingsFileChangedError` where another program wrote the file, or made it a link to nothing;
    /// it stays as it is then.
    void save(const AppSettings& settings);
    SettingsFileChange reload();
    std::optional<std::filesystem::path> replace(const AppSettings& settings);
    std::filesystem::path keepUnsaved(const AppSettings& settings) const;

private:
    AppSettings read();
    void write(const AppSettings& settings);
    std::optional<std::filesystem::path> keepCopy(const std::filesystem::path& target) const;

    std::filesystem::path path_;
    AppSettings defaults_;
    bool writesFirstRun_;
    std::optional<FileIdentity> known_;  ///< of the file as it was read or written here; empty: not readable
    bool wasThere_ = false;              ///< at some time
};

/// A settings file that cannot be read, with the place of the fault where it has one.
class SettingsFileError final : public AppLocalizableError {
public:
    SettingsFileError(std::filesystem::path file, std::optional<json::JsonPosition> position,
                      std::exception_ptr reason)
        : file_(std::move(file)), position_(position), reason_(std::move(reason)) {}
    /// "/home/ana/settings.json, line 12, column 7: general.language: expected a text".
    std::string message(GeneralLanguage language) const override;

private:
    std::filesystem::path file_;
    std::optional<json::JsonPosition> position_;
    std::exception_ptr reason_;
};

/// The settings are more than a file may hold.
class SettingsTooLargeError final : public AppLocalizableError {
public:
    std::string message(GeneralLanguage language) const override;
};

}  // namespace quillmar

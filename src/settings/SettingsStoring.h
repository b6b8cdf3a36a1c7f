#pragma once
#include <filesystem>
#include <optional>

#include "async/Task.h"
#include "base/Localization.h"
#include "settings/records/AppSettings.h"

namespace quillmar {

/// The document of the disk.
struct SettingsLoadResult {
    AppSettings settings;
    bool createdInitialSettingsFile = false;  ///< there was no file: this is a first run
};

/// What others made of the file since it was last read or written here.
struct SettingsFileChange {
    enum class What { nothing, removed, edited } what = What::nothing;
    AppSettings settings;  ///< of an edited one
};

/// Another program wrote the file meanwhile, so a save left it alone.
class SettingsFileChangedError final : public AppLocalizableError {
public:
    std::string message(GeneralLanguage language) const override {
        return localized("The settings file was changed by another program meanwhile."_key, language);
    }
};

/// Where the settings document lies. All operations leave the main thread for the disk and throw an error
/// whose text says the place and the reason.
class SettingsStoring {
public:
    virtual ~SettingsStoring() = default;
    /// Reads the document; makes that of a first run where there is none.
    virtual Task<SettingsLoadResult> load() = 0;
    /// Replaces the document; it survives a power cut once the task has ended. Throws
    /// `SettingsFileChangedError`, and leaves the file, where somebody else wrote it.
    virtual Task<void> save(AppSettings settings) = 0;
    /// Looks whether somebody else changed the file, and reads it then. Fails for one that cannot be read.
    virtual Task<SettingsFileChange> reload() = 0;
    /// As `save`, whatever stands there. A file that could not be read, or was not seen here yet, is kept
    /// under the name that is the result.
    virtual Task<std::optional<std::filesystem::path>> replace(AppSettings settings) = 0;
    /// Writes a document that is not to become the file beside it, over the last one of these. Its place.
    virtual Task<std::filesystem::path> keepUnsaved(AppSettings settings) = 0;
};

}  // namespace quillmar

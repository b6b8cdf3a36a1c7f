#pragma once
#include "async/Task.h"
#include "settings/records/AppSettings.h"

namespace quillmar {

/// The document of the disk.
struct SettingsLoadResult {
    AppSettings settings;
    bool createdInitialSettingsFile = false;  ///< there was no file: this is a first run
};

/// Where the settings document lies. Both operations leave the main thread for the disk and throw an error
/// whose text says the place and the reason.
class SettingsStoring {
public:
    virtual ~SettingsStoring() = default;
    /// Reads the document; makes and saves that of a first run where there is none.
    virtual Task<SettingsLoadResult> load() = 0;
    /// Replaces the document; it survives a power cut once the task has ended.
    virtual Task<void> save(AppSettings settings) = 0;
};

}  // namespace quillmar

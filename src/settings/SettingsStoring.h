#pragma once
#include "async/Task.h"
#include "settings/records/AppSettings.h"

namespace quillmar {

struct SettingsLoadResult {
    AppSettings settings;
    bool createdInitialSettingsFile = false;  ///< there was no file: this is a first run
};

/// Where the settings document lies. Both operations leave the main thread for the disk and throw an error
/// whose text says the place and the reason.
class SettingsStoring {
public:
    virtual ~SettingsStoring() = default;
    virtual Task<SettingsLoadResult> load() = 0;
    virtual Task<void> save(AppSettings settings) = 0;
};

}  // namespace quillmar

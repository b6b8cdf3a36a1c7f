#pragma once
#include <string>

#include "settings/AppSettingsModel.h"

namespace quillmar {

/// What a start finds out about the one before it.
struct UpdateDetection {
    bool isUpdate = false;        ///< the program is newer than the one that ran last
    bool showsChangelog = false;  ///< and the user wants to read what is new
    std::string formerVersion;    ///< as it was stored
};

/// Compares the program with the one that ran last. Main thread.
class UpdateDetectionService {
public:
    explicit UpdateDetectionService(std::string currentVersion)
        : currentVersion_(std::move(currentVersion)) {}

    /// Stores the version that runs now where another one is stored; a failure of that changes nothing about
    /// the result. A first run is never an update.
    Task<UpdateDetection> run(AppSettingsModel& model, bool isFirstRun) const;

private:
    std::string currentVersion_;
};

}  // namespace quillmar

#pragma once
#include <memory>

#include "async/TaskLock.h"
#include "async/TaskScope.h"
#include "async/Timer.h"
#include "async/WallClock.h"
#include "platform/RemoteNotificationCenter.h"
#include "settings/AppSettingsModel.h"
#include "updates/UpdateFetcher.h"
#include "updates/UpdateMemory.h"

namespace quillmar {

/// Looks for newer versions: once a day by itself, and whenever it is asked to. It downloads and verifies,
/// it never installs. A build without a sound configuration looks for none. Main thread.
class SoftwareUpdateController {
public:
    struct Services {
        MainLoop& loop;
        const WallClock& clock;
        HTTPSession& session;
        Executor& files;  ///< runs one job after the other
        RemoteNotificationCenter& notificationCenter;
        const AppSettingsModel& settingsModel;  ///< for the language
        std::string currentVersion;
        std::string userAgent;
        std::filesystem::path memory;     ///< file of what is remembered
        std::filesystem::path downloads;  ///< folder of verified files
    };
    SoftwareUpdateController(SoftwareUpdateConfiguration configuration, Services services);

    /// Reads what is remembered and begins to look from time to time; nothing in a build that looks for none.
    Task<void> start();
    void stop();
    void resume();
    /// Time may have leapt: what is due by now is due.
    void reschedule();

    const SoftwareUpdateConfiguration& configuration() const { return configuration_; }
    /// Whether this build looks for newer versions at all.
    bool isEnabled() const { return fetcher_ != nullptr; }
    /// Whether a check would begin at once.
    bool canCheckForUpdates() const { return isEnabled() && !lock_.isLocked(); }
    /// Looks now, after a check that is under way, and downloads what is new. Nothing where nothing is.
    /// Throws as `UpdateFetcher`. Only where it is enabled.
    Task<std::optional<AvailableUpdate>> checkForUpdates();

    const SoftwareUpdatePreferences& preferences() const { return memory_.preferences; }
    /// Throws `FileError` where they cannot be kept, and leaves them as they were.
    Task<void> setPreferences(SoftwareUpdatePreferences preferences);
    /// As the last check found.
    const std::optional<AvailableUpdate>& available() const { return memory_.available; }
    /// Why the last check failed; empty when it did not.
    const std::optional<std::string>& lastFailure() const { return lastFailure_; }

private:
    Task<void> checkByItself();
    Task<std::optional<AvailableUpdate>> check(bool downloads);
    Task<std::optional<AvailableUpdate>> find(bool downloads);
    Task<std::string> fetch(AppcastItem item);
    Task<void> keep(UpdateMemory memory);
    Task<void> remember(UpdateMemory memory);
    Task<void> tell(AvailableUpdate update);
    Duration untilNextCheck() const;
    GeneralLanguage language() const { return services_.settingsModel.settings().general.language; }

    const SoftwareUpdateConfiguration configuration_;
    const Services services_;
    std::unique_ptr<UpdateFetcher> fetcher_;
    UpdateMemory memory_;
    std::optional<std::string> lastFailure_;
    bool isRunning_ = false;
    TaskLock lock_;
    OneShotTimer timer_;
    TaskScope tasks_;
};

}  // namespace quillmar

#pragma once
#include <memory>

#include "async/EventBus.h"
#include "async/ThreadPool.h"
#include "base/BundleInfo.h"
#include "control/BackupCommand.h"
#include "storage/ApplicationDirectories.h"

namespace quillmar {

/// Where no program runs nothing follows: the next start reads the restored file.
class NothingFollows final : public SettingsRestoreFollowing {
public:
    void settingsWillBeReplaced() override {}
    void settingsReplacementDidEnd() override {}
    Task<std::optional<std::string>> updateLoginItem(bool) override { co_return std::nullopt; }
    Task<std::vector<std::string>> applyWallpapers() override { co_return std::vector<std::string>{}; }
    void lockScreenSettingsDidChange() override {}
};

/// The settings and their backups without the rest of the program, for a command line where none runs. Make
/// it only under the instance lock: there is one owner of the settings file at a time.
class OfflineBackup {
public:
    OfflineBackup(MainLoop& loop, const WallClock& clock, Executor& pool, const BundleInfo& bundle,
                  const Environment& environment);
    /// As `BackupCommand::run`; failures are answers.
    Task<ControlReply> run(CommandLine line, std::filesystem::path folder);

private:
    SerialExecutor executor_;
    EventBus notifications_;
    AppSettings defaults_;
    CacheFileProtection cacheFiles_;
    std::unique_ptr<SettingsStoring> store_;
    AppSettingsModel model_;
    SettingsBackupService service_{executor_};
    NothingFollows following_;
    BackupCommand command_;
};

}  // namespace quillmar

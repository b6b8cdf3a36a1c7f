#pragma once
#include <memory>

#include "app/BackupCommand.h"
#include "app/RestoreFollowing.h"
#include "async/EventBus.h"
#include "async/ThreadPool.h"
#include "base/BundleInfo.h"
#include "storage/ApplicationDirectories.h"

namespace quillmar {

/// The settings and their backups without the rest of the program, for a command line where none runs. Make
/// it only under the instance lock: there is one owner of the settings file at a time.
class OfflineBackup {
public:
    OfflineBackup(MainLoop& loop, const WallClock& clock, Executor& pool, const BundleInfo& bundle,
                  const Environment& environment);
    Task<ControlReply> run(ControlCall call) { return command_.run(std::move(call)); }

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

#pragma once
#include <memory>

#include "async/EventBus.h"
#include "async/ThreadPool.h"
#include "base/BundleInfo.h"
#include "control/BackupCommand.h"
#include "loginitem/LoginItemService.h"
#include "storage/ApplicationDirectories.h"

namespace quillmar {

/// Where no program runs only the session follows: the next start reads the restored file.
class SessionFollows final : public SettingsRestoreFollowing {
public:
    explicit SessionFollows(LoginItemService& loginItem) : loginItem_(loginItem) {}
    void settingsWillBeReplaced() override {}
    void settingsReplacementDidEnd() override {}
    Task<std::optional<std::string>> updateLoginItem(bool launchAtLogin) override {
        if (co_await loginItem_.setEnabled(launchAtLogin)) co_return std::nullopt;
        co_return loginItem_.errorMessage().value_or("");
    }
    Task<std::vector<std::string>> applyWallpapers() override { co_return std::vector<std::string>{}; }
    void lockScreenSettingsDidChange() override {}

private:
    LoginItemService& loginItem_;
};

/// The settings and their backups without the rest of the program, for a command line where none runs. Make
/// it only under the instance lock: there is one owner of the settings file at a time.
class OfflineBackup {
public:
    OfflineBackup(MainLoop& loop, const WallClock& clock, Executor& pool, const BundleInfo& bundle,
                  const Environment& environment, LoginItemRegistering& session);
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
    LoginItemService loginItem_;
    SessionFollows following_{loginItem_};
    BackupCommand command_;
};

}  // namespace quillmar

#include "control/OfflineBackup.h"

#include "settings/SettingsStore.h"
#include "settings/records/SettingsCodec.h"

namespace quillmar {

OfflineBackup::OfflineBackup(MainLoop& loop, const WallClock& clock, Executor& pool, const BundleInfo& bundle,
                             const Environment& environment, LoginItemRegistering& session)
    : executor_(pool),
      defaults_(defaultSettings(bundle)),
      // What only looks leaves no file: the first run is still to come.
      store_(makeSettingsStore([&] { return applicationSupportDirectory(environment); }, defaults_, executor_,
                               FirstRunFile::isLeftOut)),
      model_(loop, notifications_, *store_, defaults_, cacheFiles_),
      loginItem_(session, model_),
      command_({.settingsModel = model_,
                .backupService = service_,
                .following = following_,
                .clock = clock,
                .defaults = defaults_,
                .appVersion = bundle.semanticVersion("Unknown"),
                .sendAnalytics = [](const std::string&) {}}) {}

Task<ControlReply> OfflineBackup::run(CommandLine line, std::filesystem::path folder) {
    try {
        co_return co_await command_.run(std::move(line), std::move(folder));
    } catch (const CancellationError&) {
        throw;
    } catch (const UsageError& error) {
        co_return ControlReply{.status = usageStatus, .errors = error.complaint(command_.language())};
    } catch (const std::exception& error) {
        co_return ControlReply{.status = 1, .errors = errorText(error, command_.language()) + "\n"};
    }
}

}  // namespace quillmar

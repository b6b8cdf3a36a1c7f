#include "app/OfflineBackup.h"

#include "settings/SettingsStore.h"
#include "settings/records/SettingsCodec.h"

namespace quillmar {

OfflineBackup::OfflineBackup(MainLoop& loop, const WallClock& clock, Executor& pool, const BundleInfo& bundle,
                             const Environment& environment)
    : executor_(pool),
      defaults_(defaultSettings(bundle)),
      store_(makeSettingsStore([&] { return createdApplicationSupportDirectory(environment); }, defaults_,
                               executor_)),
      model_(loop, notifications_, *store_, defaults_, cacheFiles_),
      command_({.settingsModel = model_,
                .backupService = service_,
                .following = following_,
                .clock = clock,
                .defaults = defaults_,
                .appVersion = bundle.semanticVersion("Unknown"),
                .sendAnalytics = [](const std::string&) {}}) {}

}  // namespace quillmar

#include "app/LaunchSteps.h"

#include "diagnostics/Log.h"

namespace quillmar {

Task<void> LaunchSteps::start() {
    AppSettingsModel& model = subsystems_.settingsModel;
    const bool isFirstRun = model.createdInitialSettingsFile();
    if (isFirstRun && model.settings().general.launchAtLogin &&
        !co_await subsystems_.loginItem.setEnabled(true)) {
        logError("The first-run login item could not be enabled.", "login-item", nullptr,
                 {{"registration_status", std::string(enumName(subsystems_.loginItem.status()))}});
    }
    detection_ = co_await UpdateDetectionService(currentVersion_).run(model, isFirstRun);
    co_await throwIfCancelled();
    if (isFirstRun) usageReporting_.sendMessage("app_first_install");
    if (!detection_->isUpdate) co_return;
    usageReporting_.sendMessage("app_updated");
    logInfo("This is the first start of a newer version.", "lifecycle",
            {{"former_version", detection_->formerVersion},
             {"shows_changelog", detection_->showsChangelog ? "true" : "false"}});
}

}  // namespace quillmar

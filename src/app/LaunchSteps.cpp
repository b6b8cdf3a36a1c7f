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
    const UpdateDetection detection = co_await UpdateDetectionService(currentVersion_).run(model, isFirstRun);
    co_await throwIfCancelled();
    if (isFirstRun) {
        usageReporting_.sendMessage("app_first_install");
        co_await windows_.welcome();
    }
    if (!detection.isUpdate) co_return;
    usageReporting_.sendMessage("app_updated");
    logInfo("This is the first start of a newer version.", "lifecycle",
            {{"former_version", detection.formerVersion},
             {"shows_changelog", detection.showsChangelog ? "true" : "false"}});
    if (detection.showsChangelog) windows_.tellWhatIsNew();
}

}  // namespace quillmar

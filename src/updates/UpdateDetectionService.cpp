#include "updates/UpdateDetectionService.h"

#include "base/SemanticVersion.h"

namespace quillmar {

Task<UpdateDetection> UpdateDetectionService::run(AppSettingsModel& model, bool isFirstRun) const {
    UpdateDetection found{.formerVersion = model.settings().lastLaunchedAppVersion};
    const auto former = SemanticVersion::parse(found.formerVersion);
    const auto current = SemanticVersion::parse(currentVersion_);
    found.isUpdate = !isFirstRun && former && current && *current > *former;
    found.showsChangelog = found.isUpdate && model.settings().general.showChangelogOnUpdate;
    if (found.formerVersion != currentVersion_) {
        const auto hold = co_await model.transactionGate().acquire();
        co_await model.commit([version = currentVersion_](AppSettings& settings) {
            settings.lastLaunchedAppVersion = version;
        });
    }
    co_return found;
}

}  // namespace quillmar

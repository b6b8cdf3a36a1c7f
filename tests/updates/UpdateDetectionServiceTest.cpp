#include "updates/UpdateDetectionService.h"

#include "fakes/FakeSettingsStore.h"
#include "fakes/TaskOutcome.h"

namespace quillmar {
namespace {

TEST(UpdateDetectionServiceTest, aNewerProgramIsAnUpdateAndWhatRanIsRemembered) {
    struct Case {
        const char* stored;
        const char* current;
        bool isUpdate;
        std::size_t saves;
        bool isFirstRun = false;
    };
    for (const Case& c : {
             Case{"1.2.0", "1.2.0", false, 0},
             Case{"1.2.0", "1.1.0", false, 1},
             Case{"1.2.0", "1.10.0", true, 1},
             Case{"abc", "1.1.0", false, 1},
             Case{"1.2.0-beta.1", "1.2.0", true, 1},
             Case{"1.2.0+7", "1.2.0+8", false, 1},
             Case{"1.2.0", "1.3.0", false, 1, true},
         }) {
        for (const bool wantsChangelog : {true, false}) {
            VirtualLoop loop;
            EventBus notifications;
            FakeSettingsStore store;
            store.onDisk.lastLaunchedAppVersion = c.stored;
            store.onDisk.general.showChangelogOnUpdate = wantsChangelog;
            CacheFileProtection cacheFiles;
            AppSettingsModel model{loop, notifications, store, AppSettings{}, cacheFiles};
            TaskScope tasks{loop};
            loop.settle();
            if (wantsChangelog) store.nextSaveFails("the disk is full");
            const UpdateDetectionService service(c.current);
            const auto found = outcomeOf(loop, tasks, service.run(model, c.isFirstRun))->value.value();
            EXPECT_EQ(found.isUpdate, c.isUpdate) << c.stored << " " << c.current;
            EXPECT_EQ(found.showsChangelog, c.isUpdate && wantsChangelog);
            if (wantsChangelog) continue;
            EXPECT_EQ(store.onDisk.lastLaunchedAppVersion, c.current);
            EXPECT_EQ(store.saves.size(), c.saves);
        }
    }
}

}  // namespace
}  // namespace quillmar

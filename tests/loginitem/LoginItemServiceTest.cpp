#include "loginitem/LoginItemService.h"

#include "fakes/FakeLoginItem.h"
#include "fakes/FakeSettingsStore.h"
#include "fakes/TaskOutcome.h"

namespace quillmar {
namespace {

using Status = LoginItemRegistrationStatus;

TEST(LoginItemServiceTest, aWishIsGrantedOrTheServiceSaysWhyNot) {
    VirtualLoop loop;
    EventBus notifications;
    FakeSettingsStore store;
    CacheFileProtection cacheFiles;
    AppSettingsModel model{loop, notifications, store, AppSettings{}, cacheFiles};
    FakeLoginItem session;
    LoginItemService service(session, model);
    TaskScope tasks{loop};
    constexpr const char* deaf =
        "The desktop did not update the Quillmar login item. Try again or review it in the desktop's list of "
        "programs that start at login.";
    struct Case {
        Status before;
        bool isWanted;
        const char* error;
        bool isDeaf;
        std::optional<std::string> message;
        Status after;
        int changes;
    };
    for (const Case& c : {
             Case{Status::notRegistered, true, "", false, {}, Status::enabled, 1},
             Case{Status::enabled, true, "no", false, {}, Status::enabled, 0},
             Case{Status::requiresApproval, true, "no", false, {}, Status::requiresApproval, 0},
             Case{Status::requiresApproval, false, "", false, {}, Status::notRegistered, 1},
             Case{Status::notFound, false, "no", false, {}, Status::notFound, 0},
             Case{Status::notFound, true, "", false, {}, Status::enabled, 1},
             Case{Status::notRegistered, true, "read-only", false, "read-only", Status::notRegistered, 1},
             Case{Status::notRegistered, true, "", true, deaf, Status::notRegistered, 1},
             Case{Status::enabled, false, "", true, deaf, Status::enabled, 1},
         }) {
        session.present = c.before;
        session.error = c.error;
        session.isDeaf = c.isDeaf;
        session.changeCount = 0;
        const auto worked = outcomeOf(loop, tasks, service.setEnabled(c.isWanted))->value;
        EXPECT_EQ(worked, !c.message);
        EXPECT_EQ(service.errorMessage(), c.message);
        EXPECT_EQ(service.status(), c.after);
        EXPECT_EQ(session.changeCount, c.changes);
    }
}

}  // namespace
}  // namespace quillmar

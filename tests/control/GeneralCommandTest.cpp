#include "control/GeneralCommand.h"

#include "async/TaskScope.h"
#include "fakes/FakeLoginItem.h"
#include "fakes/FakeSettingsStore.h"
#include "fakes/TaskOutcome.h"
#include "fakes/VirtualLoop.h"

namespace quillmar {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

struct GeneralCommandTest : ::testing::Test {
    VirtualLoop loop;
    EventBus notifications;
    FakeSettingsStore store;
    CacheFileProtection cacheFiles;
    AppSettingsModel model{loop, notifications, store, AppSettings{}, cacheFiles};
    bool notificationsAreShown = true;
    int asked = 0;
    FakeLoginItem session;
    LoginItemService loginItem{session, model};
    GeneralCommand command{
        {.settingsModel = model, .loginItem = loginItem, .version = "1.2.3", .mayNotify = [this] {
             return answer();
         }}};
    TaskScope tasks{loop};

    ControlReply run(std::vector<std::string> words) {
        words.insert(words.begin(), "general");
        return outcomeOf(loop, tasks, command.run(CommandLine::parse(words)))->value.value();
    }
    Task<bool> answer() {
        ++asked;
        co_return notificationsAreShown;
    }
};

TEST_F(GeneralCommandTest, whatIsNamedIsSavedAndTheRestStays) {
    session.present = LoginItemRegistrationStatus::enabled;
    const ControlReply reply = run({"set", "--pauseRotations", "--language", "portuguese"});
    EXPECT_EQ(reply.status, 0) << reply.errors;
    EXPECT_THAT(reply.output, HasSubstr("language: portuguese\nappTheme: automatic\n"));
    EXPECT_THAT(reply.output, HasSubstr("pauseRotations: true\n"));
    EXPECT_EQ(store.onDisk.general, model.settings().general);
    EXPECT_TRUE(store.onDisk.general.pauseRotations);
    EXPECT_EQ(run({"set", "--pauseRotations=false"}).status, 0);
    EXPECT_FALSE(store.onDisk.general.pauseRotations);
    EXPECT_EQ(run({}).output, run({"set", "--launchAtLogin"}).output);
    EXPECT_THAT(run({"--json"}).output, HasSubstr("\"version\": \"1.2.3\""));
}

TEST_F(GeneralCommandTest, whoeverWantsNotificationsIsAskedForLeaveAndToldWhenNobodyShowsThem) {
    EXPECT_EQ(run({"set", "--showRemoteErrorNotifications"}).errors, "");
    EXPECT_EQ(asked, 1);
    notificationsAreShown = false;
    const ControlReply reply = run({"set", "--showRemoteErrorNotifications"});
    EXPECT_EQ(reply.status, 0);
    EXPECT_THAT(reply.errors, HasSubstr("Nobody in this session shows notifications"));
    EXPECT_TRUE(store.onDisk.general.showRemoteErrorNotifications);
}

TEST_F(GeneralCommandTest, theLoginItemFollowsItsSettingAndADifferenceIsSaid) {
    EXPECT_THAT(run({}).output, HasSubstr("The session does not start Quillmar at login"));
    EXPECT_EQ(run({"set", "--pauseRotations"}).status, 0);
    EXPECT_EQ(session.changeCount, 0) << "nobody asked for it";
    EXPECT_EQ(run({"set", "--launchAtLogin"}).status, 0);
    EXPECT_EQ(session.present, LoginItemRegistrationStatus::enabled);
    EXPECT_THAT(run({}).output, Not(HasSubstr("The session")));
    session.error = "the folder is read-only";
    const ControlReply reply = run({"set", "--launchAtLogin=false"});
    EXPECT_EQ(reply.status, 1);
    EXPECT_EQ(reply.errors, "the folder is read-only\n");
    EXPECT_FALSE(store.onDisk.general.launchAtLogin);
    EXPECT_THAT(reply.output, HasSubstr("starts Quillmar at login all the same"));
    EXPECT_THAT(run({"--json"}).output, HasSubstr("\"loginItem\": \"enabled\""));
}

TEST_F(GeneralCommandTest, whatCannotBeSavedChangesNothing) {
    const GeneralSettings before = model.settings().general;
    store.nextSaveFails("the disk is full");
    const ControlReply reply = run({"set", "--pauseRotations"});
    EXPECT_EQ(reply.status, 1);
    EXPECT_THAT(reply.errors, HasSubstr("stay as they were: the disk is full"));
    EXPECT_EQ(model.settings().general, before);
}

}  // namespace
}  // namespace quillmar

#include "app/GeneralCommand.h"

#include "async/TaskScope.h"
#include "fakes/FakeNotificationCenter.h"
#include "fakes/FakeSettingsStore.h"
#include "fakes/TaskOutcome.h"
#include "fakes/VirtualLoop.h"

namespace quillmar {
namespace {

using ::testing::HasSubstr;

struct GeneralCommandTest : ::testing::Test {
    VirtualLoop loop;
    EventBus notifications;
    FakeSettingsStore store;
    CacheFileProtection cacheFiles;
    AppSettingsModel model{loop, notifications, store, AppSettings{}, cacheFiles};
    FakeNotificationCenter center;
    RemoteErrorNotificationService service{center, model, &logNotificationDiagnostic};
    GeneralCommand command{model, service};
    TaskScope tasks{loop};

    ControlReply run(std::vector<std::string> words) {
        words.insert(words.begin(), "general");
        return outcomeOf(loop, tasks, command.run({std::move(words), "/"}))->value.value();
    }
};

TEST_F(GeneralCommandTest, whatIsNamedIsSavedAndTheRestStays) {
    const ControlReply reply = run({"set", "--pauseRotations", "--language", "portuguese"});
    EXPECT_EQ(reply.status, 0) << reply.errors;
    EXPECT_THAT(reply.output, HasSubstr("language: portuguese\nappTheme: automatic\n"));
    EXPECT_THAT(reply.output, HasSubstr("pauseRotations: true\n"));
    EXPECT_EQ(store.onDisk.general, model.settings().general);
    EXPECT_TRUE(store.onDisk.general.pauseRotations);
    EXPECT_EQ(run({"set", "--pauseRotations=false"}).status, 0);
    EXPECT_FALSE(store.onDisk.general.pauseRotations);
    EXPECT_EQ(run({}).output, run({"set", "--launchAtLogin"}).output);
    EXPECT_THAT(run({"--json"}).output, HasSubstr("\"language\": \"portuguese\""));
}

TEST_F(GeneralCommandTest, whoeverWantsNotificationsIsAskedForLeaveAndToldWhenNobodyShowsThem) {
    center.status = RemoteNotificationAuthorizationStatus::notDetermined;
    EXPECT_EQ(run({"set", "--showRemoteErrorNotifications"}).errors, "");
    EXPECT_EQ(center.requestCount, 1);
    center.status = RemoteNotificationAuthorizationStatus::denied;
    const ControlReply reply = run({"set", "--showRemoteErrorNotifications"});
    EXPECT_EQ(reply.status, 0);
    EXPECT_THAT(reply.errors, HasSubstr("Nobody in this session shows notifications"));
    EXPECT_TRUE(store.onDisk.general.showRemoteErrorNotifications);
}

TEST_F(GeneralCommandTest, whatCannotBeUnderstoodOrSavedChangesNothing) {
    const GeneralSettings before = model.settings().general;
    for (const auto& [words, complaint] : std::vector<std::pair<std::vector<std::string>, std::string>>{
             {{"set"}, "No setting was named."},
             {{"get"}, "\"general\" does not take \"get\"."},
             {{"set", "--pauseRotations", "--volume=3"}, "There is no general setting \"volume\"."},
             {{"set", "--pauseRotations", "true"}, "Only options stand behind \"set\"."},
             {{"set", "--pauseRotations=on"}, "\"--pauseRotations\" is true or false."},
             {{"set", "--language"}, "\"--language\" needs a value."},
             {{"set", "--statusIconClickBehavior=x"}, "There is no general setting"}}) {
        const ControlReply reply = run(words);
        EXPECT_EQ(reply.status, 2) << complaint;
        EXPECT_THAT(reply.errors, testing::StartsWith(complaint));
    }
    store.nextSaveFails("the disk is full");
    const ControlReply reply = run({"set", "--pauseRotations"});
    EXPECT_EQ(reply.status, 1);
    EXPECT_THAT(reply.errors, HasSubstr("stay as they were: the disk is full"));
    EXPECT_EQ(model.settings().general, before);
}

}  // namespace
}  // namespace quillmar

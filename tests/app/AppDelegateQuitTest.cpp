#include "AppDelegateFixture.h"
#include "base/Files.h"

namespace quillmar {
namespace {

using namespace std::chrono_literals;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

struct AppDelegateQuitTest : AppDelegateFixture {};

TEST_F(AppDelegateQuitTest, aQuitDuringTheStartStopsItAtItsNextCheck) {
    plugInTwo();
    putSettings(twoColors());
    machine.background.runsAtOnce = false;
    launch();
    machine.systemEvents.quit(SystemQuitReason::terminated);
    machine.background.runsAtOnce = true;
    machine.background.releaseAll();
    machine.loop.settle();
    EXPECT_EQ(machine.desktop.setCount, 0);
    EXPECT_THAT(log.lines, Not(Contains(HasSubstr("startup completed"))));
    EXPECT_THAT(machine.process.exits, ElementsAre(0));
}

TEST_F(AppDelegateQuitTest, aSecondQuitDuringTheShutDownChangesNothing) {
    launch();
    machine.background.runsAtOnce = false;
    delegate->subsystems()->settingsModel.update([](AppSettings& s) { s.general.pauseRotations = true; });
    EXPECT_EQ(delegate->applicationShouldTerminate(QuitSource::system), TerminateReply::terminateLater);
    machine.loop.settle();
    EXPECT_EQ(delegate->applicationShouldTerminate(QuitSource::system), TerminateReply::terminateLater);
    EXPECT_THAT(machine.process.exits, IsEmpty());
    machine.background.releaseAll();
    machine.loop.settle();
    EXPECT_THAT(machine.process.exits, ElementsAre(0));
    EXPECT_EQ(machine.flushes, 1);
    EXPECT_TRUE(decodeSettings(readFile(machine.settingsFile(), 1 << 20)).general.pauseRotations);
}

TEST_F(AppDelegateQuitTest, withTheSettingsWindowOpenOnlyAnExplicitWishOrTheSystemEndsTheProgram) {
    putSettings(twoColors());
    launch();
    machine.settingsWindow.visible = true;
    EXPECT_EQ(delegate->applicationShouldTerminate(QuitSource::other), TerminateReply::terminateCancel);
    EXPECT_FALSE(machine.settingsWindow.visible);
    EXPECT_THAT(log.lines, Contains("information [lifecycle] External quit request closed Settings without "
                                    "terminating the program."));
    machine.runningInstances.onActivate();
    machine.loop.settle();
    EXPECT_EQ(answer({"settings", "about"}).status, 0);
    EXPECT_THAT(machine.settingsWindow.opened, ElementsAre("", "about"));
    EXPECT_TRUE(machine.settingsWindow.content);
    delegate->quitController().requestQuit();
    machine.loop.settle();
    EXPECT_THAT(machine.process.exits, ElementsAre(0));
}

TEST_F(AppDelegateQuitTest, settingsThatCannotBeSavedAtQuitLetTheUserStay) {
    plugInTwo();
    putSettings(twoColors());
    launch();
    const int painted = machine.desktop.setCount;
    fs::remove_all(machine.settingsFile().parent_path());
    std::ofstream(machine.settingsFile().parent_path()) << "a file in the way";
    delegate->subsystems()->settingsModel.update([](AppSettings& s) { s.general.pauseRotations = true; });
    quitBySystem();
    ASSERT_EQ(machine.alerts.shown.size(), 1u);
    EXPECT_EQ(machine.alerts.shown[0].title, "Quillmar Couldn’t Save Settings");
    EXPECT_THAT(machine.alerts.shown[0].text, HasSubstr("settings.json: Not a directory"));
    EXPECT_THAT(machine.alerts.shown[0].buttons, ElementsAre("Cancel", "Quit Without Saving"));
    EXPECT_EQ(machine.alerts.shown[0].closingButton, 0u);

    machine.alerts.answerNextWith(0);
    machine.loop.settle();
    EXPECT_THAT(machine.process.exits, IsEmpty());
    EXPECT_THAT(log.lines, Contains("information [lifecycle] Application termination was cancelled."));
    EXPECT_EQ(machine.desktop.setCount, painted) << "not painted anew";
    EXPECT_TRUE(delegate->subsystems()->wallpaperRotation.isMonitoring());
    machine.desktop.forgets(1);
    machine.screens.unplug(2);
    machine.screens.onChange();
    fs::remove(machine.settingsFile().parent_path());
    machine.loop.advance(1s);
    EXPECT_GT(machine.desktop.setCount, painted) << "displays are watched again";
    const fs::path old = putOldFile("Images/remote-old.jpg");
    machine.loop.advance(30min);
    EXPECT_FALSE(fs::exists(old)) << "the cache is swept again";

    fs::remove_all(machine.settingsFile().parent_path());
    std::ofstream(machine.settingsFile().parent_path()) << "a file in the way";
    delegate->subsystems()->settingsModel.update([](AppSettings& s) { s.general.pauseRotations = false; });
    quitBySystem();
    machine.alerts.answerNextWith(1);
    machine.loop.settle();
    EXPECT_THAT(machine.process.exits, ElementsAre(0));
}

}  // namespace
}  // namespace quillmar

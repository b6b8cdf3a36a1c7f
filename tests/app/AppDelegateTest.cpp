#include "app/AppDelegate.h"

#include <fstream>

#include "async/Sleep.h"
#include "base/Files.h"
#include "fakes/FakePlatform.h"
#include "fakes/RecordedLog.h"
#include "fakes/TaskOutcome.h"
#include "settings/records/SettingsCodec.h"

namespace quillmar {
namespace {

using namespace std::chrono_literals;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
namespace fs = std::filesystem;

struct AppDelegateTest : ::testing::Test {
    FakePlatform machine;
    RecordedLog log{machine.clock};
    std::unique_ptr<AppDelegate> delegate;

    std::unique_ptr<ApplicationInstanceLock> takeLock() {
        return ApplicationInstanceLock::take(machine.folder.path(), "com.quillmar.Quillmar");
    }
    void launch() {
        delegate = std::make_unique<AppDelegate>(machine.platform(), takeLock());
        delegate->applicationWillFinishLaunching();
        delegate->applicationDidFinishLaunching();
        machine.loop.settle();
    }
    void putSettings(const AppSettings& settings) {
        fs::create_directories(machine.settingsFile().parent_path());
        std::ofstream(machine.settingsFile()) << encodeSettings(settings);
    }
    AppSettings twoColors() const {
        AppSettings settings = defaultSettings(machine.bundle);
        for (const auto& [number, color] : {std::pair{1u, "#112233"}, std::pair{2u, "#445566"}}) {
            DisplayWallpaperSettings entry;
            entry.displayID = FakeScreens::displayID(number);
            entry.mode.value = SolidColorPresentationSettings{color};
            settings.wallpaper.displays.push_back(entry);
        }
        return settings;
    }
    void plugInTwo() {
        machine.screens.plugIn(1, {0, 0, 1920, 1080});
        machine.screens.plugIn(2, {1920, 0, 1280, 1024});
    }
    /// A file in the cache that nobody has used for a year.
    fs::path putOldFile(const fs::path& name) {
        const fs::path file = machine.settingsFile().parent_path() / "Cache" / name;
        fs::create_directories(file.parent_path());
        std::ofstream(file) << "12345";
        fs::last_write_time(file, std::chrono::file_clock::from_sys(machine.clock.now() - 8766h));
        return file;
    }
    std::string shown(std::uint32_t screen) const {
        const auto found = machine.desktop.shown.find(screen);
        return found == machine.desktop.shown.end() ? "" : found->second.filename().string();
    }
    ControlReply answer(std::vector<std::string> words) {
        TaskScope tasks(machine.loop);
        return outcomeOf(machine.loop, tasks, machine.control.handler({std::move(words), "/", ""}))
            ->value.value();
    }
    void quitBySystem() {
        machine.systemEvents.quit(SystemQuitReason::terminated);
        machine.loop.settle();
    }
};

TEST_F(AppDelegateTest, aFirstStartMakesTheSettingsAndTouchesNoDesktop) {
    plugInTwo();
    launch();
    EXPECT_EQ(decodeSettings(readFile(machine.settingsFile(), 1 << 20)), delegate->subsystems()->defaults);
    EXPECT_EQ(machine.desktop.setCount, 0);
    EXPECT_THAT(
        log.lines,
        ElementsAre("information [lifecycle] Application diagnostics started. version=1.2.3",
                    "information [updates] Software updates are disabled for this build. reason=disabled",
                    "information [lifecycle] Primary application instance acquired.",
                    "information [lifecycle] Application startup completed."));
    EXPECT_THAT(machine.usage.messages,
                ElementsAre("Quillmar@1.2.3", "app_launch", "display_count_2", "app_first_install"));
    EXPECT_EQ(machine.loginItem.present, LoginItemRegistrationStatus::enabled);
}

TEST_F(AppDelegateTest, aNewerVersionIsNoticedOnceAndTheLoginItemIsTheUsersBusinessByThen) {
    AppSettings settings = twoColors();
    settings.lastLaunchedAppVersion = "1.2.2";
    putSettings(settings);
    launch();
    EXPECT_THAT(machine.usage.messages, Contains("app_updated"));
    EXPECT_THAT(log.lines, Contains("information [lifecycle] This is the first start of a newer version. "
                                    "former_version=1.2.2 shows_changelog=true"));
    EXPECT_EQ(decodeSettings(readFile(machine.settingsFile(), 1 << 20)).lastLaunchedAppVersion, "1.2.3");
    EXPECT_EQ(machine.loginItem.changeCount, 0);
    EXPECT_EQ(answer({"update"}).output, "This build of Quillmar does not look for newer versions.\n");
    machine.loginItem.error = "read-only";
    EXPECT_EQ(answer({"backup", "reset"}).output, "Settings Reset with Warnings: read-only\n");
}

TEST_F(AppDelegateTest, untilAServiceAnswersItsDisplaysShowWhatTheyShowedLast) {
    plugInTwo();
    AppSettings settings = twoColors();
    settings.wallpaper.displays[1].mode.value = BingSettings{};
    putSettings(settings);
    const fs::path desktop = machine.settingsFile().parent_path() / "Desktop";
    fs::create_directories(desktop);
    std::ofstream(desktop / "yesterday.png") << "a picture";
    std::ofstream(desktop / "last-shown.json") << "{\"" << FakeScreens::displayID(2).substr(8) << "\": \""
                                               << (desktop / "yesterday.png").string() << "\"}";
    launch();
    EXPECT_EQ(shown(2), "yesterday.png") << "the service did not answer";
    machine.desktop.forgets(2);
    machine.screens.unplug(1);
    machine.screens.onChange();
    machine.desktop.set.clear();
    machine.loop.advance(1s);
    EXPECT_THAT(machine.desktop.set, ElementsAre(2u));
}

TEST_F(AppDelegateTest, aMonitorThatGoesAndComesBackAtOnceGetsItsPictureAgain) {
    plugInTwo();
    putSettings(twoColors());
    launch();
    machine.desktop.forgets(2);
    machine.desktop.set.clear();
    machine.screens.onChange();
    machine.loop.advance(1s);
    EXPECT_THAT(machine.desktop.set, ElementsAre(2u)) << "the arrangement is the same";
    EXPECT_THAT(shown(2), HasSubstr("445566"));
}

TEST_F(AppDelegateTest, aNetworkThatComesAfterTheStartBringsThePicturesThatFailed) {
    plugInTwo();
    machine.environment["XDG_RUNTIME_DIR"] = machine.folder.path();
    AppSettings settings = twoColors();
    settings.wallpaper.displays[1].mode.value = BingSettings{};
    putSettings(settings);
    machine.web.refuses("bing.example");
    launch();
    const std::size_t asked = machine.web.requests.size();
    machine.web.accepts("bing.example");
    machine.web.serves("/HPImageArchive", {.body = R"({"images":[{"url":"/th?id=1"}]})"});
    machine.web.serves("/th?id=1", {.body = "a picture"});
    for (int i = 0; i < 5; ++i) {
        machine.systemEvents.network();  // routes come one after the other
        machine.loop.advance(1s);
    }
    EXPECT_EQ(machine.web.requests.size(), asked) << "not before they have settled";
    machine.loop.advance(3s);
    EXPECT_EQ(machine.web.requests.size(), asked + 2);
    EXPECT_THAT(shown(2), HasSubstr("image-v2"));
    EXPECT_THAT(delegate->subsystems()->wallpaperCoordinator.lastFailures(), IsEmpty());

    const int before = machine.desktop.setCount;
    machine.systemEvents.network();
    machine.loop.advance(10s);
    EXPECT_EQ(machine.desktop.setCount, before) << "nothing failed";
    machine.systemEvents.network();
    quitBySystem();
    EXPECT_FALSE(machine.systemEvents.network);
    EXPECT_THAT(machine.process.exits, ElementsAre(0));
}

TEST_F(AppDelegateTest, aSecondStartForwardsAndEndsWithoutTouchingAnything) {
    const auto first = takeLock();
    launch();
    EXPECT_FALSE(delegate->isPrimary());
    EXPECT_THAT(log.lines,
                ElementsAre("information [lifecycle] Application diagnostics started. version=1.2.3",
                            "information [lifecycle] A running application instance was found; forwarding "
                            "activation."));
    EXPECT_EQ(machine.runningInstances.activations, 1);
    EXPECT_THAT(machine.process.exits, ElementsAre(0));
    EXPECT_THAT(machine.usage.messages, IsEmpty());
    EXPECT_FALSE(fs::exists(machine.settingsFile()));
}

TEST_F(AppDelegateTest, unreadableSettingsLeadToTheAlertAndAStartThatDrivesNothing) {
    plugInTwo();
    fs::create_directories(machine.settingsFile().parent_path());
    std::ofstream(machine.settingsFile()) << "{\"schemaVersion\": 7}";
    machine.preferredLanguages = {"de_DE", "pt_BR", "en"};
    const fs::path imported = putOldFile("Videos/imported.mp4");
    const fs::path download = putOldFile("Images/remote-old.jpg");
    launch();
    ASSERT_EQ(machine.alerts.shown.size(), 1u);
    const Alert& alert = machine.alerts.shown[0];
    EXPECT_EQ(alert.style, Alert::Style::critical);
    EXPECT_THAT(alert.title, Not(HasSubstr("Couldn’t"))) << "in Portuguese";
    EXPECT_THAT(alert.text,
                HasSubstr("This settings file uses schema 7, but this build of Quillmar requires schema 1."));
    EXPECT_EQ(alert.buttons.size(), 2u);
    EXPECT_THAT(log.lines, Not(Contains(HasSubstr("limited")))) << "the alert is still open";

    machine.alerts.answerNextWith(0);
    machine.loop.settle();
    EXPECT_THAT(machine.settingsWindow.opened, ElementsAre("backup"));
    EXPECT_THAT(log.lines,
                Contains("warning [lifecycle] Application startup is limited until settings are recovered."));
    EXPECT_FALSE(fs::exists(download));
    EXPECT_TRUE(fs::exists(imported)) << "nobody knows whether it is referred to";
    machine.screens.onChange();
    machine.loop.advance(1h);
    EXPECT_EQ(machine.desktop.setCount, 0);
    EXPECT_EQ(readFile(machine.settingsFile(), 100), "{\"schemaVersion\": 7}");

    quitBySystem();
    EXPECT_THAT(machine.process.exits, ElementsAre(0)) << "nothing was unsaved";
}

TEST_F(AppDelegateTest, theStartSweepsTheCacheButNothingThatIsReferredToOrShown) {
    AppSettings settings = twoColors();
    const fs::path used = putOldFile("Images/used.png");
    settings.wallpaper.displays[0].savedModes[WallpaperModeKind::image].value =
        ImagePresentationSettings{.cachedImageURL = Url::fromFilePath(used)};
    putSettings(settings);
    machine.screens.plugIn(3);
    machine.desktop.shown[3] = putOldFile("GeneratedWallpapers/shown.png");
    const fs::path generated = putOldFile("GeneratedWallpapers/old.png");
    const fs::path forgotten = putOldFile("Videos/forgotten.mp4");
    launch();
    EXPECT_TRUE(fs::exists(used));
    EXPECT_TRUE(fs::exists(machine.desktop.shown[3]));
    EXPECT_FALSE(fs::exists(generated));
    EXPECT_FALSE(fs::exists(forgotten));
    EXPECT_THAT(log.lines, Contains("information [cache] Startup cache maintenance completed. "
                                    "reclaimed_bytes=10 removed_items=2"));

    putOldFile("Videos/forgotten.mp4");
    putOldFile("GeneratedWallpapers/old.png");
    machine.loop.advance(30min - 1s);
    EXPECT_TRUE(fs::exists(generated));
    machine.loop.advance(1s);
    EXPECT_FALSE(fs::exists(generated));
    EXPECT_TRUE(fs::exists(forgotten)) << "an import may be under way";
    EXPECT_TRUE(fs::exists(machine.desktop.shown[3]));

    quitBySystem();
    putOldFile("GeneratedWallpapers/old.png");
    machine.loop.advance(1h);
    EXPECT_TRUE(fs::exists(generated)) << "no sweep follows a quit";
}

TEST_F(AppDelegateTest, aQuitDuringTheStartStopsItAtItsNextCheck) {
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

TEST_F(AppDelegateTest, aSecondQuitDuringTheShutDownChangesNothing) {
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

TEST_F(AppDelegateTest, withTheSettingsWindowOpenOnlyAnExplicitWishOrTheSystemEndsTheProgram) {
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

TEST_F(AppDelegateTest, settingsThatCannotBeSavedAtQuitLetTheUserStay) {
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

TEST_F(AppDelegateTest, wallpapersChangeByThemselvesFromTheStartToTheEndButNotUnderARestore) {
    plugInTwo();
    AppSettings settings = twoColors();
    settings.wallpaper.displays[0].mode.value = SlideshowPresentationSettings{.rotationIntervalSeconds = 60};
    putSettings(settings);
    launch();
    Subsystems& subsystems = *delegate->subsystems();
    const auto& entries = subsystems.wallpaperRotation.schedule().entries;
    ASSERT_EQ(entries.size(), 1u);
    const WallTime before = entries.begin()->second.nextAttemptDate;
    machine.loop.advance(10s);
    subsystems.restoreFollowing.settingsWillBeReplaced();
    EXPECT_THAT(entries, IsEmpty());
    subsystems.restoreFollowing.settingsReplacementDidEnd();
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries.begin()->second.nextAttemptDate, before + 10s);

    machine.clock.set(machine.clock.now() + 8h);
    machine.systemEvents.wake();
    machine.loop.advance(1s);
    EXPECT_EQ(entries.begin()->second.consecutiveFailureCount, 1) << "it was due: there is no folder";

    quitBySystem();
    EXPECT_THAT(entries, IsEmpty());
    subsystems.restoreFollowing.settingsWillBeReplaced();
    subsystems.restoreFollowing.settingsReplacementDidEnd();
    EXPECT_THAT(entries, IsEmpty()) << "a restore begins nothing that was not there";
}

TEST_F(AppDelegateTest, anEditOfTheFileIsShownWhereItIsAnotherWallpaperAndABrokenOneIsSaid) {
    plugInTwo();
    AppSettings settings = twoColors();
    putSettings(settings);
    launch();
    machine.desktop.set.clear();
    settings.wallpaper.displays[1].mode.value = SolidColorPresentationSettings{"#ABCDEF"};
    putSettings(settings);
    for (int i = 0; i < 20; ++i) {  // a writer without a pause
        machine.settingsWatch.onChange();
        machine.loop.advance(100ms);
    }
    EXPECT_THAT(machine.desktop.set, ElementsAre(2u));
    EXPECT_THAT(shown(2), HasSubstr("ABCDEF"));

    std::ofstream(machine.settingsFile()) << "{";
    machine.systemEvents.reload();
    machine.loop.settle();
    ASSERT_EQ(machine.notificationCenter.shown.size(), 1u);
    EXPECT_THAT(machine.notificationCenter.shown.begin()->second.body, HasSubstr("line 1, column 2"));
    EXPECT_THAT(answer({"general"}).errors, HasSubstr("nothing is saved ("));
    EXPECT_EQ(answer({"general", "set", "--pauseRotations"}).status, 1);
    EXPECT_EQ(readFile(machine.settingsFile(), 100), "{");
    putSettings(settings);
    EXPECT_EQ(answer({"general", "set", "--pauseRotations"}).errors, "") << "a command looks itself";
    EXPECT_THAT(machine.notificationCenter.shown, IsEmpty());
    quitBySystem();
    EXPECT_FALSE(machine.settingsWatch.onChange);
}

TEST_F(AppDelegateTest, settingsThatAreRestoredAtTheAlertCloseItAndTheStartStaysLimited) {
    plugInTwo();
    fs::create_directories(machine.settingsFile().parent_path());
    std::ofstream(machine.settingsFile()) << "{";
    launch();
    EXPECT_THAT(answer({"wallpaper", "next"}).errors, HasSubstr("recovery mode, because"));
    EXPECT_EQ(answer({"wallpaper", "next"}).status, 1);
    EXPECT_THAT(log.lines, Not(Contains(HasSubstr("limited")))) << "the alert is open";
    const ControlReply reset = answer({"backup", "reset"});
    EXPECT_THAT(reset.output, HasSubstr("kept as " + machine.settingsFile().string() + ".unreadable"));
    EXPECT_THAT(reset.errors, HasSubstr("still in recovery mode"));
    EXPECT_THAT(log.lines, Contains(HasSubstr("startup is limited")));
    EXPECT_FALSE(delegate->subsystems()->wallpaperRotation.isMonitoring());
}

}  // namespace
}  // namespace quillmar

#include "panes/SettingsWindowModel.h"

#include "commandline/RecordOptions.h"
#include "fakes/FakeAddresses.h"
#include "fakes/FakeAlerts.h"
#include "fakes/FakeFileChooser.h"
#include "fakes/FakeLoginItem.h"
#include "fakes/FakeSettingsStore.h"
#include "fakes/WallpaperProgram.h"
#include "imports/MediaImportRepository.h"

namespace quillmar {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

struct NothingElseFollows final : SettingsRestoreFollowing {
    void settingsWillBeReplaced() override {}
    void settingsReplacementDidEnd() override {}
    Task<std::optional<std::string>> updateLoginItem(bool) override { co_return std::nullopt; }
    Task<std::vector<std::string>> applyWallpapers() override { co_return std::vector<std::string>{}; }
    void lockScreenSettingsDidChange() override {}
};

Task<bool> answered(const bool* answer) { co_return *answer; }

struct SettingsWindowModelTest : ::testing::Test, DesktopWorld {
    EventBus notifications;
    FakeSettingsStore store;
    std::optional<AppSettingsModel> settings;
    std::optional<WallpaperProgram> wallpaper;
    MediaImportRepository importing{{executor, executor, rendering, cacheFiles, folder.path()}};
    MediaImportCoordinator imports{loop, notifications, importing};
    SettingsBackupService backups{executor};
    NothingElseFollows following;
    FakeLoginItem session;
    std::optional<LoginItemService> loginItem;
    FakeAlerts alerts;
    FakeFileChooser files;
    FakeClipboard clipboard;
    FakeAddresses addresses;
    BundleInfo bundle{
        {{"QuillmarSemanticVersion", "1.2.3"}, {"QuillmarHomePage", "https://quillmar.example/"}}};
    Environment environment{{"XDG_DATA_HOME", folder.path()}};
    bool notificationsAreShown = true;
    bool isRecovering = false;
    int changes = 0;
    std::optional<SettingsWindowModel> window;

    void SetUp() override { begin(); }
    void begin() {
        window.reset();
        wallpaper.reset();
        settings.emplace(loop, notifications, store, AppSettings{}, cacheFiles);
        wallpaper.emplace(*this, notifications, *settings);
        window.emplace(SettingsWindowModel::Services{
            .loop = loop,
            .notifications = notifications,
            .alerts = alerts,
            .files = files,
            .general = {.settingsModel = *settings,
                        .loginItem = loginItem.emplace(session, *settings),
                        .version = "1.2.3",
                        .mayNotify = [this] { return answered(&notificationsAreShown); }},
            .wallpaper = {loop, *settings, wallpaper->coordinator, wallpaper->rotation, wallpaper->memory,
                          displays, *pictures, writer, wallpaper->renderer, imports, cacheFiles, executor},
            .backup = {*settings, backups, following, clock, AppSettings{}, "1.2.3",
                       [](const std::string&) {}},
            .about = {bundle, environment, displays, *settings, addresses, clipboard, [] {}},
            .quit = [] {},
            .isRecovering = [this] { return isRecovering; }});
        window->setChangeHandler([this] { ++changes; });
        loop.settle();
    }
    void wish(std::string row, decltype(SettingsIntent::value) value = {}) {
        window->act({std::move(row), value});
        loop.settle();
    }
    void go(const std::string& section) {
        window->navigate(section);
        loop.settle();
    }
    SettingsRow row(const std::string& id) const {
        for (const SettingsGroup& group : window->pane().groups) {
            for (const SettingsRow& each : group.rows) {
                if (each.id == id) return each;
            }
        }
        return {.id = "none"};
    }
    std::string lastAlert() const {
        return alerts.shown.empty() ? "" : alerts.shown.back().title + ": " + alerts.shown.back().text;
    }
};

TEST_F(SettingsWindowModelTest, everyGeneralSettingHasARowThatReachesTheDisk) {
    for (const OptionRow& option : recordOptions<GeneralSettings>()) {
        const auto control = row(option.name).control;
        const GeneralSettings before = store.onDisk.general;
        if (const auto* toggle = std::get_if<SettingsRow::Toggle>(&control)) {
            wish(option.name, !toggle->isOn);
        } else if (const auto* choice = std::get_if<SettingsRow::Choice>(&control)) {
            wish(option.name, (choice->chosen + 1) % choice->choices.size());
        }
        EXPECT_NE(store.onDisk.general, before) << option.name << " has no control";
        EXPECT_NE(row(option.name).control, control)
            << option.name << " does not show what it was changed to";
    }
    EXPECT_EQ(window->frame().title, "Definições do Quillmar") << "the language is one of them";
    EXPECT_EQ(window->frame().theme, WindowTheme::light);
    const GeneralSettings before = store.onDisk.general;
    wish("language", std::size_t{9});
    wish("language", true);
    wish("magicMouse", true);
    EXPECT_EQ(store.onDisk.general, before);
}

TEST_F(SettingsWindowModelTest, aChangeThatFailsIsTakenBackAndToldAndOneThatHelpsNobodyIsNoted) {
    store.nextSaveFails("the disk is full");
    changes = 0;
    alerts.answerNextWith(0);
    wish("pauseRotations", true);
    EXPECT_THAT(lastAlert(), HasSubstr("Quillmar Couldn’t Save Settings: "));
    EXPECT_THAT(lastAlert(), HasSubstr("the disk is full"));
    EXPECT_EQ(row("pauseRotations").control, decltype(SettingsRow::control)(SettingsRow::Toggle{false}));
    EXPECT_GT(changes, 0) << "the switch went ahead";
    notificationsAreShown = false;
    wish("showRemoteErrorNotifications", true);
    EXPECT_THAT(row("showRemoteErrorNotifications").subtitle, HasSubstr("Nobody in this session"));
    wish("pauseRotations", true);
    EXPECT_FALSE(row("showRemoteErrorNotifications").isWarning);
}

TEST_F(SettingsWindowModelTest, aBackupIsExportedChosenAndRestoredWithAQuestion) {
    go("backup");
    files.answer = folder.path() / "kept.json";
    wish("export.wallpaper", false);
    alerts.answerNextWith(0);
    wish("export");
    EXPECT_EQ(files.asked.back().suggestedName, "Quillmar-Backup-20260504-090000.json");
    EXPECT_EQ(lastAlert(), "Backup Exported: Saved kept.json.");
    settings->update([](AppSettings& document) { document.general.pauseRotations = true; });

    EXPECT_EQ(row("restore").id, "none") << "nothing is loaded";
    wish("load");
    EXPECT_EQ(row("load").title, "kept.json");
    EXPECT_EQ(row("import.wallpaper").id, "none") << "not in the file";
    for (const std::size_t button : {0u, 1u}) {  // cancelled, then agreed to
        EXPECT_TRUE(settings->settings().general.pauseRotations);
        alerts.answerNextWith(button);
        if (button == 1) alerts.answerNextWith(0);
        wish("restore");
    }
    EXPECT_EQ(lastAlert(), "Settings Restored: The selected settings were restored successfully.");
    EXPECT_FALSE(store.onDisk.general.pauseRotations);
    EXPECT_EQ(row("restore").id, "none") << "a second restore needs the file again";

    files.answer.reset();
    const std::size_t told = alerts.shown.size();
    wish("load");
    EXPECT_EQ(alerts.shown.size(), told) << "no file was chosen";
    window->setExpanded("reset", true);
    wish("export.general", false);
    window->requestClose([] {});
    EXPECT_EQ(window->pane().groups[2].isExpanded, false) << "closing forgets what was opened and chosen";
    EXPECT_EQ(row("export.general").control, decltype(SettingsRow::control)(SettingsRow::Toggle{true}));
}

TEST_F(SettingsWindowModelTest, whileTheSettingsCannotBeReadOnlyRestoreAndResetChangeThem) {
    store.loadFails("general: missing key");
    isRecovering = true;
    begin();
    EXPECT_THAT(window->frame().banner, HasSubstr("general: missing key"));
    EXPECT_FALSE(row("language").isEnabled);
    go("backup");
    EXPECT_FALSE(row("export").isEnabled);
    store.nextSaveFails("the disk is full");
    for (const char* outcome : {"the disk is full", "reset to their default values"}) {
        alerts.answerNextWith(1);
        alerts.answerNextWith(0);
        wish("reset");
        EXPECT_THAT(lastAlert(), HasSubstr(outcome));
    }
    EXPECT_THAT(window->frame().banner, HasSubstr("start it once more"));
}

TEST_F(SettingsWindowModelTest, whoLeavesADraftIsAskedWhatBecomesOfIt) {
    bool isChanged = true, isSaved = false;
    int applied = 0, discarded = 0, closed = 0;
    window->unsavedChanges().add(SettingsSection::general, {.hasChanges = [&] { return isChanged; },
                                                            .apply =
                                                                [&] {
                                                                    ++applied;
                                                                    return answered(&isSaved);
                                                                },
                                                            .discard = [&] { ++discarded; }});
    enum Button : std::size_t { apply, discard, cancel };
    go("about");
    EXPECT_TRUE(window->unsavedChanges().prompt());
    window->requestClose([&] { ++closed; });
    alerts.answerNextWith(cancel);
    loop.settle();
    EXPECT_EQ(alerts.shown.size(), 1u) << "one question, whatever is wished for meanwhile";
    alerts.answerNextWith(apply);
    go("about");
    EXPECT_EQ(window->section(), SettingsSection::general) << "the draft could not be saved";
    alerts.answerNextWith(discard);
    window->requestClose([&] { ++closed; });
    loop.settle();
    EXPECT_THAT((std::vector{applied, discarded, closed}), ElementsAre(1, 1, 1));
    EXPECT_FALSE(window->unsavedChanges().prompt());
    isChanged = false;
    go("about");
    EXPECT_EQ(window->section(), SettingsSection::about);
}

TEST_F(SettingsWindowModelTest, aboutSaysWhatAReportNeedsAndOpensWhatItNames) {
    go("about");
    go("nowhere");
    EXPECT_EQ(window->frame().current, "about");
    wish("copyDiagnostics");
    EXPECT_THAT(clipboard.text, HasSubstr("Quillmar 1.2.3\nSystem: "));
    EXPECT_EQ(clipboard.text.find(folder.path().string()), std::string::npos) << "whose machine it is";
    EXPECT_EQ(row("copyDiagnostics").subtitle, "Copied.");
    wish("homePage");
    wish("openLogs");
    EXPECT_EQ(row("contactPage").id, "none") << "this build names none";
    EXPECT_THAT(addresses.opened, ElementsAre("https://quillmar.example/",
                                              "file://" + (folder.path() / "Quillmar/Logs").string()));
}

}  // namespace
}  // namespace quillmar

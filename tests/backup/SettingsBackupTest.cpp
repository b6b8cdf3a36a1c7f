#include <sys/stat.h>

#include <fstream>

#include "async/TaskScope.h"
#include "base/Files.h"
#include "fakes/FakeExecutors.h"
#include "fakes/FakeSettingsStore.h"
#include "fakes/TaskOutcome.h"
#include "fakes/TemporaryFolder.h"
#include "fakes/VirtualLoop.h"
#include "settings/backup/BackupSettingsModel.h"
#include "settings/records/SettingsCodec.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Section = SettingsBackupSection;
using Action = BackupSettingsModel::BackupDestructiveAction;

struct FakeFollowing final : SettingsRestoreFollowing {
    std::vector<std::string> steps;
    std::optional<std::string> loginItemFailure;
    std::vector<std::string> wallpaperFailures;
    int replacementCount = 0;
    bool isHoldingStill = false;

    void settingsWillBeReplaced() override {
        ++replacementCount;
        isHoldingStill = true;
    }
    void settingsReplacementDidEnd() override { isHoldingStill = false; }
    Task<std::optional<std::string>> updateLoginItem(bool launchAtLogin) override {
        steps.push_back(launchAtLogin ? "login item on" : "login item off");
        co_return loginItemFailure;
    }
    Task<std::vector<std::string>> applyWallpapers() override {
        steps.push_back("wallpapers");
        co_return wallpaperFailures;
    }
    void lockScreenSettingsDidChange() override { steps.push_back("lock screen"); }
};

struct BackupTest : ::testing::Test {
    VirtualLoop loop;
    VirtualWallClock clock{loop};
    InlineExecutor executor;
    EventBus notifications;
    FakeSettingsStore store;
    CacheFileProtection cacheFiles;
    std::optional<AppSettingsModel> model;
    SettingsBackupService service{executor};
    FakeFollowing following;
    std::vector<std::string> analytics;
    AppSettings defaults = defaultSettings(BundleInfo{});
    std::optional<BackupSettingsModel> backup;
    TemporaryFolder folder;
    fs::path file = folder.path() / "kept/backup.json";
    TaskScope tasks{loop};

    void SetUp() override {
        store.onDisk = defaults;
        store.onDisk.lastLaunchedAppVersion = "1.0.0";
        store.onDisk.general.pauseRotations = true;
        store.onDisk.wallpaper.displays.push_back(DisplayWallpaperSettings{.displayID = "display:a"});
        begin();
    }
    void begin() {
        model.emplace(loop, notifications, store, defaults, cacheFiles);
        backup.emplace(BackupSettingsModel::Services{
            *model, service, following, clock, defaults, "1.2.3",
            [this](const std::string& message) { analytics.push_back(message); }});
        loop.settle();
    }
    template <class T>
    auto run(Task<T> task) {
        return std::move(outcomeOf(loop, tasks, std::move(task))->value);
    }
    bool confirm(Action action) {
        backup->request(action);
        return run(backup->confirmPendingAction()).value_or(false);
    }
    void put(std::string_view text) {
        fs::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << text;
    }
    std::string notice() const {
        return backup->notice() ? backup->notice()->title + ": " + backup->notice()->message : "";
    }
};

TEST_F(BackupTest, whatIsExportedIsRestoredSectionBySection) {
    run(backup->exportTo(file));
    EXPECT_EQ(notice(), "Backup Exported: Saved backup.json.");
    const AppSettings exported = model->settings();
    model->update([](AppSettings& settings) {
        settings.general.pauseRotations = false;
        settings.wallpaper.displays.clear();
        settings.hotCorners.isEnabled = true;
        settings.lastLaunchedAppVersion = "2.0.0";
    });
    run(backup->load(file));
    ASSERT_TRUE(backup->importedDocument());
    EXPECT_EQ(backup->importSections, allBackupSections());
    EXPECT_THAT(backup->importedDescription(), HasSubstr("Created with Quillmar 1.2.3 on 4 May 2026, "));

    backup->importSections = {Section::wallpaper};
    EXPECT_TRUE(confirm(Action::restore));
    EXPECT_EQ(store.onDisk.wallpaper, exported.wallpaper);
    EXPECT_FALSE(store.onDisk.general.pauseRotations);
    EXPECT_TRUE(store.onDisk.hotCorners.isEnabled);
    EXPECT_EQ(store.onDisk.lastLaunchedAppVersion, "2.0.0");
    EXPECT_THAT(following.steps, ElementsAre("wallpapers"));
    EXPECT_EQ(notice(), "Settings Restored: The selected settings were restored successfully.");
    EXPECT_FALSE(backup->importedDocument()) << "a second restore needs the file to be chosen again";
    EXPECT_THAT(analytics, ElementsAre("backup_export", "backup_import"));
}

TEST_F(BackupTest, theFileHoldsWhatWasChosenAndNothingElse) {
    backup->exportSections = {Section::general, Section::hotCorners};
    run(backup->exportTo(file));
    const auto document = decodeBackup(readFile(file, 1 << 20));
    EXPECT_EQ(document.availableSections(), backup->exportSections);
    EXPECT_EQ(document.createdAt, clock.now());
    EXPECT_EQ(backup->suggestedFileName().size(), std::string("Quillmar-Backup-20260504-090000").size());
    EXPECT_EQ(run(backup->exportText()), readFile(file, 1 << 20));
    const std::string before = readFile(file, 1 << 20);
    backup->exportSections.clear();
    run(backup->exportTo(file));
    EXPECT_EQ(notice(), "Couldn’t Export Backup: This backup does not contain any restorable settings.");
    backup->exportSections = {Section::general, Section::wallpaper};
    model->update(
        [](AppSettings& settings) { settings.wallpaper.displays[0].displayID.assign(11u << 20, 'x'); });
    run(backup->exportTo(file));
    EXPECT_THAT(notice(), HasSubstr("larger than Quillmar's 10 MB safety limit."));
    EXPECT_EQ(readFile(file, 1 << 20), before);
}

TEST_F(BackupTest, anExportFollowsLinksAndLeavesWhatIsNoFile) {
    const fs::path link = folder.path() / "link.json";
    fs::create_symlink("kept/backup.json", link);
    for (int i = 0; i < 2; ++i) {  // to a file that is not there yet, and to one that is
        run(backup->exportTo(link));
        EXPECT_TRUE(fs::is_symlink(link));
        EXPECT_NO_THROW(decodeBackup(readFile(file, 1 << 20)));
    }
    const fs::path pipe = folder.path() / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    run(backup->exportTo(pipe));
    EXPECT_THAT(notice(), HasSubstr("Invalid argument"));
    EXPECT_TRUE(fs::is_fifo(pipe));
}

TEST_F(BackupTest, aFileThatIsNoBackupChangesNothingAndIsNamed) {
    const std::string good =
        encodeBackup(SettingsBackupDocument::make(defaults, {Section::general}, "1", {}));
    const auto with = [&](std::string from, std::string to) {
        std::string text = good;
        text.replace(text.find(from), from.size(), to);
        return text;
    };
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"", "the document is not valid JSON"},
        {with("\"formatVersion\": 1", "\"formatVersion\": 2"),
         "This backup uses format 2, but this build of Quillmar requires format 1."},
        {with("\"settingsSchemaVersion\": 1", "\"settingsSchemaVersion\": 3"),
         "This backup uses settings schema 3, but this build of Quillmar requires schema 1."},
        {with("\"createdAt\"", "\"madeAt\""), "createdAt: missing key"},
        {with("\"english\"", "\"latin\""), "contents.general.language: expected one of english, portuguese"},
        {with("\"general\"", "\"colonel\""), "This backup does not contain any restorable settings."},
        {std::string(SettingsBackupService::maximumBytes + 1, ' '),
         "This backup is larger than Quillmar's 10 MB safety limit."},
        {std::string(SettingsBackupService::maximumBytes, ' '), "the document is not valid JSON"},
    };
    const AppSettings before = model->settings();
    for (const auto& [text, reason] : rows) {
        put(text);
        run(backup->load(file));
        EXPECT_THAT(notice(), HasSubstr("Couldn’t Read Backup: "));
        EXPECT_THAT(notice(), HasSubstr(reason));
        EXPECT_FALSE(backup->importedDocument());
        EXPECT_THAT(backup->importSections, IsEmpty());
    }
    EXPECT_EQ(model->settings(), before);
    run(backup->load("/dev/zero"));
    EXPECT_EQ(notice(), "Couldn’t Read Backup: /dev/zero: Invalid argument");
}

TEST_F(BackupTest, aReadOnlyStateEndsWithARestoreThatReachesTheDisk) {
    run(backup->exportTo(file));
    store.loadFails("general: missing key");
    begin();
    run(backup->load(file));
    store.nextSaveFails("No space left on device");
    EXPECT_FALSE(confirm(Action::restore));
    EXPECT_EQ(model->saveError(), "No space left on device");
    EXPECT_FALSE(model->canPersist());
    EXPECT_TRUE(backup->importedDocument()) << "the loaded file stays for another try";
    EXPECT_THAT(following.steps, IsEmpty());
    EXPECT_EQ(following.replacementCount, 1);
    EXPECT_FALSE(following.isHoldingStill) << "what held still goes on after a failure too";
    store.hold();
    confirm(Action::restore);
    EXPECT_TRUE(following.isHoldingStill);
    store.letThrough();
    loop.settle();
    EXPECT_FALSE(following.isHoldingStill);
    EXPECT_TRUE(model->canPersist());
    EXPECT_FALSE(model->loadError());
}

TEST_F(BackupTest, whatFailsAfterTheSettingsAreOnDiskIsAWarning) {
    run(backup->exportTo(file));
    run(backup->load(file));
    following.loginItemFailure = "";
    following.wallpaperFailures = {"Left: cannot set", "Right: cannot set"};
    EXPECT_TRUE(confirm(Action::restore));
    EXPECT_EQ(notice(),
              "Settings Restored with Warnings: The login item could not be updated.\nLeft: cannot set\n"
              "Right: cannot set");
    EXPECT_THAT(following.steps, ElementsAre("login item on", "wallpapers", "lock screen"));
}

TEST_F(BackupTest, aResetLeadsToTheDefaultsOnceItIsConfirmed) {
    backup->request(Action::reset);
    backup->cancelPendingAction();
    EXPECT_FALSE(run(backup->confirmPendingAction()).value_or(true));
    EXPECT_TRUE(model->settings().general.pauseRotations);
    EXPECT_TRUE(confirm(Action::reset));
    EXPECT_EQ(store.onDisk, defaults);
    EXPECT_EQ(notice(), "Settings Reset: Quillmar settings were reset to their default values.");
}

TEST_F(BackupTest, anExportThatCannotBeWrittenLeavesTheOldFile) {
    put("old");
    fs::create_directories(folder.path() / "folder");
    run(backup->exportTo(folder.path() / "folder"));
    EXPECT_EQ(notice(),
              "Couldn’t Export Backup: " + (folder.path() / "folder").string() + ": Is a directory");
    run(backup->exportTo(file / "below a file"));
    EXPECT_THAT(notice(), HasSubstr("Not a directory"));
    EXPECT_EQ(readFile(file, 100), "old");
}

TEST_F(BackupTest, aRestoreWaitsForTheTransactionThatRuns) {
    run(backup->exportTo(file));
    run(backup->load(file));
    std::optional<SettingsTransactionGate::Hold> hold = run(model->transactionGate().acquire());
    backup->request(Action::restore);
    const auto restore = tasks.start(backup->confirmPendingAction());
    loop.settle();
    EXPECT_TRUE(backup->isWorking());
    EXPECT_TRUE(store.saves.empty());
    hold.reset();
    loop.settle();
    EXPECT_FALSE(backup->isWorking());
    EXPECT_EQ(store.saves.size(), 1u);
    EXPECT_FALSE(model->transactionGate().isLocked());
}

}  // namespace
}  // namespace quillmar

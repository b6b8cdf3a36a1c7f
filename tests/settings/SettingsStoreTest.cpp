#include "settings/SettingsStore.h"
#include "storage/ApplicationDirectories.h"

#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "async/TaskScope.h"
#include "base/Files.h"
#include "fakes/FakeExecutors.h"
#include "fakes/FullDisk.h"
#include "fakes/TaskOutcome.h"
#include "fakes/TemporaryFolder.h"
#include "fakes/VirtualLoop.h"
#include "settings/records/SettingsCodec.h"

namespace quillmar {
namespace {

using ::testing::HasSubstr;
namespace fs = std::filesystem;

struct SettingsStoreTest : ::testing::Test {
    VirtualLoop loop;
    InlineExecutor executor;
    TemporaryFolder folder;
    fs::path file = folder.path() / "Quillmar/settings.json";
    AppSettings defaults = defaultSettings(BundleInfo{});
    SettingsStore store{file, defaults, executor};
    TaskScope tasks{loop};

    /// The words of a failure; empty for none.
    template <class T>
    std::string run(Task<T> task, T* result = nullptr) {
        const auto outcome = outcomeOf(loop, tasks, std::move(task));
        if constexpr (!std::is_void_v<T>) {
            if (outcome->value) *result = *outcome->value;
        }
        return outcome->text == "done" ? "" : outcome->text;
    }
    std::string load(SettingsLoadResult* result) { return run(store.load(), result); }
    std::string save(const AppSettings& settings) { return run(store.save(settings)); }
    void put(std::string_view text) {
        fs::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << text;
    }
    std::string bytes() const { return readFile(file, 1 << 20); }
    std::vector<std::string> filesBeside() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(file.parent_path()))
            names.push_back(entry.path().filename());
        return names;
    }
};

TEST_F(SettingsStoreTest, aFirstRunMakesTheFileAndASecondReadsIt) {
    SettingsLoadResult result;
    EXPECT_EQ(load(&result), "");
    EXPECT_TRUE(result.createdInitialSettingsFile);
    EXPECT_EQ(result.settings, defaults);
    struct stat status{};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);

    AppSettings changed = defaults;
    changed.general.pauseRotations = true;
    EXPECT_EQ(save(changed), "");
    EXPECT_EQ(load(&result), "");
    EXPECT_FALSE(result.createdInitialSettingsFile);
    EXPECT_EQ(result.settings, changed);
    EXPECT_THAT(filesBeside(), testing::ElementsAre("settings.json"));
}

TEST_F(SettingsStoreTest, whatIsNoReadableFileIsNamedWithItsReason) {
    SettingsLoadResult result;
    fs::create_directories(file);
    EXPECT_EQ(load(&result), file.string() + ": Is a directory");
    fs::remove(file);
    fs::create_symlink("nowhere.json", file);
    EXPECT_EQ(load(&result), file.string() + ": No such file or directory");
    fs::remove(file);
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    EXPECT_EQ(load(&result), file.string() + ": Invalid argument");
}

TEST_F(SettingsStoreTest, aFileThatIsALinkStaysOne) {
    const fs::path kept = folder.path() / "dotfiles.json";
    std::ofstream(kept) << encodeSettings(defaults);
    fs::create_directories(file.parent_path());
    fs::create_symlink(kept, file);
    SettingsLoadResult result;
    EXPECT_EQ(load(&result), "");
    AppSettings changed = defaults;
    changed.general.pauseRotations = true;
    EXPECT_EQ(save(changed), "");
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(decodeSettings(readFile(kept, 1 << 20)), changed);
    fs::remove(kept);
    EXPECT_NE(save(defaults), "") << "the disk that it is on may come back";
    EXPECT_FALSE(fs::exists(kept));
}

TEST_F(SettingsStoreTest, aSaveThatRunsOutOfSpaceLeavesTheOldFileAndNoLitter) {
    EXPECT_EQ(save(defaults), "");
    const std::string before = bytes();
    AppSettings changed = defaults;
    changed.lastLaunchedAppVersion = "9.9.9";

    {
        const FullDisk disk(100);
        EXPECT_EQ(save(changed), file.string() + ": File too large");
    }
    EXPECT_EQ(bytes(), before);
    EXPECT_EQ(filesBeside().size(), 1u);
}

TEST_F(SettingsStoreTest, whatAnInterruptedSaveLeftIsClearedAwayAndNothingElse) {
    EXPECT_EQ(save(defaults), "");
    const std::vector<std::string> others = {
        ".settings.json.swp",    ".settings.json.backup",  ".settings.json.BACKUP", ".settings.json.202611",
        ".settings.json.Backup", ".settings.json.Ab12Cde", ".settings.json.Ab-2Cd", "settings.json.Ab12Cd"};
    for (const std::string& name : others) std::ofstream(file.parent_path() / name) << "{";
    std::ofstream(file.parent_path() / ".settings.json.Ab12Cd") << "{";
    fs::create_symlink("nowhere", file.parent_path() / ".settings.json.Ef34Gh");
    SettingsLoadResult result;
    EXPECT_EQ(load(&result), "");
    EXPECT_EQ(filesBeside().size(), others.size() + 2) << "the file and the link";
    EXPECT_FALSE(fs::exists(file.parent_path() / ".settings.json.Ab12Cd"));
}

TEST_F(SettingsStoreTest, whoOnlyLooksMakesNoFileAndAFolderThatIsMadeAgainIsTheUsersAlone) {
    SettingsStore looking{file, defaults, executor, FirstRunFile::isLeftOut};
    SettingsLoadResult result;
    EXPECT_EQ(run(looking.load(), &result), "");
    EXPECT_EQ(result.settings, defaults);
    EXPECT_FALSE(fs::exists(file.parent_path()));
    EXPECT_EQ(run(looking.save(defaults)), "");
    EXPECT_EQ(fs::status(file.parent_path()).permissions(), fs::perms::owner_all);
}

TEST_F(SettingsStoreTest, whatOthersWroteIsNeverWrittenOverAndIsReadOnce) {
    using What = SettingsFileChange::What;
    AppSettings theirs = defaults;
    SettingsFileChange change;
    const auto reload = [&] {
        change = {};
        return run(store.reload(), &change);
    };
    const auto inPlace = [&](const std::string& text) { put(text); };
    const auto byRename = [&](const std::string& text) {
        std::ofstream(file.string() + ".new") << text;
        fs::rename(file.string() + ".new", file);
    };
    EXPECT_EQ(save(defaults), "");
    for (const auto& write : {std::function<void(std::string)>(inPlace), {byRename}}) {
        theirs.lastLaunchedAppVersion += "x";
        write(encodeSettings(theirs));
        EXPECT_EQ(save(defaults), "The settings file was changed by another program meanwhile.");
        EXPECT_EQ(reload(), "");
        EXPECT_EQ(change.settings, theirs);
        EXPECT_EQ(reload(), "");
        EXPECT_EQ(change.what, What::nothing);
    }
    put("{\n  \"schemaVersion\": 1,\n  \"general\": [],\n  \"lastLaunchedAppVersion\": \"\"}");
    EXPECT_EQ(reload(), file.string() + ", line 3, column 14: general: expected an object, found an array");
    put("{\n  \"schemaVersion\": 1,,");
    EXPECT_EQ(reload(), file.string() + ": the document is not valid JSON (line 2, column 22)");
    put(std::string((16u << 20) + 1, ' '));
    EXPECT_EQ(reload(), file.string() + ": Quillmar reads and writes no settings above 16 MB.");
    EXPECT_THAT(save(defaults), HasSubstr("changed by another program"));
    EXPECT_EQ(filesBeside().size(), 1u);
    fs::remove(file);
    EXPECT_EQ(reload(), "");
    EXPECT_EQ(change.what, What::removed);
    EXPECT_EQ(save(defaults), "");
    theirs.lastLaunchedAppVersion.assign(16u << 20, 'x');
    EXPECT_EQ(save(theirs), "Quillmar reads and writes no settings above 16 MB.");
}

TEST_F(SettingsStoreTest, aReplacementKeepsWhatCouldNotBeReadAndTheLinkThatLeadsNowhere) {
    std::optional<fs::path> kept;
    const auto replace = [&] { return run(store.replace(defaults), &kept); };
    SettingsLoadResult result;
    for (const std::string end : {".unreadable", ".unreadable-2"}) {
        put("broken" + end);
        EXPECT_NE(load(&result), "");
        EXPECT_EQ(replace(), "");
        EXPECT_EQ(kept, file.string() + end);
        EXPECT_EQ(readFile(*kept, 100), "broken" + end);
    }
    EXPECT_EQ(replace(), "");
    EXPECT_FALSE(kept) << "it was our own";
    fs::remove(file);
    fs::create_directory(file);
    EXPECT_EQ(replace(), "");
    EXPECT_TRUE(fs::is_directory(file.string() + ".unreadable-3"));

    fs::remove(file);
    fs::create_symlink("elsewhere/dots.json", file);
    EXPECT_EQ(replace(), "");
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(load(&result), "");
    EXPECT_EQ(result.settings, defaults);
}

TEST_F(SettingsStoreTest, withoutADataFolderEveryOperationSaysWhy) {
    const auto unavailable =
        makeSettingsStore([] { return applicationSupportDirectory({}); }, defaults, executor);
    SettingsLoadResult result;
    EXPECT_EQ(
        run(unavailable->load(), &result),
        "The Application Support settings location is unavailable (neither XDG_DATA_HOME nor HOME names a "
        "folder).");
}

}  // namespace
}  // namespace quillmar

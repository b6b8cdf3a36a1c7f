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
    AppSettings changed = defaults;
    changed.general.pauseRotations = true;
    EXPECT_EQ(save(changed), "");
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(decodeSettings(readFile(kept, 1 << 20)), changed);
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

TEST_F(SettingsStoreTest, whatAnInterruptedSaveLeftIsClearedAway) {
    EXPECT_EQ(save(defaults), "");
    std::ofstream(file.parent_path() / ".settings.json.Ab12Cd") << "{";
    SettingsLoadResult result;
    EXPECT_EQ(load(&result), "");
    EXPECT_EQ(filesBeside().size(), 1u);
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

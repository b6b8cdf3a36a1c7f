#include "storage/CacheMaintenanceService.h"

#include <fstream>

#include "fakes/FakeExecutors.h"
#include "fakes/TaskOutcome.h"
#include "fakes/TemporaryFolder.h"
#include "fakes/VirtualLoop.h"
#include "storage/CacheFileLease.h"
#include "storage/CacheMaintenanceScheduler.h"
#include "storage/LastUsedStamp.h"
#include "storage/Leftovers.h"

namespace quillmar {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
namespace fs = std::filesystem;
constexpr std::int64_t mebibyte = 1 << 20;

struct CacheMaintenanceTest : ::testing::Test {
    VirtualLoop loop;
    VirtualWallClock clock{loop};
    TemporaryFolder folder;
    fs::path cache = folder.path() / "Cache";
    InlineExecutor executor;
    CacheFileProtection protection;
    CacheMaintenanceService service{executor, protection, cache, {}};
    TaskScope tasks{loop};
    std::optional<FilePaths> referenced = FilePaths{};
    FilePaths protectedFiles;

    void changedBefore(const fs::path& path, std::chrono::seconds age) {
        fs::last_write_time(path, std::chrono::file_clock::from_sys(clock.now() - age));
    }
    fs::path put(const fs::path& name, std::chrono::seconds age, std::int64_t size = 1) {
        const fs::path file = cache / name;
        fs::create_directories(file.parent_path());
        std::ofstream(file).close();
        fs::resize_file(file, static_cast<std::uintmax_t>(size));
        changedBefore(file, age);
        return file;
    }
    CacheSweepResult resultOf(Task<CacheSweepResult> sweep) {
        return outcomeOf(loop, tasks, std::move(sweep))->value.value();
    }
    CacheSweepResult sweep() { return resultOf(service.sweep(referenced, protectedFiles, clock.now())); }
    CacheSweepResult periodicSweep() {
        return resultOf(service.periodicSweep(referenced, protectedFiles, clock.now()));
    }
    std::vector<std::string> left(const fs::path& name) const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(cache / name)) {
            names.push_back(entry.path().filename());
        }
        std::ranges::sort(names);
        return names;
    }
};

TEST_F(CacheMaintenanceTest, oldDownloadsGoUnlessTheyAreReferencedShownOrLeased) {
    put("Images/remote-old.jpg", 30 * 24h + 1s, 10);
    put("Images/remote-edge.jpg", 30 * 24h);
    referenced = {put("Images/remote-referenced.jpg", 900 * 24h)};
    fs::create_directory_symlink(cache / "Images", folder.path() / "link");
    put("Images/remote-shown.jpg", 900 * 24h);
    protectedFiles = {folder.path() / "link/remote-shown.jpg"};
    std::optional<CacheFileLease> lease(std::in_place, protection,
                                        put("Images/remote-leased.jpg", 900 * 24h));
    EXPECT_EQ(periodicSweep(), (CacheSweepResult{1, 10}));
    EXPECT_THAT(left("Images"), ElementsAre("remote-edge.jpg", "remote-leased.jpg", "remote-referenced.jpg",
                                            "remote-shown.jpg"));
    lease.reset();
    EXPECT_EQ(periodicSweep(), (CacheSweepResult{1, 1}));
}

TEST_F(CacheMaintenanceTest, aFileCountsAsUsedAtTheLaterOfItsStampAndItsChange) {
    const fs::path stamped = put("GeneratedWallpapers/stamped.png", 900 * 24h);
    stampLastUsed(stamped, clock.now() - 1h);
    const fs::path changed = put("GeneratedWallpapers/changed.png", 1h);
    stampLastUsed(changed, clock.now() - 900 * 24h);
    put("GeneratedWallpapers/plain.png", 15 * 24h);
    stampLastUsed(put("GeneratedWallpapers/both.png", 15 * 24h), clock.now() - 15 * 24h);
    const bool hasAttributes = lastUsedStamp(stamped).has_value();
    EXPECT_EQ(periodicSweep().removedItems, hasAttributes ? 2 : 3);
    EXPECT_TRUE(fs::exists(changed));
    EXPECT_EQ(fs::exists(stamped), hasAttributes) << "without attributes the change alone speaks";

    stampLastUsed("/proc/self/status", clock.now());
    EXPECT_FALSE(lastUsedStamp("/proc/self/status")) << "a file system that refuses attributes";
}

TEST_F(CacheMaintenanceTest, aboveTheLimitTheLeastRecentlyUsedGoFirstAndThoseOfOneTimeInPathOrder) {
    for (int i = 0; i < 600; ++i) {
        const auto age = i < 4 ? 300min : std::chrono::minutes(200 - i / 10);
        put("Images/remote-" + std::to_string(1000 + i), age, mebibyte);
    }
    const CacheFileLease oldest(protection, cache / "Images/remote-1001");
    EXPECT_EQ(periodicSweep(), (CacheSweepResult{88, 88 * mebibyte}));
    const auto names = left("Images");
    EXPECT_EQ(names.size(), 512u);
    EXPECT_EQ(names[0], "remote-1001") << "leased, so the next one goes in its place";
    EXPECT_EQ(names[1], "remote-1089");
    EXPECT_EQ(periodicSweep(), CacheSweepResult{}) << "at the limit nothing more goes";
}

TEST_F(CacheMaintenanceTest, protectedFilesMayKeepTheTotalAboveTheLimit) {
    protectedFiles = {put("GeneratedWallpapers/a.png", 2h, 600 * mebibyte)};
    put("GeneratedWallpapers/b.png", 1h, mebibyte);
    EXPECT_EQ(periodicSweep(), (CacheSweepResult{1, mebibyte}));
    EXPECT_THAT(left("GeneratedWallpapers"), ElementsAre("a.png"));
}

TEST_F(CacheMaintenanceTest, whatIsWrittenBetweenTheSweepsKeepsWithinTheLimitWhoeverPreparesAPicture) {
    periodicSweep();
    const CacheFileLease preparing(protection, cache / "GeneratedWallpapers", true);
    std::int64_t most = 0;
    int sweeps = 0;
    for (int i = 0; i < 200; ++i) {
        const fs::path file =
            put("GeneratedWallpapers/" + std::to_string(1000 + i), -1min * i, 10 * mebibyte);
        const CacheFileLease shown(protection, file);
        most = std::max<std::int64_t>(most, std::ssize(left("GeneratedWallpapers")));
        if (outcomeOf(loop, tasks, service.hasRoomAfter(file))->value.value()) continue;
        ++sweeps;
        resultOf(service.makeRoom(referenced, protectedFiles, clock.now()));
    }
    EXPECT_EQ(most, 52) << "512 MiB and one picture";
    EXPECT_LT(sweeps, 60) << "not one for each picture";
}

TEST_F(CacheMaintenanceTest, halfFilesOfKilledProcessesGoAndNothingElse) {
    const Environment environment{{"HOME", folder.path()}, {"XDG_DATA_HOME", folder.path() / "data"}};
    cache = folder.path();
    std::vector<fs::path> ours;
    std::vector<fs::path> others;
    for (const char* name :
         {"data/Quillmar/.settings.json.aB3dEf", "data/Quillmar/.settings.json.unsaved.aB3dEf",
          "data/Quillmar/Desktop/.composed-1.png.aB3dEf", "data/Quillmar/Desktop/Former/.former.json.aB3dEf",
          "data/Quillmar/Cache/GeneratedWallpapers/.a.png.aB3dEf",
          "data/Quillmar/Cache/LastShown/.a.rows.aB3dEf", ".local/state/Quillmar/.history.aB3dEf",
          "Pictures/Quillmar/.Blue. Hour 0c499432.png.xmp.aB3dEf"})
        ours.push_back(put(name, 1s));
    for (const char* name : {"data/Quillmar/.settings.json.swp", "data/Quillmar/.notes.txt.aB3dEf",
                             "data/Quillmar/Desktop/.former.json.backup", ".local/state/Quillmar/.aB3dEf",
                             "Pictures/Quillmar/.holiday.png.aB3dEf"})
        others.push_back(put(name, 1s));
    others.push_back(put(".local/state/Quillmar/.trash.aB3dEf", -1s));  // written just now
    removeLeftovers(environment, clock.now());
    const auto isThere = [](const fs::path& file) { return fs::exists(file); };
    EXPECT_TRUE(std::ranges::none_of(ours, isThere));
    EXPECT_TRUE(std::ranges::all_of(others, isThere));
}

TEST_F(CacheMaintenanceTest, importsThatNothingRefersToGoAtTheStartAndAtNoOtherTime) {
    referenced = {put("Videos/used.mp4", 0s), cache / "PDFs/gone.pdf"};
    put("Videos/forgotten.mp4", 0s);
    put("Videos/.hidden", 900 * 24h);
    put("PDFs/forgotten.pdf", 0s);
    put("Images/import.png", 900 * 24h);
    put("Images/remote-new.jpg", 0s);
    fs::create_directory(cache / "Videos/folder");
    fs::create_symlink(cache / "Videos/used.mp4", cache / "Videos/link.mp4");
    const CacheFileLease lease(protection, put("Images/leased.png", 0s));
    EXPECT_EQ(periodicSweep(), CacheSweepResult{});

    const auto known = std::exchange(referenced, std::nullopt);
    EXPECT_EQ(sweep(), CacheSweepResult{}) << "settings that could not be read";
    referenced = known;
    EXPECT_EQ(sweep(), (CacheSweepResult{3, 3}));
    EXPECT_THAT(left("Videos"), ElementsAre(".hidden", "folder", "link.mp4", "used.mp4"));
    EXPECT_THAT(left("PDFs"), IsEmpty());
    EXPECT_THAT(left("Images"), ElementsAre("leased.png", "remote-new.jpg"));
}

TEST_F(CacheMaintenanceTest, whatPlaybackAndImportsLeftBehindGoesAfterADay) {
    put("VideoPlayback/stale/deep/a.mp4", 0s, 5000);
    put("VideoPlayback/fresh/a.mp4", 900 * 24h);
    put("VideoPlayback/file.mp4", 900 * 24h);
    changedBefore(cache / "VideoPlayback/stale", 24h + 1s);
    changedBefore(cache / "VideoPlayback/fresh", 24h);
    fs::create_directory_symlink(cache / "VideoPlayback/fresh", cache / "VideoPlayback/link");
    const CacheFileLease lease(protection, cache / "VideoPlayback/stale/deep/a.mp4");
    put("MediaImportStaging/stale.mp4", 24h + 1s, 100);
    put("MediaImportStaging/fresh.mp4", 24h);
    const CacheFileLease staging(protection, put("MediaImportStaging/leased.mp4", 900 * 24h));
    put("Favicons/old.ico", 60 * 24h + 1s, 10);
    put("Favicons/new.ico", 1h, 33 * mebibyte);
    EXPECT_EQ(sweep(), (CacheSweepResult{4, 110 + 33 * mebibyte})) << "the sparse file of 5000 takes no room";
    EXPECT_THAT(left("VideoPlayback"), ElementsAre("file.mp4", "fresh", "link"));
    EXPECT_THAT(left("MediaImportStaging"), ElementsAre("fresh.mp4", "leased.mp4"));
    EXPECT_THAT(left("Favicons"), IsEmpty());
}

TEST_F(CacheMaintenanceTest, aCacheThatIsMissingOrInTheWayYieldsNothing) {
    EXPECT_EQ(sweep(), CacheSweepResult{});
    fs::create_directory(cache);
    std::ofstream(cache / "Images") << "a file in the way";
    fs::create_directories(cache / "GeneratedWallpapers/remote-folder");
    EXPECT_EQ(sweep(), CacheSweepResult{});
    const CacheMaintenanceService nowhere(executor, protection, std::nullopt, {});
    EXPECT_EQ(resultOf(nowhere.sweep(FilePaths{}, {}, clock.now())), CacheSweepResult{});
}

struct CacheMaintenanceSchedulerTest : ::testing::Test {
    VirtualLoop loop;
    int sweeps = 0;
    bool isBroken = false;
    CacheMaintenanceScheduler scheduler{loop, [this] { return sweep(); }};
    Task<void> sweep() {
        ++sweeps;
        if (isBroken) throw std::runtime_error("no screens");
        co_return;
    }
};

TEST_F(CacheMaintenanceSchedulerTest, itSweepsEveryHalfHourUntilItIsStopped) {
    scheduler.start();
    loop.advance(20min);
    scheduler.start();
    loop.advance(10min - 1s);
    EXPECT_EQ(sweeps, 0);
    loop.advance(1s);
    EXPECT_EQ(sweeps, 1);
    loop.advance(24h);
    EXPECT_EQ(sweeps, 49);
    scheduler.stop();
    scheduler.stop();
    loop.advance(24h);
    EXPECT_EQ(sweeps, 49);
    EXPECT_EQ(loop.pendingCount(), 0u);
    scheduler.start();
    loop.advance(30min);
    EXPECT_EQ(sweeps, 50);
}

TEST_F(CacheMaintenanceSchedulerTest, aSweepThatFailsIsReportedAndNotTheLast) {
    isBroken = true;
    scheduler.start();
    loop.advance(30min);
    EXPECT_TRUE(loop.takeFailure());
    isBroken = false;
    loop.advance(30min);
    EXPECT_EQ(sweeps, 2);
}

}  // namespace
}  // namespace quillmar

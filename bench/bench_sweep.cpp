// How much processor time a full sweep of a large cache takes: 100,000 downloads, all stamped, of which a
// tenth is too old and as many again are above the size limit.
#include <fmt/format.h>

#include <ctime>
#include <fstream>

#include "async/TaskScope.h"
#include "fakes/FakeExecutors.h"
#include "fakes/TemporaryFolder.h"
#include "fakes/VirtualLoop.h"
#include "storage/CacheFileLease.h"
#include "storage/CacheMaintenanceService.h"
#include "storage/LastUsedStamp.h"

namespace {

using namespace quillmar;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

constexpr int fileCount = 100'000;
constexpr std::uintmax_t fileBytes = 6'710;  // nine tenths of them are above 512 MiB
constexpr double budget = 1.0;

void fill(const fs::path& images, WallTime now) {
    fs::create_directories(images);
    for (int i = 0; i < fileCount; ++i) {
        const fs::path file = images / fmt::format("remote-{:064}.jpg", i);
        std::ofstream(file).close();
        fs::resize_file(file, fileBytes);
        const WallTime used = now - (i % 10 == 0 ? 40 * 24h : std::chrono::seconds(i * 7 % fileCount));
        fs::last_write_time(file, std::chrono::file_clock::from_sys(used));
        stampLastUsed(file, used);
    }
}

double processorSeconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

bool sweepsWithinBudget(const CacheMaintenanceService& service, VirtualLoop& loop, WallTime now) {
    CacheSweepResult result;
    TaskScope tasks(loop);
    const double begin = processorSeconds();
    tasks.spawn([](const CacheMaintenanceService* by, WallTime at, CacheSweepResult* to) -> Task<void> {
        *to = co_await by->sweep(FilePaths{}, {}, at);
    }(&service, now, &result));
    loop.settle();
    const double seconds = processorSeconds() - begin;
    fmt::print("{} files, {} removed: {:.3f} s of processor time\n", fileCount, result.removedItems, seconds);
    return seconds <= budget;
}

}  // namespace

int main() {
    const TemporaryFolder folder;
    VirtualLoop loop;
    const VirtualWallClock clock(loop);
    InlineExecutor executor;
    CacheFileProtection protection;
    const CacheMaintenanceService service(executor, protection, folder.path(), {});
    fill(folder.path() / "Images", clock.now());
    // As many as a desktop with several displays and their modes holds.
    std::vector<CacheFileLease> leases;
    for (int i = 0; i < 50; ++i) {
        leases.emplace_back(protection, folder.path() / "Images" / fmt::format("remote-{:064}.jpg", i));
    }
    const bool isFirstWithin = sweepsWithinBudget(service, loop, clock.now());
    const bool isSecondWithin = sweepsWithinBudget(service, loop, clock.now());
    return isFirstWithin && isSecondWithin ? 0 : 1;
}

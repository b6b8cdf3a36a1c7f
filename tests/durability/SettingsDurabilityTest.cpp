// A process that saves without a pause is killed at random moments. The real loop, threads and files.
#include <poll.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <random>

#include "async/ThreadPool.h"
#include "fakes/FakeExecutors.h"
#include "fakes/FullDocument.h"
#include "fakes/TaskOutcome.h"
#include "fakes/TemporaryFolder.h"
#include "fakes/VirtualLoop.h"
#include "linux/glib/GlibMainLoop.h"
#include "settings/AppSettingsModel.h"
#include "settings/SettingsStore.h"

namespace quillmar {
namespace {

using ::testing::AllOf;
using ::testing::Ge;
using ::testing::IsEmpty;
using ::testing::Le;
namespace fs = std::filesystem;

/// What the killed process leaves behind in shared memory.
struct Progress {
    std::atomic<int> begun = 0;      ///< highest number that was handed to a save
    std::atomic<int> completed = 0;  ///< highest number whose save was reported as done
};
static_assert(std::atomic<int>::is_always_lock_free);

/// Documents that tell their number, and differ in length so that parts of two never make a whole.
class Documents {
public:
    AppSettings numbered(int number) const {
        AppSettings settings = base_;
        settings.lastLaunchedAppVersion = std::to_string(number);
        settings.wallpaper.displays.resize(1 + static_cast<std::size_t>(number % 4));
        settings.lockScreen.displays.resize(1);
        settings.screensaver.displays.resize(1 + static_cast<std::size_t>(number % 3));
        return settings;
    }
    static int numberOf(const AppSettings& settings) { return std::stoi(settings.lastLaunchedAppVersion); }

private:
    AppSettings base_ = fullDocument();
};

/// Saves one document after the other, in each of the ways that the program has; ends only with the process.
Task<void> saveForEver(AppSettingsModel& model, const Documents& documents, Progress& progress) {
    co_await model.loaded();
    for (int number = Documents::numberOf(model.settings()) + 1;; ++number) {
        progress.begun = number;
        const AppSettings document = documents.numbered(number);
        const SettingsUpdate change = [document](AppSettings& settings) { settings = document; };
        bool isSaved = false;
        if (number % 3 == 0) {
            isSaved = co_await model.commit(change);
        } else if (number % 3 == 1) {
            isSaved = co_await model.replaceSettings(document);
        } else {
            model.update(change);
            isSaved = co_await model.flushPendingSave();
        }
        if (!isSaved) ::_exit(1);
        progress.completed = number;
    }
}

[[noreturn]] void live(const fs::path& file, const Documents& documents, Progress& progress) {
    GlibMainLoop loop;
    ThreadPool pool(2);
    SerialExecutor executor(pool);
    EventBus notifications;
    CacheFileProtection cacheFiles;
    SettingsStore store(file, documents.numbered(0), executor);
    AppSettingsModel model(loop, notifications, store, documents.numbered(0), cacheFiles);
    TaskScope tasks(loop);
    tasks.spawn(saveForEver(model, documents, progress));
    loop.run();
    ::_exit(1);
}

class SettingsDurabilityTest : public ::testing::Test {
protected:
    SettingsDurabilityTest() {
        void* shared =
            ::mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (shared == MAP_FAILED) throw std::runtime_error("no shared memory");
        progress_ = new (shared) Progress;
    }
    ~SettingsDurabilityTest() override { ::munmap(progress_, sizeof(Progress)); }

    /// One life of the process, killed `span` after its start or after its first save begins. False when it
    /// ended by itself.
    bool livesAndIsKilledAfter(std::chrono::microseconds span, bool isCountedFromItsFirstSave) {
        const int begunBefore = progress_->begun;
        const pid_t child = ::fork();
        if (child == 0) live(file_, documents_, *progress_);
        if (child < 0) return false;
        const int descriptor = static_cast<int>(::syscall(SYS_pidfd_open, child, 0));
        const auto endsWithin = [descriptor](std::chrono::microseconds time) {
            pollfd end{.fd = descriptor, .events = POLLIN, .revents = 0};
            const timespec timeout{.tv_sec = 0, .tv_nsec = std::chrono::nanoseconds(time).count()};
            return ::ppoll(&end, 1, &timeout, nullptr) > 0;
        };
        if (isCountedFromItsFirstSave) {
            while (progress_->begun == begunBefore && !endsWithin(std::chrono::microseconds(200))) {
            }
        }
        endsWithin(span);
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        ::close(descriptor);
        return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
    }

    /// The document that the next start finds; a failure to load ends the test.
    AppSettings loaded() {
        VirtualLoop loop;
        InlineExecutor executor;
        SettingsStore store(file_, documents_.numbered(0), executor);
        TaskScope tasks(loop);
        const auto outcome = outcomeOf(loop, tasks, store.load());
        if (!outcome->value) throw std::runtime_error(outcome->text);
        return outcome->value->settings;
    }

    std::vector<std::string> litter() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder_.path())) {
            if (entry.path() != file_) names.push_back(entry.path().filename());
        }
        return names;
    }

    TemporaryFolder folder_;
    fs::path file_ = folder_.path() / "settings.json";
    Documents documents_;
    Progress* progress_ = nullptr;
};

TEST_F(SettingsDurabilityTest, aProcessKilledAtAnyMomentLosesNoSaveThatWasDone) {
    const auto seed = std::random_device()();
    SCOPED_TRACE(::testing::Message() << "seed " << seed);
    std::minstd_rand random(seed);
    std::uniform_int_distribution<int> microseconds(500, 60'000);
    int killedDuringASave = 0;
    for (int life = 0; life < 300; ++life) {
        SCOPED_TRACE(::testing::Message() << "life " << life);
        if (life % 10 == 0) {
            // Now and then the first save of all is among those that are cut off.
            fs::remove(file_);
            progress_->begun = progress_->completed = 0;
        }
        ASSERT_TRUE(livesAndIsKilledAfter(std::chrono::microseconds(microseconds(random)), life % 2 == 0));
        if (!litter().empty()) ++killedDuringASave;
        const AppSettings settings = loaded();
        const int number = Documents::numberOf(settings);
        ASSERT_THAT(number, AllOf(Ge(progress_->completed.load()), Le(progress_->begun.load())));
        ASSERT_TRUE(settings == documents_.numbered(number));
        ASSERT_THAT(litter(), IsEmpty());
    }
    // Else no kill has met the moments that this is about.
    EXPECT_GT(killedDuringASave, 0);
    EXPECT_GT(progress_->completed, 0);
    RecordProperty("saves", progress_->completed);
    RecordProperty("killedDuringASave", killedDuringASave);
}

}  // namespace
}  // namespace quillmar

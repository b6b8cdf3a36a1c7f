// Loading and saving a document of 16 displays that have every kind saved, and where that work is done.
#include <fmt/format.h>

#include <algorithm>
#include <thread>

#include "async/TaskScope.h"
#include "async/ThreadPool.h"
#include "fakes/FakeExecutors.h"
#include "fakes/FullDocument.h"
#include "fakes/TemporaryFolder.h"
#include "fakes/VirtualLoop.h"
#include "settings/SettingsStore.h"

namespace quillmar {
namespace {

using Clock = std::chrono::steady_clock;

AppSettings sixteenDisplays() {
    AppSettings settings = fullDocument();
    settings.wallpaper.displays.resize(16);
    settings.lockScreen.displays.resize(16, settings.lockScreen.displays.back());
    settings.screensaver.displays.resize(16);
    return settings;
}

double medianMilliseconds(int times, const std::function<void()>& work) {
    std::vector<double> samples;
    for (int i = 0; i < times; ++i) {
        const auto began = Clock::now();
        work();
        samples.push_back(std::chrono::duration<double, std::milli>(Clock::now() - began).count());
    }
    std::ranges::nth_element(samples, samples.begin() + times / 2);
    return samples[static_cast<std::size_t>(times / 2)];
}

/// Notes which threads the store's work ran on.
class WatchedExecutor final : public Executor {
public:
    explicit WatchedExecutor(Executor& next) : next_(next) {}
    bool ranOnMainThread = false;
    void submit(Job job) override {
        next_.submit([this, job = std::move(job)]() mutable {
            ranOnMainThread = ranOnMainThread || std::this_thread::get_id() == main_;
            job();
        });
    }

private:
    Executor& next_;
    std::thread::id main_ = std::this_thread::get_id();
};

int run() {
    const AppSettings settings = sixteenDisplays();
    const std::string text = encodeSettings(settings);
    TemporaryFolder folder;
    VirtualLoop loop;
    ThreadPool pool(1);
    WatchedExecutor executor(pool);
    SettingsStore store(folder.path() / "settings.json", settings, executor);
    TaskScope tasks(loop);
    const auto finish = [&](auto handle) { loop.settleUntil([&] { return handle.isFinished(); }); };

    fmt::print("document: {} displays, {} KB\n", 16, text.size() / 1024);
    fmt::print("encode            {:6.2f} ms\n", medianMilliseconds(50, [&] { encodeSettings(settings); }));
    fmt::print("decode            {:6.2f} ms\n", medianMilliseconds(50, [&] { decodeSettings(text); }));
    // On this thread: the way to another one and back would be measured in turns of the loop.
    InlineExecutor here;
    SettingsStore inlineStore(folder.path() / "settings.json", settings, here);
    fmt::print("save, disk synced {:6.2f} ms\n",
               medianMilliseconds(20, [&] { finish(tasks.start(inlineStore.save(settings))); }));
    fmt::print("load              {:6.2f} ms\n",
               medianMilliseconds(20, [&] { finish(tasks.start(inlineStore.load())); }));
    const auto began = Clock::now();
    const auto handle = tasks.start(store.save(settings));
    loop.settle();
    const double held = std::chrono::duration<double, std::milli>(Clock::now() - began).count();
    finish(handle);
    fmt::print("a save holds the main thread for {:.3f} ms (the copy of the document)\n", held);
    fmt::print("file work on the main thread: {}\n", executor.ranOnMainThread ? "YES" : "none");
    return executor.ranOnMainThread ? 1 : 0;
}

}  // namespace
}  // namespace quillmar

int main() { return quillmar::run(); }

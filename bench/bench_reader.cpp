// What it costs that pictures are read in a process of their own: a whole request against the same work done
// here, the bare process, and what 100 pictures of every format leave behind in the one that asked.
#include <fmt/core.h>
#include <glib.h>

#include <fstream>

#include "Measuring.h"
#include "PhotoSamples.h"
#include "async/TaskScope.h"
#include "async/ThreadPool.h"
#include "fakes/TemporaryFolder.h"
#include "linux/glib/GlibMainLoop.h"
#include "linux/picture/LinuxPictureEncoding.h"
#include "linux/render/ProcessPictureRendering.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;

struct Agent {
    GlibMainLoop loop;
    ThreadPool pool{3};
    ProcessPictureRendering rendering{pool, ProcessPictureRendering::installedProgram()};

    template <class T>
    T awaited(Task<T> task) {
        TaskScope scope(loop);
        std::optional<T> value;
        scope.spawn(keep(std::move(task), &value));
        while (!value) g_main_context_iteration(nullptr, TRUE);
        return std::move(*value);
    }
    SharedPixels render(const fs::path& file, PixelSize canvas) {
        return awaited(rendering.render(file, [canvas](PixelSize size) {
            return PictureComposition{canvas, {}, filling(size, canvas), false, {}};
        }));
    }

private:
    template <class T>
    static Task<void> keep(Task<T> task, std::optional<T>* value) {
        value->emplace(co_await std::move(task));
    }
};

void measure(Agent& agent, const char* name, int rounds, const std::function<void(Agent&)>& work) {
    std::vector<double> times;
    for (int i = 0; i < rounds; ++i) {
        const auto start = std::chrono::steady_clock::now();
        work(agent);
        times.push_back(millisecondsSince(start));
    }
    std::ranges::sort(times);
    fmt::print("{:<44} {:6.1f} ms (best {:.1f})\n", name, times[times.size() / 2], times.front());
}

/// In MB, of this process alone.
double privateMemory() {
    std::ifstream file("/proc/self/smaps_rollup");
    double kilobytes = 0;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("Private_")) kilobytes += std::stod(line.substr(line.find(':') + 1));
    }
    return kilobytes / 1024;
}

void run() {
    const TemporaryFolder folder;
    const fs::path large = folder.path() / "large.jpg";
    const fs::path small = folder.path() / "small.jpg";
    const fs::path dot = folder.path() / "dot.jpg";
    const fs::path cached = folder.path() / "cached.png";
    inChild([&] {
        Photo(6000, 4000).saveJpeg(large, 2);
        Photo(1920, 1080).saveJpeg(small, 2);
        Photo(8, 8).saveJpeg(dot, 2);
    });
    Agent agent;
    LinuxPictureEncoding().writePng(*agent.render(large, {3840, 2160}), cached);
    fmt::print("Medians, from the request to the pixels:\n");
    measure(agent, "the bare process: is an 8x8 JPEG a picture?", 41,
            [&](Agent& a) { a.awaited(a.rendering.isPicture(dot)); });
    measure(agent, "a 24 MP JPEG to 3840x2160", 9, [&](Agent& a) { a.render(large, {3840, 2160}); });
    measure(agent, "a 1920x1080 JPEG to itself", 15, [&](Agent& a) { a.render(small, {1920, 1080}); });
    measure(agent, "a cached PNG of 3840x2160", 15,
            [&](Agent& a) { a.awaited(a.rendering.load(cached, {3840, 2160})); });

    std::vector<fs::path> pictures{small};
    for (const char* format : {"png", "webp", "tif", "gif", "heic", "avif"}) {
        const fs::path other = folder.path() / ("picture." + std::string(format));
        command({"vips", "resize", small, other, "0.5"});
        pictures.push_back(other);
        measure(agent, fmt::format("960x540 as {}, to 1280x720", format).c_str(), 3,
                [&](Agent& a) { a.render(other, {1280, 720}); });
    }
    const double before = privateMemory();
    for (std::size_t i = 0; i < 100; ++i) agent.render(pictures[i % pictures.size()], {1280, 720});
    fmt::print("private memory after one picture of every format {:.1f} MB, after 100 {:.1f} MB\n", before,
               privateMemory());
}

}  // namespace
}  // namespace quillmar

int main() { quillmar::run(); }

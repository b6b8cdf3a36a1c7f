// Downloads the picture at a web address as the program does, into a folder: how fast, and what memory it
// took.
#include <fmt/format.h>

#include <chrono>
#include <fstream>
#include <iostream>

#include "async/TaskScope.h"
#include "async/ThreadPool.h"
#include "base/PublicAddress.h"
#include "fakes/TemporaryFolder.h"
#include "linux/glib/GlibMainLoop.h"
#include "linux/glib/SystemWallClock.h"
#include "linux/soup/SoupHTTPSession.h"
#include "remote/fetching/RemoteImageFetcher.h"

namespace quillmar {
namespace {

/// Takes every file for a picture: what decoding costs is measured elsewhere.
class NoLook final : public PictureRendering {
public:
    Task<SharedPixels> render(std::filesystem::path, PictureComposer) override { co_return SharedPixels(); }
    Task<SharedPixels> load(std::filesystem::path, PixelSize) override { co_return SharedPixels(); }
    Task<bool> isPicture(std::filesystem::path) override { co_return true; }
};

double peakMegabytes() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmHWM:")) return std::stod(line.substr(6)) / 1024;
    }
    return 0;
}
void forgetPeak() { std::ofstream("/proc/self/clear_refs") << "5"; }

class Bench {
public:
    explicit Bench(Url url) : url_(std::move(url)) {}
    /// Seconds that a download took.
    double run() {
        const auto began = std::chrono::steady_clock::now();
        TaskScope tasks(loop_);
        tasks.spawn(download());
        loop_.run();
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
    }

private:
    Task<void> download() {
        const auto file = co_await fetcher_.downloadImage({"bench", url_}, url_);
        std::filesystem::remove(file);
        loop_.quit();
    }

    Url url_;
    TemporaryFolder folder_;
    GlibMainLoop loop_;
    SystemWallClock clock_;
    ThreadPool pool_{2};
    SoupHTTPSession session_{loop_, 3, &isPublicAddress};
    NoLook pictures_;
    RemoteImageFetcher fetcher_{
        session_, pool_, pictures_, clock_, {folder_.path() / "cache", folder_.path(), "bench"}};
};

}  // namespace
}  // namespace quillmar

int main(int argc, char** argv) {
    using namespace quillmar;
    if (argc != 3) return 2;
    const Url url = *Url::parse(argv[1]);
    Bench(url).run();
    forgetPeak();
    const double before = peakMegabytes();
    for (int round = 0; round < std::stoi(argv[2]); ++round)
        std::cout << fmt::format("{:.4f}\n", Bench(url).run());
    std::cout << fmt::format("peak memory grew by {:.2f} MB\n", peakMegabytes() - before);
}

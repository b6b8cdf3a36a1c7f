// From a photograph to a display's wallpaper: time against decoding alone and against other programs, memory,
// and closeness to an exact filter. Ratios count; the milliseconds are this machine's.
#include <fmt/core.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <functional>
#include <numbers>

#include "PhotoSamples.h"
#include "desktop/CanvasLayout.h"
#include "fakes/TemporaryFolder.h"
#include "linux/picture/LinuxPictureRendering.h"
#include "linux/picture/PngReader.h"
#include "wallpaper/GeneratedWallpaper.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;

struct Child {
    double milliseconds;
    double megabytes;
};

double millisecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// The shortest of several goes, by the clock and by the processors' time, which a busy machine disturbs
/// less.
struct Best {
    double wall = 1e9;
    double processor = 1e9;

    void take(const std::function<void()>& work) {
        const auto start = std::chrono::steady_clock::now();
        const std::clock_t spent = std::clock();
        work();
        processor = std::min(processor, 1e3 * static_cast<double>(std::clock() - spent) / CLOCKS_PER_SEC);
        wall = std::min(wall, millisecondsSince(start));
    }
};

/// Runs work in a process of its own, for its time from the start on and its largest size.
Child inChild(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = ::fork();
    if (child == 0) {
        work();
        ::_exit(0);
    }
    int status = 0;
    rusage usage{};
    ::wait4(child, &status, 0, &usage);
    if (status != 0) return {NAN, NAN};
    return {millisecondsSince(start), static_cast<double>(usage.ru_maxrss) / 1024};
}

Child command(std::vector<std::string> words) {
    return inChild([&] {
        std::vector<char*> arguments;
        for (std::string& word : words) arguments.push_back(word.data());
        arguments.push_back(nullptr);
        ::execvp(arguments[0], arguments.data());
        ::_exit(127);
    });
}

void render(const fs::path& source, const fs::path& target, PixelSize canvas) {
    const Canvas whole{canvas, static_cast<double>(canvas.width), static_cast<double>(canvas.height)};
    LinuxPictureRendering().renderImage(
        source,
        [&](PixelSize size) { return compositionOf(ImagePresentationLayout::fill, whole, {}, "", size); },
        target);
}

/// One axis of the exact filter: `count` results out of `size` samples, `from` the whole result's first.
std::vector<std::vector<std::pair<int, double>>> exactAxis(int size, double length, double from, int count) {
    const double step = size / length;
    const double stretch = std::max(step, 1.0);
    std::vector<std::vector<std::pair<int, double>>> axis(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const double center = (i + from + 0.5) * step - 0.5;
        double sum = 0;
        auto& own = axis[static_cast<std::size_t>(i)];
        for (int s = std::max(0, static_cast<int>(center - 3 * stretch));
             s < std::min(size, static_cast<int>(center + 3 * stretch) + 2); ++s) {
            const double x = std::numbers::pi * (s - center) / stretch;
            if (std::abs(x) >= 3 * std::numbers::pi) continue;
            sum += own.emplace_back(s, x == 0 ? 1 : 3 * std::sin(x) * std::sin(x / 3) / (x * x)).second;
        }
        for (auto& [sample, weight] : own) weight /= sum;
    }
    return axis;
}

double psnrAgainstExactFilter(const fs::path& source, const fs::path& target, PixelSize canvas) {
    const DecodedJpeg full = decodeJpeg(source, 8, true);
    const double scale = std::max(static_cast<double>(canvas.width) / full.width,
                                  static_cast<double>(canvas.height) / full.height);
    const double width = std::round(full.width * scale);
    const double height = std::round(full.height * scale);
    const auto across = exactAxis(full.width, width, std::round((width - canvas.width) / 2), canvas.width);
    const auto down = exactAxis(full.height, height, std::round((height - canvas.height) / 2), canvas.height);
    PngReader rendered(target, PngReader::PixelOrder::redGreenBlueUnused);
    Bytes row(static_cast<std::size_t>(canvas.width) * 4);
    std::vector<double> column(static_cast<std::size_t>(full.width) * 4);
    double squares = 0;
    for (const auto& vertical : down) {
        std::ranges::fill(column, 0);
        for (const auto& [y, weight] : vertical) {
            const std::uint8_t* pixels = &full.rgbx[static_cast<std::size_t>(y) * column.size()];
            for (std::size_t i = 0; i < column.size(); ++i) column[i] += weight * pixels[i];
        }
        rendered.readRow(row);
        for (std::size_t x = 0; x < across.size(); ++x) {
            for (std::size_t channel = 0; channel < 3; ++channel) {
                double exact = 0;
                for (const auto& [s, weight] : across[x])
                    exact += weight * column[static_cast<std::size_t>(s) * 4 + channel];
                const double difference = std::clamp(exact, 0.0, 255.0) - row[x * 4 + channel];
                squares += difference * difference;
            }
        }
    }
    return 10 * std::log10(255.0 * 255 * 3 * canvas.width * canvas.height / squares);
}

void compare(const char* name, const fs::path& source, PixelSize canvas, unsigned eighths) {
    const fs::path target = source.parent_path() / "canvas.png";
    const fs::path other = source.parent_path() / "other.png";
    Best decoding;
    Best rendering;
    double thumbnail = 1e9;
    Child child{};
    for (int round = 0; round < 7; ++round) {
        decoding.take([&] { decodeJpeg(source, eighths, false); });
        rendering.take([&] { render(source, target, canvas); });
        if (round > 2) continue;
        child = inChild([&] { render(source, target, canvas); });
        const std::string size = fmt::format("{}x{}", canvas.width, canvas.height);
        thumbnail =
            std::min(thumbnail,
                     command({"vipsthumbnail", source, "--size", size, "--smartcrop", "centre", "-o", other})
                         .milliseconds);
    }
    const std::string size = fmt::format("{}x{}", canvas.width, canvas.height);
    const Child magick =
        command({"convert", source, "-resize", size + "^", "-gravity", "center", "-extent", size, other});
    fmt::print(
        "{:<16} {:<9} {:4.0f} ms = {:.2f}x decoding ({:.0f} ms), processors {:.2f}x; {:.1f}x vipsthumbnail, "
        "{:.1f}x convert; {:.0f} MB, {:.1f} dB, file {:.1f} MB\n",
        name, size, rendering.wall, rendering.wall / decoding.wall, decoding.wall,
        rendering.processor / decoding.processor, thumbnail / rendering.wall,
        magick.milliseconds / rendering.wall, child.megabytes, psnrAgainstExactFilter(source, target, canvas),
        static_cast<double>(fs::file_size(target)) / 1e6);
}

void run() {
    const TemporaryFolder folder;
    const fs::path half = folder.path() / "half.jpg";
    const fs::path full = folder.path() / "full.jpg";
    const fs::path progressive = folder.path() / "progressive.jpg";
    // In children, so that the pictures' own memory does not count below.
    inChild([&] {
        const Photo photo(6000, 4000);
        photo.saveJpeg(half, 2);
        photo.saveJpeg(full, 1);
    });
    inChild([&] { Photo(8660, 5773).saveJpeg(progressive, 1, true); });
    for (const auto& [canvas, eighths] : {std::pair{PixelSize{3840, 2160}, 8u}, {{1920, 1080}, 4u}}) {
        compare("24 MP JPEG 4:2:0", half, canvas, eighths);
        compare("24 MP JPEG 4:4:4", full, canvas, eighths);
    }
    const fs::path target = folder.path() / "canvas.png";
    const Child large = inChild([&] { render(progressive, target, {3840, 2160}); });
    fmt::print("50 MP progressive 4:4:4: {:.0f} ms, {:.0f} MB\n", large.milliseconds, large.megabytes);
    bool isValid = true;
    Best hit;
    hit.take([&] {
        for (int i = 0; i < 1000; ++i) isValid = isValid && isValidGeneratedPng(target, {3840, 2160});
    });
    fmt::print("finding it in the cache again: {:.1f} us{}\n", hit.wall, isValid ? "" : ", NOT VALID");
}

}  // namespace
}  // namespace quillmar

int main() { quillmar::run(); }

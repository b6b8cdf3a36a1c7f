// From a photograph to a display's pixels, and from a cached PNG: time against decoding alone, against libpng
// and against other programs, memory, and closeness to an exact filter. Ratios count; the milliseconds are
// this machine's.
#include <fcntl.h>
#include <fmt/core.h>
#include <png.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "Measuring.h"
#include "PhotoSamples.h"
#include "desktop/CanvasLayout.h"
#include "fakes/TemporaryFolder.h"
#include "linux/picture/LinuxPictureEncoding.h"
#include "render/PictureDrawing.h"
#include "render/PictureFile.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;

FileDescriptor opened(const fs::path& file) {
    return FileDescriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
}

void render(const fs::path& source, PixelBuffer& canvas) {
    const FileDescriptor file = opened(source);
    PictureDrawing drawing(openPicture(file.get(), formatOf(file.get()), nullptr));
    const PixelRect whole = filling(drawing.size(), canvas.size());
    drawing.drawOn({canvas.bytes(), canvas.size()}, {canvas.size(), {}, whole, false, {}});
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

double psnrAgainstExactFilter(const fs::path& source, const PixelBuffer& rendered) {
    const PixelSize canvas = rendered.size();
    const DecodedJpeg full = decodeJpeg(source, 8, true);
    const double scale = std::max(static_cast<double>(canvas.width) / full.width,
                                  static_cast<double>(canvas.height) / full.height);
    const double width = std::round(full.width * scale);
    const double height = std::round(full.height * scale);
    const auto across = exactAxis(full.width, width, std::round((width - canvas.width) / 2), canvas.width);
    const auto down = exactAxis(full.height, height, std::round((height - canvas.height) / 2), canvas.height);
    int y = 0;
    std::vector<double> column(static_cast<std::size_t>(full.width) * 4);
    double squares = 0;
    for (const auto& vertical : down) {
        std::ranges::fill(column, 0);
        for (const auto& [line, weight] : vertical) {
            const std::uint8_t* pixels = &full.rgbx[static_cast<std::size_t>(line) * column.size()];
            for (std::size_t i = 0; i < column.size(); ++i) column[i] += weight * pixels[i];
        }
        const std::span row = rendered.row(y++);
        for (std::size_t x = 0; x < across.size(); ++x) {
            for (std::size_t channel = 0; channel < 3; ++channel) {
                double exact = 0;
                for (const auto& [s, weight] : across[x])
                    exact += weight * column[static_cast<std::size_t>(s) * 4 + channel];
                const double difference = std::clamp(exact, 0.0, 255.0) - row[x * 4 + 2 - channel];
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
    Best writing;
    double thumbnail = 1e9;
    double memory = 0;
    PixelBuffer pixels(canvas);
    const std::string size = fmt::format("{}x{}", canvas.width, canvas.height);
    for (int round = 0; round < 9; ++round) {
        decoding.take([&] { decodeJpeg(source, eighths, false); });
        rendering.take([&] { render(source, pixels); });
        if (round > 2) continue;
        memory = inChild([&] { render(source, pixels); }).megabytes;
        writing.take([&] { LinuxPictureEncoding().writePng(pixels, target); });
        thumbnail =
            std::min(thumbnail,
                     command({"vipsthumbnail", source, "--size", size, "--smartcrop", "centre", "-o", other})
                         .milliseconds);
    }
    const Child magick =
        command({"convert", source, "-resize", size + "^", "-gravity", "center", "-extent", size, other});
    const double whole = rendering.wall + writing.wall;
    fmt::print(
        "{:<16} {:<9} {:4.0f} ms = {:.2f}x decoding ({:.0f} ms), processors {:.2f}x; with its PNG {:.0f} ms: "
        "{:.1f}x vipsthumbnail, {:.1f}x convert; {:.0f} MB, {:.1f} dB, file {:.1f} MB\n",
        name, size, rendering.wall, rendering.wall / decoding.wall, decoding.wall,
        rendering.processor / decoding.processor, whole, thumbnail / whole, magick.milliseconds / whole,
        memory, psnrAgainstExactFilter(source, pixels), static_cast<double>(fs::file_size(target)) / 1e6);
}

/// As the fastest simple use of libpng: straight into the pixels.
void loadWithLibpng(const fs::path& file, PixelBuffer& pixels) {
    png_image image{.version = PNG_IMAGE_VERSION};
    image.opaque = nullptr;
    png_image_begin_read_from_file(&image, file.c_str());
    image.format = PNG_FORMAT_BGRA;
    png_image_finish_read(&image, nullptr, pixels.bytes().data(), 0, nullptr);
}

void compareLoading(const fs::path& source, PixelSize canvas) {
    const fs::path file = source.parent_path() / "canvas.png";
    PixelBuffer pixels(canvas);
    render(source, pixels);
    LinuxPictureEncoding().writePng(pixels, file);
    Best own;
    Best libpng;
    for (int round = 0; round < 15; ++round) {
        own.take([&] { loadPng(opened(file).get(), {pixels.bytes(), canvas}); });
        libpng.take([&] { loadWithLibpng(file, pixels); });
    }
    fmt::print("a cached PNG     {:<9} {:4.1f} ms = {:.2f}x libpng ({:.0f} ms)\n",
               fmt::format("{}x{}", canvas.width, canvas.height), own.wall, own.wall / libpng.wall,
               libpng.wall);
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
        compareLoading(half, canvas);
    }
    PixelBuffer pixels({3840, 2160});
    const Child large = inChild([&] { render(progressive, pixels); });
    fmt::print("50 MP progressive 4:4:4: {:.0f} ms, {:.0f} MB\n", large.milliseconds, large.megabytes);
}

}  // namespace
}  // namespace quillmar

int main() { quillmar::run(); }

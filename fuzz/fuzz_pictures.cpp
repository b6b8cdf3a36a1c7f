// Picture files: whatever a file holds, it is drawn or refused with an error, in little time and memory. The
// last bytes choose what is drawn of it, or that it is loaded as one of the program's own.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <span>

#include "render/PictureDrawing.h"
#include "render/PictureFile.h"
#include "render/PictureModule.h"

namespace {

using namespace quillmar;

/// Larger pictures take longer and teach nothing more.
constexpr std::int64_t largestPicture = 2'000'000;

PictureComposition compositionFrom(std::span<const std::uint8_t> choice, PixelSize size) {
    if (std::int64_t{size.width} * size.height > largestPicture)
        throw std::runtime_error("too slow for a fuzzer");
    PictureComposition composition{{1 + choice[0] % 64, 1 + choice[1] % 64}, {1, 2, 3}, {}, false, {}};
    composition.destination = {choice[2] - 128, choice[3] - 128, 1 + choice[4], 1 + choice[5]};
    composition.isTiled = choice[6] % 4 == 0;
    if (composition.isTiled)
        composition.destination = {0, composition.canvas.height - size.height, size.width, size.height};
    return composition;
}

void draw(int file, std::span<const std::uint8_t> choice) {
    static const PictureModule module([] {});
    PictureDrawing drawing(openPicture(file, formatOf(file), &module));
    const PictureComposition composition = compositionFrom(choice, drawing.size());
    PixelBuffer canvas(composition.canvas);
    drawing.drawOn({canvas.bytes(), canvas.size()}, composition);
}

void load(int file, std::span<const std::uint8_t> choice) {
    PixelBuffer canvas({1 + choice[0] % 64, 1 + choice[1] % 64});
    loadPng(file, {canvas.bytes(), canvas.size()});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t choices = 8;
    if (size < choices) return 0;
    const std::span<const std::uint8_t> choice(data + size - choices, choices);
    const int file = ::memfd_create("picture", MFD_CLOEXEC);
    if (file < 0 || ::write(file, data, size) != static_cast<ssize_t>(size)) std::abort();
    try {
        choice[7] % 4 == 0 ? load(file, choice) : draw(file, choice);
    } catch (const std::exception&) {  // an error is a good end
    }
    ::close(file);
    return 0;
}

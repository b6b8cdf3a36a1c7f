// Picture files: whatever a file holds, it is drawn or refused with one of the two errors, in little time and
// memory. The last bytes choose what is drawn of it.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>

#include "linux/picture/LinuxPictureRendering.h"

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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t choices = 7;
    if (size < choices) return 0;
    static const LinuxPictureRendering rendering;
    static const std::string target = "/dev/shm/quillmar-fuzz-" + std::to_string(::getpid()) + ".png";
    const int file = ::memfd_create("picture", MFD_CLOEXEC);
    if (file < 0 || ::write(file, data, size) != static_cast<ssize_t>(size)) std::abort();
    try {
        rendering.renderImage(
            "/proc/self/fd/" + std::to_string(file),
            [&](PixelSize picture) { return compositionFrom({data + size - choices, choices}, picture); },
            target);
    } catch (const std::runtime_error&) {  // either error is a good end
    }
    ::close(file);
    return 0;
}

#include "linux/picture/LinuxPictureEncoding.h"

#include <algorithm>

#include "base/AtomicFile.h"
#include "linux/picture/PngEncoder.h"

namespace quillmar {

void LinuxPictureEncoding::writePng(const PixelBuffer& picture, const std::filesystem::path& target) const {
    const auto [width, height] = picture.size();
    AtomicFile file(target, 0644, Durability::reproducible);
    PngEncoder encoder(width, height, file);
    for (int y = 0; y < height;) {
        const std::span<const std::uint8_t> row = picture.row(y);
        int again = 0;
        while (y + again + 1 < height && std::ranges::equal(row, picture.row(y + again + 1))) ++again;
        encoder.writePixels(row);
        if (again > 0) encoder.repeatRow(again);
        y += again + 1;
    }
    encoder.finish();
    file.commit();
}

}  // namespace quillmar

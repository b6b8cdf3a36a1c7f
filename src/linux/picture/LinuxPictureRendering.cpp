#include "linux/picture/LinuxPictureRendering.h"

#include <stdexcept>
#include <utility>

#include "base/AtomicFile.h"
#include "linux/picture/CanvasDrawing.h"
#include "linux/picture/PictureFile.h"
#include "linux/picture/PngEncoder.h"
#include "linux/picture/ReadAhead.h"
#include "linux/picture/Resampler.h"
#include "linux/picture/UprightRows.h"

namespace quillmar {
namespace {

/// One axis of the picture as it is stored: the destination's whole length and the part of it that is seen.
struct StoredAxis {
    std::int64_t length;
    std::int64_t begin;
    int count;

    StoredAxis flipped(bool isFlipped) const {
        return isFlipped ? StoredAxis{length, length - begin - count, count} : *this;
    }
};

std::unique_ptr<RowSource> readAhead(std::unique_ptr<RowSource> source, int width, int height) {
    return std::make_unique<ReadAhead>(std::move(source), static_cast<std::size_t>(width) * pixelBytes,
                                       height);
}

/// The rows of the visible part, upright.
std::unique_ptr<RowSource> visibleRows(PictureDecoder& decoder, PictureOrientation orientation,
                                       const PictureComposition& composition, const VisiblePart& part) {
    const PixelRect& whole = composition.destination;
    StoredAxis across{whole.width, part.left - whole.x, part.width};
    StoredAxis down{whole.height, part.top - whole.y, part.height};
    if (orientation.transposes) std::swap(across, down);
    across = across.flipped(orientation.flipsColumns);
    down = down.flipped(orientation.flipsRows);

    const PixelGrid grid = decoder.chooseGrid(across.length, down.length);
    LanczosAxis columns(grid.exactWidth, grid.width, across.length, across.begin, across.count);
    LanczosAxis rows(grid.exactHeight, grid.height, down.length, down.begin, down.count);
    const GridRegion region{columns.windowBegin, rows.windowBegin, columns.windowEnd, rows.windowEnd};
    auto decoded = readAhead(decoder.rows(region, composition.background), region.width(), region.height());
    auto resampled = std::make_unique<Resampler>(std::move(decoded), std::move(columns), std::move(rows));
    auto result = readAhead(decoder.inSrgb(std::move(resampled)), across.count, down.count);
    if (orientation.isUpright()) return result;
    return std::make_unique<UprightRows>(std::move(result), across.count, down.count, orientation);
}

}  // namespace

Bytes LinuxPictureRendering::solidColorPng(int width, int height, RgbColor color) const {
    MemoryOutput output;
    PngEncoder encoder(width, height, output);
    Bytes row;
    row.reserve(static_cast<std::size_t>(width) * 3);
    for (int x = 0; x < width; ++x) row.insert(row.end(), {color.red, color.green, color.blue});
    encoder.writeRow(row);
    encoder.repeatRow(height - 1);
    encoder.finish();
    return std::move(output.bytes);
}

void LinuxPictureRendering::renderImage(const std::filesystem::path& source, const PictureComposer& composer,
                                        const std::filesystem::path& target) const {
    const std::unique_ptr<PictureDecoder> decoder = openPictureFile(source, module_);
    const auto orientation = PictureOrientation::of(decoder->orientation());
    PixelSize size = decoder->size();
    if (orientation.transposes) std::swap(size.width, size.height);

    const PictureComposition composition = composer(size);
    if (composition.destination.width < 1 || composition.destination.height < 1)
        throw std::runtime_error("The picture has no place on the canvas.");
    const VisiblePart part = VisiblePart::of(composition.destination, composition.canvas);
    std::unique_ptr<RowSource> rows;
    if (part.width > 0) rows = visibleRows(*decoder, orientation, composition, part);
    CanvasDrawing drawing(composition, part, std::move(rows));
    AtomicFile file(target, 0644, Durability::reproducible);
    drawing.encode(file);
    file.commit();
}

bool LinuxPictureRendering::isPicture(const std::filesystem::path& file) const {
    try {
        const std::unique_ptr<PictureDecoder> decoder = openPictureFile(file, module_);
        const PixelGrid smallest = decoder->chooseGrid(1, 1);
        const auto rows = decoder->rows({0, 0, smallest.width, smallest.height}, {});
        for (int row = 0; row < smallest.height; ++row) rows->nextRow();
        return true;
    } catch (const PictureDecodingError&) {
        return false;
    }
}

}  // namespace quillmar

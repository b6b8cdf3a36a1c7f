#include "render/PictureDrawing.h"

#include <stdexcept>
#include <utility>

#include "render/OwnPng.h"
#include "render/PngDecoder.h"
#include "render/ReadAhead.h"
#include "render/Resampler.h"

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

}  // namespace

PictureDrawing::PictureDrawing(std::unique_ptr<PictureDecoder> decoder)
    : decoder_(std::move(decoder)), orientation_(PictureOrientation::of(decoder_->orientation())) {}

PixelSize PictureDrawing::size() const {
    const auto [width, height] = decoder_->size();
    return orientation_.transposes ? PixelSize{height, width} : PixelSize{width, height};
}

void PictureDrawing::drawOn(const CanvasPixels& canvas, const PictureComposition& composition) {
    if (composition.destination.width < 1 || composition.destination.height < 1)
        throw std::invalid_argument("The picture has no place on the canvas.");
    const VisiblePart part = VisiblePart::of(composition.destination, canvas.size);
    std::unique_ptr<RowSource> rows;
    if (part.width > 0) rows = visibleRows(composition, part);
    drawOnCanvas(composition, part, rows.get(), canvas);
}

std::unique_ptr<RowSource> PictureDrawing::visibleRows(const PictureComposition& composition,
                                                       const VisiblePart& part) {
    const PixelRect& whole = composition.destination;
    StoredAxis across{whole.width, part.left - whole.x, part.width};
    StoredAxis down{whole.height, part.top - whole.y, part.height};
    if (orientation_.transposes) std::swap(across, down);
    across = across.flipped(orientation_.flipsColumns);
    down = down.flipped(orientation_.flipsRows);

    const PixelGrid grid = decoder_->chooseGrid(across.length, down.length);
    LanczosAxis columns(grid.exactWidth, grid.width, across.length, across.begin, across.count);
    LanczosAxis rows(grid.exactHeight, grid.height, down.length, down.begin, down.count);
    const GridRegion region{columns.windowBegin, rows.windowBegin, columns.windowEnd, rows.windowEnd};
    auto decoded = readAhead(decoder_->rows(region, composition.background), region.width(), region.height());
    std::unique_ptr<RowSource> result =
        std::make_unique<Resampler>(std::move(decoded), std::move(columns), std::move(rows));
    if (!decoder_->isSrgb())
        result = decoder_->inSrgb(readAhead(std::move(result), across.count, down.count));
    if (orientation_.isUpright()) return result;
    return std::make_unique<UprightRows>(std::move(result), across.count, down.count, orientation_);
}

void PictureDrawing::check() {
    const PixelGrid smallest = decoder_->chooseGrid(1, 1);
    const auto rows = decoder_->rows({0, 0, smallest.width, smallest.height}, {});
    for (int row = 0; row < smallest.height; ++row) rows->nextRow();
}

void loadPng(int descriptor, const CanvasPixels& canvas) {
    if (loadOwnPng(descriptor, canvas)) return;
    const std::unique_ptr<PictureDecoder> decoder = PngDecoder::open(descriptor);
    if (decoder->size() != canvas.size) throw PictureDecodingError("The picture has another size.");
    PictureDrawing(PngDecoder::open(descriptor))
        .drawOn(canvas, {canvas.size, {}, {0, 0, canvas.size.width, canvas.size.height}});
}

}  // namespace quillmar

#include "linux/picture/CanvasDrawing.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "linux/picture/PngEncoder.h"

namespace quillmar {
namespace {

/// Drops the unused byte of each of `count` pixels. One byte beyond the last is overwritten.
void packPixels(const std::uint8_t* pixels, std::uint8_t* rgb, int count) {
    for (int i = 0; i < count; ++i, pixels += pixelBytes, rgb += 3) std::memcpy(rgb, pixels, pixelBytes);
}

}  // namespace

VisiblePart VisiblePart::of(const PixelRect& destination, PixelSize canvas) {
    const auto clamped = [](std::int64_t at, int end) {
        return static_cast<int>(std::clamp<std::int64_t>(at, 0, end));
    };
    VisiblePart part{clamped(destination.x, canvas.width), clamped(destination.y, canvas.height)};
    part.width = clamped(destination.x + destination.width, canvas.width) - part.left;
    part.height = clamped(destination.y + destination.height, canvas.height) - part.top;
    if (part.width == 0 || part.height == 0) part.width = part.height = 0;
    return part;
}

CanvasDrawing::CanvasDrawing(const PictureComposition& composition, const VisiblePart& part,
                             std::unique_ptr<RowSource> picture)
    : composition_(composition), part_(part), picture_(std::move(picture)) {
    if (composition.caption) caption_.emplace(*composition.caption, composition.canvas);
    const RgbColor color = composition.background;
    for (int x = 0; x < composition.canvas.width; ++x)
        background_.insert(background_.end(), {color.red, color.green, color.blue});
    row_ = background_;
}

void CanvasDrawing::encode(ByteOutput& output) {
    const auto [width, height] = composition_.canvas;
    PngEncoder encoder(width, height, output);
    for (int y = 0; y < height; ++y) {
        int same = 0;
        if (part_.width < width || !showsPicture(y)) row_ = background_;
        if (showsPicture(y)) {
            drawPicture(y);
        } else {
            while (y + same + 1 < height && !showsPicture(y + same + 1) &&
                   !(caption_ && (caption_->covers(y + same) || caption_->covers(y + same + 1))))
                ++same;
        }
        if (caption_) caption_->blendInto(row_, y);
        encoder.writeRow(row_);
        if (same > 0) encoder.repeatRow(same);
        y += same;
    }
    encoder.finish();
}

bool CanvasDrawing::showsPicture(int y) const {
    return part_.width > 0 && (composition_.isTiled || (y >= part_.top && y < part_.top + part_.height));
}

void CanvasDrawing::drawPicture(int y) {
    const std::span<const std::uint8_t> pixels = pictureRow(y);
    const int repeated = composition_.isTiled ? composition_.canvas.width : part_.left + part_.width;
    row_.push_back(0);  // packing writes one byte too many
    for (int x = part_.left; x < repeated; x += part_.width) {
        const int count = std::min(part_.width, composition_.canvas.width - x);
        const auto at = static_cast<std::size_t>(x + count) * 3;
        const std::uint8_t behind = row_[at];
        packPixels(pixels.data(), &row_[static_cast<std::size_t>(x) * 3], count);
        row_[at] = behind;
    }
    row_.pop_back();
}

std::span<const std::uint8_t> CanvasDrawing::pictureRow(int y) {
    if (!composition_.isTiled || part_.height == composition_.canvas.height) return picture_->nextRow();
    const std::size_t rowBytes = static_cast<std::size_t>(part_.width) * pixelBytes;
    if (picture_) {
        tile_.resize(rowBytes * static_cast<std::size_t>(part_.height));
        for (std::size_t at = 0; at < tile_.size(); at += rowBytes)
            std::ranges::copy(picture_->nextRow(), tile_.data() + at);
        picture_.reset();
    }
    // A shorter tile stands whole on the canvas's lower edge; above it come the others.
    int row = (y - part_.top) % part_.height;
    if (row < 0) row += part_.height;
    return std::span(tile_).subspan(static_cast<std::size_t>(row) * rowBytes, rowBytes);
}

}  // namespace quillmar

#include "linux/desktop/SpannedComposition.h"

#include <algorithm>
#include <memory>

#include "base/AtomicFile.h"
#include "linux/picture/PngEncoder.h"
#include "linux/picture/PngReader.h"

namespace quillmar {

namespace {

constexpr std::size_t rgbBytes = 3;

/// A part's picture, read as the rows of the whole come by.
class PartRows {
public:
    PartRows(const SpannedPart& part, const PixelRect& bounds)
        : reader_(part.file, PngReader::PixelOrder::redGreenBlueUnused),
          row_(static_cast<std::size_t>(reader_.width()) * 4),
          top_(part.area.y - bounds.y),
          bottom_(top_ + std::min(part.area.height, reader_.height())),
          left_(static_cast<std::size_t>(part.area.x - bounds.x)),
          width_(static_cast<std::size_t>(std::min(part.area.width, reader_.width()))) {}

    void draw(int y, Bytes& rgb) {
        if (y < top_ || y >= bottom_) return;
        reader_.readRow(row_);
        for (std::size_t x = 0; x < width_; ++x) {
            std::copy_n(&row_[x * 4], rgbBytes, &rgb[(left_ + x) * rgbBytes]);
        }
    }

private:
    PngReader reader_;
    Bytes row_;
    int top_;
    int bottom_;
    std::size_t left_;
    std::size_t width_;
};

Bytes rowOf(RgbColor color, int width) {
    Bytes row;
    row.reserve(static_cast<std::size_t>(width) * rgbBytes);
    for (int x = 0; x < width; ++x) row.insert(row.end(), {color.red, color.green, color.blue});
    return row;
}

}  // namespace

PixelRect boundsOf(const std::vector<SpannedPart>& parts) {
    if (parts.empty()) return {};
    PixelRect bounds = parts.front().area;
    for (const auto& [area, file] : parts) {
        const int right = std::max(bounds.x + bounds.width, area.x + area.width);
        const int bottom = std::max(bounds.y + bounds.height, area.y + area.height);
        bounds.x = std::min(bounds.x, area.x);
        bounds.y = std::min(bounds.y, area.y);
        bounds.width = right - bounds.x;
        bounds.height = bottom - bounds.y;
    }
    return bounds;
}

void composeSpanned(const std::vector<SpannedPart>& parts, RgbColor background,
                    const std::filesystem::path& target) {
    const PixelRect bounds = boundsOf(parts);
    std::vector<std::unique_ptr<PartRows>> pictures;
    for (const SpannedPart& part : parts) {
        if (!part.file.empty()) pictures.push_back(std::make_unique<PartRows>(part, bounds));
    }
    AtomicFile output(target, 0600, Durability::durable);
    PngEncoder encoder(bounds.width, bounds.height, output);
    const Bytes plain = rowOf(background, bounds.width);
    Bytes row;
    for (int y = 0; y < bounds.height; ++y) {
        row = plain;
        for (const auto& picture : pictures) picture->draw(y, row);
        encoder.writeRow(row);
    }
    encoder.finish();
    output.commit();
}

}  // namespace quillmar

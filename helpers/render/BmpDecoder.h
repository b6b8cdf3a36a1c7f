#pragma once
#include <memory>
#include <vector>

#include "render/PictureDecoder.h"

namespace quillmar {

/// Windows bitmaps without compression, of 1, 4, 8, 24 or 32 bits a pixel.
class BmpDecoder final : public PictureDecoder {
public:
    /// Reads the head of the open file, of which it makes a copy. Throws `PictureDecodingError`.
    explicit BmpDecoder(int descriptor);
    ~BmpDecoder() override;

    PixelSize size() const override { return size_; }
    int orientation() const override { return 1; }
    PixelGrid chooseGrid(std::int64_t width, std::int64_t height) override;
    std::unique_ptr<RowSource> rows(const GridRegion& region, RgbColor background) override;

private:
    class Rows;
    struct Layout {
        std::int64_t pixelsAt = 0;  ///< in the file
        int bitsPerPixel = 24;
        bool isUpsideDown = true;
        std::vector<std::uint32_t> palette;  ///< blue in the lowest byte
    };
    void readHead();

    int descriptor_;
    PixelSize size_;
    Layout layout_;
};

}  // namespace quillmar

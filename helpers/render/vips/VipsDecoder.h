#pragma once
#include <vips/vips.h>

#include "linux/glib/Ref.h"
#include "render/PictureDecoder.h"

namespace quillmar {

/// Every format that libvips reads by itself, of several frames the first: converted to sRGB, 8 bits a
/// channel, and streamed where the format can be.
class VipsDecoder final : public PictureDecoder {
public:
    /// Takes the descriptor over. Throws `PictureDecodingError`.
    explicit VipsDecoder(int descriptor);
    ~VipsDecoder() override;

    PixelSize size() const override { return size_; }
    int orientation() const override { return orientation_; }
    PixelGrid chooseGrid(std::int64_t width, std::int64_t height) override;
    std::unique_ptr<RowSource> rows(const GridRegion& region, RgbColor background) override;

private:
    /// What a format's loader can scale by itself, for less work than the full size.
    enum class Scaling { none, divisor, fraction, vector };

    Ref<VipsImage> load(const char* option = nullptr, double value = 0) const;
    PixelGrid loadScaled(double scale);

    int descriptor_;
    Scaling scaling_ = Scaling::none;
    Ref<VipsImage> image_;
    PixelSize size_;
    int orientation_ = 1;
};

}  // namespace quillmar

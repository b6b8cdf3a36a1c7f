#pragma once
#include <vips/vips.h>

#include "linux/glib/Ref.h"
#include "render/PictureDecoder.h"

namespace quillmar {

/// Throws what libvips complained about last as a `PictureDecodingError`.
[[noreturn]] void throwVipsError();

/// Pulls rows through libvips, a strip at a time.
class VipsRows final : public RowSource {
public:
    /// Converts the image lazily: to sRGB, 8 bits a channel, opaque on the background.
    VipsRows(Ref<VipsImage> image, const GridRegion& region, RgbColor background);
    ~VipsRows() override;

    std::span<const std::uint8_t> nextRow() override;

private:
    Ref<VipsImage> image_;
    GridRegion region_;
    Ref<VipsRegion> strip_;  ///< belongs to the thread that reads
    int next_;
    int stripEnd_;
    Bytes row_;
};

}  // namespace quillmar

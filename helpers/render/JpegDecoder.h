#pragma once
#include <filesystem>
#include <memory>

#include "render/ColorProfile.h"

namespace quillmar {

/// JPEG files but for those with inks. Streams rows; the scales that the format itself offers cost no extra
/// work.
class JpegDecoder final : public PictureDecoder {
public:
    /// Reads the head from the start of the open file, of which it makes a copy. Throws
    /// `PictureDecodingError`.
    static std::unique_ptr<PictureDecoder> open(int descriptor);
    ~JpegDecoder() override;

    PixelSize size() const override;
    int orientation() const override;
    PixelGrid chooseGrid(std::int64_t width, std::int64_t height) override;
    std::unique_ptr<RowSource> rows(const GridRegion& region, RgbColor background) override;
    bool isSrgb() const override { return !profile_; }
    std::unique_ptr<RowSource> inSrgb(std::unique_ptr<RowSource> resampled) override;

private:
    struct State;
    class Rows;
    JpegDecoder(std::unique_ptr<State> state, std::unique_ptr<ColorProfile> profile);

    std::unique_ptr<State> state_;
    std::unique_ptr<ColorProfile> profile_;  ///< none: sRGB already
};

}  // namespace quillmar

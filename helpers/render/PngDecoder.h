#pragma once
#include <memory>

#include "render/ColorProfile.h"

namespace quillmar {

/// PNG files of any kind, by rows; an interlaced one is held whole.
class PngDecoder final : public PictureDecoder {
public:
    /// Reads the head from the start of the open file, of which it makes a copy. Throws
    /// `PictureDecodingError`.
    static std::unique_ptr<PictureDecoder> open(int descriptor);
    ~PngDecoder() override;

    PixelSize size() const override;
    int orientation() const override { return 1; }
    PixelGrid chooseGrid(std::int64_t width, std::int64_t height) override;
    std::unique_ptr<RowSource> rows(const GridRegion& region, RgbColor background) override;
    bool isSrgb() const override { return !profile_; }
    std::unique_ptr<RowSource> inSrgb(std::unique_ptr<RowSource> resampled) override;

private:
    struct State;
    class Rows;
    PngDecoder(std::unique_ptr<State> state, std::unique_ptr<ColorProfile> profile);

    std::unique_ptr<State> state_;
    std::unique_ptr<ColorProfile> profile_;  ///< none: sRGB already
};

}  // namespace quillmar

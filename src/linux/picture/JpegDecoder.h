#pragma once
#include <filesystem>
#include <memory>

#include "linux/picture/PictureDecoder.h"

namespace quillmar {

/// Plain JPEG files: grey or YCbCr, no colour profile or sRGB's. Streams rows; the scales that the format
/// itself offers cost no extra work.
class JpegDecoder final : public PictureDecoder {
public:
    /// Reads the head from the start of the open file, of which it makes a copy. Nothing when this is a JPEG
    /// of another kind. Throws `PictureDecodingError`.
    static std::unique_ptr<JpegDecoder> open(int descriptor);
    ~JpegDecoder() override;

    PictureSize size() const override;
    int orientation() const override;
    PixelGrid chooseGrid(std::int64_t width, std::int64_t height) override;
    std::unique_ptr<RowSource> rows(const GridRegion& region, RgbColor background) override;

private:
    struct State;
    class Rows;
    explicit JpegDecoder(std::unique_ptr<State> state);

    std::unique_ptr<State> state_;
};

}  // namespace quillmar

#pragma once
#include "linux/picture/PictureModule.h"
#include "platform/PictureRendering.h"

namespace quillmar {

/// Draws pictures as a stream of rows: decoded, resampled and encoded on three threads, so that a canvas is
/// hardly ever in memory whole.
class LinuxPictureRendering final : public PictureRendering {
public:
    Bytes solidColorPng(int width, int height, RgbColor color) const override;
    void renderImage(const std::filesystem::path& source, const PictureComposer& composer,
                     const std::filesystem::path& target) const override;
    bool isPicture(const std::filesystem::path& file) const override;

private:
    mutable PictureModule module_;
};

}  // namespace quillmar

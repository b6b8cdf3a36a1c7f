#pragma once
#include "platform/PictureRendering.h"

namespace quillmar {

/// Writes pictures as `PngEncoder` makes them. A row that is the one above it again costs next to nothing.
class LinuxPictureEncoding final : public PictureEncoding {
public:
    void writePng(const PixelBuffer& picture, const std::filesystem::path& target) const override;
};

}  // namespace quillmar

#pragma once
#include <filesystem>
#include <functional>

#include "base/Bytes.h"
#include "base/HexColor.h"
#include "base/PixelBuffer.h"

namespace quillmar::samples {

/// A picture as three bytes a pixel.
struct Rgb {
    int width = 0;
    int height = 0;
    Bytes bytes;

    Rgb() = default;
    Rgb(int w, int h, const std::function<RgbColor(int x, int y)>& colorAt);
    RgbColor at(int x, int y) const;
};

/// Red, green / blue, yellow: no two turns of it look alike.
RgbColor quadrant(int x, int y, int width, int height);
/// Waves that shrink towards one corner, and steps: everything that resampling could spoil.
Rgb patterned(int width, int height);

struct JpegOptions {
    int quality = 98;
    int orientation = 0;       ///< 0: no EXIF data
    bool isBigEndian = false;  ///< EXIF data
    bool isProgressive = false;
    bool hasHalfColors = false;  ///< 4:2:0
    bool isCmyk = false;
    bool isGrey = false;
    Bytes profile;
};
Bytes jpeg(const Rgb& picture, const JpegOptions& options = {});

struct PngOptions {
    int depth = 8;
    /// Opacity of a pixel; none: no alpha channel.
    std::function<std::uint8_t(int x, int y)> alphaAt;
    Bytes profile;
};
Bytes png(const Rgb& picture, const PngOptions& options = {});
/// Reads a PNG file with a foreign decoder, which checks every checksum.
Rgb readPng(const std::filesystem::path& file);
Rgb rgbOf(const PixelBuffer& pixels);

/// A file of tests/render/samples: a picture of 16 by 8 pixels in quadrants, in a format that the tests do
/// not write themselves (the GIF's second frame has other colours), or a colour profile.
Bytes file(const char* name);

}  // namespace quillmar::samples

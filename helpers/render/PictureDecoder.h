#pragma once
#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>

#include "base/Bytes.h"
#include "base/HexColor.h"
#include "platform/PictureRendering.h"

namespace quillmar {

/// A file that becomes no picture: it is none or a broken one, or it is too large to be decoded.
class PictureDecodingError : public std::runtime_error {
public:
    enum class Reason { unreadable, tooLarge };
    explicit PictureDecodingError(const std::string& what, Reason reason = Reason::unreadable)
        : std::runtime_error(what), reason_(reason) {}
    Reason reason() const { return reason_; }

private:
    Reason reason_;
};

/// Bytes of a pixel in all rows: blue, green, red and one that is not used, as in a `PixelBuffer`.
constexpr std::size_t pixelBytes = PixelBuffer::pixelBytes;
/// No decoding begins for more pixels, nor for a longer side, whatever the file claims.
constexpr std::int64_t maximumPixels = 200'000'000;
constexpr int maximumPictureSide = 131'072;

/// Rows of one picture from the top, each of the same width.
class RowSource {
public:
    virtual ~RowSource() = default;
    /// The next row; stays valid until the next call. Throws `PictureDecodingError` when the file fails. Must
    /// not be called for more rows than there are.
    virtual std::span<const std::uint8_t> nextRow() = 0;
};

/// Rows and columns of a grid, the ends outside.
struct GridRegion {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    int width() const { return right - left; }
    int height() const { return bottom - top; }
};

/// The pixels that a decoder hands out: the file's own or, where that is cheap, fewer.
struct PixelGrid {
    int width = 1;
    int height = 1;
    double exactWidth = 1;  ///< the file's width in samples of the grid; the last sample may be a fraction
    double exactHeight = 1;
};

/// A picture file whose head is read and whose pixels are not. As stored: orientation is left to the caller.
class PictureDecoder {
public:
    virtual ~PictureDecoder() = default;
    virtual PixelSize size() const = 0;
    /// 1 to 8, as EXIF has it.
    virtual int orientation() const = 0;
    /// The smallest grid with at least `width` by `height` samples, or the file's own when it has fewer.
    virtual PixelGrid chooseGrid(std::int64_t width, std::int64_t height) = 0;
    /// Begins decoding the region of the chosen grid. To be called once, after `chooseGrid`; the rows may be
    /// read and destroyed on another thread. What is transparent lies on `background`.
    virtual std::unique_ptr<RowSource> rows(const GridRegion& region, RgbColor background) = 0;
    /// Whether `rows` are in sRGB already; otherwise `inSrgb` turns rows, in whatever size they are then,
    /// into it: fewer pixels are converted sooner.
    virtual bool isSrgb() const { return true; }
    virtual std::unique_ptr<RowSource> inSrgb(std::unique_ptr<RowSource> resampled) { return resampled; }
};

/// Throws `PictureDecodingError` for a size that must not be decoded.
inline void checkPictureSize(std::int64_t width, std::int64_t height) {
    if (width < 1 || height < 1) throw PictureDecodingError("The picture has no pixels.");
    if (width > maximumPictureSide || height > maximumPictureSide || width * height > maximumPixels) {
        throw PictureDecodingError("The picture is too large to be decoded.",
                                   PictureDecodingError::Reason::tooLarge);
    }
}

}  // namespace quillmar

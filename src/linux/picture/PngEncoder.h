#pragma once
#include <memory>
#include <span>

#include "base/ByteOutput.h"

struct isal_zstream;

namespace quillmar {

/// Makes a PNG file of an opaque picture, 8 bits a channel, while its rows come in, so that neither a second
/// copy of the picture nor the file is held. Built for speed: one filter, the lightest compression, one chunk
/// of pixels.
class PngEncoder {
public:
    static constexpr int maximumSide = 32768;

    /// The file goes to `output`, whose failures pass through every function. Throws `std::runtime_error` for
    /// a side below 1 or above `maximumSide`.
    PngEncoder(int width, int height, ByteOutput& output);
    PngEncoder(const PngEncoder&) = delete;
    PngEncoder& operator=(const PngEncoder&) = delete;
    ~PngEncoder();

    /// The next row from the top: red, green, blue for each pixel.
    void writeRow(std::span<const std::uint8_t> rgb);
    /// The same for pixels as a `PixelBuffer` has them.
    void writePixels(std::span<const std::uint8_t> pixels);
    /// The last written row again, `count` times; much quicker than writing it.
    void repeatRow(int count);
    /// Completes the file. Throws `std::runtime_error` when rows are missing or the picture is too large for
    /// one chunk.
    void finish();

private:
    struct Deflater;
    std::uint8_t* placeForRow();
    void compress(std::span<const std::uint8_t> filtered, bool isLast = false);
    void flush();
    void appendToChunk(std::span<const std::uint8_t> bytes);

    ByteOutput& output_;
    std::size_t rowBytes_;
    int rowsLeft_;
    Bytes previous_;        ///< the row above; black above the first
    Bytes packed_;          ///< a row whose bytes are put into order
    Bytes filtered_;        ///< rows that wait to be compressed together
    std::size_t used_ = 0;  ///< bytes of `filtered_` that wait
    std::unique_ptr<Deflater> deflater_;
    Bytes compressed_;
    std::size_t chunkBytes_ = 0;
    std::uint32_t checksum_ = 0;  ///< of the chunk so far
};

}  // namespace quillmar

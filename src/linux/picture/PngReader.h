#pragma once
#include <filesystem>
#include <memory>
#include <span>

#include "base/Bytes.h"

namespace quillmar {

/// Reads a PNG file of any kind row by row as opaque 8-bit pixels; what is transparent lies on black.
/// Every failure is a `std::runtime_error` with the file's path and the reason.
class PngReader {
public:
    /// Order of the four bytes that a pixel comes in; the unused one is 0xff.
    enum class PixelOrder { redGreenBlueUnused, blueGreenRedUnused };

    /// Opens the file and reads its head.
    PngReader(const std::filesystem::path& file, PixelOrder order);
    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;
    ~PngReader();

    int width() const;
    int height() const;
    /// Reads the next row from the top into `width` times four bytes.
    void readRow(std::span<std::uint8_t> pixels);

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace quillmar

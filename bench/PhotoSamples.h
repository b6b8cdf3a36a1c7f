#pragma once
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace quillmar {

/// A made-up photograph: soft shapes down to fine detail, with a camera's grain. Always the same pixels.
class Photo {
public:
    Photo(int width, int height);

    int width() const { return width_; }
    int height() const { return height_; }
    /// `sampling` 2 halves the colours' resolution, 1 keeps it.
    void saveJpeg(const std::filesystem::path& file, int sampling, bool isProgressive = false) const;

private:
    int width_;
    int height_;
    std::vector<std::uint8_t> rgb_;
};

/// A JPEG's own pixels, four bytes each, at a scale of so many eighths.
struct DecodedJpeg {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgbx;
};
/// Keeps the pixels only when asked to; else each row is dropped, as the fastest reader there can be.
DecodedJpeg decodeJpeg(const std::filesystem::path& file, unsigned eighths, bool keepsPixels);

}  // namespace quillmar

#pragma once
#include <cstdint>

namespace quillmar {

/// Size in pixels, each side at least 1.
struct PixelSize {
    int width = 1;
    int height = 1;
    bool operator==(const PixelSize&) const = default;
};

/// A rectangle of whole pixels, origin at the top left, y downwards. It may reach beyond what it lies on, on
/// every side.
struct PixelRect {
    std::int64_t x = 0;
    std::int64_t y = 0;
    std::int64_t width = 0;
    std::int64_t height = 0;

    std::int64_t right() const { return x + width; }
    std::int64_t bottom() const { return y + height; }
    bool intersects(const PixelRect& other) const {
        return x < other.right() && other.x < right() && y < other.bottom() && other.y < bottom();
    }
    bool operator==(const PixelRect&) const = default;
};

}  // namespace quillmar

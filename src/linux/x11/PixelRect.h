#pragma once

namespace quillmar {

/// A rectangle of the root window in device pixels: origin at the top left, y downwards.
struct PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool intersects(const PixelRect& other) const {
        return x < other.x + other.width && other.x < x + width && y < other.y + other.height &&
               other.y < y + height;
    }
    bool operator==(const PixelRect&) const = default;
};

}  // namespace quillmar

#pragma once

namespace quillmar {

struct Point {
    double x = 0;
    double y = 0;
    bool operator==(const Point&) const = default;
};

/// A rectangle in global desktop points: origin at the bottom left, y upwards.
/// The left and the bottom edge are inside, the right and the top edge are outside.
struct CGRectCodable {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    double maxX() const { return x + width; }
    double maxY() const { return y + height; }
    bool contains(Point p) const { return p.x >= x && p.x < maxX() && p.y >= y && p.y < maxY(); }

    bool operator==(const CGRectCodable&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("x", self.x)
            .required("y", self.y)
            .required("width", self.width)
            .required("height", self.height);
    }
};

}  // namespace quillmar

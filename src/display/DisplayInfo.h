#pragma once
#include <optional>
#include <string>
#include <vector>

#include "base/PixelRect.h"
#include "base/Rect.h"

namespace quillmar {

/// A connected display. Everything that is kept per display is kept under its `id`.
struct DisplayInfo {
    std::string id;  ///< "display:" and the display's UUID in lower case; survives re-plugging
    std::string localizedName;
    CGRectCodable frame;         ///< in points, global, origin at the bottom left
    CGRectCodable visibleFrame;  ///< the frame less panels and docks
    double scaleFactor = 1;      ///< pixels a point
    bool isMain = false;
    /// Of what it shows, as the window server counts; absent where it does not say. No part of the document.
    std::optional<PixelSize> pixelSize;

    bool operator==(const DisplayInfo&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("id", self.id)
            .required("localizedName", self.localizedName)
            .required("frame", self.frame)
            .required("visibleFrame", self.visibleFrame)
            .required("scaleFactor", self.scaleFactor)
            .required("isMain", self.isMain);
    }
};

class DisplayProviding {
public:
    virtual ~DisplayProviding() = default;
    /// The connected displays that have an identity, in the system's order.
    virtual std::vector<DisplayInfo> displays() const = 0;
};

/// Size of the display's pictures: its own pixels where they are known, else its frame times its scale, which
/// never counts as less than 1.
PixelSize canvasSize(const DisplayInfo& display);

}  // namespace quillmar

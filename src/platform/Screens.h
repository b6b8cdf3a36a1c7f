#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/PixelRect.h"
#include "base/Rect.h"
#include "base/Uuid.h"

namespace quillmar {

/// A connected screen that shows something now.
struct Screen {
    std::uint32_t number =
        0;  ///< the window server's own name for it, only good while it stays connected; 0: none
    std::optional<Uuid> uuid;    ///< the same whenever this very monitor is connected again
    std::string connector;       ///< where it is plugged in: "DP-1"
    std::string localizedName;   ///< what its maker calls it
    CGRectCodable frame;         ///< points; the bottom left corner of the primary screen is (0, 0)
    CGRectCodable visibleFrame;  ///< the frame without panels, points
    double scaleFactor = 1;      ///< pixels for each point
    PixelRect area;              ///< of what the window server draws, in its pixels
    bool operator==(const Screen&) const = default;
};

/// The screens as the window server has them. Main thread.
class ScreensProviding {
public:
    virtual ~ScreensProviding() = default;
    /// In the window server's order; empty while no monitor is connected. Cheap enough to ask at every use.
    virtual std::vector<Screen> screens() const = 0;
    /// `Screen::number` of the primary screen; 0 when there is none.
    virtual std::uint32_t primaryScreenNumber() const = 0;
    /// Calls back after every change of the arrangement, several times for one plug. Replaces the former
    /// handler; an empty one ends it.
    virtual void setChangeHandler(std::function<void()> handler) = 0;
};

}  // namespace quillmar

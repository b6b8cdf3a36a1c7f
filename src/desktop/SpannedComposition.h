#pragma once
#include <string>
#include <vector>

#include "platform/DesktopPicture.h"
#include "platform/PictureRendering.h"

namespace quillmar {

/// One monitor's part of a picture that lies over all of them.
struct SpannedPart {
    PixelRect area;       ///< of what the window server draws
    SharedPixels pixels;  ///< at the area's top left, clipped to it; null: none
};

/// The smallest rectangle around all the areas.
PixelRect boundsOf(const std::vector<PixelRect>& areas);

/// One picture with all parts in their places; `background` is where none reaches. Takes time: not on the
/// main thread. Throws as the making of a `PixelBuffer` does.
SharedPixels composeSpanned(const std::vector<SpannedPart>& parts, RgbColor background);

/// How the part of a desktop's own picture on the monitor `area` is drawn, when the desktop would lay it out
/// so; `bounds` are those of all monitors. Nothing when the desktop shows no picture.
std::optional<PictureComposer> ownPartComposer(SpannedDesktopPicturing::Layout layout,
                                               const PixelRect& bounds, const PixelRect& area,
                                               RgbColor background);

/// The monitors' places as a text, to be compared with later ones.
std::string arrangementText(const std::vector<Screen>& screens);

}  // namespace quillmar

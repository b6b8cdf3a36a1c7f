#include "display/DisplayTopologySnapshot.h"

#include <algorithm>

namespace quillmar {

DisplayTopologySnapshot DisplayTopologySnapshot::of(std::span<const DisplayInfo> displays) {
    DisplayTopologySnapshot snapshot;
    for (const DisplayInfo& display : displays) {
        snapshot.displays.push_back({display.id, display.frame, display.scaleFactor});
    }
    std::ranges::sort(snapshot.displays, {}, &Display::id);
    return snapshot;
}

}  // namespace quillmar

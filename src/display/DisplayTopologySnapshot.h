#pragma once
#include <span>
#include <string>
#include <vector>

#include "display/DisplayInfo.h"

namespace quillmar {

/// Which displays are connected and how they are arranged: what must change before anything is painted anew.
/// Names, panels and the choice of the main display take no part.
struct DisplayTopologySnapshot {
    struct Display {
        std::string id;
        CGRectCodable frame;
        double scaleFactor = 1;
        bool operator==(const Display&) const = default;
    };
    std::vector<Display> displays;  ///< in ascending order of ID

    static DisplayTopologySnapshot of(std::span<const DisplayInfo> displays);
    bool operator==(const DisplayTopologySnapshot&) const = default;
};

}  // namespace quillmar

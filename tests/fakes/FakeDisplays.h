#pragma once
#include <vector>

#include "display/DisplayInfo.h"

namespace quillmar {

/// The displays that the test says are connected.
struct FakeDisplays final : DisplayProviding {
    std::vector<DisplayInfo> present;
    std::vector<DisplayInfo> displays() const override { return present; }
};

}  // namespace quillmar

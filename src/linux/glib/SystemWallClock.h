#pragma once
#include "async/WallClock.h"

namespace quillmar {

/// The machine's calendar clock.
class SystemWallClock final : public WallClock {
public:
    WallTime now() const override {
        return std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
    }
};

}  // namespace quillmar

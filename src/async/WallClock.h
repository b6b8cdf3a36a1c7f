#pragma once
#include "base/WallTime.h"

namespace quillmar {

/// The calendar's clock. It may be set forwards and backwards at any time: nothing measures durations with
/// it.
class WallClock {
public:
    virtual ~WallClock() = default;
    virtual WallTime now() const = 0;
};

}  // namespace quillmar

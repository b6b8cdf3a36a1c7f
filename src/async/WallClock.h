#pragma once
#include "base/WallTime.h"

namespace quillmar {

/// The calendar's clock. It may be set forwards and backwards at any time: nothing measures durations with
/// it.
class WallClock {
public:
    virtual ~WallClock() = default;
    /// What a calendar in the machine's time zone is asked with.
    virtual WallTime now() const = 0;
};

}  // namespace quillmar

#pragma once
#include <string>

#include "base/Localization.h"
#include "base/WallTime.h"

namespace quillmar {

/// A moment as the clock on the user's wall shows it, in the machine's present time zone.
struct LocalDateTime {
    int year = 1970;
    int month = 1;
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

LocalDateTime localDateTime(WallTime time);
/// Abbreviated date and short time: "4 May 2026, 09:30" in English, "4/05/2026, 09:30" in Portuguese.
std::string shortLocalText(WallTime time, GeneralLanguage language);

}  // namespace quillmar

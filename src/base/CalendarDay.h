#pragma once
#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "base/WallTime.h"

namespace quillmar {

/// A day of the Gregorian calendar, without a time zone.
using CalendarDay = std::chrono::year_month_day;

/// The day that a calendar in the machine's present time zone shows at that moment. Follows a change of the
/// zone.
CalendarDay localDay(WallTime time);
/// "2026-05-04".
std::string calendarDayText(CalendarDay day);
/// Reads year, month and day in digits with hyphens between; nothing for another text or a day that no month
/// has.
std::optional<CalendarDay> parseCalendarDay(std::string_view text);
/// The day that many days earlier.
CalendarDay daysBefore(CalendarDay day, int count);

}  // namespace quillmar

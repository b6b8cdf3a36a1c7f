#pragma once
#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace quillmar {

/// A moment of the calendar, as a wall clock shows it.
using WallTime = std::chrono::sys_time<std::chrono::microseconds>;
/// A length of time in seconds, as records hold it.
using Seconds = std::chrono::duration<double>;

/// ISO 8601 in UTC with whole seconds: "2026-05-04T09:30:00Z".
std::string iso8601(WallTime time);
/// ISO 8601 in UTC with milliseconds: "2026-05-04T09:30:00.250Z".
std::string iso8601WithFraction(WallTime time);
/// Reads ISO 8601 with a time zone, with or without a fraction.
std::optional<WallTime> parseISO8601(std::string_view text);
/// Seconds since 1970.
double secondsSince1970(WallTime time);
WallTime wallTimeSince1970(double seconds);

}  // namespace quillmar

#include "base/CalendarDay.h"

#include <fmt/format.h>

#include <charconv>
#include <ctime>

namespace quillmar {
namespace {

/// Takes a number of one to `digits` digits off the front of the text.
std::optional<unsigned> takeNumber(std::string_view& text, std::size_t digits) {
    unsigned value = 0;
    const char* end = text.data() + std::min(text.size(), digits);
    const auto [next, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc{}) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(next - text.data()));
    return value;
}

bool takeHyphen(std::string_view& text) {
    if (!text.starts_with('-')) return false;
    text.remove_prefix(1);
    return true;
}

}  // namespace

CalendarDay localDay(WallTime time) {
    const std::time_t seconds = std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count();
    ::tzset();  // localtime_r alone keeps the zone of its first call, and people travel
    std::tm fields{};
    if (!::localtime_r(&seconds, &fields)) return std::chrono::floor<std::chrono::days>(time);
    return std::chrono::year(fields.tm_year + 1900) /
           std::chrono::month(static_cast<unsigned>(fields.tm_mon + 1)) /
           std::chrono::day(static_cast<unsigned>(fields.tm_mday));
}

std::string calendarDayText(CalendarDay day) {
    return fmt::format("{:04}-{:02}-{:02}", static_cast<int>(day.year()), static_cast<unsigned>(day.month()),
                       static_cast<unsigned>(day.day()));
}

std::optional<CalendarDay> parseCalendarDay(std::string_view text) {
    const auto year = takeNumber(text, 4);
    if (!year || !takeHyphen(text)) return std::nullopt;
    const auto month = takeNumber(text, 2);
    if (!month || !takeHyphen(text)) return std::nullopt;
    const auto dayOfMonth = takeNumber(text, 2);
    if (!dayOfMonth || !text.empty()) return std::nullopt;
    const CalendarDay day = std::chrono::year(static_cast<int>(*year)) / std::chrono::month(*month) /
                            std::chrono::day(*dayOfMonth);
    if (!day.ok()) return std::nullopt;
    return day;
}

CalendarDay daysBefore(CalendarDay day, int count) {
    return std::chrono::sys_days(day) - std::chrono::days(count);
}

}  // namespace quillmar

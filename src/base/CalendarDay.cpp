#include "base/CalendarDay.h"

#include <fmt/format.h>

#include <charconv>

#include "base/LocalDateTime.h"

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
    const LocalDateTime local = localDateTime(time);
    return std::chrono::year(local.year) / std::chrono::month(static_cast<unsigned>(local.month)) /
           std::chrono::day(static_cast<unsigned>(local.day));
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

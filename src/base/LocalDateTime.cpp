#include "base/LocalDateTime.h"

#include <fmt/format.h>

#include <array>
#include <ctime>

namespace quillmar {

LocalDateTime localDateTime(WallTime time) {
    const std::time_t seconds = std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count();
    std::tm local{};
    ::tzset();  // localtime_r alone keeps the zone of its first call, as GLib does, and people travel
    ::localtime_r(&seconds, &local);
    return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
}

std::string shortLocalText(WallTime time, GeneralLanguage language) {
    static constexpr std::array<const char*, 12> months{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                        "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const LocalDateTime at = localDateTime(time);
    if (language == GeneralLanguage::portuguese) {
        return fmt::format("{}/{:02}/{}, {:02}:{:02}", at.day, at.month, at.year, at.hour, at.minute);
    }
    return fmt::format("{} {} {}, {:02}:{:02}", at.day, months[static_cast<std::size_t>(at.month - 1)],
                       at.year, at.hour, at.minute);
}

}  // namespace quillmar

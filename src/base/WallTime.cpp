#include "base/WallTime.h"

#include <fmt/format.h>
#include <glib.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace quillmar {
namespace {

using namespace std::chrono;

std::string formatted(WallTime time, std::string_view fraction) {
    const auto day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss clock(floor<seconds>(time - day));
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}{}Z", static_cast<int>(date.year()),
                       static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                       clock.hours().count(), clock.minutes().count(), clock.seconds().count(), fraction);
}

/// The one form that records use. GLib would also take week dates and a day without hyphens.
bool isDateAndTime(std::string_view text) {
    constexpr std::string_view form = "0000-00-00T00:00:00";
    const auto fits = [](char c, char place) { return place == '0' ? g_ascii_isdigit(c) : c == place; };
    return text.size() > form.size() && std::ranges::equal(text.substr(0, form.size()), form, fits);
}

}  // namespace

std::string iso8601(WallTime time) { return formatted(time, ""); }

std::string iso8601WithFraction(WallTime time) {
    const auto part = floor<milliseconds>(time) - floor<seconds>(time);
    return formatted(time, fmt::format(".{:03}", part.count()));
}

std::optional<WallTime> parseISO8601(std::string_view text) {
    if (!isDateAndTime(text)) return std::nullopt;
    const std::unique_ptr<GDateTime, decltype(&g_date_time_unref)> time(
        g_date_time_new_from_iso8601(std::string(text).c_str(), nullptr), &g_date_time_unref);
    if (!time) return std::nullopt;
    return WallTime(seconds(g_date_time_to_unix(time.get())) +
                    microseconds(g_date_time_get_microsecond(time.get())));
}

double secondsSince1970(WallTime time) { return Seconds(time.time_since_epoch()).count(); }

WallTime wallTimeSince1970(double seconds) {
    return WallTime(microseconds(static_cast<std::int64_t>(std::llround(seconds * 1e6))));
}

}  // namespace quillmar

#include "base/WallTime.h"

#include <fmt/format.h>

#include <cmath>

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

/// Reads a text from its front; the first thing that does not fit makes it and all that follows fail.
class Scanner {
public:
    explicit Scanner(std::string_view text) : rest_(text) {}

    int digits(std::size_t count) {
        if (rest_.size() < count) return fail();
        int value = 0;
        for (const char c : rest_.substr(0, count)) {
            if (c < '0' || c > '9') return fail();
            value = value * 10 + (c - '0');
        }
        rest_.remove_prefix(count);
        return value;
    }
    void expect(char c) {
        if (!accept(c)) fail();
    }
    bool accept(char c) {
        if (!rest_.starts_with(c)) return false;
        rest_.remove_prefix(1);
        return true;
    }
    /// Digits behind a decimal point; those below a microsecond are dropped.
    microseconds fraction() {
        std::int64_t value = 0;
        std::int64_t unit = 1'000'000;
        std::size_t count = 0;
        for (; count < rest_.size() && rest_[count] >= '0' && rest_[count] <= '9'; ++count) {
            unit /= 10;
            value += unit * (rest_[count] - '0');
        }
        if (count == 0) fail();
        rest_.remove_prefix(count);
        return microseconds(value);
    }
    /// "Z", "+01:00" or "+0100".
    minutes timeZone() {
        if (accept('Z')) return minutes(0);
        const int sign = accept('-') ? -1 : 1;
        if (sign == 1) expect('+');
        const int hour = digits(2);
        accept(':');
        const int minute = digits(2);
        if (hour > 23 || minute > 59) fail();
        return sign * (hours(hour) + minutes(minute));
    }
    bool isComplete() const { return !hasFailed_ && rest_.empty(); }

private:
    int fail() {
        hasFailed_ = true;
        rest_ = {};
        return 0;
    }
    std::string_view rest_;
    bool hasFailed_ = false;
};

}  // namespace

std::string iso8601(WallTime time) { return formatted(time, ""); }

std::string iso8601WithFraction(WallTime time) {
    const auto part = floor<milliseconds>(time) - floor<seconds>(time);
    return formatted(time, fmt::format(".{:03}", part.count()));
}

std::optional<WallTime> parseISO8601(std::string_view text) {
    Scanner scan(text);
    const year yearPart(scan.digits(4));
    scan.expect('-');
    const month monthPart(static_cast<unsigned>(scan.digits(2)));
    scan.expect('-');
    const year_month_day date(yearPart, monthPart, day(static_cast<unsigned>(scan.digits(2))));
    scan.expect('T');
    const int hour = scan.digits(2);
    scan.expect(':');
    const int minute = scan.digits(2);
    scan.expect(':');
    const int second = scan.digits(2);
    const microseconds fraction = scan.accept('.') ? scan.fraction() : microseconds(0);
    const minutes offset = scan.timeZone();
    if (!scan.isComplete() || !date.ok() || hour > 23 || minute > 59 || second > 59) return std::nullopt;
    return sys_days(date) + hours(hour) + minutes(minute) + seconds(second) + fraction - offset;
}

double secondsSince1970(WallTime time) { return Seconds(time.time_since_epoch()).count(); }

WallTime wallTimeSince1970(double seconds) {
    return WallTime(microseconds(static_cast<std::int64_t>(std::llround(seconds * 1e6))));
}

}  // namespace quillmar

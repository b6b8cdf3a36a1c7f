#include "base/CalendarDay.h"

#include <gmock/gmock.h>

#include "fakes/LocalTimeZone.h"

namespace quillmar {
namespace {

std::string dayAt(const char* moment) { return calendarDayText(localDay(*parseISO8601(moment))); }

TEST(CalendarDayTest, aDayBeginsAtLocalMidnightInTheZoneOfTheMoment) {
    LocalTimeZone zone("TST-3");
    EXPECT_EQ(dayAt("2026-05-04T20:59:59Z"), "2026-05-04");
    EXPECT_EQ(dayAt("2026-05-04T21:00:00Z"), "2026-05-05");
    zone.set("TST5");  // the traveller has landed
    EXPECT_EQ(dayAt("2026-05-05T04:59:59Z"), "2026-05-04");
    zone.set("WET0WEST,M3.5.0/1,M10.5.0");
    EXPECT_EQ(dayAt("2026-03-28T23:30:00Z"), "2026-03-28");
    EXPECT_EQ(dayAt("2026-03-29T23:30:00Z"), "2026-03-30");  // summer time began that day
    EXPECT_EQ(dayAt("1969-12-31T23:59:59Z"), "1969-12-31");
}

TEST(CalendarDayTest, onlyADayThatACalendarHasIsRead) {
    EXPECT_EQ(calendarDayText(parseCalendarDay("2028-02-29").value()), "2028-02-29");
    EXPECT_EQ(calendarDayText(parseCalendarDay("2026-5-4").value()), "2026-05-04");
    for (const char* text : {"", "2026", "2026-05", "2026-05-", "2026-02-29", "2026-13-01", "2026-05-04x",
                             " 2026-05-04", "20260504", "+026-05-04", "2026-05--4", "2026-005-04"}) {
        EXPECT_FALSE(parseCalendarDay(text)) << text;
    }
    EXPECT_EQ(calendarDayText(daysBefore(parseCalendarDay("2026-03-03").value(), 6)), "2026-02-25");
}

}  // namespace
}  // namespace quillmar

// SPDX-License-Identifier: MIT
#include "common/DateTime.h"

#include <gtest/gtest.h>

#include "common/HostError.h"
#include "tests/ErrorOf.h"

namespace kelvarin {
namespace {

using test::ErrorOf;

TEST(DateTime, EveryDayOfTheRangeRoundTripsWithConsecutiveSerialsAndWeekdays) {
    double expected = DateSerial(100, 1, 1);
    ASSERT_EQ(expected, kMinDateSerial);
    int weekday = Weekday(expected);
    for (int y = 100; y <= 9999; ++y) {
        for (int m = 1; m <= 12; ++m) {
            for (int d = 1; d <= DaysInMonth(y, m); ++d) {
                const Date serial = DateSerial(y, m, d);
                ASSERT_EQ(serial, expected) << y << "-" << m << "-" << d;
                const DateParts p = SplitDate(serial);
                ASSERT_TRUE(p.year == y && p.month == m && p.day == d) << serial;
                ASSERT_EQ(Weekday(serial), weekday) << serial;
                ASSERT_EQ(Weekday(serial, FirstDayOfWeek::Monday), (weekday + 5) % 7 + 1);
                expected += 1.0;
                weekday = weekday % 7 + 1;
            }
        }
    }
    EXPECT_EQ(expected - 1.0, kMaxDateSerial);
}

TEST(DateTime, KnownSerialsAndNormalisation) {
    EXPECT_EQ(DateSerial(1899, 12, 30), 0.0);
    EXPECT_EQ(Weekday(DateSerial(2007, 12, 25)), 3);  // a Tuesday
    EXPECT_EQ(DateSerial(2007, -13, 1), DateSerial(2005, 11, 1));
    EXPECT_EQ(DateSerial(2008, 3, 0), DateSerial(2008, 2, 29));
    EXPECT_EQ(DateSerial(2000, 1, 400), DateSerial(2001, 2, 3));
    // Two-digit years as the host reads them.
    EXPECT_EQ(DateSerial(29, 1, 1), DateSerial(2029, 1, 1));
    EXPECT_EQ(DateSerial(30, 1, 1), DateSerial(1930, 1, 1));
    // Outside 1 January 100 .. 31 December 9999.
    EXPECT_EQ(ErrorOf([] { DateSerial(9999, 12, 32); }), 6);
    EXPECT_EQ(ErrorOf([] { DateSerial(100, 1, 0); }), 6);
    EXPECT_EQ(ErrorOf([] { DateSerial(2000, 2147483647L, 1); }), 6);
    EXPECT_EQ(ErrorOf([] { SplitDate(kMaxDateSerial + 1.0); }), 6);
}

TEST(DateTime, TimesAndNegativeSerials) {
    EXPECT_DOUBLE_EQ(TimeSerial(25, 0, 0), 1.0 + 1.0 / 24);
    EXPECT_DOUBLE_EQ(TimeSerial(12, -15, 0), TimeSerial(11, 45, 0));
    EXPECT_DOUBLE_EQ(TimeSerial(-1, 0, 0), -1.0 - 23.0 / 24);  // 29 December 1899 23:00
    EXPECT_EQ(CombineDateTime(-1.0, 0.25), -1.25);

    EXPECT_EQ(SplitDate(-1.25), (DateParts{1899, 12, 29, 6, 0, 0}));
    EXPECT_EQ(SplitDate(39441.0 + TimeSerial(13, 45, 30)), (DateParts{2007, 12, 25, 13, 45, 30}));
    EXPECT_EQ(DatePortion(-1.25), -1.0);
    EXPECT_DOUBLE_EQ(TimeOfDay(-1.25), 0.25);
    // A time a hair before midnight rounds to the next day, on either side of 0.
    EXPECT_EQ(SplitDate(2.0 - 1e-9), (DateParts{1900, 1, 1, 0, 0, 0}));
    EXPECT_EQ(SplitDate(-1.0 - (1.0 - 1e-9)), (DateParts{1899, 12, 30, 0, 0, 0}));
    EXPECT_EQ(SplitDate(kMaxDateSerial + 0.999995), (DateParts{9999, 12, 31, 23, 59, 59}));
}

TEST(DateTime, DateAddClipsMonthEndsAndWalksTheTimeLine) {
    const Date leap = DateSerial(2000, 2, 29);
    EXPECT_EQ(DateAdd("yyyy", 1, leap), DateSerial(2001, 2, 28));
    EXPECT_EQ(DateAdd("m", -1, DateSerial(2000, 3, 31)), DateSerial(2000, 2, 29));
    EXPECT_EQ(DateAdd("M", 13, DateSerial(2001, 1, 31)), DateSerial(2002, 2, 28));
    EXPECT_EQ(DateAdd("q", 1, DateSerial(2003, 11, 30)), DateSerial(2004, 2, 29));
    EXPECT_EQ(DateAdd("ww", -2, DateSerial(2007, 1, 10)), DateSerial(2006, 12, 27));
    EXPECT_EQ(DateAdd("d", 2.5, 100.0), 102.0);  // the count rounds half to even
    // Months keep the time of day, also for negative serials.
    EXPECT_EQ(DateAdd("m", 1, -1.25), CombineDateTime(DateSerial(1900, 1, 29), 0.25));
    EXPECT_DOUBLE_EQ(DateAdd("h", 20, -1.25), TimeSerial(2, 0, 0));
    EXPECT_DOUBLE_EQ(DateAdd("s", -1, 0.0), -1.0 - TimeSerial(23, 59, 59));
    EXPECT_EQ(ErrorOf([] { DateAdd("d", 1, kMaxDateSerial); }), 6);
    EXPECT_EQ(ErrorOf([] { DateAdd("m", -1, kMinDateSerial); }), 6);
    EXPECT_EQ(ErrorOf([] { DateAdd("x", 1, 0.0); }), 5);

    EXPECT_EQ(DateDiffDays(DateSerial(2007, 12, 25), DateSerial(2008, 1, 1)), 7);
    EXPECT_EQ(DateDiffDays(39441.9, 39441.1), 0);
    EXPECT_EQ(DateDiffDays(-1.75, 0.25), 1);
}

TEST(DateTime, CalendarNumbers) {
    EXPECT_EQ(DayOfYear(DateSerial(2008, 12, 31)), 366);
    EXPECT_EQ(Quarter(DateSerial(2007, 3, 31)), 1);
    // 1 January 2007 was a Monday: week 1 runs to Saturday 6 January.
    EXPECT_EQ(WeekOfYear(DateSerial(2007, 1, 6)), 1);
    EXPECT_EQ(WeekOfYear(DateSerial(2007, 1, 7)), 2);
    EXPECT_EQ(WeekOfYear(DateSerial(2007, 1, 7), FirstDayOfWeek::Monday), 1);
    EXPECT_EQ(WeekOfYear(DateSerial(2007, 12, 31)), 53);
}

TEST(DateTime, FormatTokensInItalianAndEnglish) {
    const Locale& it = ItalianLocale();
    const Locale& en = EnglishLocale();
    const Date d = DateSerial(2007, 12, 25) + TimeSerial(13, 5, 9);
    EXPECT_EQ(FormatDate(d, "DD/MM/YYYY", it), "25/12/2007");
    EXPECT_EQ(FormatDate(d, "dddd d mmmm yy", it), "martedì 25 dicembre 07");
    EXPECT_EQ(FormatDate(d, "ddd mmm", en), "Tue Dec");
    EXPECT_EQ(FormatDate(d, "w ww q y", it), "3 52 4 359");
    EXPECT_EQ(FormatDate(d, "hh:nn:ss", it), "13:05:09");
    EXPECT_EQ(FormatDate(d, "hh:mm", it), "13:05");  // m after an hour is the minute
    EXPECT_EQ(FormatDate(d, "mm/hh", it), "12/13");
    EXPECT_EQ(FormatDate(d, "h:nn AM/PM", it), "1:05 PM");
    EXPECT_EQ(FormatDate(d, "\"dd\" \\d dd", it), "dd d 25");
    EXPECT_EQ(FormatDate(DateSerial(100, 2, 1), "dd/mm/yyyy", it), "01/02/0100");
    EXPECT_EQ(FormatDate(0.0, "dd/mm/yyyy", it), "30/12/1899");
}

TEST(DateTime, LocaleTextRoundTripsDatesAndTimes) {
    const Date samples[] = {
        DateSerial(2007, 12, 25) + TimeSerial(13, 45, 0),
        DateSerial(100, 1, 1) - TimeSerial(23, 59, 59),
        DateSerial(9999, 12, 31) + TimeSerial(23, 59, 59),
        -1.25,
        TimeSerial(0, 0, 1),
        TimeSerial(12, 0, 0),
    };
    for (const Locale* locale : {&ItalianLocale(), &EnglishLocale()}) {
        for (Date d : samples) {
            const std::string text = DateToText(d, *locale);
            const std::optional<Date> back = TextToDate(text, *locale);
            ASSERT_TRUE(back.has_value()) << text;
            EXPECT_NEAR(*back, d, 1e-9) << locale->name << " " << text;
        }
    }
    EXPECT_EQ(DateToText(DateSerial(2007, 12, 25) + TimeSerial(13, 45, 0), ItalianLocale()),
              "25/12/2007 13:45:00");
    EXPECT_EQ(DateToText(DateSerial(2007, 12, 25) + TimeSerial(13, 45, 0), EnglishLocale()),
              "12/25/2007 1:45:00 PM");
    EXPECT_EQ(DateToText(0.0, ItalianLocale()), "00:00:00");
    EXPECT_EQ(DateToText(-1.0, ItalianLocale()), "29/12/1899");
}

TEST(DateTime, TextToDateReadsWhatTheHostReads) {
    const Locale& it = ItalianLocale();
    const Date christmas = DateSerial(2007, 12, 25);
    EXPECT_EQ(TextToDate("25/12/2007", it), christmas);
    EXPECT_EQ(TextToDate(" 25-12-07 ", it), christmas);
    EXPECT_EQ(TextToDate("2007-12-25", it), christmas);
    EXPECT_EQ(TextToDate("2007-12-25T13:45:00", it), christmas + TimeSerial(13, 45, 0));
    EXPECT_EQ(TextToDate("25 DIC 2007", it), christmas);
    EXPECT_EQ(TextToDate("December 25, 2007", EnglishLocale()), christmas);
    EXPECT_EQ(TextToDate("12/25/2007", it), christmas);  // day and month swapped
    EXPECT_EQ(TextToDate("1/2/0100", it), DateSerial(100, 2, 1));
    EXPECT_EQ(TextToDate("13:45", it), TimeSerial(13, 45, 0));
    EXPECT_EQ(TextToDate("12:00 am", it), 0.0);
    EXPECT_EQ(TextToDate("12:30:15 PM", EnglishLocale()), TimeSerial(12, 30, 15));
    for (const char* bad : {"", "hello", "31/02/2007", "25/12", "24:00", "12:60", "1/1/99999",
                            "25/12/2007 x", "13:00 PM", "25/13/2007 12", "0/0/0"}) {
        EXPECT_FALSE(TextToDate(bad, it).has_value()) << bad;
    }
}

}  // namespace
}  // namespace kelvarin

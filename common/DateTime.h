// SPDX-License-Identifier: MIT
// The host's date type and the date library the controls need.
//
// A Date is a double counting days since 30 December 1899; the fraction is
// the time of day. For a negative serial the integer part (towards zero)
// gives the day and the fraction, taken as positive, the time: -1.25 is
// 29 December 1899, 06:00. Valid dates run from 1 January 100 to
// 31 December 9999; a result outside raises Overflow (6).
//
// Sections: types and range; composing; splitting; arithmetic; clock;
// formatting; text conversion.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include <kelvarin/Export.h>

#include "common/Locale.h"

namespace kelvarin {

using Date = double;

inline constexpr Date kMinDateSerial = -657434.0;  // 1 January 100
inline constexpr Date kMaxDateSerial = 2958465.0;  // 31 December 9999 (plus its time)

struct DateParts {
    int year = 1899;
    int month = 12;
    int day = 30;
    int hour = 0;
    int minute = 0;
    int second = 0;

    friend bool operator==(const DateParts&, const DateParts&) = default;
};

// Weekday numbering: the day a week starts on, as the host counts it.
enum class FirstDayOfWeek : int { Sunday = 1, Monday = 2 };

// True if the serial lies within 1 January 100 .. 31 December 9999 23:59:59.
bool IsDateInRange(Date d) noexcept;
int DaysInMonth(int year, int month) noexcept;  // month 1..12

// ---- Composing -------------------------------------------------------------

// Year, month and day with calendar normalisation: month 13 is January of
// the next year, day 0 the last day of the previous month, negative values
// count back likewise. Years 0 to 29 mean 2000 to 2029 and 30 to 99 mean
// 1930 to 1999, as the host reads two-digit years.
KELVARIN_CORE_API Date DateSerial(long year, long month, long day);
// A time of day from hour, minute, second; values beyond their range carry
// into the next unit (25 hours is 1 January 1900 01:00).
KELVARIN_CORE_API Date TimeSerial(long hour, long minute, long second);
// A date portion joined with a time of day, keeping the negative-serial
// rule: CombineDateTime(-1, 0.25) is -1.25.
KELVARIN_CORE_API Date CombineDateTime(Date datePortion, Date timeOfDay);

// ---- Splitting -------------------------------------------------------------

// The six parts, the time rounded to the nearest second.
KELVARIN_CORE_API DateParts SplitDate(Date d);
Date DatePortion(Date d);  // the day without its time (0 for a time-only value)
Date TimeOfDay(Date d);    // the time as a fraction in [0, 1)
// Day of the week, 1 for the given first day.
int Weekday(Date d, FirstDayOfWeek first = FirstDayOfWeek::Sunday);
int DayOfYear(Date d);
// Week of the year, week 1 being the one that holds 1 January.
int WeekOfYear(Date d, FirstDayOfWeek first = FirstDayOfWeek::Sunday);
int Quarter(Date d);

// ---- Arithmetic ------------------------------------------------------------

// Adds a signed count of intervals: "yyyy", "q", "m" (clipped to the end of
// the month: 31 January + 1 "m" is 28 or 29 February), "ww", "w", "d", "y",
// "h", "n", "s". The count is rounded half to even first. An unknown
// interval raises Invalid procedure call (5); a result out of range, Overflow.
Date DateAdd(std::string_view interval, double number, Date d);
// Whole days from a to b, comparing date portions only (b later: positive).
long DateDiffDays(Date a, Date b);

// ---- Clock -----------------------------------------------------------------

// The local date and time of a system-clock instant.
KELVARIN_CORE_API Date LocalDateTime(std::chrono::system_clock::time_point when);

// ---- Formatting ------------------------------------------------------------

// Formats by pattern tokens, case-insensitive: d dd (day), ddd dddd
// (weekday name), w (weekday number, Sunday 1), ww (week of the year),
// m mm (month, or minute right after an hour token), mmm mmmm (month name),
// q (quarter), y (day of the year), yy yyyy (year), h hh (hour, 24-hour form
// unless the pattern has AM/PM), n nn (minute), s ss (second), AM/PM (the
// locale's designators). "text" and \c are literal; so is anything else.
std::string FormatDate(Date d, std::string_view pattern, const Locale& locale = CurrentLocale());

// ---- Text conversion -------------------------------------------------------

// The locale's text of a date: the short date, the time, or both with one
// blank between, the date alone when the time is midnight and the time
// alone when the date portion is 30 December 1899.
std::string DateToText(Date d, const Locale& locale = CurrentLocale());
// Reads the locale's date and date-time text, ISO dates ("2007-12-25",
// optionally followed by a time), month names in place of the month number,
// and a time alone. Nothing if the text is not a date.
std::optional<Date> TextToDate(std::string_view text, const Locale& locale = CurrentLocale());

}  // namespace kelvarin

// SPDX-License-Identifier: MIT
#include "common/DateTime.h"

#include <cctype>
#include <cmath>
#include <ctime>
#include <vector>

#include "common/HostError.h"
#include "common/Numeric.h"
#include "common/Text.h"

namespace kelvarin {

namespace {

constexpr long long kSecondsPerDay = 86400;

// Days since 1 January 1970 of a proleptic Gregorian date (H. Hinnant's
// algorithm: exact for every year, no tables).
constexpr long long DaysFromCivil(long long y, int m, int d) noexcept {
    y -= m <= 2;
    const long long era = (y >= 0 ? y : y - 399) / 400;
    const long long yoe = y - era * 400;
    const long long doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
    const long long doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 719468;
}

struct Civil {
    long long year;
    int month;
    int day;
};

constexpr Civil CivilFromDays(long long z) noexcept {
    z += 719468;
    const long long era = (z >= 0 ? z : z - 146096) / 146097;
    const long long doe = z - era * 146097;
    const long long yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const long long doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const long long mp = (5 * doy + 2) / 153;
    const int d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
    const int m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
    return {yoe + era * 400 + (m <= 2), m, d};
}

constexpr long long kEpoch = DaysFromCivil(1899, 12, 30);

constexpr long long SerialDay(long long y, int m, int d) noexcept {
    return DaysFromCivil(y, m, d) - kEpoch;
}

long long FloorDiv(long long a, long long b) noexcept {
    const long long q = a / b;
    return (a % b != 0 && (a < 0) != (b < 0)) ? q - 1 : q;
}

Date CheckedDate(double serial) {
    if (!IsDateInRange(serial)) RaiseHostError(HostErrorCode::Overflow);
    return serial;
}

// A date as a day number and the seconds into that day (not rounded).
struct DayAndTime {
    long long day;
    double seconds;
};

DayAndTime Decompose(Date d) {
    CheckedDate(d);
    const double t = std::trunc(d);
    return {static_cast<long long>(t), std::fabs(d - t) * kSecondsPerDay};
}

Date Compose(long long day, double seconds) {
    return CheckedDate(CombineDateTime(static_cast<double>(day), seconds / kSecondsPerDay));
}

// Day number and whole seconds after rounding the time to the second.
struct RoundedDay {
    long long day;
    long long seconds;
};

RoundedDay RoundToSecond(Date d) {
    const DayAndTime dt = Decompose(d);
    long long secs = static_cast<long long>(RoundHalfEven(dt.seconds));
    long long day = dt.day;
    if (secs >= kSecondsPerDay) {
        // Rounding reached midnight: the next day, unless that leaves the range.
        if (static_cast<double>(day + 1) > kMaxDateSerial) {
            secs = kSecondsPerDay - 1;
        } else {
            ++day;
            secs = 0;
        }
    }
    return {day, secs};
}

int WeekdayOfDay(long long day, FirstDayOfWeek first) noexcept {
    // Serial day 0 (30 December 1899) was a Saturday: Sunday-first number 7.
    const int sundayFirst = static_cast<int>(((day % 7) + 7 + 6) % 7) + 1;
    return (sundayFirst - static_cast<int>(first) + 7) % 7 + 1;
}

void AppendPadded(std::string& out, long long value, int width) {
    std::string digits = std::to_string(value < 0 ? -value : value);
    if (value < 0) out += '-';
    for (int i = static_cast<int>(digits.size()); i < width; ++i) out += '0';
    out += digits;
}

}  // namespace

bool IsDateInRange(Date d) noexcept { return d > kMinDateSerial - 1.0 && d < kMaxDateSerial + 1.0; }

int DaysInMonth(int year, int month) noexcept {
    static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (month == 2) {
        const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
        return leap ? 29 : 28;
    }
    return kDays[month - 1];
}

// ---- Composing -------------------------------------------------------------

Date DateSerial(long year, long month, long day) {
    long long y = year;
    if (y >= 0 && y <= 99) y += y < 30 ? 2000 : 1900;
    // Far outside the range the arithmetic below could itself overflow.
    constexpr long long kLimit = 100000000;
    if (y < -kLimit || y > kLimit || month < -kLimit || month > kLimit || day < -kLimit * 400 ||
        day > kLimit * 400) {
        RaiseHostError(HostErrorCode::Overflow);
    }
    const long long m0 = static_cast<long long>(month) - 1;
    y += FloorDiv(m0, 12);
    const int m = static_cast<int>(m0 - FloorDiv(m0, 12) * 12) + 1;
    return CheckedDate(static_cast<double>(SerialDay(y, m, 1) + day - 1));
}

Date TimeSerial(long hour, long minute, long second) {
    constexpr long long kLimit = 1000000000000LL;
    if (std::labs(hour) > kLimit || std::labs(minute) > kLimit || std::labs(second) > kLimit)
        RaiseHostError(HostErrorCode::Overflow);
    const long long total = static_cast<long long>(hour) * 3600 + minute * 60LL + second;
    const long long day = FloorDiv(total, kSecondsPerDay);
    return Compose(day, static_cast<double>(total - day * kSecondsPerDay));
}

Date CombineDateTime(Date datePortion, Date timeOfDay) {
    return datePortion < 0 ? datePortion - timeOfDay : datePortion + timeOfDay;
}

// ---- Splitting -------------------------------------------------------------

DateParts SplitDate(Date d) {
    const RoundedDay r = RoundToSecond(d);
    const Civil c = CivilFromDays(r.day + kEpoch);
    return {static_cast<int>(c.year),
            c.month,
            c.day,
            static_cast<int>(r.seconds / 3600),
            static_cast<int>(r.seconds / 60 % 60),
            static_cast<int>(r.seconds % 60)};
}

Date DatePortion(Date d) { return static_cast<double>(Decompose(d).day); }

Date TimeOfDay(Date d) { return Decompose(d).seconds / kSecondsPerDay; }

int Weekday(Date d, FirstDayOfWeek first) { return WeekdayOfDay(RoundToSecond(d).day, first); }

int DayOfYear(Date d) {
    const long long day = RoundToSecond(d).day;
    const Civil c = CivilFromDays(day + kEpoch);
    return static_cast<int>(day - SerialDay(c.year, 1, 1)) + 1;
}

int WeekOfYear(Date d, FirstDayOfWeek first) {
    const long long day = RoundToSecond(d).day;
    const Civil c = CivilFromDays(day + kEpoch);
    const long long jan1 = SerialDay(c.year, 1, 1);
    const int offset = WeekdayOfDay(jan1, first) - 1;
    return static_cast<int>((day - jan1 + offset) / 7) + 1;
}

int Quarter(Date d) { return (SplitDate(d).month - 1) / 3 + 1; }

// ---- Arithmetic ------------------------------------------------------------

Date DateAdd(std::string_view interval, double number, Date d) {
    const long long n = ToLong(number);
    const DayAndTime dt = Decompose(d);

    long long months = 0;
    long long seconds = 0;
    long long days = 0;
    if (EqualsIgnoreCase(interval, "yyyy")) {
        months = n * 12;
    } else if (EqualsIgnoreCase(interval, "q")) {
        months = n * 3;
    } else if (EqualsIgnoreCase(interval, "m")) {
        months = n;
    } else if (EqualsIgnoreCase(interval, "ww")) {
        days = n * 7;
    } else if (EqualsIgnoreCase(interval, "d") || EqualsIgnoreCase(interval, "y") ||
               EqualsIgnoreCase(interval, "w")) {
        days = n;
    } else if (EqualsIgnoreCase(interval, "h")) {
        seconds = n * 3600;
    } else if (EqualsIgnoreCase(interval, "n")) {
        seconds = n * 60;
    } else if (EqualsIgnoreCase(interval, "s")) {
        seconds = n;
    } else {
        RaiseHostError(HostErrorCode::InvalidProcedureCall);
    }

    if (months != 0) {
        const Civil c = CivilFromDays(dt.day + kEpoch);
        const long long total = c.year * 12 + (c.month - 1) + months;
        const long long y = FloorDiv(total, 12);
        const int m = static_cast<int>(total - y * 12) + 1;
        if (y < 100 || y > 9999) RaiseHostError(HostErrorCode::Overflow);
        const int day = std::min(c.day, DaysInMonth(static_cast<int>(y), m));
        return Compose(SerialDay(y, m, day), dt.seconds);
    }
    // Days and times move along the time line, whatever the serial's sign.
    const double secs = dt.seconds + static_cast<double>(seconds);
    const long long carry = static_cast<long long>(std::floor(secs / kSecondsPerDay));
    return Compose(dt.day + days + carry, secs - static_cast<double>(carry) * kSecondsPerDay);
}

long DateDiffDays(Date a, Date b) { return static_cast<long>(Decompose(b).day - Decompose(a).day); }

// ---- Clock -----------------------------------------------------------------

Date LocalDateTime(std::chrono::system_clock::time_point when) {
    const std::time_t t = std::chrono::system_clock::to_time_t(when);
    std::tm tm{};
    localtime_r(&t, &tm);
    return CombineDateTime(
        DateSerial(tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday),
        (tm.tm_hour * 3600 + tm.tm_min * 60 + tm.tm_sec) / static_cast<double>(kSecondsPerDay));
}

// ---- Formatting ------------------------------------------------------------

std::string FormatDate(Date d, std::string_view pattern, const Locale& locale) {
    const DateParts p = SplitDate(d);
    std::string out;

    // An "AM/PM" anywhere in the pattern switches hours to the 12-hour form.
    bool twelveHour = false;
    for (std::size_t i = 0; i + 5 <= pattern.size(); ++i)
        if (EqualsIgnoreCase(pattern.substr(i, 5), "am/pm")) twelveHour = true;
    for (std::size_t i = 0; i + 4 <= pattern.size(); ++i)
        if (EqualsIgnoreCase(pattern.substr(i, 4), "ampm")) twelveHour = true;

    bool lastWasHour = false;  // "m" right after an hour token means minutes
    std::size_t i = 0;
    while (i < pattern.size()) {
        const char c = pattern[i];
        const char lc = ToLowerAscii(c);
        if (c == '"') {
            const std::size_t end = pattern.find('"', i + 1);
            const std::size_t stop = end == std::string_view::npos ? pattern.size() : end;
            out.append(pattern.substr(i + 1, stop - i - 1));
            i = stop + 1;
            continue;
        }
        if (c == '\\' && i + 1 < pattern.size()) {
            out += pattern[i + 1];
            i += 2;
            continue;
        }
        if (EqualsIgnoreCase(pattern.substr(i, 5), "am/pm")) {
            out.append(pattern.substr(i + (p.hour < 12 ? 0 : 3), 2));
            i += 5;
            continue;
        }
        if (EqualsIgnoreCase(pattern.substr(i, 4), "ampm")) {
            out += p.hour < 12 ? locale.amDesignator : locale.pmDesignator;
            i += 4;
            continue;
        }
        std::size_t run = 1;
        while (i + run < pattern.size() && ToLowerAscii(pattern[i + run]) == lc) ++run;
        std::size_t used = run;
        switch (lc) {
            case 'd':
                if (run >= 4) {
                    used = 4;
                    out += locale.weekdayNames[Weekday(d) - 1];
                } else if (run == 3) {
                    out += locale.weekdayAbbrevs[Weekday(d) - 1];
                } else {
                    used = run;
                    AppendPadded(out, p.day, static_cast<int>(run));
                }
                lastWasHour = false;
                break;
            case 'w':
                used = std::min<std::size_t>(run, 2);
                AppendPadded(out, used == 2 ? WeekOfYear(d) : Weekday(d), 1);
                lastWasHour = false;
                break;
            case 'm':
                if (run <= 2 && lastWasHour) {
                    AppendPadded(out, p.minute, static_cast<int>(run));
                } else if (run <= 2) {
                    AppendPadded(out, p.month, static_cast<int>(run));
                } else if (run == 3) {
                    out += locale.monthAbbrevs[p.month - 1];
                } else {
                    used = 4;
                    out += locale.monthNames[p.month - 1];
                }
                lastWasHour = false;
                break;
            case 'q':
                used = 1;
                AppendPadded(out, (p.month - 1) / 3 + 1, 1);
                lastWasHour = false;
                break;
            case 'y':
                if (run >= 4) {
                    used = 4;
                    AppendPadded(out, p.year, 4);
                } else if (run >= 2) {
                    used = 2;
                    AppendPadded(out, p.year % 100, 2);
                } else {
                    AppendPadded(out, DayOfYear(d), 1);
                }
                lastWasHour = false;
                break;
            case 'h': {
                used = std::min<std::size_t>(run, 2);
                int h = p.hour;
                if (twelveHour) h = h % 12 == 0 ? 12 : h % 12;
                AppendPadded(out, h, static_cast<int>(used));
                lastWasHour = true;
                break;
            }
            case 'n':
                used = std::min<std::size_t>(run, 2);
                AppendPadded(out, p.minute, static_cast<int>(used));
                lastWasHour = false;
                break;
            case 's':
                used = std::min<std::size_t>(run, 2);
                AppendPadded(out, p.second, static_cast<int>(used));
                lastWasHour = false;
                break;
            default:
                used = 1;
                out += c;
                break;
        }
        i += used;
    }
    return out;
}

// ---- Text conversion -------------------------------------------------------

std::string DateToText(Date d, const Locale& locale) {
    const RoundedDay r = RoundToSecond(d);
    if (r.day == 0) return FormatDate(d, locale.timePattern, locale);
    if (r.seconds == 0) return FormatDate(d, locale.shortDatePattern, locale);
    return FormatDate(d, locale.shortDatePattern, locale) + " " +
           FormatDate(d, locale.timePattern, locale);
}

namespace {

struct Token {
    enum Kind { Number, Word, Separator } kind;
    std::string_view text;
};

std::vector<Token> Tokenize(std::string_view s) {
    std::vector<Token> tokens;
    std::size_t i = 0;
    while (i < s.size()) {
        const unsigned char c = static_cast<unsigned char>(s[i]);
        std::size_t j = i + 1;
        if (std::isdigit(c)) {
            while (j < s.size() && std::isdigit(static_cast<unsigned char>(s[j]))) ++j;
            tokens.push_back({Token::Number, s.substr(i, j - i)});
        } else if (std::isalpha(c) || c >= 0x80) {
            while (j < s.size() && (std::isalpha(static_cast<unsigned char>(s[j])) ||
                                    static_cast<unsigned char>(s[j]) >= 0x80 || s[j] == '.'))
                ++j;
            std::string_view word = s.substr(i, j - i);
            while (!word.empty() && word.back() == '.') word.remove_suffix(1);  // "Dec."
            tokens.push_back({Token::Word, word});
        } else if (std::isspace(c)) {
            while (j < s.size() && std::isspace(static_cast<unsigned char>(s[j]))) ++j;
            tokens.push_back({Token::Separator, " "});
        } else {
            tokens.push_back({Token::Separator, s.substr(i, 1)});
        }
        i = j;
    }
    return tokens;
}

int MonthFromName(std::string_view word, const Locale& locale) {
    for (int m = 0; m < 12; ++m) {
        if (EqualsIgnoreCase(word, locale.monthNames[m]) ||
            EqualsIgnoreCase(word, locale.monthAbbrevs[m])) {
            return m + 1;
        }
    }
    return 0;
}

long ToNumber(std::string_view digits) {
    if (digits.size() > 9) return -1;  // no field of a date is that long
    long v = 0;
    for (char c : digits) v = v * 10 + (c - '0');
    return v;
}

// The order of day, month and year in the locale's short date pattern.
std::string FieldOrder(const Locale& locale) {
    std::string order;
    for (char c : locale.shortDatePattern) {
        const char lc = ToLowerAscii(c);
        if ((lc == 'd' || lc == 'm' || lc == 'y') && order.find(lc) == std::string::npos)
            order += lc;
    }
    return order.size() == 3 ? order : "dmy";
}

std::optional<long long> ValidDay(long year, long month, long day) {
    if (year < 100 || year > 9999 || month < 1 || month > 12 || day < 1 ||
        day > DaysInMonth(static_cast<int>(year), static_cast<int>(month))) {
        return std::nullopt;
    }
    return SerialDay(year, static_cast<int>(month), static_cast<int>(day));
}

long WidenYear(const Token& t) {
    const long y = ToNumber(t.text);
    if (t.text.size() <= 2) return y < 30 ? 2000 + y : 1900 + y;
    return y;
}

}  // namespace

std::optional<Date> TextToDate(std::string_view text, const Locale& locale) {
    std::vector<Token> tokens = Tokenize(text);

    // Time: h:nn[:ss] with an optional designator, taken out of the tokens.
    std::optional<long long> seconds;
    for (std::size_t i = 0; i + 2 < tokens.size(); ++i) {
        if (tokens[i].kind != Token::Number || tokens[i + 1].text != ":" ||
            tokens[i + 2].kind != Token::Number) {
            continue;
        }
        std::size_t end = i + 3;
        long h = ToNumber(tokens[i].text), n = ToNumber(tokens[i + 2].text), s = 0;
        if (end + 1 < tokens.size() && tokens[end].text == ":" &&
            tokens[end + 1].kind == Token::Number) {
            s = ToNumber(tokens[end + 1].text);
            end += 2;
        }
        std::size_t w = end < tokens.size() && tokens[end].text == " " ? end + 1 : end;
        if (w < tokens.size() && tokens[w].kind == Token::Word) {
            const bool am = EqualsIgnoreCase(tokens[w].text, "am") ||
                            (!locale.amDesignator.empty() &&
                             EqualsIgnoreCase(tokens[w].text, locale.amDesignator));
            const bool pm = EqualsIgnoreCase(tokens[w].text, "pm") ||
                            (!locale.pmDesignator.empty() &&
                             EqualsIgnoreCase(tokens[w].text, locale.pmDesignator));
            if (am || pm) {
                if (h < 1 || h > 12) return std::nullopt;
                h = h % 12 + (pm ? 12 : 0);
                end = w + 1;
            }
        }
        if (h < 0 || h > 23 || n < 0 || n > 59 || s < 0 || s > 59) return std::nullopt;
        seconds = h * 3600LL + n * 60LL + s;
        tokens.erase(tokens.begin() + static_cast<std::ptrdiff_t>(i),
                     tokens.begin() + static_cast<std::ptrdiff_t>(end));
        break;
    }

    // Date: the remaining numbers and month names; separators between them.
    std::vector<Token> fields;
    for (const Token& t : tokens) {
        if (t.kind == Token::Separator) {
            if (t.text != " " && t.text != "/" && t.text != "-" && t.text != "." && t.text != ",")
                return std::nullopt;
            continue;
        }
        if (t.kind == Token::Word && EqualsIgnoreCase(t.text, "T") && seconds) continue;  // ISO
        fields.push_back(t);
    }

    std::optional<long long> day;
    if (fields.size() == 3) {
        const bool named0 = fields[0].kind == Token::Word;
        const bool named1 = fields[1].kind == Token::Word;
        if (fields[2].kind == Token::Word) return std::nullopt;
        if (named0 || named1) {
            const int month = MonthFromName(fields[named0 ? 0 : 1].text, locale);
            if (month == 0 || (named0 && named1)) return std::nullopt;
            const Token& dayToken = fields[named0 ? 1 : 0];
            day = ValidDay(WidenYear(fields[2]), month, ToNumber(dayToken.text));
        } else if (fields[0].text.size() >= 3) {  // year first: 2007-12-25
            day =
                ValidDay(WidenYear(fields[0]), ToNumber(fields[1].text), ToNumber(fields[2].text));
        } else {
            long values[3] = {0, 0, 0};  // d, m, y
            const std::string order = FieldOrder(locale);
            for (int k = 0; k < 3; ++k) {
                const char which = order[static_cast<std::size_t>(k)];
                const long v = which == 'y' ? WidenYear(fields[static_cast<std::size_t>(k)])
                                            : ToNumber(fields[static_cast<std::size_t>(k)].text);
                values[which == 'd' ? 0 : which == 'm' ? 1 : 2] = v;
            }
            day = ValidDay(values[2], values[1], values[0]);
            // The host also reads a date whose day and month are the other way round.
            if (!day) day = ValidDay(values[2], values[0], values[1]);
        }
        if (!day) return std::nullopt;
    } else if (!fields.empty() || !seconds) {
        return std::nullopt;
    }

    const double datePart = day ? static_cast<double>(*day) : 0.0;
    const double timePart = seconds ? static_cast<double>(*seconds) / kSecondsPerDay : 0.0;
    return CombineDateTime(datePart, timePart);
}

}  // namespace kelvarin

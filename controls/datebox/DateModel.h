// SPDX-License-Identifier: MIT
// The DateBox's value model, apart from any box: the pattern cut into
// tokens, the six part values that may each be blank, and how a date is
// split into them and composed from them.
//
// Sections: parts; tokens; pattern; values.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "common/DateTime.h"
#include "common/Locale.h"
#include "common/Numeric.h"

namespace kelvarin::controls {

// ---- Parts ------------------------------------------------------------------

// eDatePart: the index of a part into every per-part table.
enum DatePart : int { kYear = 0, kMonth, kDay, kHour, kMinute, kSecond };
inline constexpr int kPartCount = 6;
inline constexpr Long kBlank = -1;  // a part with no value

struct PartRangeEntry {
    Long min = 0;
    Long max = 0;
    Long defaultValue = 0;
    std::string_view interval;  // the date-arithmetic interval that steps the part
};
using PartRangeTable = std::array<PartRangeEntry, kPartCount>;

// The fixed ranges: years 100 to 9980 (not 9999: typed years and MaxDate
// stop there), months 1 to 12, days 1 to 31, and the time of day.
PartRangeTable InitPartRanges() noexcept;

// The control's content, one value per part, kBlank where empty.
using PartValues = std::array<Long, kPartCount>;

inline constexpr PartValues kAllBlank = {kBlank, kBlank, kBlank, kBlank, kBlank, kBlank};

// ---- Tokens -----------------------------------------------------------------

struct FormatToken {
    bool isLiteral = false;
    Long pixelWidth = -1;  // measured width of its box or label; -1 until measured
    std::string text;      // the formatter pattern of a field, the shown text of a literal
    Long digits = -1;      // 2 or 4 for a field the user types into, else -1
    bool editable = false;
    Long part = -1;  // DatePart of a field, -1 for a literal
    Long stepMultiplier = 1;
    Long controlIndex = -1;  // its txtData or lblSeparator element, -1 until created

    bool IsTimeField() const noexcept {
        return part == kHour || part == kMinute || part == kSecond;
    }
};

// ---- Pattern ----------------------------------------------------------------

// Lower-cases the pattern, expands the named formats "c", "ddddd",
// "dddddd" and "ttttt" (an escaped letter such as "&c" is kept), and cuts
// the result into runs of equal characters, an "&" always staying with the
// character after it. An empty pattern gives one empty literal.
std::vector<FormatToken> ParseFormat(std::string_view pattern);

// Classifies one run and appends it. "m" and "mm" are minutes right after
// an hour field and months anywhere else; a two-digit year is widened to
// four digits; a run that names no field is literal text with its "&"
// escapes resolved ("&&" is one "&", a lone "&" disappears).
void AddToken(std::vector<FormatToken>& tokens, std::string_view text);

// ---- Values -----------------------------------------------------------------

// Splits a date into the parts: the empty date blanks them all, a time
// alone (30 December 1899) blanks the date parts.
void ValueToParts(Date d, PartValues& parts);
void SnapshotParts(const PartValues& source, PartValues& destination) noexcept;

// Composes the value the boxes show. Parts without a field count as the
// lowest of their range; a blank date part empties the date portion and a
// blank time part the time portion. `boxCount` is the number of field boxes.
Date PartsToValue(const std::vector<FormatToken>& tokens, const PartValues& parts, int boxCount,
                  const PartRangeTable& ranges, const Locale& locale);

// A complete date from the parts, blanks taken as 1 August 2000 00:00:00:
// what stepping starts from and what a single box is formatted from.
Date WorkingValue(const PartValues& parts, const Locale& locale);

// Joins a date portion and a time of day. Both present, they go through
// the locale's text and back, as the value always has.
Date JoinDateAndTime(Date datePortion, Date timePortion, const Locale& locale);

std::string StripPlaceholders(std::string_view s);

// The text of a number, left-padded with "0" to `digits` characters.
std::string ZeroPadded(Long value, Long digits);

// The number a box's text starts with, as the host's Val reads it: blanks
// skipped, an optional sign, then digits up to the first other character
// ("2___" is 2, "_5" is 0). Overflow (6) past a Long.
Long LeadingNumber(std::string_view s);

}  // namespace kelvarin::controls

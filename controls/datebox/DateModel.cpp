// SPDX-License-Identifier: MIT
#include "controls/datebox/DateModel.h"

#include <optional>

#include "common/HostError.h"
#include "common/Text.h"

namespace kelvarin::controls {

namespace {

// Protects an escaped letter while the named formats are expanded.
constexpr std::string_view kMarker = "@#°ç*§";

std::string ReplaceAll(std::string_view s, std::string_view from, std::string_view to) {
    std::string out;
    std::size_t pos = 0;
    while (true) {
        const std::size_t hit = s.find(from, pos);
        if (hit == std::string_view::npos) break;
        out.append(s, pos, hit - pos);
        out.append(to);
        pos = hit + from.size();
    }
    out.append(s, pos);
    return out;
}

// ASCII and the Latin-1 capitals (UTF-8 C3 80..9E, except the sign x).
std::string LowerPattern(std::string_view s) {
    std::string out(s);
    for (std::size_t i = 0; i < out.size(); ++i) {
        const auto c = static_cast<unsigned char>(out[i]);
        if (c >= 'A' && c <= 'Z') {
            out[i] = static_cast<char>(c + 32);
        } else if (c == 0xC3 && i + 1 < out.size()) {
            const auto next = static_cast<unsigned char>(out[i + 1]);
            if (next >= 0x80 && next <= 0x9E && next != 0x97)
                out[i + 1] = static_cast<char>(next + 32);
            ++i;
        }
    }
    return out;
}

// The Part of the last field already appended, or -1.
Long LastFieldPart(const std::vector<FormatToken>& tokens) {
    for (auto it = tokens.rbegin(); it != tokens.rend(); ++it)
        if (!it->isLiteral) return it->part;
    return -1;
}

void Field(FormatToken& t, std::string_view text, DatePart part, bool editable, Long digits,
           Long stepMultiplier = 1) {
    t.text = std::string(text);
    t.part = part;
    t.editable = editable;
    t.digits = digits;
    t.stepMultiplier = stepMultiplier;
}

}  // namespace

PartRangeTable InitPartRanges() noexcept {
    return {{
        {100, 9980, 2000, "yyyy"},
        {1, 12, 0, "m"},
        {1, 31, 0, "d"},
        {0, 23, 0, "h"},
        {0, 59, 0, "n"},
        {0, 59, 0, "s"},
    }};
}

// ---- Pattern ------------------------------------------------------------------

std::vector<FormatToken> ParseFormat(std::string_view pattern) {
    std::string s = LowerPattern(pattern);
    s = ReplaceAll(s, "&c", kMarker);
    s = ReplaceAll(s, "c", "ddddd ttttt");
    s = ReplaceAll(s, kMarker, "&c");
    s = ReplaceAll(s, "&d", kMarker);
    s = ReplaceAll(s, "dddddd", "dd mmmm, yyyy");
    s = ReplaceAll(s, "ddddd", "d/m/yy");
    s = ReplaceAll(s, kMarker, "&d");
    s = ReplaceAll(s, "&t", kMarker);
    s = ReplaceAll(s, "ttttt", "h:nn:ss");
    s = ReplaceAll(s, kMarker, "&t");

    std::vector<FormatToken> tokens;
    std::string current;
    std::string_view previous;
    for (std::size_t i = 0; i < s.size();) {
        const std::string_view ch = std::string_view(s).substr(i, Utf8CharSize(s, i));
        if (!previous.empty() && ch != previous && previous != "&") {
            AddToken(tokens, current);
            current.clear();
        }
        current += ch;
        previous = ch;
        i += ch.size();
    }
    AddToken(tokens, current);
    return tokens;
}

void AddToken(std::vector<FormatToken>& tokens, std::string_view text) {
    const Long lastPart = LastFieldPart(tokens);
    FormatToken t;
    t.text = std::string(text);
    if (text == "d" || text == "dd") Field(t, "dd", kDay, true, 2);
    else if (text == "ddd" || text == "dddd") Field(t, text, kDay, false, -1);
    else if (text == "w") Field(t, "w", kDay, false, -1);
    else if (text == "ww") Field(t, "ww", kDay, false, -1, 7);
    else if ((text == "m" || text == "mm") && lastPart == kHour) Field(t, "nn", kMinute, true, 2);
    else if (text == "m" || text == "mm") Field(t, "mm", kMonth, true, 2);
    else if (text == "mmm" || text == "mmmm") Field(t, text, kMonth, false, -1);
    else if (text == "q") Field(t, "q", kMonth, false, -1, 3);
    else if (text == "y") Field(t, "y", kYear, false, -1);
    else if (text == "yy" || text == "yyyy") Field(t, "yyyy", kYear, true, 4);
    else if (text == "h" || text == "hh") Field(t, "hh", kHour, true, 2);
    else if (text == "n" || text == "nn") Field(t, "nn", kMinute, true, 2);
    else if (text == "s" || text == "ss") Field(t, "ss", kSecond, true, 2);
    else {
        t.isLiteral = true;
        t.part = -1;
        std::string shown = ReplaceAll(text, "&&", kMarker);
        shown = ReplaceAll(shown, "&", "");
        t.text = ReplaceAll(shown, kMarker, "&");
    }
    tokens.push_back(std::move(t));
}

// ---- Values -------------------------------------------------------------------

void ValueToParts(Date d, PartValues& parts) {
    if (d == 0) {
        parts = kAllBlank;
        return;
    }
    const kelvarin::DateParts p = SplitDate(d);
    if (DatePortion(d) == 0) {
        parts = {kBlank, kBlank, kBlank, p.hour, p.minute, p.second};
        return;
    }
    parts = {p.year, p.month, p.day, p.hour, p.minute, p.second};
}

void SnapshotParts(const PartValues& source, PartValues& destination) noexcept {
    destination = source;
}

Date JoinDateAndTime(Date datePortion, Date timePortion, const Locale& locale) {
    if (datePortion == 0) return timePortion;
    if (timePortion == 0) return datePortion;
    const std::string text =
        DateToText(datePortion, locale) + " " + DateToText(timePortion, locale);
    const std::optional<Date> d = TextToDate(text, locale);
    if (!d) RaiseHostError(HostErrorCode::TypeMismatch);  // as the runtime's conversion fails
    return *d;
}

Date PartsToValue(const std::vector<FormatToken>& tokens, const PartValues& parts, int boxCount,
                  const PartRangeTable& ranges, const Locale& locale) {
    PartValues working;
    for (int i = 0; i < kPartCount; ++i) working[i] = ranges[i].min;
    int timeFields = 0;
    for (const FormatToken& t : tokens) {
        if (t.isLiteral || t.part < 0 || t.part >= kPartCount) continue;
        working[t.part] = parts[t.part];
        if (t.IsTimeField()) ++timeFields;
    }
    Date date = 0;
    if (boxCount - timeFields > 0 && working[kYear] != kBlank && working[kMonth] != kBlank &&
        working[kDay] != kBlank) {
        date = DateSerial(working[kYear], working[kMonth], working[kDay]);
    }
    Date time = 0;
    if (timeFields > 0 && working[kHour] != kBlank && working[kMinute] != kBlank &&
        working[kSecond] != kBlank) {
        time = TimeSerial(working[kHour], working[kMinute], working[kSecond]);
    }
    return JoinDateAndTime(date, time, locale);
}

Date WorkingValue(const PartValues& parts, const Locale& locale) {
    // A blank month counts as August, not January: stepping a blank field
    // has always started from there.
    constexpr PartValues kFill = {2000, 8, 1, 0, 0, 0};
    PartValues p = parts;
    for (int i = 0; i < kPartCount; ++i)
        if (p[i] == kBlank) p[i] = kFill[i];
    return JoinDateAndTime(DateSerial(p[kYear], p[kMonth], p[kDay]),
                           TimeSerial(p[kHour], p[kMinute], p[kSecond]), locale);
}

std::string StripPlaceholders(std::string_view s) { return ReplaceAll(s, "_", ""); }

std::string ZeroPadded(Long value, Long digits) {
    std::string s = std::to_string(value);
    if (static_cast<Long>(s.size()) < digits)
        s.insert(0, static_cast<std::size_t>(digits) - s.size(), '0');
    return s;
}

Long LeadingNumber(std::string_view s) {
    std::size_t i = 0;
    while (i < s.size() && (s[i] == ' ' || s[i] == '\t')) ++i;
    bool negative = false;
    if (i < s.size() && (s[i] == '-' || s[i] == '+')) negative = s[i++] == '-';
    long long v = 0;
    for (; i < s.size() && s[i] >= '0' && s[i] <= '9'; ++i) {
        v = v * 10 + (s[i] - '0');
        if (v > 2147483648LL) RaiseHostError(HostErrorCode::Overflow);
    }
    if (negative) v = -v;
    if (v > 2147483647LL) RaiseHostError(HostErrorCode::Overflow);
    return static_cast<Long>(v);
}

}  // namespace kelvarin::controls

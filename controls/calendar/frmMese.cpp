// SPDX-License-Identifier: MIT
#include "controls/calendar/frmMese.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "common/HostError.h"
#include "common/Numeric.h"
#include "common/OleColor.h"
#include "controls/calendar/CalendarHook.h"
#include "controls/datebox/ChangeFlags.h"
#include "controls/datebox/DateModel.h"

namespace kelvarin::controls {

namespace {

constexpr Date kFirstOfFebruary100 = -657403.0;
constexpr OLE_COLOR kRed = 255;
constexpr unsigned kCentred =
    host::DT_CENTER | host::DT_VCENTER | host::DT_SINGLELINE | host::DT_NOPREFIX;

enum : Integer {
    kEnter = 13,
    kEscape = 27,
    kPageUp = 33,
    kPageDown = 34,
    kLeft = 37,
    kUp = 38,
    kRight = 39,
    kDown = 40,
};

// A coordinate rounded as the form's scale rounds it; a point far off the
// form (or not a number) becomes one that lies outside every cell.
Long Rounded(Single v) noexcept {
    const double d = v;
    if (!(d > -1e9)) return -1000000000;
    if (!(d < 1e9)) return 1000000000;
    return static_cast<Long>(RoundHalfEven(d));
}

int Round(double v) noexcept { return static_cast<int>(RoundHalfEven(v)); }

// Characters `from` (counting from 1) to `from + count - 1` of the text, or
// what there is of them.
std::string_view Mid(std::string_view s, std::size_t from, std::size_t count) {
    if (from > s.size()) return {};
    return s.substr(from - 1, count);
}

// The last two characters of "00" followed by the number: "05", "-1".
std::string TwoDigits(Long n) {
    const std::string s = "00" + std::to_string(n);
    return s.substr(s.size() - 2);
}

std::string DateText(Date d) {
    if (!IsDateInRange(d)) return std::to_string(d);
    const DateParts p = SplitDate(d);
    char buf[24];
    std::snprintf(buf, sizeof buf, "#%04d-%02d-%02d#", p.year, p.month, p.day);
    return buf;
}

}  // namespace

// ---- Shared helpers -------------------------------------------------------------

Date ClampCalendarDate(Date d) noexcept {
    if (d == 0) return d;
    if (d < CalendarMinDate()) d = CalendarMinDate();
    if (d > CalendarMaxDate()) d = CalendarMaxDate();
    if (d < kFirstOfFebruary100) d = kFirstOfFebruary100;
    return d;
}

void SetCalendarResult(Date d, bool notify, bool force) {
    SetNotifyOnChange(notify);
    SetForceChange(force);
    ExchangeLabel* label = CalendarResultLabel();
    if (!label) return;
    label->SetCaption(d == 0 ? "-1/-1/-1" : FormatDate(d, "dd/mm/yyyy"));
}

// ---- Life-cycle -------------------------------------------------------------------

frmMese::frmMese(host::ControlSite& site, const Font& ownerFont) : site_(site) {
    // The owner's font, field by field, before anything is measured.
    font_.italic = ownerFont.italic;
    font_.name = ownerFont.name;
    font_.size = ownerFont.size;
    font_.strikethrough = ownerFont.strikethrough;
    font_.underline = ownerFont.underline;
    font_.bold = ownerFont.bold;
    boldFont_ = font_;
    boldFont_.bold = true;
    Measure();

    HookCalendar(*this);
    capture_ = true;

    const ExchangeLabel* label = CalendarResultLabel();
    const std::string text = label ? label->Caption() : std::string("-1/-1/-1");
    // The owner's no-date text names no opening date: today's month, as for "-1/-1/-1".
    openedWithoutDate_ = text == kNoCalendarDateText;
    if (!openedWithoutDate_)
        openingDateParts_ = {LeadingNumber(Mid(text, 4, 2)), LeadingNumber(Mid(text, 7, 4)),
                             LeadingNumber(Mid(text, 1, 2))};
    const Date today = Today();
    const DateParts now = SplitDate(today);
    const auto [month, year, day] = openingDateParts_;
    shownMonth_ = month == -1 ? now.month : month;
    shownYear_ = year == -1 ? now.year : year;
    try {
        currentDate_ = DateSerial(shownYear_, shownMonth_, day == -1 ? now.day : day);
        (void)CellDate(1, 0);  // the month must be one the calendar can show
    } catch (const HostError&) {
        // A text that names no date the calendar holds: start from today.
        currentDate_ = today;
        shownMonth_ = now.month;
        shownYear_ = now.year;
    }
    currentDate_ = ClampCalendarDate(currentDate_);
}

frmMese::~frmMese() {
    if (open_) Unload();
}

void frmMese::Unload() {
    if (!open_) return;
    open_ = false;
    UnhookCalendar();
    capture_ = false;
    SetNotifyOnChange(true);
    SetForceChange(false);
}

Date frmMese::Today() const { return DatePortion(site_.Now()); }

// ---- Geometry ---------------------------------------------------------------------

void frmMese::Measure() {
    host::Surface& s = site_.ClientSurface();
    Geometry& g = geometry_;
    g.cw = std::max(1, s.MeasureText("www", font_).width);
    g.rh = s.MeasureText("0", font_).height + 2;
    const double wp = s.MeasureText("+", boldFont_).width;
    const double wm = s.MeasureText("novembre", boldFont_).width;
    const double wy = s.MeasureText("0000", boldFont_).width;
    const double th = s.MeasureText("+", boldFont_).height;
    const double total = wp + 5 + wm + 5 + wy + 5 + wp;
    const double x0 = Round(7.0 * g.cw / 2 - total / 2);
    g.monthSpinLeft = static_cast<int>(x0);
    g.monthSpinRight = Round(x0 + wp);
    g.yearSpinLeft = Round(x0 + wp + 5 + wm + 5 + wy + 5);
    g.yearSpinRight = Round(g.yearSpinLeft + wp);
    g.upperTop = Round(g.rh - th + 1);
    g.lowerBottom = Round(g.rh + th);
    g.monthNameLeft = Round(x0 + wp + 5);
    g.monthNameWidth = static_cast<int>(wm);
    g.yearLeft = Round(x0 + wp + 5 + wm + 5);
    g.yearWidth = static_cast<int>(wy);
}

host::Size frmMese::ClientSize() { return {7 * geometry_.cw, 10 * geometry_.rh}; }

Date frmMese::FirstShown() const { return DateSerial(shownYear_, shownMonth_, 1); }

Date frmMese::CellDate(int column, int weekRow) const {
    const Date first = FirstShown();
    int w = Weekday(first, FirstDayOfWeek::Monday);
    if (w == 1) w = 8;
    return first - w + column + 7 * weekRow;
}

int frmMese::ColumnAt(Single x) const { return Rounded(x) / geometry_.cw + 1; }
int frmMese::WeekRowAt(Single y) const { return Rounded(y) / geometry_.rh - 3; }

frmMese::SpinnerHalf frmMese::SpinnerAt(Single fx, Single fy) const {
    const Geometry& g = geometry_;
    const Long x = Rounded(fx), y = Rounded(fy);
    const bool upper = y >= g.upperTop && y <= g.rh;
    const bool lower = y > g.rh && y <= g.lowerBottom;
    if (x >= g.monthSpinLeft && x <= g.monthSpinRight) {
        if (upper) return SpinnerHalf::MonthUp;
        if (lower) return SpinnerHalf::MonthDown;
    }
    if (x >= g.yearSpinLeft && x <= g.yearSpinRight) {
        if (upper) return SpinnerHalf::YearUp;
        if (lower) return SpinnerHalf::YearDown;
    }
    return SpinnerHalf::None;
}

// ---- Input --------------------------------------------------------------------------

Date frmMese::Moved(const char* interval, int count) const {
    try {
        return DateAdd(interval, count, currentDate_);
    } catch (const HostError&) {
        return currentDate_;  // past the first or last day the calendar knows
    }
}

void frmMese::FollowCurrentDate() {
    currentDate_ = ClampCalendarDate(currentDate_);
    if (!IsDateInRange(currentDate_)) return;
    const DateParts p = SplitDate(currentDate_);
    shownMonth_ = p.month;
    shownYear_ = p.year;
}

// Without an opening date the exchange text still holds what the owner
// sent, which it does not take over: nothing is written, nothing changes.
void frmMese::RestoreOpeningDate() {
    SetNotifyOnChange(true);
    SetForceChange(false);
    if (openedWithoutDate_) return;
    const auto [month, year, day] = openingDateParts_;
    if (ExchangeLabel* label = CalendarResultLabel())
        label->SetCaption(TwoDigits(day) + "/" + TwoDigits(month) + "/" + std::to_string(year));
}

void frmMese::KeyDown(Integer& keyCode, Integer) {
    if (!open_) return;
    switch (keyCode) {
        case kEnter:
            SetCalendarResult(currentDate_, true, false);
            Unload();
            return;
        case kEscape:
            RestoreOpeningDate();
            Unload();
            return;
        case kPageUp: currentDate_ = Moved("m", -1); break;
        case kPageDown: currentDate_ = Moved("m", 1); break;
        case kUp: currentDate_ = Moved("d", -7); break;
        case kDown: currentDate_ = Moved("d", 7); break;
        case kLeft: currentDate_ = Moved("d", -1); break;
        case kRight: currentDate_ = Moved("d", 1); break;
        default: break;
    }
    FollowCurrentDate();
}

void frmMese::KeyPress(Integer&) {}
void frmMese::KeyUp(Integer&, Integer) {}

// The capture is what brings a press outside the form here; such a press
// closes the popup and leaves the exchange text as it was.
void frmMese::MouseDown(Integer, Integer, Single x, Single y) {
    if (!open_) return;
    capture_ = false;
    const host::Size size = ClientSize();
    if (x < 0 || y < 0 || x > size.width || y > size.height || std::isnan(x) || std::isnan(y)) {
        Unload();
        return;
    }
    capture_ = true;
    pressed_ = SpinnerAt(x, y);
}

// Hovering moves the highlight like the arrow keys, but only within the
// shown month.
void frmMese::MouseMove(Integer, Integer, Single x, Single y) {
    if (!open_) return;
    const int column = ColumnAt(x), row = WeekRowAt(y);
    if (column < 1 || column > 7 || row < 0 || row > 5) return;
    const Date d = CellDate(column, row);
    if (!IsDateInRange(d)) return;
    const DateParts p = SplitDate(d);
    if (p.month != shownMonth_ || p.year != shownYear_) return;
    currentDate_ = ClampCalendarDate(d);
}

void frmMese::MouseUp(Integer, Integer, Single x, Single y) {
    if (!open_) return;
    pressed_ = SpinnerHalf::None;
    const int column = ColumnAt(x), row = WeekRowAt(y);
    if (row >= 0 && row <= 5 && column >= 1 && column <= 7) {
        const Date d = CellDate(column, row);
        if (ClampCalendarDate(d) != d) return;  // a day the owner does not allow
        SetCalendarResult(d, true, false);
        Unload();
        return;
    }
    if (row == 6) {
        const Date today = Today();
        if (ClampCalendarDate(today) != today) return;
        SetCalendarResult(today, true, false);
        Unload();
        return;
    }
    Date moved = currentDate_;
    switch (SpinnerAt(x, y)) {
        case SpinnerHalf::MonthUp: moved = Moved("m", 1); break;
        case SpinnerHalf::MonthDown: moved = Moved("m", -1); break;
        case SpinnerHalf::YearUp: moved = Moved("yyyy", 1); break;
        case SpinnerHalf::YearDown: moved = Moved("yyyy", -1); break;
        case SpinnerHalf::None: return;
    }
    moved = ClampCalendarDate(moved);
    if (moved == currentDate_) return;
    currentDate_ = moved;
    FollowCurrentDate();
}

void frmMese::Deactivated() { CalendarLostActivation(*this); }

std::vector<std::string> frmMese::Dump() const {
    const ExchangeLabel* label = CalendarResultLabel();
    const auto [month, year, day] = openingDateParts_;
    return {
        "CurrentDate " + DateText(currentDate_),
        "ShownMonth " + std::to_string(shownMonth_),
        "ShownYear " + std::to_string(shownYear_),
        "OpeningDateParts " + std::to_string(month) + " " + std::to_string(year) + " " +
            std::to_string(day),
        "exchange \"" + (label ? label->Caption() : std::string()) + "\"",
    };
}

// ---- Painting ---------------------------------------------------------------------

void frmMese::DrawBevelBox(host::Surface& s, int x1, int y1, int x2, int y2, bool raised) {
    const OLE_COLOR outline = TranslateSysColor(raised ? kSysButtonShadow : kSysButtonHighlight);
    const OLE_COLOR edges = TranslateSysColor(raised ? kSysButtonHighlight : kSysButtonShadow);
    // The outline takes in both corners; the edges stop short of their ends.
    s.DrawLine({x1, y1}, {x2 + 1, y1}, outline);
    s.DrawLine({x1, y2}, {x2 + 1, y2}, outline);
    s.DrawLine({x1, y1}, {x1, y2 + 1}, outline);
    s.DrawLine({x2, y1}, {x2, y2 + 1}, outline);
    s.DrawLine({x1, y1}, {x1, y2}, edges);
    s.DrawLine({x1, y1}, {x2, y1}, edges);
}

void frmMese::PaintHeader(host::Surface& s) {
    const Geometry& g = geometry_;
    const OLE_COLOR band = TranslateSysColor(kSysHighlight);
    const OLE_COLOR text = TranslateSysColor(kSysHighlightText);
    s.FillRect({0, 0, s.Width(), 2 * g.rh}, band);

    const Locale& locale = site_.UserLocale();
    const std::string month =
        shownMonth_ >= 1 && shownMonth_ <= 12 ? locale.monthNames[shownMonth_ - 1] : std::string();
    host::Rect r{g.monthNameLeft, g.upperTop, g.monthNameLeft + g.monthNameWidth,
                 g.lowerBottom + 1};
    s.DrawText(month, r, kCentred, boldFont_, text);
    r = {g.yearLeft, g.upperTop, g.yearLeft + g.yearWidth, g.lowerBottom + 1};
    s.DrawText(std::to_string(shownYear_), r, kCentred, boldFont_, text);

    const auto spinner = [&](int left, int right, SpinnerHalf up, SpinnerHalf down) {
        const auto half = [&](int top, int bottom, SpinnerHalf which, const char* sign) {
            const bool pressed = pressed_ == which;
            DrawBevelBox(s, left, top, right, bottom, !pressed);
            const int shift = pressed ? 1 : 0;
            host::Rect box{left + 1 + shift, top + 1 + shift, right + shift, bottom + shift};
            s.DrawText(sign, box, kCentred, boldFont_, text);
        };
        half(g.upperTop, g.rh, up, "+");
        half(g.rh, g.lowerBottom, down, "-");
    };
    spinner(g.monthSpinLeft, g.monthSpinRight, SpinnerHalf::MonthUp, SpinnerHalf::MonthDown);
    spinner(g.yearSpinLeft, g.yearSpinRight, SpinnerHalf::YearUp, SpinnerHalf::YearDown);
}

void frmMese::Paint(host::Surface& s) {
    const Geometry& g = geometry_;
    const CalendarLook& look = CalendarLookState();
    const Locale& locale = site_.UserLocale();
    s.FillRect({0, 0, s.Width(), s.Height()}, TranslateSysColor(look.ownerBackColor));
    // The weekday names sit on the header's band, which their colour is chosen for.
    s.FillRect({0, 2 * g.rh, s.Width(), 3 * g.rh}, TranslateSysColor(kSysHighlight));
    PaintHeader(s);

    const Date today = Today();
    const Date opening = [&] {
        const auto [month, year, day] = openingDateParts_;
        if (month == -1 || year == -1 || day == -1) return Date(0);
        try {
            return DateSerial(year, month, day);
        } catch (const HostError&) {
            return Date(0);
        }
    }();
    Font todayFont = font_;
    todayFont.bold = true;
    const OLE_COLOR highlight = TranslateSysColor(kSysHighlight);

    Date first = 0;
    int w = 8;
    try {
        first = FirstShown();
        w = Weekday(first, FirstDayOfWeek::Monday);
        if (w == 1) w = 8;
    } catch (const HostError&) {
        return;
    }
    for (int i = 1; i <= 42; ++i) {
        const Date d = first - w + i;
        const int column = (i - 1) % 7 + 1, row = (i - 1) / 7;
        const int x = (column - 1) * g.cw, y = (row + 3) * g.rh;
        if (i <= 7) {
            const std::string name =
                IsDateInRange(d) ? FormatDate(d, "ddd", locale) : locale.weekdayAbbrevs[column % 7];
            host::Rect r{x, 2 * g.rh, x + g.cw, 3 * g.rh};
            s.DrawText(name, r, kCentred, font_, TranslateSysColor(look.headerColor));
        }
        if (!IsDateInRange(d)) continue;
        const DateParts p = SplitDate(d);
        const bool shown = p.month == shownMonth_ && p.year == shownYear_;
        if (d == currentDate_) {
            const OLE_COLOR c = highlight;
            s.DrawLine({x, y}, {x + g.cw - 1, y}, c);
            s.DrawLine({x + g.cw - 1, y}, {x + g.cw - 1, y + g.rh - 1}, c);
            s.DrawLine({x + g.cw - 1, y + g.rh - 1}, {x, y + g.rh - 1}, c);
            s.DrawLine({x, y + g.rh - 1}, {x, y}, c);
        }
        const Font* font = &font_;
        OLE_COLOR color;
        if (d == opening) {
            s.FillRect({x + 2, y + 2, x + g.cw - 2, y + g.rh - 2}, highlight);
            color = TranslateSysColor(kSysHighlightText);
        } else if (shown && d == today) {
            color = kRed;
            font = &todayFont;
        } else if (shown && d >= CalendarMinDate() && d <= CalendarMaxDate()) {
            color = TranslateSysColor(look.inRangeColor);
        } else {
            color = TranslateSysColor(look.otherColor);
        }
        host::Rect r{x, y, x + g.cw, y + g.rh};
        s.DrawText(std::to_string(p.day), r, kCentred, *font, color);
    }

    const int line = 9 * g.rh;
    s.DrawLine({1, line}, {s.Width() - 1, line}, TranslateSysColor(kSysButtonShadow));
    host::Rect r{0, line, s.Width(), line + g.rh};
    const std::string todayText = IsDateInRange(today) ? FormatDate(today, "dd/mm/yyyy") : "";
    s.DrawText("Oggi: " + todayText, r, kCentred, font_, kRed);

    const OLE_COLOR frame = TranslateSysColor(kSysWindowFrame);
    const int right = s.Width() - 1, bottom = s.Height() - 1;
    s.DrawLine({0, 0}, {right, 0}, frame);
    s.DrawLine({right, 0}, {right, bottom}, frame);
    s.DrawLine({right, bottom}, {0, bottom}, frame);
    s.DrawLine({0, bottom}, {0, 0}, frame);
}

}  // namespace kelvarin::controls

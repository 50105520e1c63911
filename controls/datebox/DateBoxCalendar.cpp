// SPDX-License-Identifier: MIT
// The DateBox's side of the month calendar: filling the per-thread state the
// popup reads, placing the popup under the control, and taking over the
// date it writes back through the exchange label (lblValueChanged).
#include "controls/datebox/DateBox.h"

#include <cmath>
#include <optional>
#include <string>

#include "common/HostError.h"
#include "controls/calendar/CalendarHook.h"
#include "controls/calendar/frmMese.h"
#include "controls/datebox/ChangeFlags.h"
#include "host/Keys.h"

namespace kelvarin::controls {

namespace {

constexpr Date kFirstOfFebruary100 = -657403;  // the calendar's first day
// The calendar is placed in twips at this fixed scale, whatever the screen's.
constexpr double kTwipsPerPixel = 15;

}  // namespace

// The calendar opens on the date the field shows: a partly typed field is
// completed first, as leaving it would, and the exchange text carries the
// date the parts compose to (day 75 of December is sent as 13 February),
// which the take-over then writes back into the parts, so the boxes, the
// value and the calendar agree. Without such a date the control's own
// no-date text is sent and not taken over: the field stays as it is.
void DateBox::OpenCalendar(Integer, Integer, Single, Single) {
    if (!HasSite()) return;
    if (ActiveBox() != 0) editor_.CompleteBox(ActiveBox());
    {
        DateEditor::Busy rewriting(editor_);
        SetCalendarResultLabel(&lblValueChanged_);
        const std::optional<Date> date = editor_.ComposedDate();
        if (date && *date >= kFirstOfFebruary100) {
            const DateParts p = SplitDate(*date);
            lblValueChanged_.SetCaption(ZeroPadded(p.day, 2) + "/" + ZeroPadded(p.month, 2) + "/" +
                                        std::to_string(p.year));  // runs TakeCalendarDate
        } else {
            sendingNoDate_ = true;
            lblValueChanged_.SetCaption(std::string(kNoCalendarDateText));
            sendingNoDate_ = false;
        }
    }
    SetCalendarMinDate(minDate_);
    SetCalendarMaxDate(maxDate_);
    CalendarLook& look = CalendarLookState();
    look.font = SurfaceState().font;
    look.headerColor = kSysButtonFace;  // button face
    look.inRangeColor = kSysWindowText;
    look.otherColor = kSysButtonFace;
    look.ownerBackColor = BackColor();
    look.ownerForeColor = ForeColor();

    frmMese popup(Site(), *SurfaceState().font);
    const host::Point at = CalendarPosition(popup.ClientSize());
    const Date before = editor_.PartsToValue();
    Site().ShowModal(popup, at);
    popup.Unload();
    // However it closed, the field that kept the focus shows its whole text
    // selected, as on any arrival: the take-over left its caret at the start.
    if (ActiveBox() != 0) editor_.SelectBox(ActiveBox());
    Redraw();
    if (editor_.PartsToValue() != before) RaiseChange();
}

// Below the control, or above it near the bottom of the screen; right-aligned
// with it near the right edge. Worked out in twips, as the popup is moved.
host::Point DateBox::CalendarPosition(host::Size popup) {
    const host::Point corner = Site().ClientToScreen({0, 0});
    const host::Surface& client = Site().ClientSurface();
    const int border = host::BorderWidth(SurfaceState());
    const double controlWidth = (client.Width() + 2.0 * border) * kTwipsPerPixel;
    const double controlHeight = (client.Height() + 2.0 * border) * kTwipsPerPixel;
    const double x = corner.x * kTwipsPerPixel, y = corner.y * kTwipsPerPixel;
    const double width = popup.width * kTwipsPerPixel, height = popup.height * kTwipsPerPixel;
    const host::Size screen = Site().ScreenSize();
    double left = x, top = y + controlHeight;
    if (left + width > screen.width * kTwipsPerPixel - width / 3) left = x + controlWidth - width;
    if (top + height > screen.height * kTwipsPerPixel - height / 3) top = y - height;
    return {static_cast<int>(std::floor(left / kTwipsPerPixel)),
            static_cast<int>(std::floor(top / kTwipsPerPixel))};
}

// The flags are cleared while the three parts are stored, so that Change
// comes once, here, and only if the value really moved.
void DateBox::TakeCalendarDate() {
    if (sendingNoDate_) return;
    const Date before = editor_.PartsToValue();
    {
        QuietChanges quiet;
        const std::string& caption = lblValueChanged_.Caption();
        const auto slice = [&](std::size_t from, std::size_t count) {
            return from > caption.size() ? std::string_view()
                                         : std::string_view(caption).substr(from - 1, count);
        };
        editor_.SetDate(LeadingNumber(slice(7, 4)), LeadingNumber(slice(4, 2)),
                        LeadingNumber(slice(1, 2)));
    }
    Redraw();
    if (editor_.PartsToValue() != before) RaiseChange();
}

}  // namespace kelvarin::controls

// SPDX-License-Identifier: MIT
// The DateBox's side of the month calendar: filling the per-thread state the
// popup reads, placing the popup under the control, and taking over the
// date it writes back through the exchange label (lblValueChanged).
#include "controls/datebox/DateBox.h"

#include <cmath>
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

void DateBox::OpenCalendar(Integer, Integer, Single, Single) {
    if (!HasSite()) return;
    {
        DateEditor::Busy rewriting(editor_);
        SetCalendarResultLabel(&lblValueChanged_);
        // Blank parts, or a date the calendar cannot show, send its first day.
        std::string caption = "01/02/0100";
        const PartValues& parts = editor_.Parts();
        const Long year = parts[kYear], month = parts[kMonth], day = parts[kDay];
        if (year != kBlank && month != kBlank && day != kBlank) {
            try {
                if (DateSerial(year, month, day) >= kFirstOfFebruary100)
                    caption = ZeroPadded(day, 2) + "/" + ZeroPadded(month, 2) + "/" +
                              std::to_string(year);
            } catch (const HostError&) {
            }
        }
        lblValueChanged_.SetCaption(std::move(caption));  // runs TakeCalendarDate
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
    Redraw();
    if (editor_.PartsToValue() != before) RaiseChange();
}

// When the calendar closes the focus comes back to the box, which selects
// its whole text as on any arrival.
void DateBox::OpenCalendarFromKeys() {
    const int box = ActiveBox();
    OpenCalendar(host::kLeftButton, host::kShiftMask, 1, 1);
    if (ActiveBox() == box) editor_.SelectBox(box);
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
    const Date before = editor_.PartsToValue();
    {
        QuietChanges quiet;
        const std::string& caption = lblValueChanged_.Caption();
        const auto slice = [&](std::size_t from, std::size_t count) {
            return from > caption.size() ? std::string_view()
                                         : std::string_view(caption).substr(from - 1, count);
        };
        editor_.SetPart(kYear, LeadingNumber(slice(7, 4)), -1);
        editor_.SetPart(kMonth, LeadingNumber(slice(4, 2)), -1);
        editor_.SetPart(kDay, LeadingNumber(slice(1, 2)), -1);
    }
    Redraw();
    if (editor_.PartsToValue() != before) RaiseChange();
}

}  // namespace kelvarin::controls

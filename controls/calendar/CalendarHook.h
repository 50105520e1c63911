// SPDX-License-Identifier: MIT
// What the month calendar popup shares with the DateBox that opens it, once
// per thread: the exchange label, the allowed range, the look, and the hook
// that closes the popup when it loses activation.
//
// A host cannot subclass the popup's window here, so the hook is a record of
// which popup the host's deactivation notification closes: only the hooked
// popup closes on it, a second HookCalendar replaces the first, and closing
// runs as the window procedure would: unload, unhook, then the change flags
// go back to their defaults. NotifyOnChange and ForceChange themselves live
// with the DateBox (controls/datebox/ChangeFlags.h), which reads them.
#pragma once

#include <memory>
#include <string_view>

#include "common/DateTime.h"
#include "common/Font.h"
#include "common/OleColor.h"
#include "controls/datebox/Constituents.h"

namespace kelvarin::controls {

class frmMese;

// The label whose caption carries the date both ways: "dd/mm/yyyy", or
// "-1/-1/-1" for none. Null when no DateBox has opened a popup.
ExchangeLabel* CalendarResultLabel() noexcept;
// What a DateBox sends when it has no date the calendar can show (a blank
// part, or a date before 1 February 100). The calendar opens on today's
// month for it, and neither side ever takes it for 1 February 100.
inline constexpr std::string_view kNoCalendarDateText = "01/02/0100";
void SetCalendarResultLabel(ExchangeLabel* label) noexcept;
// Forgets the label if it is this one (its owner is going away).
void ForgetCalendarResultLabel(const ExchangeLabel* label) noexcept;

Date CalendarMinDate() noexcept;
void SetCalendarMinDate(Date d) noexcept;
Date CalendarMaxDate() noexcept;
void SetCalendarMaxDate(Date d) noexcept;

// How the opening control wants the popup to look. Colours may be system
// colours; the popup translates them when it paints.
struct CalendarLook {
    std::shared_ptr<const Font> font = std::make_shared<Font>();  // copied at load
    OLE_COLOR headerColor = kSysButtonFace;                       // weekday names
    OLE_COLOR inRangeColor = kSysWindowText;  // days of the shown month within range
    OLE_COLOR otherColor = kSysButtonFace;    // every other day
    OLE_COLOR ownerBackColor = kSysWindow;
    OLE_COLOR ownerForeColor = kSysWindowText;
};
CalendarLook& CalendarLookState() noexcept;

// Makes `form` the popup that closes on loss of activation, unhooking any
// other one first.
void HookCalendar(frmMese& form) noexcept;
// Does nothing when no popup is hooked.
void UnhookCalendar() noexcept;
frmMese* HookedCalendar() noexcept;
// The host's notice that `window` lost activation: the hooked popup unloads
// and the hook goes; any other popup ignores it.
void CalendarLostActivation(frmMese& window);

}  // namespace kelvarin::controls

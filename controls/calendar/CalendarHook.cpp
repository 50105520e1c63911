// SPDX-License-Identifier: MIT
#include "controls/calendar/CalendarHook.h"

#include "controls/calendar/frmMese.h"

namespace kelvarin::controls {

namespace {

struct ModuleState {
    ExchangeLabel* resultLabel = nullptr;
    Date minDate = kMinDateSerial;
    Date maxDate = kMaxDateSerial;
    CalendarLook look;
    frmMese* hooked = nullptr;
};

ModuleState& State() noexcept {
    thread_local ModuleState state;
    return state;
}

}  // namespace

ExchangeLabel* CalendarResultLabel() noexcept { return State().resultLabel; }
void SetCalendarResultLabel(ExchangeLabel* label) noexcept { State().resultLabel = label; }
void ForgetCalendarResultLabel(const ExchangeLabel* label) noexcept {
    if (State().resultLabel == label) State().resultLabel = nullptr;
}

Date CalendarMinDate() noexcept { return State().minDate; }
void SetCalendarMinDate(Date d) noexcept { State().minDate = d; }
Date CalendarMaxDate() noexcept { return State().maxDate; }
void SetCalendarMaxDate(Date d) noexcept { State().maxDate = d; }

CalendarLook& CalendarLookState() noexcept { return State().look; }

void HookCalendar(frmMese& form) noexcept {
    if (State().hooked) UnhookCalendar();
    State().hooked = &form;
}

void UnhookCalendar() noexcept { State().hooked = nullptr; }

frmMese* HookedCalendar() noexcept { return State().hooked; }

void CalendarLostActivation(frmMese& window) {
    frmMese* hooked = State().hooked;
    if (hooked != &window) return;
    hooked->Unload();
    UnhookCalendar();
}

}  // namespace kelvarin::controls

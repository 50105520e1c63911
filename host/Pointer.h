// SPDX-License-Identifier: MIT
// The pointer protocol every host follows: presses, moves and releases
// become the control's MouseDown, MouseMove, MouseUp, Click and DblClick.
//
//   press                         MouseDown
//   press, second of a double     DblClick in place of MouseDown
//   host's double-click notice    DblClick, unless its press raised it already
//   release                       MouseUp, then Click for any button let go
//                                 over the control, unless it ends a double
//                                 click
//
// What counts as a double click (time and distance) is the host's to judge:
// it says so with the press, or afterwards with its own notice.
#pragma once

#include <kelvarin/Export.h>

#include "common/Numeric.h"
#include "host/Control.h"

namespace kelvarin::host {

// A pointer event in the control's client area.
struct PointerEvent {
    Integer button = 0;  // the button pressed or let go; for a move, those held
    Integer shift = 0;
    Single x = 0;
    Single y = 0;
};

class KELVARIN_CORE_API PointerProtocol {
public:
    explicit PointerProtocol(Control& control) noexcept : control_(control) {}

    void Press(const PointerEvent& event, bool secondOfDouble);
    // The host's double-click notice for the press just delivered.
    void DoubleClick(Integer button);
    void Move(const PointerEvent& event);
    // `over`: the pointer is over the control (its frame included).
    void Release(const PointerEvent& event, bool over);

private:
    Control& control_;
    bool inDouble_ = false;        // the press held down is the second of a double click
    bool dblClickRaised_ = false;  // and DblClick has been raised for it
};

}  // namespace kelvarin::host

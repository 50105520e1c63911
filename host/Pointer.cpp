// SPDX-License-Identifier: MIT
#include "host/Pointer.h"

#include "host/Keys.h"

namespace kelvarin::host {

void PointerProtocol::Press(const PointerEvent& e, bool secondOfDouble) {
    inDouble_ = secondOfDouble && e.button == kLeftButton;
    dblClickRaised_ = inDouble_;
    if (inDouble_) {
        control_.DblClick();
        return;
    }
    control_.MouseDown(e.button, e.shift, e.x, e.y);
}

// The notice may come for a press the host did not count as a second one
// (its own judgement differs): that press raised MouseDown already.
void PointerProtocol::DoubleClick(Integer button) {
    if (button != kLeftButton || dblClickRaised_) return;
    inDouble_ = true;
    dblClickRaised_ = true;
    control_.DblClick();
}

void PointerProtocol::Move(const PointerEvent& e) {
    control_.MouseMove(e.button, e.shift, e.x, e.y);
}

// The host's click notice follows a release of any button over the control,
// as a form's does; a control that answers only the left button asks which.
void PointerProtocol::Release(const PointerEvent& e, bool over) {
    const bool click = over && !inDouble_;
    inDouble_ = false;
    dblClickRaised_ = false;
    control_.MouseUp(e.button, e.shift, e.x, e.y);
    if (click) control_.Click();
}

}  // namespace kelvarin::host

// SPDX-License-Identifier: MIT
// The life-cycle every host runs for a control it places: a new control is
// initialised, a loaded one reads its stored properties, and either is then
// framed, shown, sized and painted. The frame (the border the host draws
// around the client area) is the host's; a host lends it through SiteFrame.
//
// Sections: the host's frame; placing; re-laying out.
#pragma once

#include <kelvarin/Export.h>

#include "host/Control.h"
#include "host/PropertyBag.h"

namespace kelvarin::host {

// ---- The host's frame ---------------------------------------------------------

// What the protocol asks of a host: the frame around the control's client area.
class SiteFrame {
public:
    virtual ~SiteFrame() = default;
    // The border width the client area was last laid out for.
    virtual int FrameBorder() const = 0;
    // Lays the frame and the client area out for the control's border now
    // (BorderWidth of its surface properties) and paints the frame.
    virtual void LayOutFrame() = 0;
};

// ---- Placing -------------------------------------------------------------------
//
// Each step runs even when an earlier one failed, so a control that raised
// while reading keeps what it read and is shown as it is; the first failure
// is rethrown once the last step has run.

// A new control: InitProperties, the frame, Show, Resize, Paint.
KELVARIN_CORE_API void PlaceNew(Control& control, SiteFrame& frame);
// A loaded control: ReadProperties, the frame, Show, Resize, Paint. It is
// never initialised as a new one first.
KELVARIN_CORE_API void PlaceLoaded(Control& control, PropertyBag& bag, SiteFrame& frame);

// ---- Re-laying out ---------------------------------------------------------------

// After a property write or a method call: when the border width is no
// longer the one the frame was laid out for, lays the frame out again and
// has the control lay out and paint its new client area.
KELVARIN_CORE_API void SyncFrame(Control& control, SiteFrame& frame);

}  // namespace kelvarin::host

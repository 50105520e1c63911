// SPDX-License-Identifier: MIT
// What a control needs of its container. Each host (Qt, headless)
// implements it; controls never see a toolkit.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/DateTime.h"
#include "common/Font.h"
#include "common/Locale.h"
#include "common/Variant.h"
#include "host/Geometry.h"
#include "host/Surface.h"
#include "host/Timer.h"

namespace kelvarin::host {

class Popup;

class ControlSite {
public:
    virtual ~ControlSite() = default;

    // ---- Container notifications
    virtual void PropertyChanged(std::string_view name) = 0;
    // An event to the container: its number in the event interface (the type
    // library names it) and its arguments, which the container may change
    // (passed by reference).
    virtual void RaiseEvent(int number, std::span<Variant> args) = 0;

    // ---- Ambient properties and extender
    virtual std::shared_ptr<Font> AmbientFont() = 0;
    virtual bool AmbientDisplayAsDefault() = 0;
    virtual std::string ExtenderName() = 0;
    // Extender position and width in container units (pixels, or twips).
    virtual double ExtenderLeft() = 0;
    virtual double ExtenderTop() = 0;
    virtual double ExtenderWidth() = 0;
    // Container units per pixel: 1 for a container measuring in pixels, 15 in twips.
    virtual double ContainerUnitsPerPixel() = 0;

    // The control window's handle as the host numbers windows (the hWnd property).
    virtual Long WindowHandle() = 0;

    // ---- Drawing
    // The control's client area (inside the border the host draws).
    virtual Surface& ClientSurface() = 0;
    // Shows what was drawn on the client surface.
    virtual void Refresh() = 0;

    // ---- Time
    virtual std::unique_ptr<Timer> CreateTimer(TimerCallback onTick) = 0;
    // Milliseconds since the system started, truncated to 32 bits.
    virtual std::uint32_t TickCount() = 0;
    virtual Date Now() = 0;

    // ---- Pointer, screen, focus, popups
    // Whether the window under the pointer is this control's.
    virtual bool IsPointerOver() = 0;
    virtual Size ScreenSize() = 0;
    // A point of the client area in screen pixels.
    virtual Point ClientToScreen(Point client) = 0;
    // Runs pending host events (the runtime's DoEvents).
    virtual void DoEvents() = 0;
    // Shows the popup at the screen position and returns once it has closed.
    virtual void ShowModal(Popup& popup, Point screen) = 0;

    virtual const Locale& UserLocale() = 0;
};

// A modal window a control opens (the month calendar): it paints itself and
// takes keys and the mouse while it is open.
class Popup {
public:
    virtual ~Popup() = default;
    virtual Size ClientSize() = 0;
    virtual void Paint(Surface& surface) = 0;
    virtual void KeyDown(Integer& keyCode, Integer shift) = 0;
    virtual void KeyPress(Integer& keyAscii) = 0;
    virtual void KeyUp(Integer& keyCode, Integer shift) = 0;
    virtual void MouseDown(Integer button, Integer shift, Single x, Single y) = 0;
    virtual void MouseMove(Integer button, Integer shift, Single x, Single y) = 0;
    virtual void MouseUp(Integer button, Integer shift, Single x, Single y) = 0;
    // The application lost activation or the user clicked elsewhere.
    virtual void Deactivated() = 0;
    // False once the popup has closed itself.
    virtual bool IsOpen() const = 0;
    // State lines for diagnostics ("key value").
    virtual std::vector<std::string> Dump() const { return {}; }
    // What assistive technology reads of a calendar: the date it stands on
    // and the month and year it shows; 0 for a popup that is no calendar.
    virtual Date CurrentDate() const { return 0; }
    virtual Long ShownMonth() const { return 0; }
    virtual Long ShownYear() const { return 0; }
};

}  // namespace kelvarin::host

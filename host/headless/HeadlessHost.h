// SPDX-License-Identifier: MIT
// A host without a display: controls draw into memory rasters, the clock
// and timers move only when told, the pointer is wherever it is put. Used by
// the script host and the tests.
//
// Sections: controls; clock and timers; input and focus; records.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/Control.h"
#include "host/Pointer.h"
#include "host/Site.h"
#include "host/headless/Raster.h"

namespace kelvarin::host::headless {

class HeadlessHost;

// What the host recorded for the script's "events" and "notified".
struct EventRecord {
    std::string control;
    int number = 0;
    std::string name;  // from the host's eventNames, when it has them
    std::vector<Variant> args;
};
struct NotificationRecord {
    std::string control;
    std::string property;
};

// One control on the headless form, with its site, its frame and its
// pointer protocol.
class Placed : public ControlSite, public SiteFrame {
public:
    Placed(HeadlessHost& host, std::string name, std::unique_ptr<Control> control);
    ~Placed() override;

    const std::string& Name() const noexcept { return name_; }
    Control& Get() noexcept { return *control_; }
    Point Position() const noexcept { return position_; }
    Size OuterSize() const noexcept { return {raster_->width, raster_->height}; }
    const Raster& Pixels() const noexcept { return *raster_; }
    bool pointerOver = false;

    void MoveTo(Point screen) noexcept { position_ = screen; }
    // Sets the outer size, keeping what fits, and paints the border.
    void SetOuterSize(Size size);
    // Whether a point of the client area lies on the control, frame included.
    bool Covers(Single x, Single y) const noexcept;
    PointerProtocol& Pointer() noexcept { return pointer_; }

    // ---- SiteFrame
    int FrameBorder() const override { return client_.View().left; }
    // Also repaints the border when its width has not changed.
    void LayOutFrame() override;

    // ---- ControlSite
    void PropertyChanged(std::string_view name) override;
    void RaiseEvent(int number, std::span<Variant> args) override;
    std::shared_ptr<Font> AmbientFont() override;
    bool AmbientDisplayAsDefault() override;
    std::string ExtenderName() override { return name_; }
    double ExtenderLeft() override;
    double ExtenderTop() override;
    double ExtenderWidth() override;
    double ContainerUnitsPerPixel() override;
    Long WindowHandle() override { return handle_; }
    Surface& ClientSurface() override { return client_; }
    void Refresh() override {}
    std::unique_ptr<Timer> CreateTimer(TimerCallback onTick) override;
    std::uint32_t TickCount() override;
    Date Now() override;
    bool IsPointerOver() override { return pointerOver; }
    Size ScreenSize() override;
    Point ClientToScreen(Point client) override;
    void DoEvents() override {}
    void ShowModal(Popup& popup, Point screen) override;
    const Locale& UserLocale() override;

private:
    HeadlessHost& host_;
    std::string name_;
    std::unique_ptr<Control> control_;
    std::shared_ptr<Raster> raster_;
    RasterSurface client_;
    Point position_;
    Long handle_;
    PointerProtocol pointer_;
};

class HeadlessHost {
public:
    HeadlessHost();
    ~HeadlessHost();
    HeadlessHost(const HeadlessHost&) = delete;
    HeadlessHost& operator=(const HeadlessHost&) = delete;

    // ---- Controls
    // Sites a control under NAME at the given outer size; the caller then
    // places it (PlaceNew or PlaceLoaded, host/Site.h).
    Placed& Add(std::string name, std::unique_ptr<Control> control, Size size);
    Placed* Find(std::string_view name);
    // Terminates and removes one control, or all of them.
    void Remove(std::string_view name);
    void Clear();
    std::vector<Placed*> Controls();
    // Takes every control off the form without terminating it, and puts
    // such a set back: a form load builds the new set beside the old one.
    std::vector<std::unique_ptr<Placed>> DetachAll();
    void AttachAll(std::vector<std::unique_ptr<Placed>> controls);

    // ---- Settings
    double unitsPerPixel = 1.0;  // 15 when the container measures in twips
    Size screen = {1024, 768};
    std::shared_ptr<Font> ambientFont = std::make_shared<Font>("Sans Serif", 8.0);
    bool displayAsDefault = false;
    Date today;  // 2026-11-22 until the script says otherwise
    const Locale* locale;
    // Measures and draws text in place of the fixed metrics; set it before
    // controls are added.
    RasterText* text = nullptr;
    // Runs while a popup is modal; without one, the popup loses activation at once.
    std::function<void(Popup&, Point)> modalLoop;
    Popup* openPopup = nullptr;
    // Paints the open popup afresh into a raster of its own size and returns
    // it (empty when no popup is open), as a window host repaints it.
    const Raster& PaintPopup();

    // ---- Clock and timers
    std::uint32_t TickCount() const noexcept { return tick_; }
    void SetTickCount(std::uint32_t tick) noexcept { tick_ = tick; }
    // Moves the clock on, firing due timers in time order (ties: oldest timer first).
    void Advance(std::uint32_t milliseconds);

    // ---- Input and focus
    Placed* Focused() noexcept { return focused_; }
    // Moves the focus; false when the focused control keeps it or the
    // target is disabled.
    bool SetFocus(Placed* target);
    // Tab and Shift+Tab: moves the focus to the next enabled control in
    // creation order (or the previous one), wrapping round; false when the
    // focused control keeps it.
    bool FocusNext(bool forward);
    // The control whose access keys hold the key, or null.
    Placed* AccessKeyOwner(int keyCode);

    // ---- Records for the script (off: nothing is kept, as a benchmark wants)
    bool recording = true;
    // Names an event of a control by its number (the type library knows the
    // names; this layer does not).
    std::function<std::string_view(const Control&, int number)> eventNames;
    std::vector<EventRecord> events;
    std::vector<NotificationRecord> notifications;

private:
    friend class Placed;
    friend class ManualTimer;
    struct TimerSlot;
    std::vector<std::unique_ptr<Placed>> placed_;
    Placed* focused_ = nullptr;
    std::uint32_t tick_ = 1000;
    std::uint64_t elapsed_ = 0;  // milliseconds since the host started, never wraps
    std::vector<TimerSlot*> timers_;
    std::uint64_t timerSerial_ = 0;
    Long nextHandle_ = 0x10010;
    std::shared_ptr<Raster> popupPixels_ = std::make_shared<Raster>();
};

}  // namespace kelvarin::host::headless

// SPDX-License-Identifier: MIT
// A control as a host drives it: life-cycle, input, its member table, and
// the user-control surface properties every control has (colours, font,
// border, enabled) that the host's frame keeps.
//
// Sections: surface state; life-cycle; input; members; diagnostics.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <kelvarin/Export.h>

#include "common/Font.h"
#include "common/Numeric.h"
#include "common/Object.h"
#include "common/OleColor.h"
#include "common/Variant.h"
#include "host/ControlSite.h"
#include "host/Members.h"
#include "host/PropertyBag.h"

namespace kelvarin::host {

// The user-control surface's own properties, kept by the frame.
struct SurfaceProperties {
    OLE_COLOR backColor = kSysButtonFace;
    OLE_COLOR foreColor = kSysButtonText;
    bool enabled = true;
    std::shared_ptr<Font> font = std::make_shared<Font>();
    Integer borderStyle = 0;  // 0 none, 1 fixed single
    Integer appearance = 1;   // 0 flat, 1 3D
    Integer mousePointer = 0;
    std::shared_ptr<Object> mouseIcon;  // a Picture, or none
    Integer oleDropMode = 0;
    bool rightToLeft = false;
    OLE_COLOR maskColor = 0x00FF00FF;  // the surface's own, which only loading changes
    // The characters that, typed with Alt, are this control's access keys.
    std::string accessKeys;
};

// Width of the border the frame draws around the client area, in pixels.
KELVARIN_CORE_API int BorderWidth(const SurfaceProperties& surface) noexcept;
// Paints that border on the whole-control surface (outer size w x h).
KELVARIN_CORE_API void PaintBorder(Surface& whole, const SurfaceProperties& surface, int width,
                                   int height);

class KELVARIN_CORE_API Control : public Object {
public:
    explicit Control(std::string className) : className_(std::move(className)) {}
    ~Control() override = default;
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    std::string TypeName() const override { return className_; }

    // ---- Surface state ------------------------------------------------------
    void SetSite(ControlSite* site) noexcept { site_ = site; }
    bool HasSite() const noexcept { return site_ != nullptr; }
    ControlSite& Site() const;
    SurfaceProperties& SurfaceState() noexcept { return surface_; }
    const SurfaceProperties& SurfaceState() const noexcept { return surface_; }
    // The client area's size in pixels (the control's scale width and height).
    int ScaleWidth() const;
    int ScaleHeight() const;

    // ---- Life-cycle (called by the host) -------------------------------------
    virtual void InitProperties() {}
    virtual void ReadProperties(PropertyBag& bag) { (void)bag; }
    virtual void WriteProperties(PropertyBag& bag) { (void)bag; }
    virtual void Show() {}
    virtual void Resize() {}
    // Paints the whole client area on the site's client surface.
    virtual void Paint() {}
    // What the control's pixels stand for changed under it (the system
    // colours, the screen's pixel ratio): everything it shows is drawn
    // again. A control whose face lives only on the persistent image (one
    // with nothing to Paint) redraws that.
    virtual void DisplayChanged() { Paint(); }
    virtual void AmbientChanged(std::string_view name) { (void)name; }
    virtual void Terminate() {}

    // ---- Input (client-area pixels) -------------------------------------------
    virtual void KeyDown(Integer& keyCode, Integer shift) { (void)keyCode, (void)shift; }
    virtual void KeyPress(Integer& keyAscii) { (void)keyAscii; }
    virtual void KeyUp(Integer& keyCode, Integer shift) { (void)keyCode, (void)shift; }
    virtual void MouseDown(Integer button, Integer shift, Single x, Single y) {
        (void)button, (void)shift, (void)x, (void)y;
    }
    virtual void MouseMove(Integer button, Integer shift, Single x, Single y) {
        (void)button, (void)shift, (void)x, (void)y;
    }
    virtual void MouseUp(Integer button, Integer shift, Single x, Single y) {
        (void)button, (void)shift, (void)x, (void)y;
    }
    virtual void Click() {}
    virtual void DblClick() {}
    // The user typed one of the control's access keys (Alt and the character).
    virtual void AccessKeyPress(Integer keyAscii) { (void)keyAscii; }
    // Whether the key (its key code) is one of the control's access keys,
    // whatever the case.
    bool HasAccessKey(int keyCode) const noexcept;
    virtual void GotFocus() {}
    // Asked before the focus leaves; false keeps it here.
    virtual bool QueryLeaveFocus() { return true; }
    virtual void LostFocus() {}

    // ---- Members ------------------------------------------------------------------
    // The control's member table (see host/Members.h); dispatch goes through it.
    virtual MemberTable Members() const { return {}; }

    // The surface properties as most controls publish them.
    OLE_COLOR BackColor() const noexcept { return surface_.backColor; }
    OLE_COLOR ForeColor() const noexcept { return surface_.foreColor; }
    bool Enabled() const noexcept { return surface_.enabled; }
    std::shared_ptr<Font> GetFont() const { return surface_.font; }
    Integer BorderStyle() const noexcept { return surface_.borderStyle; }
    Integer Appearance() const noexcept { return surface_.appearance; }
    Integer MousePointer() const noexcept { return surface_.mousePointer; }
    std::shared_ptr<Object> MouseIcon() const { return surface_.mouseIcon; }
    Integer OLEDropMode() const noexcept { return surface_.oleDropMode; }
    bool RightToLeft() const noexcept { return surface_.rightToLeft; }
    // The window handle, as the hWnd property gives it.
    Long HWnd() const { return Site().WindowHandle(); }

    // ---- Diagnostics ----------------------------------------------------------
    // State as "key value" lines, for the script host's dump command.
    virtual std::vector<std::string> Dump() const { return {}; }

protected:
    // The host's property-changed notification for a row of the member
    // table, under its persisted name (its name when it is not stored).
    void PropertyChanged(int row);
    void RaiseEvent(int number, std::span<Variant> args);
    // The container's key and mouse events, by their numbers in the control's
    // event interface.
    void RaiseKey(int number, Integer keyCode, Integer shift);
    void RaiseKeyPress(int number, Integer keyAscii);
    void RaiseMouse(int number, Integer button, Integer shift, Single x, Single y);

private:
    std::string className_;
    ControlSite* site_ = nullptr;
    SurfaceProperties surface_;
};

}  // namespace kelvarin::host

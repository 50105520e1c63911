// SPDX-License-Identifier: MIT
#include "host/Control.h"

#include <cassert>

#include "common/HostError.h"

namespace kelvarin::host {

int BorderWidth(const SurfaceProperties& surface) noexcept {
    if (surface.borderStyle != 1) return 0;
    return surface.appearance == 1 ? 2 : 1;
}

void PaintBorder(Surface& whole, const SurfaceProperties& surface, int width, int height) {
    const int border = BorderWidth(surface);
    if (border == 0 || width <= 0 || height <= 0) return;
    const int r = width - 1;
    const int b = height - 1;
    if (border == 1) {  // flat: one line in the window frame colour
        const OLE_COLOR frame = TranslateSysColor(kSysWindowFrame);
        whole.DrawLine({0, 0}, {r, 0}, frame);
        whole.DrawLine({r, 0}, {r, b}, frame);
        whole.DrawLine({r, b}, {0, b}, frame);
        whole.DrawLine({0, b}, {0, 0}, frame);
        return;
    }
    // 3D: a sunken edge, shadow above and left, light below and right.
    const auto edge = [&](int inset, OLE_COLOR topLeft, OLE_COLOR bottomRight) {
        const int l = inset, t = inset, rr = r - inset, bb = b - inset;
        whole.DrawLine({l, bb}, {l, t}, topLeft);
        whole.DrawLine({l, t}, {rr, t}, topLeft);
        whole.DrawLine({rr, t}, {rr, bb}, bottomRight);
        whole.DrawLine({rr, bb}, {l - 1, bb}, bottomRight);
    };
    edge(0, TranslateSysColor(SystemColor(COLOR_BTNSHADOW)),
         TranslateSysColor(SystemColor(COLOR_BTNHIGHLIGHT)));
    edge(1, TranslateSysColor(SystemColor(COLOR_3DDKSHADOW)),
         TranslateSysColor(SystemColor(COLOR_3DLIGHT)));
}

bool Control::HasAccessKey(int keyCode) const noexcept {
    const auto lower = [](int c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; };
    for (const char c : surface_.accessKeys)
        if (lower(static_cast<unsigned char>(c)) == lower(keyCode)) return true;
    return false;
}

ControlSite& Control::Site() const {
    assert(site_ != nullptr && "a control is used before the host has sited it");
    return *site_;
}

int Control::ScaleWidth() const { return Site().ClientSurface().Width(); }
int Control::ScaleHeight() const { return Site().ClientSurface().Height(); }

void Control::PropertyChanged(int row) {
    if (site_ == nullptr) return;
    const Member& m = Members()[static_cast<std::size_t>(row)];
    site_->PropertyChanged(m.persisted.empty() ? m.name : m.persisted);
}

void Control::RaiseEvent(int number, std::span<Variant> args) {
    if (site_ != nullptr) site_->RaiseEvent(number, args);
}

void Control::RaiseKey(int number, Integer keyCode, Integer shift) {
    Variant args[] = {Variant(keyCode), Variant(shift)};
    RaiseEvent(number, args);
}

void Control::RaiseKeyPress(int number, Integer keyAscii) {
    Variant args[] = {Variant(keyAscii)};
    RaiseEvent(number, args);
}

void Control::RaiseMouse(int number, Integer button, Integer shift, Single x, Single y) {
    Variant args[] = {Variant(button), Variant(shift), Variant(x), Variant(y)};
    RaiseEvent(number, args);
}

}  // namespace kelvarin::host

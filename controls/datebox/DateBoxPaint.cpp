// SPDX-License-Identifier: MIT
// The DateBox's painting: the back colour, every field box and separator
// label, and the calendar button, redrawn whole after every change.
#include "controls/datebox/DateBox.h"

#include <algorithm>
#include <string_view>

#include "common/Numeric.h"

namespace kelvarin::controls {

void DateBox::Redraw() {
    if (!HasSite()) return;
    host::Surface& s = Site().ClientSurface();
    s.FillRect({0, 0, s.Width(), s.Height()}, TranslateSysColor(SurfaceState().backColor));
    for (int i = 1; i <= txtData_.Count(); ++i) PaintBox(s, i);
    for (int i = 1; i <= lblSeparator_.Count(); ++i) PaintLabel(s, lblSeparator_(i));
    if (cmdSelezione_.visible) PaintButton(s);
    Site().Refresh();
}

// The box's text in its colours; the selection of the focused box in the
// system's highlight colours.
void DateBox::PaintBox(host::Surface& s, int index) {
    const TextBoxElement& b = txtData_(index);
    if (!b.visible) return;
    constexpr unsigned kFormat = host::DT_LEFT | host::DT_SINGLELINE | host::DT_NOPREFIX;
    host::Rect rect{b.left, b.top, b.left + b.width, b.top + b.height};
    s.FillRect(rect, TranslateSysColor(b.backColor));
    const OLE_COLOR text = TranslateSysColor(b.enabled ? b.foreColor : SystemColor(COLOR_GRAYTEXT));
    s.DrawText(b.text, rect, kFormat, *b.font, text);
    if (index != ActiveBox() || b.selLength <= 0) return;
    const std::string_view all = b.text;
    const std::size_t from = Utf8Offset(all, b.selStart);
    const std::size_t to = Utf8Offset(all, b.selStart + b.selLength);
    const int x0 = b.left + s.MeasureText(all.substr(0, from), *b.font).width;
    const std::string_view selected = all.substr(from, to - from);
    host::Rect mark{x0, b.top, x0 + s.MeasureText(selected, *b.font).width, b.top + b.height};
    s.FillRect(mark, TranslateSysColor(SystemColor(COLOR_HIGHLIGHT)));
    s.DrawText(selected, mark, kFormat, *b.font,
               TranslateSysColor(SystemColor(COLOR_HIGHLIGHTTEXT)));
}

// Labels are transparent: the control's back colour shows behind them.
void DateBox::PaintLabel(host::Surface& s, const LabelElement& label) {
    if (!label.visible) return;
    host::Rect rect{label.left, label.top, label.left + label.width, label.top + label.height};
    const OLE_COLOR text =
        TranslateSysColor(label.enabled ? label.foreColor : SystemColor(COLOR_GRAYTEXT));
    s.DrawText(label.caption, rect, host::DT_LEFT | host::DT_SINGLELINE | host::DT_NOPREFIX,
               *label.font, text);
}

// A raised push-button face with a downward triangle. The triangle is as
// wide as half the glyph's em square (points at 96 pixels an inch), less
// one pixel, and half as high, so it grows with the glyph size.
void DateBox::PaintButton(host::Surface& s) {
    const ButtonElement& b = cmdSelezione_;
    if (b.width <= 0 || b.height <= 0) return;
    const int l = b.left, t = b.top, r = b.left + b.width, bottom = b.top + b.height;
    s.FillRect({l, t, r, bottom}, TranslateSysColor(SystemColor(COLOR_BTNFACE)));
    const auto edge = [&](int inset, int topLeft, int bottomRight) {
        const OLE_COLOR light = TranslateSysColor(SystemColor(topLeft));
        const OLE_COLOR dark = TranslateSysColor(SystemColor(bottomRight));
        s.FillRect({l + inset, t + inset, r - inset, t + inset + 1}, light);
        s.FillRect({l + inset, t + inset, l + inset + 1, bottom - inset}, light);
        s.FillRect({l + inset, bottom - inset - 1, r - inset, bottom - inset}, dark);
        s.FillRect({r - inset - 1, t + inset, r - inset, bottom - inset}, dark);
    };
    edge(0, COLOR_BTNHIGHLIGHT, COLOR_3DDKSHADOW);
    edge(1, COLOR_3DLIGHT, COLOR_BTNSHADOW);
    const int em = static_cast<int>(RoundHalfEven(b.glyphPoints * 4.0 / 3.0));
    const int rows = std::max(1, (em + 1) / 2 - 1);
    const int base = 2 * rows - 1;
    const int x = l + (b.width - base) / 2;
    const int y = t + (b.height - rows) / 2;
    const OLE_COLOR glyph =
        TranslateSysColor(SystemColor(b.enabled ? COLOR_BTNTEXT : COLOR_GRAYTEXT));
    for (int k = 0; k < rows; ++k) s.FillRect({x + k, y + k, x + base - k, y + k + 1}, glyph);
}

}  // namespace kelvarin::controls

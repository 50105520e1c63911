// SPDX-License-Identifier: MIT
#include "controls/progressbox/ProgressBox.h"

#include <cmath>

#include "common/HostError.h"
#include "common/Numeric.h"
#include "common/Variant.h"
#include "gfx/clsGFX_2D.h"

namespace kelvarin::controls {

namespace {

std::string DoubleText(double v) { return NumberToText(v, false, EnglishLocale()); }

}  // namespace

ProgressBox::ProgressBox() : Control("ProgressBox") {}
ProgressBox::~ProgressBox() = default;

// ---- State ------------------------------------------------------------------

void ProgressBox::EnsureTimer() {
    if (tmrTimes_) return;
    tmrTimes_ = Site().CreateTimer([this] { OnTimer(); });
    tmrTimes_->SetInterval(pendingInterval_);
}

Long ProgressBox::TimerChangedInterval() const {
    return tmrTimes_ ? tmrTimes_->Interval() : pendingInterval_;
}

bool ProgressBox::TimerRunning() const { return tmrTimes_ && tmrTimes_->Enabled(); }

void ProgressBox::UpdatePercentual() {
    percentual_ = Divide((value_ - minValue_) * 100.0, maxValue_ - minValue_);
}

void ProgressBox::UpdateValue() {
    value_ = (maxValue_ - minValue_) * percentual_ / 100.0 + minValue_;
}

// ---- Properties ---------------------------------------------------------------
//
// A write stores, repaints when the look changes, and notifies.

void ProgressBox::Changed(Row row) {
    Redraw();
    PropertyChanged(row);
}

void ProgressBox::SetBackColor(OLE_COLOR color) {
    SurfaceState().backColor = color;
    Changed(kBackColor);
}

void ProgressBox::SetForeColor(OLE_COLOR color) {
    SurfaceState().foreColor = color;
    Changed(kForeColor);
}

void ProgressBox::SetEnabled(bool enabled) {
    SurfaceState().enabled = enabled;
    PropertyChanged(kEnabled);
}

void ProgressBox::SetFont(std::shared_ptr<Font> font) {
    if (!font) RaiseHostError(HostErrorCode::InvalidPropertyValue);
    SurfaceState().font = std::move(font);
    Changed(kFont);
}

void ProgressBox::SetBorderStyle(Long style) {
    SurfaceState().borderStyle = ToInteger(style);
    Changed(kBorderStyle);
}

void ProgressBox::SetAppearance(Long appearance) {
    SurfaceState().appearance = ToInteger(appearance);
    Changed(kAppearance);
}

void ProgressBox::SetMouseIcon(std::shared_ptr<Object> picture) {
    SurfaceState().mouseIcon = std::move(picture);
    PropertyChanged(kMouseIcon);
}

void ProgressBox::SetMousePointer(Integer pointer) {
    SurfaceState().mousePointer = pointer;
    PropertyChanged(kMousePointer);
}

// The gradient's ends are kept translated: the bar is drawn column by column.
void ProgressBox::StoreStartColor(OLE_COLOR color) {
    startColor_ = color;
    startColorRGB_ = TranslateSysColor(color);
}

void ProgressBox::StoreFinishColor(OLE_COLOR color) {
    finishColor_ = color;
    finishColorRGB_ = TranslateSysColor(color);
}

void ProgressBox::SetStartColor(OLE_COLOR color) {
    StoreStartColor(color);
    Changed(kStartColor);
}

void ProgressBox::SetFinishColor(OLE_COLOR color) {
    StoreFinishColor(color);
    Changed(kFinishColor);
}

void ProgressBox::SetPivotColor(OLE_COLOR color) {
    pivotColor_ = color;
    Changed(kPivotColor);
}

void ProgressBox::SetGradientStyle(Long style) {
    gradientStyle_ = style;
    Changed(kGradientStyle);
}

void ProgressBox::SetText(std::string text) {
    text_ = std::move(text);
    Changed(kText);
}

void ProgressBox::SetShowPercentual(bool show) {
    showPercentual_ = show;
    Changed(kShowPercentual);
}

void ProgressBox::SetAlignment(Long alignment) {
    alignment_ = alignment;
    Changed(kAlignment);
}

// Out-of-range values are clamped, never refused; reaching the minimum
// (re)starts the run's clock, reaching the maximum stops it.
void ProgressBox::SetValue(double v) {
    if (v < minValue_) value_ = minValue_;
    else if (v <= maxValue_) value_ = v;
    else value_ = maxValue_;
    if (value_ == minValue_) StartTiming();
    else if (value_ == maxValue_) StopTiming();
    UpdatePercentual();
    Redraw();
    PropertyChanged(kValue);
    PropertyChanged(kPercentual);
}

void ProgressBox::SetPercentual(double p) {
    if (p < 0) percentual_ = 0;
    else if (p <= 100) percentual_ = p;
    else percentual_ = 100;
    UpdateValue();
    if (percentual_ == 0) StartTiming();
    else if (percentual_ == 100) StopTiming();
    Redraw();
    PropertyChanged(kPercentual);
    PropertyChanged(kValue);
}

// A minimum at or above the maximum is dropped silently. Moving the value
// up to the new minimum does not start the clock (only Value and
// Percentual writes do).
void ProgressBox::SetMinValue(double m) {
    if (m >= maxValue_) return;
    minValue_ = m;
    if (m > value_) {
        value_ = m;
        PropertyChanged(kValue);
    }
    UpdatePercentual();
    Redraw();
    PropertyChanged(kMinValue);
    PropertyChanged(kPercentual);
}

void ProgressBox::SetMaxValue(double m) {
    if (m <= minValue_) return;
    maxValue_ = m;
    if (m < value_) {
        value_ = m;
        PropertyChanged(kValue);
    }
    UpdatePercentual();
    Redraw();
    PropertyChanged(kMaxValue);
    PropertyChanged(kPercentual);
}

void ProgressBox::SetTimerChangedInterval(Long milliseconds) {
    if (tmrTimes_) {
        tmrTimes_->SetInterval(milliseconds);
    } else {
        if (milliseconds < 0) RaiseHostError(HostErrorCode::InvalidPropertyValue);
        pendingInterval_ = milliseconds;
    }
    PropertyChanged(kTimerChangedInterval);
}

// ---- Life-cycle ---------------------------------------------------------------

void ProgressBox::InitProperties() {
    EnsureTimer();
    SurfaceState().font = Site().AmbientFont()->Clone();
    startColor_ = finishColor_ = pivotColor_ = kSysHighlight;
    startColorRGB_ = finishColorRGB_ = TranslateSysColor(kSysHighlight);
    value_ = minValue_ = percentual_ = 0;
    maxValue_ = 100;
    text_.clear();
    showPercentual_ = true;
    alignment_ = host::kCenter;
    gradientStyle_ = kLinear;
    ready_ = true;
}

void ProgressBox::Show() {}

void ProgressBox::Resize() {
    if (ready_) Repaint();
}

void ProgressBox::Paint() {
    if (ready_) Repaint();
}

// ---- Input: raised to the container unchanged ----------------------------------

void ProgressBox::KeyDown(Integer& keyCode, Integer shift) { RaiseKey(kKeyDown, keyCode, shift); }
void ProgressBox::KeyPress(Integer& keyAscii) { RaiseKeyPress(kKeyPress, keyAscii); }
void ProgressBox::KeyUp(Integer& keyCode, Integer shift) { RaiseKey(kKeyUp, keyCode, shift); }

void ProgressBox::MouseDown(Integer button, Integer shift, Single x, Single y) {
    RaiseMouse(kMouseDown, button, shift, x, y);
}

void ProgressBox::MouseMove(Integer button, Integer shift, Single x, Single y) {
    RaiseMouse(kMouseMove, button, shift, x, y);
}

void ProgressBox::MouseUp(Integer button, Integer shift, Single x, Single y) {
    RaiseMouse(kMouseUp, button, shift, x, y);
}

void ProgressBox::Click() { RaiseEvent(kClick, {}); }
void ProgressBox::DblClick() { RaiseEvent(kDblClick, {}); }

// ---- Painting ---------------------------------------------------------------------

namespace {

struct Rgb {
    double r, g, b;
};

Rgb SplitRGB(OLE_COLOR c) {
    return {static_cast<double>(c & 0xFF), static_cast<double>((c >> 8) & 0xFF),
            static_cast<double>((c >> 16) & 0xFF)};
}

// Components round half to even and combine as red + 256 green + 65536 blue.
Long Combine(double r, double g, double b) {
    return CheckedAdd(CheckedAdd(ToLong(r), CheckedMul(256, ToLong(g))),
                      CheckedMul(65536, ToLong(b)));
}

Long RoundedSquare(Long x) { return ToLong(std::pow(static_cast<double>(x), 2.0)); }

}  // namespace

// The whole repaint: a fresh surface one pixel wider and taller than the
// client area, the bar drawn column by column, copied to the control, and
// the caption over it.
std::pair<Long, Long> ProgressBox::LinearColumns(double from, double to, Long last) const {
    const double range = maxValue_ - minValue_;
    const Long first = ToLong(Divide((from - minValue_) * last, range));
    const Long end = CheckedSub(ToLong(Divide((to - minValue_) * last, range)), 1);
    return {first, end};
}

Long ProgressBox::PivotColumn(double to, Long width) const {
    return ToLong(Divide((to - minValue_) * (width - 2), maxValue_ - minValue_));
}

ProgressBox::Look ProgressBox::CurrentLook(double sw, double sh) const {
    Look look;
    look.width = sw;
    look.height = sh;
    look.style = gradientStyle_;
    look.back = TranslateSysColor(SurfaceState().backColor);
    look.start = startColorRGB_;
    look.finish = finishColorRGB_;
    look.pivot = TranslateSysColor(pivotColor_);
    look.fore = TranslateSysColor(SurfaceState().foreColor);
    const Long width = ToLong(sw + 1);
    if (gradientStyle_ == kLinear)
        std::tie(look.first, look.end) = LinearColumns(minValue_, value_, width - 1);
    else if (gradientStyle_ == kGaussian || gradientStyle_ == kGaussianSquared)
        look.first = look.end = PivotColumn(value_, width);
    look.caption = Caption();
    look.alignment = alignment_;
    look.font = *SurfaceState().font;
    return look;
}

void ProgressBox::Repaint() {
    painted_.reset();
    Redraw();
}

void ProgressBox::Redraw() {
    if (!HasSite()) return;
    host::Surface& surface = Site().ClientSurface();
    const double sw = surface.Width();
    const double sh = surface.Height();
    // A look that fails its arithmetic is never the painted one.
    std::optional<Look> look;
    try {
        look = CurrentLook(sw, sh);
    } catch (const HostError&) {
        painted_.reset();
    }
    if (look && look == painted_) return;
    painted_.reset();
    clsGFX_2D gfx;
    gfx.Create(ToLong(sw + 1), ToLong(sh + 1), 24);
    gfx.Draw_StartSession();
    double from = minValue_;
    double to = value_;
    DrawBar(gfx, from, to);
    gfx.Draw_EndSession();
    gfx.BitBlt_PaintPicture(&surface, 0, 0, -1, -1, 0, 0, SRCCOPY);
    DrawCaption(surface, sw, sh);
    painted_ = std::move(look);
    Site().Refresh();
}

void ProgressBox::DrawBar(clsGFX_2D& gfx, double& from, double& to) {
    const Long w = gfx.Get_Width();
    const Long h = gfx.Get_Height();
    const Long last = w - 1;
    const Long bottom = h - 1;
    const Rgb s = SplitRGB(startColorRGB_);
    const Rgb f = SplitRGB(finishColorRGB_);
    const auto column = [&](Long x, Long color) { gfx.Draw_Line(x, 0, x, bottom, color); };

    switch (gradientStyle_) {
        case kLinear: {
            gfx.Color_Fill(static_cast<Long>(TranslateSysColor(SurfaceState().backColor)));
            const double stepR = Divide(f.r - s.r, last);
            const double stepG = Divide(f.g - s.g, last);
            const double stepB = Divide(f.b - s.b, last);
            const auto [first, end] = LinearColumns(from, to, last);
            for (Long x = first; x <= end; ++x)
                column(x, Combine(s.r + x * stepR, s.g + x * stepG, s.b + x * stepB));
            return;
        }
        case kGaussian:
        case kGaussianSquared: {
            const bool squared = gradientStyle_ == kGaussianSquared;
            const Long p = PivotColumn(to, w);
            const Rgb pv = SplitRGB(TranslateSysColor(pivotColor_));
            if (p != 0) {
                const double spread = squared ? RoundedSquare(p) : p;
                const double stepR = Divide(pv.r - s.r, spread);
                const double stepG = Divide(pv.g - s.g, spread);
                const double stepB = Divide(pv.b - s.b, spread);
                for (Long x = 0; x <= p; ++x) {
                    const double t = squared ? RoundedSquare(x) : x;
                    column(x, Combine(s.r + t * stepR, s.g + t * stepG, s.b + t * stepB));
                }
            }
            const Long d = CheckedSub(last, p);
            const double spread = squared ? RoundedSquare(d) : d;
            const double stepR = Divide(f.r - pv.r, spread);
            const double stepG = Divide(f.g - pv.g, spread);
            const double stepB = Divide(f.b - pv.b, spread);
            for (Long x = last; x >= p; --x) {
                const Long dx = last - x;
                const double t = squared ? RoundedSquare(dx) : dx;
                column(x, Combine(f.r - t * stepR, f.g - t * stepG, f.b - t * stepB));
            }
            return;
        }
        default: return;  // any other style paints no bar
    }
}

void ProgressBox::DrawCaption(host::Surface& surface, double sw, double sh) {
    host::Rect rect{0, 0, ToLong(sw) - 1, ToLong(sh) - 1};
    const unsigned format =
        static_cast<unsigned>(alignment_) | host::DT_VCENTER | host::DT_SINGLELINE;
    surface.DrawText(Caption(), rect, format, *SurfaceState().font,
                     TranslateSysColor(SurfaceState().foreColor));
}

// ---- Timing -----------------------------------------------------------------------

void ProgressBox::StartTiming() {
    startTick_ = Site().TickCount();
    EnsureTimer();
    tmrTimes_->SetEnabled(true);
}

void ProgressBox::StopTiming() {
    if (tmrTimes_) tmrTimes_->SetEnabled(false);
}

// The estimate is of the whole run's duration, not of the time left.
void ProgressBox::OnTimer() {
    const Long now = static_cast<Long>(Site().TickCount());
    const Long elapsed = CheckedSub(now, static_cast<Long>(startTick_));
    const Long estimated =
        percentual_ == 0 ? -1 : ToLong(static_cast<double>(elapsed) / percentual_ * 100.0);
    Variant args[] = {Variant(elapsed), Variant(estimated)};
    RaiseEvent(kTimerChange, args);
}

std::vector<std::string> ProgressBox::Dump() const {
    return {
        std::string("timer ") + (TimerRunning() ? "enabled" : "disabled"),
        "interval " + std::to_string(TimerChangedInterval()),
        "StartTick " + std::to_string(startTick_),
        std::string(Table()[kValue].name) + " " + DoubleText(value_),
        std::string(Table()[kPercentual].name) + " " + DoubleText(percentual_),
        "caption \"" + Caption() + "\"",
    };
}

std::string ProgressBox::Caption() const {
    std::string s = text_;
    if (showPercentual_) {
        s += ' ';
        s += NumberToText(RoundHalfEven(percentual_));
        s += '%';
    }
    return s;
}

}  // namespace kelvarin::controls

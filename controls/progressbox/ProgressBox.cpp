#include "controls/progressbox/ProgressBox.h"

#include <cmath>

#include "common/HostError.h"
#include "common/Numeric.h"
#include "common/Variant.h"
#include "gfx/clsGFX_2D.h"

namespace kelvarin::controls {

namespace {

constexpr OLE_COLOR kHighlight = 0x8000000D;

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

void ProgressBox::SetBackColor(OLE_COLOR color) {
    SurfaceState().backColor = color;
    Redraw();
    PropertyChanged("BackColor");
}

void ProgressBox::SetForeColor(OLE_COLOR color) {
    SurfaceState().foreColor = color;
    Redraw();
    PropertyChanged("ForeColor");
}

void ProgressBox::SetEnabled(bool enabled) {
    SurfaceState().enabled = enabled;
    PropertyChanged("Enabled");
}

void ProgressBox::SetFont(std::shared_ptr<Font> font) {
    if (!font) RaiseHostError(HostErrorCode::InvalidPropertyValue);
    SurfaceState().font = std::move(font);
    Redraw();
    PropertyChanged("Font");
}

void ProgressBox::SetBorderStyle(Long style) {
    SurfaceState().borderStyle = ToInteger(style);
    Redraw();
    PropertyChanged("BorderStyle");
}

void ProgressBox::SetAppearance(Long appearance) {
    SurfaceState().appearance = ToInteger(appearance);
    Redraw();
    PropertyChanged("Appearance");
}

void ProgressBox::SetMouseIcon(std::shared_ptr<Object> picture) {
    SurfaceState().mouseIcon = std::move(picture);
    PropertyChanged("MouseIcon");
}

void ProgressBox::SetMousePointer(Integer pointer) {
    SurfaceState().mousePointer = pointer;
    PropertyChanged("MousePointer");
}

void ProgressBox::SetStartColor(OLE_COLOR color) {
    startColor_ = color;
    startColorRGB_ = TranslateSysColor(color);
    Redraw();
    PropertyChanged("StartColor");
}

void ProgressBox::SetFinishColor(OLE_COLOR color) {
    finishColor_ = color;
    finishColorRGB_ = TranslateSysColor(color);
    Redraw();
    PropertyChanged("FinishColor");
}

void ProgressBox::SetPivotColor(OLE_COLOR color) {
    pivotColor_ = color;
    Redraw();
    PropertyChanged("PivotColor");
}

void ProgressBox::SetGradientStyle(Long style) {
    gradientStyle_ = style;
    Redraw();
    PropertyChanged("GradientStyle");
}

void ProgressBox::SetText(std::string text) {
    text_ = std::move(text);
    Redraw();
    PropertyChanged("Text");
}

void ProgressBox::SetShowPercentual(bool show) {
    showPercentual_ = show;
    Redraw();
    PropertyChanged("ShowPercentual");
}

void ProgressBox::SetAlignment(Long alignment) {
    alignment_ = alignment;
    Redraw();
    PropertyChanged("Alignment");
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
    PropertyChanged("Value");
    PropertyChanged("Percentual");
}

void ProgressBox::SetPercentual(double p) {
    if (p < 0) percentual_ = 0;
    else if (p <= 100) percentual_ = p;
    else percentual_ = 100;
    UpdateValue();
    if (percentual_ == 0) StartTiming();
    else if (percentual_ == 100) StopTiming();
    Redraw();
    PropertyChanged("Percentual");
    PropertyChanged("Value");
}

// A minimum at or above the maximum is dropped silently. Moving the value
// up to the new minimum does not start the clock (only Value and
// Percentual writes do).
void ProgressBox::SetMinValue(double m) {
    if (m >= maxValue_) return;
    minValue_ = m;
    if (m > value_) {
        value_ = m;
        PropertyChanged("Value");
    }
    UpdatePercentual();
    Redraw();
    PropertyChanged("MinValue");
    PropertyChanged("Percentual");
}

void ProgressBox::SetMaxValue(double m) {
    if (m <= minValue_) return;
    maxValue_ = m;
    if (m < value_) {
        value_ = m;
        PropertyChanged("Value");
    }
    UpdatePercentual();
    Redraw();
    PropertyChanged("MaxValue");
    PropertyChanged("Percentual");
}

void ProgressBox::SetTimerChangedInterval(Long milliseconds) {
    if (tmrTimes_) {
        tmrTimes_->SetInterval(milliseconds);
    } else {
        if (milliseconds < 0) RaiseHostError(HostErrorCode::InvalidPropertyValue);
        pendingInterval_ = milliseconds;
    }
    PropertyChanged("TimerChangedInterval");
}

// ---- Life-cycle ---------------------------------------------------------------

void ProgressBox::InitProperties() {
    EnsureTimer();
    SurfaceState().font = Site().AmbientFont()->Clone();
    startColor_ = finishColor_ = pivotColor_ = kHighlight;
    startColorRGB_ = finishColorRGB_ = TranslateSysColor(kHighlight);
    value_ = minValue_ = percentual_ = 0;
    maxValue_ = 100;
    text_.clear();
    showPercentual_ = true;
    alignment_ = 1;
    gradientStyle_ = 0;
    ready_ = true;
}

// Loaded values go straight into the fields: no clamping, coupling, timing
// or notification.
void ProgressBox::ReadProperties(host::PropertyBag& bag) {
    EnsureTimer();
    host::SurfaceProperties& s = SurfaceState();
    s.enabled = bag.ReadProperty("Enabled", Variant(true)).ToBoolean();
    const Variant font =
        bag.ReadProperty("Font", Variant(std::shared_ptr<Object>(Site().AmbientFont())));
    if (auto f = std::dynamic_pointer_cast<Font>(font.ToObject())) s.font = f->Clone();
    s.borderStyle = bag.ReadProperty("BorderStyle", Variant(Integer(0))).ToInteger();
    s.appearance = bag.ReadProperty("Appearance", Variant(Integer(1))).ToInteger();
    s.backColor = static_cast<OLE_COLOR>(
        bag.ReadProperty("BackColor", Variant(static_cast<Long>(0x8000000F))).ToLong());
    s.mouseIcon = bag.ReadProperty("MouseIcon", Variant::Nothing()).ToObject();
    s.mousePointer = bag.ReadProperty("MousePointer", Variant(Integer(0))).ToInteger();
    startColor_ = static_cast<OLE_COLOR>(
        bag.ReadProperty("StartColor", Variant(static_cast<Long>(kHighlight))).ToLong());
    startColorRGB_ = TranslateSysColor(startColor_);
    finishColor_ = static_cast<OLE_COLOR>(
        bag.ReadProperty("FinishColor", Variant(static_cast<Long>(kHighlight))).ToLong());
    finishColorRGB_ = TranslateSysColor(finishColor_);
    text_ = bag.ReadProperty("Text", Variant("")).ToString();
    showPercentual_ = bag.ReadProperty("ShowPercentual", Variant(true)).ToBoolean();
    alignment_ = bag.ReadProperty("Alignment", Variant(Long(1))).ToLong();
    minValue_ = bag.ReadProperty("MinValue", Variant(0.0)).ToDouble();
    maxValue_ = bag.ReadProperty("MaxValue", Variant(100.0)).ToDouble();
    value_ = bag.ReadProperty("Value", Variant(0.0)).ToDouble();
    percentual_ = bag.ReadProperty("Percentual", Variant(0.0)).ToDouble();
    gradientStyle_ = bag.ReadProperty("GradientStyle", Variant(Long(0))).ToLong();
    pivotColor_ = static_cast<OLE_COLOR>(
        bag.ReadProperty("PivotColor", Variant(static_cast<Long>(kHighlight))).ToLong());
    s.foreColor = static_cast<OLE_COLOR>(
        bag.ReadProperty("ForeColor", Variant(static_cast<Long>(0x80000012))).ToLong());
    tmrTimes_->SetInterval(bag.ReadProperty("TimerChangedInterval", Variant(Long(250))).ToLong());
    ready_ = true;
    Redraw();
}

void ProgressBox::WriteProperties(host::PropertyBag& bag) {
    const host::SurfaceProperties& s = SurfaceState();
    const auto color = [](OLE_COLOR c) { return Variant(static_cast<Long>(c)); };
    bag.WriteProperty("Enabled", Variant(s.enabled), Variant(true));
    bag.WriteProperty("Font", Variant(std::shared_ptr<Object>(s.font)),
                      Variant(std::shared_ptr<Object>(Site().AmbientFont())));
    bag.WriteProperty("BorderStyle", Variant(s.borderStyle), Variant(Integer(0)));
    bag.WriteProperty("Appearance", Variant(s.appearance), Variant(Integer(1)));
    bag.WriteProperty("BackColor", color(s.backColor), color(0x8000000F));
    bag.WriteProperty("MouseIcon", Variant(s.mouseIcon), Variant::Nothing());
    bag.WriteProperty("MousePointer", Variant(s.mousePointer), Variant(Integer(0)));
    bag.WriteProperty("StartColor", color(startColor_), color(kHighlight));
    bag.WriteProperty("FinishColor", color(finishColor_), color(kHighlight));
    bag.WriteProperty("Text", Variant(text_), Variant(""));
    bag.WriteProperty("ShowPercentual", Variant(showPercentual_), Variant(true));
    bag.WriteProperty("Alignment", Variant(alignment_), Variant(Long(1)));
    bag.WriteProperty("MinValue", Variant(minValue_), Variant(0.0));
    bag.WriteProperty("MaxValue", Variant(maxValue_), Variant(100.0));
    bag.WriteProperty("Value", Variant(value_), Variant(0.0));
    bag.WriteProperty("Percentual", Variant(percentual_), Variant(0.0));
    bag.WriteProperty("GradientStyle", Variant(gradientStyle_), Variant(Long(0)));
    bag.WriteProperty("PivotColor", color(pivotColor_), color(kHighlight));
    bag.WriteProperty("ForeColor", color(s.foreColor), color(0x80000012));
    bag.WriteProperty("TimerChangedInterval", Variant(TimerChangedInterval()), Variant(Long(250)));
}

void ProgressBox::Show() {}

void ProgressBox::Resize() {
    if (ready_) Redraw();
}

void ProgressBox::Paint() {
    if (ready_) Redraw();
}

// ---- Input: raised to the container unchanged ----------------------------------

void ProgressBox::KeyDown(Integer& keyCode, Integer shift) {
    Variant args[] = {Variant(keyCode), Variant(shift)};
    RaiseEvent(kKeyDown, args);
}

void ProgressBox::KeyPress(Integer& keyAscii) {
    Variant args[] = {Variant(keyAscii)};
    RaiseEvent(kKeyPress, args);
}

void ProgressBox::KeyUp(Integer& keyCode, Integer shift) {
    Variant args[] = {Variant(keyCode), Variant(shift)};
    RaiseEvent(kKeyUp, args);
}

void ProgressBox::RaiseMouse(int number, Integer button, Integer shift, Single x, Single y) {
    Variant args[] = {Variant(button), Variant(shift), Variant(x), Variant(y)};
    RaiseEvent(number, args);
}

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
void ProgressBox::Redraw() {
    if (!HasSite()) return;
    host::Surface& surface = Site().ClientSurface();
    const double sw = surface.Width();
    const double sh = surface.Height();
    clsGFX_2D gfx;
    gfx.Create(ToLong(sw + 1), ToLong(sh + 1), 24);
    gfx.Draw_StartSession();
    double from = minValue_;
    double to = value_;
    DrawBar(gfx, from, to);
    gfx.Draw_EndSession();
    gfx.BitBlt_PaintPicture(&surface, 0, 0, -1, -1, 0, 0, SRCCOPY);
    DrawCaption(surface, sw, sh);
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
        case 0: {
            gfx.Color_Fill(static_cast<Long>(TranslateSysColor(SurfaceState().backColor)));
            const double stepR = Divide(f.r - s.r, last);
            const double stepG = Divide(f.g - s.g, last);
            const double stepB = Divide(f.b - s.b, last);
            const double range = maxValue_ - minValue_;
            const Long first = ToLong(Divide((from - minValue_) * last, range));
            const Long end = CheckedSub(ToLong(Divide((to - minValue_) * last, range)), 1);
            for (Long x = first; x <= end; ++x)
                column(x, Combine(s.r + x * stepR, s.g + x * stepG, s.b + x * stepB));
            return;
        }
        case 1:
        case 2: {
            const bool squared = gradientStyle_ == 2;
            const Long p = ToLong(Divide((to - minValue_) * (w - 2), maxValue_ - minValue_));
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

// ---- Dispatch ---------------------------------------------------------------------

Variant ProgressBox::GetProperty(host::DispId id) {
    const host::SurfaceProperties& s = SurfaceState();
    const auto color = [](OLE_COLOR c) { return Variant(static_cast<Long>(c)); };
    switch (id) {
        case kBackColor: return color(s.backColor);
        case kForeColor: return color(s.foreColor);
        case kEnabled: return Variant(s.enabled);
        case kFont: return Variant(std::shared_ptr<Object>(s.font));
        case kBorderStyle: return Variant(static_cast<Long>(s.borderStyle));
        case kAppearance: return Variant(static_cast<Long>(s.appearance));
        case kHWnd: return Variant(Site().WindowHandle());
        case kMouseIcon: return Variant(s.mouseIcon);
        case kMousePointer: return Variant(s.mousePointer);
        case kStartColor: return color(startColor_);
        case kFinishColor: return color(finishColor_);
        case kValue: return Variant(value_);
        case kText: return Variant(text_);
        case kShowPercentual: return Variant(showPercentual_);
        case kAlignment: return Variant(alignment_);
        case kMinValue: return Variant(minValue_);
        case kMaxValue: return Variant(maxValue_);
        case kPercentual: return Variant(percentual_);
        case kGradientStyle: return Variant(gradientStyle_);
        case kPivotColor: return color(pivotColor_);
        case kTimerChangedInterval: return Variant(TimerChangedInterval());
    }
    return Control::GetProperty(id);
}

void ProgressBox::PutProperty(host::DispId id, const Variant& v) {
    const auto color = [&] { return static_cast<OLE_COLOR>(v.ToLong()); };
    switch (id) {
        case kBackColor: return SetBackColor(color());
        case kForeColor: return SetForeColor(color());
        case kEnabled: return SetEnabled(v.ToBoolean());
        case kFont: return SetFont(std::dynamic_pointer_cast<Font>(v.ToObject()));
        case kBorderStyle: return SetBorderStyle(v.ToLong());
        case kAppearance: return SetAppearance(v.ToLong());
        case kMouseIcon: return SetMouseIcon(v.ToObject());
        case kMousePointer: return SetMousePointer(v.ToInteger());
        case kStartColor: return SetStartColor(color());
        case kFinishColor: return SetFinishColor(color());
        case kValue: return SetValue(v.ToDouble());
        case kText: return SetText(v.ToString());
        case kShowPercentual: return SetShowPercentual(v.ToBoolean());
        case kAlignment: return SetAlignment(v.ToLong());
        case kMinValue: return SetMinValue(v.ToDouble());
        case kMaxValue: return SetMaxValue(v.ToDouble());
        case kPercentual: return SetPercentual(v.ToDouble());
        case kGradientStyle: return SetGradientStyle(v.ToLong());
        case kPivotColor: return SetPivotColor(color());
        case kTimerChangedInterval: return SetTimerChangedInterval(v.ToLong());
    }
    Control::PutProperty(id, v);
}

std::vector<std::string> ProgressBox::Dump() const {
    return {
        std::string("timer ") + (TimerRunning() ? "enabled" : "disabled"),
        "interval " + std::to_string(TimerChangedInterval()),
        "StartTick " + std::to_string(startTick_),
        "Value " + DoubleText(value_),
        "Percentual " + DoubleText(percentual_),
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

// SPDX-License-Identifier: MIT
// Sections: construction; editor context; value; properties; life-cycle;
// focus and mouse; keyboard; dispatch; diagnostics. Layout, painting and
// the calendar are in DateBoxLayout.cpp, DateBoxPaint.cpp and
// DateBoxCalendar.cpp.
#include "controls/datebox/DateBox.h"

#include <algorithm>
#include <chrono>
#include <cmath>

#include "common/HostError.h"
#include "common/Numeric.h"
#include "common/Variant.h"
#include "controls/calendar/CalendarHook.h"
#include "controls/datebox/ChangeFlags.h"
#include "host/Keys.h"

namespace kelvarin::controls {

namespace {

std::string Quoted(std::string_view s) {
    std::string out = "\"";
    for (char c : s) {
        if (c == '"') out += '"';
        out += c;
    }
    return out + "\"";
}

}  // namespace

// ---- Construction -----------------------------------------------------------

DateBox::DateBox() : Control("DateBox") {
    cmdSelezione_.width = kButtonWidth;
    lblValueChanged_.onChange = [this] { TakeCalendarDate(); };
}

DateBox::~DateBox() { ForgetCalendarResultLabel(&lblValueChanged_); }

// ---- Editor context ---------------------------------------------------------

EditRules DateBox::Rules() const {
    return {minDate_, maxDate_, smallChange_, largeChange_, nullable_};
}

Date DateBox::Today() const {
    return DatePortion(HasSite() ? Site().Now() : LocalDateTime(std::chrono::system_clock::now()));
}

int DateBox::UnderscoreWidth() const { return Measure("_").width; }

// ---- Value ------------------------------------------------------------------

const Locale& DateBox::Loc() const { return HasSite() ? Site().UserLocale() : CurrentLocale(); }

void DateBox::RaiseChange() { RaiseEvent(kChange, {}); }

void DateBox::CheckLimits() {
    const Date lowest = DateSerial(100, 1, 1);
    const Date highest = DateSerial(9980, 12, 31);
    if (minDate_ < lowest) {
        minDate_ = lowest;
        PropertyChanged(kMinDate);
    }
    if (maxDate_ > highest) {
        maxDate_ = highest;
        PropertyChanged(kMaxDate);
    }
    if (maxDate_ < minDate_) {
        maxDate_ = minDate_;
        PropertyChanged(kMaxDate);
    }
    if (value_ == 0) return;
    bool moved = false;
    if (value_ < minDate_) {
        value_ = minDate_;
        moved = true;
    }
    if (value_ > maxDate_) {
        value_ = maxDate_;
        moved = true;
    }
    if (!moved) return;
    editor_.SetParts(value_);
    editor_.ShowValue(value_);
    PropertyChanged(kValue);
}

bool DateBox::IsValueAllowed(Date d) const noexcept {
    return (minDate_ <= d && d <= maxDate_) || d == 0;
}

// ---- Properties -------------------------------------------------------------

void DateBox::SetAppearance(Long appearance) {
    // Changing the look must not change the back colour.
    const OLE_COLOR back = SurfaceState().backColor;
    SurfaceState().appearance = ToInteger(appearance);
    SurfaceState().backColor = back;
    Redraw();
    PropertyChanged(kAppearance);
}

// The constituents' share of a property, for writes and loads alike.
void DateBox::StoreBackColor(OLE_COLOR color) {
    for (TextBoxElement& box : txtData_.All()) box.backColor = color;
    SurfaceState().backColor = color;
}

void DateBox::StoreForeColor(OLE_COLOR color) {
    for (TextBoxElement& box : txtData_.All()) box.foreColor = color;
    for (LabelElement& label : lblSeparator_.All()) label.foreColor = color;
}

// The surface follows, so that a disabled control is no tab stop and takes
// neither the focus nor any input.
void DateBox::StoreEnabled(bool enabled) {
    SurfaceState().enabled = enabled;
    for (TextBoxElement& box : txtData_.All()) box.enabled = enabled;
    for (LabelElement& label : lblSeparator_.All()) label.enabled = enabled;
    cmdSelezione_.enabled = enabled;
}

void DateBox::StoreFont(const std::shared_ptr<Font>& font) {
    SurfaceState().font = font;
    for (TextBoxElement& box : txtData_.All()) box.font = font;
    for (LabelElement& label : lblSeparator_.All()) label.font = font;
}

void DateBox::StoreLocked(bool locked) {
    for (TextBoxElement& box : txtData_.All()) box.locked = locked;
}

void DateBox::SetBackColor(OLE_COLOR color) {
    StoreBackColor(color);
    if (HasSite()) Site().DoEvents();
    Redraw();
    PropertyChanged(kBackColor);
}

void DateBox::SetForeColor(OLE_COLOR color) {
    StoreForeColor(color);
    Redraw();
    PropertyChanged(kForeColor);
}

void DateBox::SetAlignment(Long alignment) {
    alignment_ = alignment;
    LayoutBoxes();
    Redraw();
    PropertyChanged(kAlignment);
}

void DateBox::SetEnabled(bool enabled) {
    StoreEnabled(enabled);
    Redraw();
    PropertyChanged(kEnabled);
}

void DateBox::SetFont(std::shared_ptr<Font> font) {
    if (!font) RaiseHostError(HostErrorCode::InvalidPropertyValue);
    StoreFont(font->Clone());
    MeasureTokens();
    SizeBoxes();
    LayoutBoxes();
    Redraw();
    PropertyChanged(kFont);
}

void DateBox::SetBorderStyle(Long style) {
    SurfaceState().borderStyle = ToInteger(style);
    Redraw();
    PropertyChanged(kBorderStyle);
}

void DateBox::SetLocked(bool locked) {
    StoreLocked(locked);
    PropertyChanged(kLocked);
}

Date DateBox::Value() {
    value_ = editor_.PartsToValue();
    return value_;
}

// The empty date on a control that is not Nullable, and a date outside the
// limits, are ignored; an accepted date raises Change even when it equals
// the one before.
void DateBox::SetValue(Date d) {
    if (d == 0 && !nullable_) return;
    if (!IsValueAllowed(d)) return;
    value_ = d;
    editor_.SetParts(d);
    editor_.ShowValue(d);
    Redraw();
    PropertyChanged(kValue);
    RaiseChange();
}

Variant DateBox::ValueDB() {
    const Date d = Value();
    return d == 0 ? Variant::Null() : Variant::FromDate(d);
}

// Null, and anything that is neither a date nor a text that reads as one,
// is the empty date.
void DateBox::SetValueDB(const Variant& value) {
    Date d = 0;
    if (value.Type() == VarType::Date) {
        d = value.ToDate();
    } else if (value.Type() == VarType::String) {
        d = TextToDate(value.ToString(), Loc()).value_or(0);
    }
    SetValue(d);
}

void DateBox::SetDateFormat(std::string pattern) {
    dateFormat_ = std::move(pattern);
    RebuildBoxes();
    LayoutBoxes();
    Redraw();
    PropertyChanged(kDateFormat);
}

void DateBox::SetSmallChange(Long step) {
    smallChange_ = step;
    PropertyChanged(kSmallChange);
}

void DateBox::SetLargeChange(Long step) {
    largeChange_ = step;
    PropertyChanged(kLargeChange);
}

// A control that may no longer be empty shows today instead; no Change.
void DateBox::SetNullable(bool nullable) {
    nullable_ = nullable;
    if (!nullable_ && value_ == 0) {
        value_ =
            DatePortion(HasSite() ? Site().Now() : LocalDateTime(std::chrono::system_clock::now()));
        editor_.SetParts(value_);
        editor_.ShowValue(value_);
        Redraw();
        PropertyChanged(kValue);
    }
    PropertyChanged(kNullable);
}

void DateBox::SetCalendarButton(bool show) {
    cmdSelezione_.visible = show;
    calendarButton_ = show;
    LayoutBoxes();
    Redraw();
    PropertyChanged(kCalendarButton);
}

void DateBox::SetMinDate(Date d) {
    minDate_ = d;
    CheckLimits();
    Redraw();
    PropertyChanged(kMinDate);
}

void DateBox::SetMaxDate(Date d) {
    maxDate_ = d;
    CheckLimits();
    Redraw();
    PropertyChanged(kMaxDate);
}

// ---- Life-cycle -------------------------------------------------------------

void DateBox::InitProperties() {
    host::SurfaceProperties& s = SurfaceState();
    s.font = Site().AmbientFont()->Clone();
    s.backColor = kSysWindow;
    s.foreColor = kSysWindowText;
    s.borderStyle = 1;
    s.appearance = 1;
    for (TextBoxElement& box : txtData_.All()) {
        box.font = s.font;
        box.backColor = kSysWindow;
        box.foreColor = kSysWindowText;
    }
    for (LabelElement& label : lblSeparator_.All()) {
        label.font = s.font;
        label.foreColor = kSysWindowText;
    }
    value_ = 0;
    editor_.SetParts(0);
    dateFormat_ = kDefaultFormat;
    minDate_ = kMinDateSerial;
    maxDate_ = kMaxDateSerial;
    smallChange_ = 1;
    largeChange_ = 10;
    nullable_ = true;
    calendarButton_ = true;
    cmdSelezione_.visible = true;
    initialised_ = true;
    RebuildBoxes();
}

void DateBox::Show() {
    LayoutBoxes();
    Redraw();
}

void DateBox::Resize() {
    if (initialised_) LayoutBoxes();
    Redraw();
}

void DateBox::Paint() { Redraw(); }

// ---- Focus and mouse --------------------------------------------------------

// The focus enters at the first field, the only tab stop.
void DateBox::GotFocus() {
    hasFocus_ = true;
    focusJustArrived_ = true;
    editor_.Enter(txtData_.Exists(1) && txtData_(1).enabled ? 1 : 0);
    Redraw();
}

// The field being left is committed, whatever moves the focus; a refusal
// keeps the focus here and shows it, the field selected whole as when a key
// would leave it.
bool DateBox::QueryLeaveFocus() {
    if (ActiveBox() == 0) return true;
    const bool mayLeave = editor_.CommitBox(ActiveBox());
    if (!mayLeave) editor_.SelectBox(ActiveBox());
    Redraw();
    return mayLeave;
}

void DateBox::LostFocus() {
    hasFocus_ = false;
    editor_.Enter(0);
    focusJustArrived_ = false;
    captured_ = {};
    Redraw();
}

DateBox::Hit DateBox::HitTest(Single x, Single y) const {
    const auto inside = [&](int left, int top, int width, int height) {
        return x >= left && x < left + width && y >= top && y < top + height;
    };
    const ButtonElement& b = cmdSelezione_;
    if (b.visible && b.enabled && inside(b.left, b.top, b.width, b.height)) return {Hit::Button, 0};
    for (int i = 1; i <= txtData_.Count(); ++i) {
        const TextBoxElement& e = txtData_(i);
        if (e.visible && e.enabled && inside(e.left, e.top, e.width, e.height))
            return {Hit::Box, i};
    }
    for (int i = 1; i <= lblSeparator_.Count(); ++i) {
        const LabelElement& e = lblSeparator_(i);
        if (e.visible && e.enabled && inside(e.left, e.top, e.width, e.height))
            return {Hit::Label, i};
    }
    return {Hit::Surface, 0};
}

// The character boundary nearest to x.
int DateBox::CaretAt(const TextBoxElement& box, Single x) const {
    const int length = box.Length();
    for (int k = 0; k < length; ++k) {
        const std::string_view text = box.text;
        const std::size_t from = Utf8Offset(text, k), to = Utf8Offset(text, k + 1);
        const int before = Measure(text.substr(0, from)).width;
        const int own = Measure(text.substr(from, to - from)).width;
        if (x < box.left + before + own / 2.0) return k;
    }
    return length;
}

// Boxes and labels report the press in the whole control's coordinates,
// which is what the client point already is; the button keeps its own.
void DateBox::MouseDown(Integer button, Integer shift, Single x, Single y) {
    const Hit hit = HitTest(x, y);
    const bool arriving = focusJustArrived_;
    focusJustArrived_ = false;
    captured_ = hit;
    if (hit.kind == Hit::Button) return;
    if (hit.kind == Hit::Box) {
        bool focused = true;
        if (arriving && hit.index != editor_.Current()) {
            // The press itself brought the focus: it goes straight to this box,
            // and the first box, which never really had it, is not committed.
            editor_.Enter(hit.index);
        } else {
            focused = editor_.FocusBox(hit.index);
        }
        if (focused) {
            TextBoxElement& b = txtData_(hit.index);
            selAnchor_ = CaretAt(b, x);
            b.selStart = selAnchor_;
            b.selLength = 0;
        }
    }
    Redraw();
    RaiseMouse(kMouseDown, button, shift, x, y);
}

void DateBox::MouseMove(Integer button, Integer shift, Single x, Single y) {
    const Hit hit = captured_.kind != Hit::None ? captured_ : HitTest(x, y);
    if (hit.kind == Hit::Button) return;
    if (hit.kind == Hit::Box && (button & 1) && hit.index == ActiveBox()) {
        TextBoxElement& b = txtData_(hit.index);
        const int caret = CaretAt(b, x);
        b.selStart = std::min(selAnchor_, caret);
        b.selLength = std::abs(caret - selAnchor_);
        Redraw();
    }
    RaiseMouse(kMouseMove, button, shift, x, y);
}

// A click that left only a caret selects the whole field.
void DateBox::MouseUp(Integer button, Integer shift, Single x, Single y) {
    const Hit hit = captured_.kind != Hit::None ? captured_ : HitTest(x, y);
    captured_ = {};
    if (hit.kind == Hit::Button) {
        // Any button opens it; the release reaches the button that took the press.
        OpenCalendar(button, shift, x - cmdSelezione_.left, y - cmdSelezione_.top);
        return;
    }
    if (hit.kind == Hit::Box && txtData_.Exists(hit.index) && txtData_(hit.index).selLength == 0) {
        editor_.SelectBox(hit.index);
        Redraw();
    }
    RaiseMouse(kMouseUp, button, shift, x, y);
}

// ---- Keyboard ---------------------------------------------------------------
//
// The editor works every key on the focused box; then the key is handed to
// the container and swallowed. While a key is being worked the editor is
// not ready, so a key that arrives meanwhile is dropped whole.

void DateBox::KeyDown(Integer& keyCode, Integer shift) {
    focusJustArrived_ = false;
    if (Locked() || !editor_.Ready()) return;
    const Integer received = keyCode;
    if (ActiveBox() != 0 && editor_.Key(received, shift) == DateEditor::KeyOutcome::OpenCalendar)
        OpenCalendar(host::kLeftButton, host::kShiftMask, 1, 1);
    Redraw();
    // The container sees the key after its effect, focus moves included.
    RaiseKey(kKeyDown, received, shift);
    keyCode = 0;
}

// The container sees every character, and no box ever gets one.
void DateBox::KeyPress(Integer& keyAscii) {
    focusJustArrived_ = false;
    RaiseKeyPress(kKeyPress, keyAscii);
    keyAscii = 0;
}

void DateBox::KeyUp(Integer& keyCode, Integer shift) { RaiseKey(kKeyUp, keyCode, shift); }

// ---- Diagnostics ------------------------------------------------------------

std::string DateBox::ShownText() const {
    std::string text;
    for (const FormatToken& t : editor_.Tokens()) {
        if (t.controlIndex < 0) continue;  // not laid out yet
        text += t.isLiteral ? lblSeparator_(t.controlIndex).caption : txtData_(t.controlIndex).text;
    }
    return text;
}

DateBox::FieldFocus DateBox::FocusedField() const {
    int offset = 0;
    for (const FormatToken& t : editor_.Tokens()) {
        if (t.controlIndex < 0) continue;
        if (t.isLiteral) {
            offset += Utf8Length(lblSeparator_(t.controlIndex).caption);
            continue;
        }
        const TextBoxElement& b = txtData_(t.controlIndex);
        if (t.controlIndex == ActiveBox()) return {offset, b.Length(), b.selStart, b.selLength};
        offset += b.Length();
    }
    return {};
}

std::vector<std::string> DateBox::Dump() const {
    std::vector<std::string> lines;
    for (const FormatToken& t : editor_.Tokens()) {
        // Appended piece by piece: GCC 12 at -O3 warns (-Wrestrict) about
        // "literal" + std::string&&, whose insert at the front it misreads.
        std::string index = "(";
        index += std::to_string(t.controlIndex);
        index += ") ";
        if (t.isLiteral) {
            lines.push_back("lblSeparator" + index + Quoted(lblSeparator_(t.controlIndex).caption));
            continue;
        }
        const TextBoxElement& b = txtData_(t.controlIndex);
        std::string line = "txtData" + index + Quoted(b.text) + " sel " +
                           std::to_string(b.selStart) + " " + std::to_string(b.selLength);
        if (t.controlIndex == ActiveBox()) line += " focus";
        lines.push_back(std::move(line));
    }
    lines.push_back(std::string("cmdSelezione ") + (cmdSelezione_.visible ? "visible" : "hidden"));
    lines.push_back("TextLeft " + std::to_string(textLeft_));
    lines.push_back("TextTop " + std::to_string(textTop_));
    lines.push_back("TextWidth " + std::to_string(textWidth_));
    lines.push_back("TextHeight " + std::to_string(textHeight_));
    return lines;
}

}  // namespace kelvarin::controls

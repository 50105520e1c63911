#include "controls/datebox/DateBox.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "common/HostError.h"
#include "common/Numeric.h"
#include "common/Variant.h"
#include "controls/calendar/CalendarHook.h"
#include "controls/calendar/frmMese.h"
#include "controls/datebox/ChangeFlags.h"
#include "host/Keys.h"

namespace kelvarin::controls {

namespace {

constexpr OLE_COLOR kWindow = 0x80000005;
constexpr OLE_COLOR kWindowText = 0x80000008;
constexpr Date kFirstOfMarch2001 = 36951;      // base of the samples a name field is measured on
constexpr Date kFirstOfFebruary100 = -657403;  // the calendar's first day
// The calendar is placed in twips at this fixed scale, whatever the screen's.
constexpr double kTwipsPerPixel = 15;

// The text of a number, left-padded with "0" to `digits` characters.
std::string Padded(Long value, Long digits) {
    std::string s = std::to_string(value);
    if (static_cast<Long>(s.size()) < digits)
        s.insert(0, static_cast<std::size_t>(digits) - s.size(), '0');
    return s;
}

std::string Quoted(std::string_view s) {
    std::string out = "\"";
    for (char c : s) {
        if (c == '"') out += '"';
        out += c;
    }
    return out + "\"";
}

// Restores the ready flag however the rewrite ends.
class NotReady {
public:
    explicit NotReady(bool& ready) noexcept : ready_(ready) { ready_ = false; }
    ~NotReady() { ready_ = true; }
    NotReady(const NotReady&) = delete;
    NotReady& operator=(const NotReady&) = delete;

private:
    bool& ready_;
};

}  // namespace

DateBox::DateBox() : Control("DateBox"), partRange_(InitPartRanges()), ready_(true) {
    cmdSelezione_.width = kButtonWidth;
    lblValueChanged_.onChange = [this] { TakeCalendarDate(); };
}

DateBox::~DateBox() { ForgetCalendarResultLabel(&lblValueChanged_); }

const Locale& DateBox::Loc() const { return HasSite() ? Site().UserLocale() : CurrentLocale(); }

host::Size DateBox::Measure(std::string_view text) const {
    if (!HasSite()) return {};
    return Site().ClientSurface().MeasureText(text, *SurfaceState().font);
}

int DateBox::UnderscoreWidth() const { return Measure("_").width; }

void DateBox::RaiseChange() { RaiseEvent(kChange, {}); }

// ---- Value model --------------------------------------------------------------

Date DateBox::PartsToValue() const {
    return controls::PartsToValue(tokens_, parts_, txtData_.Count(), partRange_, Loc());
}

Date DateBox::WorkingValue() const { return controls::WorkingValue(parts_, Loc()); }

void DateBox::SetBoxText(int box, std::string text) {
    if (txtData_.Exists(box)) txtData_(box).SetText(std::move(text));
}

const FormatToken* DateBox::TokenOfBox(int box) const {
    if (!txtData_.Exists(box)) return nullptr;
    const Long index = LeadingNumber(txtData_(box).tag);
    if (index < 0 || index >= static_cast<Long>(tokens_.size())) return nullptr;
    return &tokens_[static_cast<std::size_t>(index)];
}

void DateBox::SetPart(Long part, Long value, int sourceBox) {
    if (part < 0 || part >= kPartCount) return;
    // A zero date part means blank; a zero time part is midnight's.
    if ((part == kYear || part == kMonth || part == kDay) && value == 0) value = kBlank;
    const Long old = parts_[part];
    parts_[part] = value;
    const int underscore = UnderscoreWidth();
    std::optional<Date> working;
    for (const FormatToken& t : tokens_) {
        if (t.isLiteral || t.part != part || t.controlIndex == sourceBox) continue;
        if (!txtData_.Exists(t.controlIndex)) continue;
        if (value == kBlank) {
            BlankBox(t.controlIndex, underscore);
            continue;
        }
        if (!working) working = WorkingValue();
        txtData_(t.controlIndex).SetText(FormatDate(*working, t.text, Loc()));
    }
    if ((old != value && NotifyOnChange()) || ForceChange()) RaiseChange();
}

void DateBox::ShowValue(Date d) {
    NotReady rewriting(ready_);
    const int underscore = UnderscoreWidth();
    if (d == 0) {
        for (int i = 1; i <= txtData_.Count(); ++i) BlankBox(i, underscore);
        return;
    }
    const bool timeOnly = DatePortion(d) == 0;
    for (const FormatToken& t : tokens_) {
        if (t.isLiteral || !txtData_.Exists(t.controlIndex)) continue;
        if (timeOnly && t.text != "hh" && t.text != "nn" && t.text != "ss") {
            BlankBox(t.controlIndex, underscore);
            continue;
        }
        txtData_(t.controlIndex).SetText(FormatDate(d, t.text, Loc()));
    }
}

void DateBox::BlankBox(int box, int underscoreWidth) {
    const FormatToken* t = TokenOfBox(box);
    if (!t) return;
    Long n = t->digits;
    // A font too small to measure still shows at least one pixel a character.
    if (n < 1) n = IntDiv(t->pixelWidth, std::max(underscoreWidth, 1));
    txtData_(box).SetText(std::string(static_cast<std::size_t>(std::max<Long>(n, 0)), '_'));
}

// Days in the month the parts name (a blank year counts as 2000); 31 for a
// blank month and where the following month lies past the last date.
Long DateBox::DaysInPartsMonth() const {
    if (parts_[kMonth] == kBlank) return 31;
    const Long year = parts_[kYear] == kBlank ? 2000 : parts_[kYear];
    try {
        const Date first = DateSerial(year, parts_[kMonth], 1);
        const Date next = DateSerial(year, static_cast<long>(parts_[kMonth]) + 1, 1);
        return static_cast<Long>(DateDiffDays(first, next));
    } catch (const HostError&) {
        return 31;
    }
}

void DateBox::ClampBox(int box) {
    const FormatToken* t = TokenOfBox(box);
    if (!t || !t->editable) return;  // only typed digits are clamped
    TextBoxElement& b = txtData_(box);
    const Long v = LeadingNumber(b.text);
    Long min = partRange_[t->part].min;
    Long max = partRange_[t->part].max;
    if (t->part == kDay) {
        min = 1;
        max = DaysInPartsMonth();
    }
    bool corrected = false;
    if (v > max) {
        b.SetText(Padded(max, t->digits));
        corrected = true;
    }
    if (v < min) {
        b.SetText(Padded(min, t->digits));
        corrected = true;
    }
    SetPart(t->part, LeadingNumber(b.text), box);
    if (corrected) RaiseChange();
}

bool DateBox::CommitBox(int box) {
    const FormatToken* t = TokenOfBox(box);
    if (!t) return true;
    const Long part = t->part;
    const bool editable = t->editable;
    TextBoxElement& b = txtData_(box);
    const int length = b.Length();
    const std::string typed = StripPlaceholders(b.text);
    const int typedLength = TextLength(typed);
    bool mayLeave = true;
    if (typed.empty()) {
        if (!nullable_) mayLeave = false;
        SetPart(part, kBlank, box);
    } else if (typedLength == length) {
        ClampBox(box);
    } else if (part == kYear) {
        // A partly typed year is taken as this century's: "7" is 2007.
        b.SetText("2" + std::string(static_cast<std::size_t>(length - typedLength - 1), '0') +
                  typed);
        SetPart(kYear, LeadingNumber(b.text), box);
    } else if (typed != "0") {
        if (editable) b.SetText("0" + typed);
        SetPart(part, LeadingNumber(b.text), box);
    } else if (part == kMonth || part == kDay) {
        if (nullable_) b.SetText("__");
        else mayLeave = false;
        SetPart(part, kBlank, box);
    } else {
        b.SetText("00");
        SetPart(part, 0, box);
    }
    // A new month or year may leave fewer days than the day shows.
    if (parts_[kDay] != kBlank && (part == kYear || part == kMonth)) {
        for (const FormatToken& day : tokens_)
            if (!day.isLiteral && day.part == kDay && day.editable) ClampBox(day.controlIndex);
    }
    return mayLeave;
}

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
    ValueToParts(value_, parts_);
    ShowValue(value_);
    PropertyChanged(kValue);
}

bool DateBox::IsValueAllowed(Date d) const noexcept {
    return (minDate_ <= d && d <= maxDate_) || d == 0;
}

// ---- Properties -----------------------------------------------------------------

void DateBox::SetAppearance(Long appearance) {
    // Changing the look must not change the back colour.
    const OLE_COLOR back = SurfaceState().backColor;
    SurfaceState().appearance = ToInteger(appearance);
    SurfaceState().backColor = back;
    Redraw();
    PropertyChanged(kAppearance);
}

void DateBox::SetBackColor(OLE_COLOR color) {
    for (TextBoxElement& box : txtData_.All()) box.backColor = color;
    SurfaceState().backColor = color;
    if (HasSite()) Site().DoEvents();
    Redraw();
    PropertyChanged(kBackColor);
}

void DateBox::SetForeColor(OLE_COLOR color) {
    for (TextBoxElement& box : txtData_.All()) box.foreColor = color;
    for (LabelElement& label : lblSeparator_.All()) label.foreColor = color;
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
    for (TextBoxElement& box : txtData_.All()) box.enabled = enabled;
    for (LabelElement& label : lblSeparator_.All()) label.enabled = enabled;
    cmdSelezione_.enabled = enabled;
    Redraw();
    PropertyChanged(kEnabled);
}

void DateBox::SetFont(std::shared_ptr<Font> font) {
    if (!font) RaiseHostError(HostErrorCode::InvalidPropertyValue);
    font = font->Clone();
    SurfaceState().font = font;
    for (TextBoxElement& box : txtData_.All()) box.font = font;
    for (LabelElement& label : lblSeparator_.All()) label.font = font;
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
    for (TextBoxElement& box : txtData_.All()) box.locked = locked;
    PropertyChanged(kLocked);
}

Date DateBox::Value() {
    value_ = PartsToValue();
    return value_;
}

// The empty date on a control that is not Nullable, and a date outside the
// limits, are ignored; an accepted date raises Change even when it equals
// the one before.
void DateBox::SetValue(Date d) {
    if (d == 0 && !nullable_) return;
    if (!IsValueAllowed(d)) return;
    value_ = d;
    ValueToParts(d, parts_);
    ShowValue(d);
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
        ValueToParts(value_, parts_);
        ShowValue(value_);
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

// ---- Layout -----------------------------------------------------------------------

void DateBox::RebuildBoxes() {
    tokens_ = ParseFormat(dateFormat_);
    MeasureTokens();
    CreateBoxes();
    SizeBoxes();
    ShowValue(value_);
}

// Literals by their text, typed fields by as many "0" as they have digits,
// name fields by their widest name over a run of sample dates.
void DateBox::MeasureTokens() {
    for (FormatToken& t : tokens_) {
        if (t.isLiteral) {
            t.pixelWidth = Measure(t.text).width;
            continue;
        }
        if (t.editable) {
            t.pixelWidth =
                Measure(std::string(static_cast<std::size_t>(std::max<Long>(t.digits, 0)), '0'))
                    .width;
            continue;
        }
        std::vector<Long> steps;
        if (t.part == kMonth) {
            for (Long i = 1; i <= 12; ++i) steps.push_back(i);
        } else if (t.part == kDay) {
            for (Long i = 1; i <= 7; ++i) steps.push_back(i);
        } else if (t.part == kYear) {
            steps.push_back(240);
        }
        Long width = -1;
        for (Long i : steps) {
            const Date sample =
                DateAdd(partRange_[t.part].interval, static_cast<double>(t.stepMultiplier) * i,
                        kFirstOfMarch2001);
            width = std::max<Long>(width, Measure(FormatDate(sample, t.text, Loc())).width);
        }
        t.pixelWidth = width;
    }
}

// Fields and literals are numbered apart, each from 1, in pattern order;
// existing elements are reused and the surplus unloaded, last first.
void DateBox::CreateBoxes() {
    int fields = 0;
    int literals = 0;
    for (std::size_t i = 0; i < tokens_.size(); ++i) {
        FormatToken& t = tokens_[i];
        if (t.isLiteral) {
            ++literals;
            if (!lblSeparator_.Exists(literals)) lblSeparator_.Load().visible = true;
            LabelElement& label = lblSeparator_(literals);
            label.tag = std::to_string(i);
            label.caption = t.text;
            t.controlIndex = literals;
            continue;
        }
        ++fields;
        if (!txtData_.Exists(fields)) {
            TextBoxElement& box = txtData_.Load();
            if (fields > 1) box.tabStop = false;  // Tab enters at the first field only
            box.visible = true;
        }
        txtData_(fields).tag = std::to_string(i);
        t.controlIndex = fields;
    }
    while (txtData_.Count() > fields) txtData_.UnloadLast();
    while (lblSeparator_.Count() > literals) lblSeparator_.UnloadLast();
    if (activeBox_ > txtData_.Count()) activeBox_ = txtData_.Count() > 0 ? 1 : 0;
}

void DateBox::SizeBoxes() {
    for (const FormatToken& t : tokens_) {
        if (t.isLiteral) lblSeparator_(t.controlIndex).width = t.pixelWidth;
        else txtData_(t.controlIndex).width = t.pixelWidth;
    }
    lblSeparator_.Template().width = txtData_.Template().width = 0;
}

// Everything one text line high, centred in the height, from TextLeft to
// the right in pattern order; the calendar button at the right-hand end.
void DateBox::LayoutBoxes() {
    if (!HasSite()) return;
    const Long innerWidth = ScaleWidth();
    const Long innerHeight = ScaleHeight();
    textHeight_ = Measure("_").height;
    textTop_ = IntDiv(CheckedSub(innerHeight, textHeight_), 2);
    Long width = 0;
    for (const FormatToken& t : tokens_) width = CheckedAdd(width, t.pixelWidth);
    if (calendarButton_) {
        cmdSelezione_.left = innerWidth - cmdSelezione_.width;
        cmdSelezione_.top = 0;
        cmdSelezione_.height = innerHeight;
        // The glyph follows the button's height, counted in twips (15 a pixel).
        cmdSelezione_.glyphPoints =
            std::clamp<Long>(IntDiv(CheckedMul(innerHeight, 15), 35), 1, 10);
        width = CheckedAdd(width, cmdSelezione_.width);
    }
    textWidth_ = width;
    switch (alignment_) {
        case 0: textLeft_ = 0; break;
        case 1: textLeft_ = CheckedSub(innerWidth, textWidth_); break;
        case 2: textLeft_ = ToLong((static_cast<double>(innerWidth) - textWidth_) / 2.0); break;
        default: break;  // any other value leaves the text where it was
    }
    Long x = textLeft_;
    for (const FormatToken& t : tokens_) {
        if (t.isLiteral) {
            LabelElement& label = lblSeparator_(t.controlIndex);
            label.left = x;
            label.top = textTop_;
            label.width = t.pixelWidth;
            label.height = textHeight_;
        } else {
            TextBoxElement& box = txtData_(t.controlIndex);
            box.left = x;
            box.top = textTop_;
            box.width = t.pixelWidth;
            box.height = textHeight_;
        }
        x = CheckedAdd(x, t.pixelWidth);
    }
}

// ---- Life-cycle -------------------------------------------------------------------

void DateBox::InitProperties() {
    host::SurfaceProperties& s = SurfaceState();
    s.font = Site().AmbientFont()->Clone();
    s.backColor = kWindow;
    s.foreColor = kWindowText;
    s.borderStyle = 1;
    s.appearance = 1;
    for (TextBoxElement& box : txtData_.All()) {
        box.font = s.font;
        box.backColor = kWindow;
        box.foreColor = kWindowText;
    }
    for (LabelElement& label : lblSeparator_.All()) {
        label.font = s.font;
        label.foreColor = kWindowText;
    }
    value_ = 0;
    parts_ = kAllBlank;
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

// ---- Focus and mouse --------------------------------------------------------------

void DateBox::SelectBox(int box) {
    if (!txtData_.Exists(box)) return;
    TextBoxElement& b = txtData_(box);
    b.selStart = 0;
    b.selLength = b.Length();
}

bool DateBox::FocusBox(int box) {
    if (!txtData_.Exists(box) || box == activeBox_) return true;
    if (activeBox_ != 0 && !CommitBox(activeBox_)) return false;
    activeBox_ = box;
    SelectBox(box);  // a box that gets the focus selects its whole text
    return true;
}

// The focus enters at the first field, the only tab stop.
void DateBox::GotFocus() {
    hasFocus_ = true;
    activeBox_ = 0;
    focusJustArrived_ = true;
    if (txtData_.Exists(1) && txtData_(1).enabled) {
        activeBox_ = 1;
        SelectBox(1);
    }
    Redraw();
}

// The field being left is committed; a refusal keeps the focus here.
bool DateBox::QueryLeaveFocus() {
    if (!hasFocus_ || activeBox_ == 0) return true;
    const bool mayLeave = CommitBox(activeBox_);
    Redraw();
    return mayLeave;
}

void DateBox::LostFocus() {
    hasFocus_ = false;
    activeBox_ = 0;
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
        const std::size_t from = ByteOffset(text, k), to = ByteOffset(text, k + 1);
        const int before = Measure(text.substr(0, from)).width;
        const int own = Measure(text.substr(from, to - from)).width;
        if (x < box.left + before + own / 2.0) return k;
    }
    return length;
}

void DateBox::RaiseMouse(int number, Integer button, Integer shift, Single x, Single y) {
    Variant args[] = {Variant(button), Variant(shift), Variant(x), Variant(y)};
    RaiseEvent(number, args);
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
        if (arriving && hit.index != activeBox_) {
            // The press itself brought the focus: it goes straight to this box,
            // and the first box, which never really had it, is not committed.
            activeBox_ = hit.index;
            SelectBox(hit.index);
        } else {
            focused = FocusBox(hit.index);
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
        SelectBox(hit.index);
        Redraw();
    }
    RaiseMouse(kMouseUp, button, shift, x, y);
}

// ---- Keyboard -------------------------------------------------------------------------
//
// The boxes never take a character themselves: every key is interpreted
// here, on the focused box, in an overwrite style with a one-character
// cursor (a selection of length 1), and then handed to the container and
// swallowed. While a key is being worked the control is not ready, so a
// key that arrives meanwhile is dropped.

void DateBox::KeyDown(Integer& keyCode, Integer shift) {
    focusJustArrived_ = false;
    if (Locked() || !ready_) return;
    const Integer received = keyCode;
    {
        NotReady working(ready_);
        keyUnderscore_ = UnderscoreWidth();
        if (const int box = ActiveBox()) HandleKey(box, received, shift);
    }
    Redraw();
    // The container sees the key after its effect, focus moves included.
    Variant args[] = {Variant(received), Variant(shift)};
    RaiseEvent(kKeyDown, args);
    keyCode = 0;
}

// The container sees every character, and no box ever gets one.
void DateBox::KeyPress(Integer& keyAscii) {
    focusJustArrived_ = false;
    Variant args[] = {Variant(keyAscii)};
    RaiseEvent(kKeyPress, args);
    keyAscii = 0;
}

void DateBox::KeyUp(Integer& keyCode, Integer shift) {
    Variant args[] = {Variant(keyCode), Variant(shift)};
    RaiseEvent(kKeyUp, args);
}

// Only the first matching row acts; keys without a row do nothing here.
void DateBox::HandleKey(int box, Integer keyCode, Integer shift) {
    switch (keyCode) {
        case host::kKeyReturn:
            MoveToBox(box, shift == 0);  // with any modifier, back to the previous field
            return;
        case host::kKeyRight:
            MoveToBox(box, true);  // never within the box, unlike Left
            return;
        case host::kKeyLeft: KeyLeft(box); return;
        case host::kKeyDelete: KeyDelete(box); return;
        case host::kKeyBack: KeyBackspace(box); return;
        case host::kKeyUp:
        case host::kKeyDown:
        case host::kKeyPageUp:
        case host::kKeyPageDown:
            if (shift == 0) Step(box, keyCode);
            else if (keyCode == host::kKeyDown) KeyCalendar(box);
            return;
        case host::kKeyF5: Today(box); return;
        case host::kKeyF4: KeyCalendar(box); return;
        default: break;
    }
    if (keyCode >= host::kKey0 && keyCode <= host::kKey0 + 9)
        KeyDigit(box, static_cast<char>('0' + keyCode - host::kKey0));
    else if (keyCode >= host::kKeyNumpad0 && keyCode <= host::kKeyNumpad0 + 9)
        KeyDigit(box, static_cast<char>('0' + keyCode - host::kKeyNumpad0));
}

// The calendar opens as from its button. When it closes the focus comes
// back to the box, which selects its whole text as on any arrival.
void DateBox::KeyCalendar(int box) {
    OpenCalendar(host::kLeftButton, host::kShiftMask, 1, 1);
    if (ActiveBox() == box) SelectBox(box);
}

int DateBox::MoveToBox(int box, bool forward) {
    const int count = txtData_.Count();
    if (!txtData_.Exists(box)) return box;
    if (!CommitBox(box)) {
        SelectBox(box);
        return box;
    }
    // Cyclic over every field box, display-only ones included.
    const int next = forward ? (box >= count ? 1 : box + 1) : (box <= 1 ? count : box - 1);
    activeBox_ = next;
    // The box that gets the focus selects its whole text. A box that moves
    // to itself (a pattern of one field) does the same, so the cursor never
    // stays past its last character.
    SelectBox(next);
    return next;
}

void DateBox::SelectCharacter(int box, int position) {
    if (!txtData_.Exists(box)) return;
    TextBoxElement& b = txtData_(box);
    const int length = b.Length();
    b.selStart = std::clamp(position, 0, length);
    b.selLength = std::min(1, length - b.selStart);
}

void DateBox::OverwriteAt(int box, int position, char c) {
    if (!txtData_.Exists(box)) return;
    TextBoxElement& b = txtData_(box);
    if (position < 0 || position >= b.Length()) return;
    const std::size_t from = ByteOffset(b.text, position), to = ByteOffset(b.text, position + 1);
    b.SetText(b.text.substr(0, from) + c + b.text.substr(to));
}

void DateBox::KeyLeft(int box) {
    const FormatToken* t = TokenOfBox(box);
    if (!t) return;
    if (!t->editable) {
        MoveToBox(box, false);
        return;
    }
    const TextBoxElement& b = txtData_(box);
    if (b.selLength == b.Length()) {
        SelectCharacter(box, b.Length() - 1);
        return;
    }
    if (b.selStart != 0) {
        SelectCharacter(box, b.selStart - 1);
        return;
    }
    const int moved = MoveToBox(box, false);
    if (moved == box) return;
    const FormatToken* previous = TokenOfBox(moved);
    if (previous && previous->editable) SelectCharacter(moved, txtData_(moved).Length() - 1);
    else SelectBox(moved);
}

// A cursor in a typed field blanks one character; a whole field, or one
// that only shows a name, is emptied.
void DateBox::KeyDelete(int box) {
    const FormatToken* t = TokenOfBox(box);
    if (!t) return;
    const Long part = t->part;
    const int position = txtData_(box).selStart;
    if (txtData_(box).selLength != t->digits && t->editable) {
        OverwriteAt(box, position, '_');
        SetPart(part, LeadingNumber(txtData_(box).text), box);
        SelectCharacter(box, position);
        return;
    }
    SetPart(part, kBlank, box);
    SelectBox(box);
    BlankBox(box, keyUnderscore_);
}

// Blanks the character under the cursor (not the one before it) and walks
// back; a whole field is emptied and left for the previous one.
void DateBox::KeyBackspace(int box) {
    const FormatToken* t = TokenOfBox(box);
    if (!t) return;
    const Long part = t->part;
    const TextBoxElement& b = txtData_(box);
    if (b.selLength == b.Length() || !t->editable) {
        BlankBox(box, keyUnderscore_);
        SetPart(part, kBlank, box);
        MoveToBox(box, false);
        return;
    }
    const int position = b.selStart;
    OverwriteAt(box, position, '_');
    if (position != 0) {
        SetPart(part, LeadingNumber(txtData_(box).text), box);
        SelectCharacter(box, position - 1);
        return;
    }
    const int moved = MoveToBox(box, false);
    if (moved == box) return;
    // The field left behind has been completed by its commit; store what it shows.
    SetPart(part, LeadingNumber(txtData_(box).text), box);
    SelectCharacter(moved, txtData_(moved).Length() - 1);
}

// Overwrites the character under the cursor; the last one typed moves on
// to the next field. Ranges are not checked here but when the field is left.
void DateBox::KeyDigit(int box, char digit) {
    const FormatToken* t = TokenOfBox(box);
    if (!t || !t->editable) return;
    const Long part = t->part;
    if (txtData_(box).selLength == txtData_(box).Length()) {
        txtData_(box).SetText(std::string(static_cast<std::size_t>(txtData_(box).Length()), '_'));
        SelectCharacter(box, 0);
    }
    const int position = txtData_(box).selStart;
    OverwriteAt(box, position, digit);
    SetPart(part, LeadingNumber(txtData_(box).text), box);
    SelectCharacter(box, position + 1);
    if (txtData_(box).selStart == txtData_(box).Length()) MoveToBox(box, true);
}

// Steps the box's part by whole intervals with the calendar's addition; a
// step that would leave MinDate..MaxDate does nothing, and blank fields
// other than this one stay blank.
void DateBox::Step(int box, Integer keyCode) {
    const FormatToken* t = TokenOfBox(box);
    if (!t || t->part < 0) return;
    const Long part = t->part;
    Long step = 0;
    switch (keyCode) {
        case host::kKeyUp: step = smallChange_; break;
        case host::kKeyDown: step = CheckedSub(0, smallChange_); break;
        case host::kKeyPageUp: step = largeChange_; break;
        default: step = CheckedSub(0, largeChange_); break;
    }
    step = CheckedMul(step, t->stepMultiplier);
    PartValues snapshot;
    SnapshotParts(parts_, snapshot);
    Date stepped = 0;
    try {
        stepped = DateAdd(partRange_[part].interval, step, WorkingValue());
    } catch (const HostError&) {
        return;  // past the calendar's last or first day: beyond the limits too
    }
    if (stepped < minDate_ || stepped > maxDate_) return;
    ValueToParts(stepped, parts_);
    for (int i = kYear; i <= kSecond; ++i) {
        if (snapshot[i] == kBlank && i != part) parts_[i] = kBlank;
        else SetPart(i, parts_[i], -1);
    }
    if (parts_ != snapshot) RaiseChange();
    SelectBox(box);
}

// Today's date in every part (the time of day becomes midnight); the cursor
// stays where it was.
void DateBox::Today(int box) {
    if (!HasSite()) return;
    const Date today = DatePortion(Site().Now());
    if (today < minDate_ || today > maxDate_) return;
    const int position = txtData_(box).selStart;
    PartValues snapshot;
    SnapshotParts(parts_, snapshot);
    ValueToParts(today, parts_);
    for (int i = kYear; i <= kSecond; ++i) SetPart(i, parts_[i], -1);
    SelectCharacter(box, position);
    // Change only when a part the pattern shows moved.
    for (const FormatToken& token : tokens_) {
        if (token.isLiteral || token.part < 0) continue;
        if (snapshot[token.part] != parts_[token.part]) {
            RaiseChange();
            return;
        }
    }
}

// ---- Calendar -------------------------------------------------------------------------

void DateBox::OpenCalendar(Integer, Integer, Single, Single) {
    if (!HasSite()) return;
    {
        NotReady rewriting(ready_);
        SetCalendarResultLabel(&lblValueChanged_);
        // Blank parts, or a date the calendar cannot show, send its first day.
        std::string caption = "01/02/0100";
        const Long year = parts_[kYear], month = parts_[kMonth], day = parts_[kDay];
        if (year != kBlank && month != kBlank && day != kBlank) {
            try {
                if (DateSerial(year, month, day) >= kFirstOfFebruary100)
                    caption = Padded(day, 2) + "/" + Padded(month, 2) + "/" + std::to_string(year);
            } catch (const HostError&) {
            }
        }
        lblValueChanged_.SetCaption(std::move(caption));  // runs TakeCalendarDate
    }
    SetCalendarMinDate(minDate_);
    SetCalendarMaxDate(maxDate_);
    CalendarLook& look = CalendarLookState();
    look.font = SurfaceState().font;
    look.headerColor = 0x8000000F;
    look.inRangeColor = kWindowText;
    look.otherColor = 0x8000000F;
    look.ownerBackColor = BackColor();
    look.ownerForeColor = ForeColor();

    frmMese popup(Site(), *SurfaceState().font);
    const host::Point at = CalendarPosition(popup.ClientSize());
    const Date before = PartsToValue();
    Site().ShowModal(popup, at);
    popup.Unload();
    Redraw();
    if (PartsToValue() != before) RaiseChange();
}

// Below the control, or above it near the bottom of the screen; right-aligned
// with it near the right edge. Worked out in twips, as the popup is moved.
host::Point DateBox::CalendarPosition(host::Size popup) {
    const host::Point corner = Site().ClientToScreen({0, 0});
    const host::Surface& client = Site().ClientSurface();
    const int border = host::BorderWidth(SurfaceState());
    const double controlWidth = (client.Width() + 2.0 * border) * kTwipsPerPixel;
    const double controlHeight = (client.Height() + 2.0 * border) * kTwipsPerPixel;
    const double x = corner.x * kTwipsPerPixel, y = corner.y * kTwipsPerPixel;
    const double width = popup.width * kTwipsPerPixel, height = popup.height * kTwipsPerPixel;
    const host::Size screen = Site().ScreenSize();
    double left = x, top = y + controlHeight;
    if (left + width > screen.width * kTwipsPerPixel - width / 3) left = x + controlWidth - width;
    if (top + height > screen.height * kTwipsPerPixel - height / 3) top = y - height;
    return {static_cast<int>(std::floor(left / kTwipsPerPixel)),
            static_cast<int>(std::floor(top / kTwipsPerPixel))};
}

// The flags are cleared while the three parts are stored, so that Change
// comes once, here, and only if the value really moved.
void DateBox::TakeCalendarDate() {
    const Date before = PartsToValue();
    {
        QuietChanges quiet;
        const std::string& caption = lblValueChanged_.Caption();
        const auto slice = [&](std::size_t from, std::size_t count) {
            return from > caption.size() ? std::string_view()
                                         : std::string_view(caption).substr(from - 1, count);
        };
        SetPart(kYear, LeadingNumber(slice(7, 4)), -1);
        SetPart(kMonth, LeadingNumber(slice(4, 2)), -1);
        SetPart(kDay, LeadingNumber(slice(1, 2)), -1);
    }
    Redraw();
    if (PartsToValue() != before) RaiseChange();
}

// ---- Painting -----------------------------------------------------------------------

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
    const std::size_t from = ByteOffset(all, b.selStart);
    const std::size_t to = ByteOffset(all, b.selStart + b.selLength);
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

// ---- Diagnostics ------------------------------------------------------------------------

std::string DateBox::ShownText() const {
    std::string text;
    for (const FormatToken& t : tokens_) {
        if (t.controlIndex < 0) continue;  // not laid out yet
        text += t.isLiteral ? lblSeparator_(t.controlIndex).caption : txtData_(t.controlIndex).text;
    }
    return text;
}

std::vector<std::string> DateBox::Dump() const {
    std::vector<std::string> lines;
    for (const FormatToken& t : tokens_) {
        const std::string index = "(" + std::to_string(t.controlIndex) + ") ";
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

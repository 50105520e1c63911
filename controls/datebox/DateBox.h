// DateBox: a one-line date entry field made of one small box per date or
// time field of its pattern (DateFormat), literal separators between them,
// and a button that opens a month calendar. The value may be empty when the
// control is Nullable and is kept within MinDate..MaxDate.
//
// Sections: members; properties; value model; layout;
// life-cycle; focus and mouse; painting; dispatch; diagnostics.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "common/DateTime.h"
#include "common/OleColor.h"
#include "controls/datebox/Constituents.h"
#include "controls/datebox/DateModel.h"
#include "host/Control.h"

namespace kelvarin::controls {

class DateBox : public host::Control {
public:
    // The rows of the member table, in type-library order (DateBoxMembers.cpp).
    enum Row : int {
        kTextLeft,
        kTextWidth,
        kTextHeight,
        kTextTop,
        kAppearance,
        kBackColor,
        kForeColor,
        kAlignment,
        kEnabled,
        kFont,
        kBorderStyle,
        kLocked,
        kValue,
        kValueDB,
        kDateFormat,
        kSmallChange,
        kLargeChange,
        kNullable,
        kCalendarButton,
        kMinDate,
        kMaxDate,
        kRowCount
    };
    // Event numbers in the event interface.
    enum Events : int {
        kKeyDown = 1,
        kKeyPress,
        kKeyUp,
        kChange,
        kMouseDown,
        kMouseUp,
        kMouseMove,
    };

    // The calendar button's width in pixels. Its drop-down glyph is sized
    // from the button's height (see LayoutBoxes).
    static constexpr int kButtonWidth = 17;

    // eAlignment: where the fields stand in the control (not the order of
    // the other controls' caption alignment).
    enum FieldsAlignment : Long { kLeftJustify = 0, kRightJustify = 1, kCenter = 2 };
    static constexpr const char* kDefaultFormat = "dd/mm/yyyy";

    DateBox();
    ~DateBox() override;

    static host::MemberTable Table();
    host::MemberTable Members() const override { return Table(); }

    // ---- Properties (each write records its change under its own name) -------
    Long Appearance() const noexcept { return SurfaceState().appearance; }
    void SetAppearance(Long appearance);
    OLE_COLOR BackColor() const noexcept { return SurfaceState().backColor; }
    void SetBackColor(OLE_COLOR color);
    OLE_COLOR ForeColor() const noexcept { return txtData_(1).foreColor; }
    void SetForeColor(OLE_COLOR color);
    // 0 left, 1 right, 2 centre.
    Long Alignment() const noexcept { return alignment_; }
    void SetAlignment(Long alignment);
    bool Enabled() const noexcept { return txtData_(1).enabled; }
    void SetEnabled(bool enabled);
    std::shared_ptr<Font> GetFont() const { return txtData_(1).font; }
    void SetFont(std::shared_ptr<Font> font);
    Long BorderStyle() const noexcept { return SurfaceState().borderStyle; }
    void SetBorderStyle(Long style);
    bool Locked() const noexcept { return txtData_(1).locked; }
    void SetLocked(bool locked);
    // Reading the value composes it from the parts and keeps it as the stored value.
    Date Value();
    void SetValue(Date d);
    // Null for the empty date.
    Variant ValueDB();
    void SetValueDB(const Variant& value);
    const std::string& DateFormat() const noexcept { return dateFormat_; }
    void SetDateFormat(std::string pattern);
    Long SmallChange() const noexcept { return smallChange_; }
    void SetSmallChange(Long step);
    Long LargeChange() const noexcept { return largeChange_; }
    void SetLargeChange(Long step);
    bool Nullable() const noexcept { return nullable_; }
    void SetNullable(bool nullable);
    bool CalendarButton() const noexcept { return calendarButton_; }
    void SetCalendarButton(bool show);
    Date MinDate() const noexcept { return minDate_; }
    void SetMinDate(Date d);
    Date MaxDate() const noexcept { return maxDate_; }
    void SetMaxDate(Date d);
    // The last layout, in pixels of the client area.
    Long TextLeft() const noexcept { return textLeft_; }
    Long TextWidth() const noexcept { return textWidth_; }
    Long TextHeight() const noexcept { return textHeight_; }
    Long TextTop() const noexcept { return textTop_; }

    // ---- Value model (what the keyboard and the calendar build on) -----------
    const std::vector<FormatToken>& Tokens() const noexcept { return tokens_; }
    const PartValues& Parts() const noexcept { return parts_; }
    const PartRangeTable& PartRange() const noexcept { return partRange_; }
    // The value as last stored, without composing it from the parts.
    Date StoredValue() const noexcept { return value_; }
    // False while the boxes are being rewritten.
    bool Ready() const noexcept { return ready_; }
    void SetReady(bool ready) noexcept { ready_ = ready; }

    // Writes a box's text as typing does; the caret goes to its start.
    void SetBoxText(int box, std::string text);

    Date PartsToValue() const;
    Date WorkingValue() const;
    // Stores one part, rewrites the other boxes that show it, and raises
    // Change as the per-thread flags say.
    void SetPart(Long part, Long value, int sourceBox);
    void ShowValue(Date d);
    void BlankBox(int box, int underscoreWidth);
    // Forces a completely typed field into its range.
    void ClampBox(int box);
    // Completes, validates and stores a field being left; false keeps the
    // focus in it (a blank field of a control that is not Nullable).
    bool CommitBox(int box);
    void CheckLimits();
    bool IsValueAllowed(Date d) const noexcept;
    // The token a field box shows, found through its Tag; null if none.
    const FormatToken* TokenOfBox(int box) const;
    // Pixel width of "_" in the control's font.
    int UnderscoreWidth() const;

    // ---- Layout --------------------------------------------------------------
    void RebuildBoxes();
    void MeasureTokens();
    void CreateBoxes();
    void SizeBoxes();
    void LayoutBoxes();

    // ---- Calendar ----------------------------------------------------------------
    // Opens the month calendar under the control and returns once it has
    // closed: the button's release (in the button's coordinates), F4 and
    // modifier+Down come here. Change follows if the date changed meanwhile.
    void OpenCalendar(Integer button, Integer shift, Single x, Single y);
    // Where the calendar of the given pixel size opens, in screen pixels.
    host::Point CalendarPosition(host::Size popup);

    // ---- Constituents ----------------------------------------------------------
    const ElementArray<TextBoxElement>& TxtData() const noexcept { return txtData_; }
    const ElementArray<LabelElement>& LblSeparator() const noexcept { return lblSeparator_; }
    const ButtonElement& CmdSelezione() const noexcept { return cmdSelezione_; }
    ExchangeLabel& LblValueChanged() noexcept { return lblValueChanged_; }
    // The boxes' and separators' texts in pattern order, as one line.
    std::string ShownText() const;
    // The box that has the focus while the control has it; 0 for none.
    int ActiveBox() const noexcept { return hasFocus_ ? activeBox_ : 0; }
    // Selects the whole text of a box.
    void SelectBox(int box);
    // Moves the focus to another box; the box being left is committed first
    // and a refusal keeps the focus there.
    bool FocusBox(int box);
    // Commits the box and moves to the next field box (forward) or the
    // previous one, cyclically over all of them; returns the box that has
    // the focus afterwards, which is `box` itself when the commit refused.
    int MoveToBox(int box, bool forward);

    // ---- Host
    void InitProperties() override;
    void ReadProperties(host::PropertyBag& bag) override;
    void WriteProperties(host::PropertyBag& bag) override;
    void Show() override;
    void Resize() override;
    void Paint() override;
    void KeyDown(Integer& keyCode, Integer shift) override;
    void KeyPress(Integer& keyAscii) override;
    void KeyUp(Integer& keyCode, Integer shift) override;
    void MouseDown(Integer button, Integer shift, Single x, Single y) override;
    void MouseMove(Integer button, Integer shift, Single x, Single y) override;
    void MouseUp(Integer button, Integer shift, Single x, Single y) override;
    void GotFocus() override;
    bool QueryLeaveFocus() override;
    void LostFocus() override;
    std::vector<std::string> Dump() const override;

private:
    // What lies under a point of the client area.
    struct Hit {
        enum Kind { None, Surface, Box, Label, Button } kind = None;
        int index = 0;
    };
    Hit HitTest(Single x, Single y) const;
    int CaretAt(const TextBoxElement& box, Single x) const;
    void RaiseChange();
    // ---- Keyboard: the key table's rows, on the focused box
    void HandleKey(int box, Integer keyCode, Integer shift);
    void KeyLeft(int box);
    void KeyDelete(int box);
    void KeyBackspace(int box);
    void KeyDigit(int box, char digit);
    void Step(int box, Integer keyCode);
    void Today(int box);
    void KeyCalendar(int box);
    // Puts `c` in place of the character at `position` of a box's text.
    void OverwriteAt(int box, int position, char c);
    // The one-character cursor on the character at `position`.
    void SelectCharacter(int box, int position);
    // lblValueChanged's change handler: takes over the date in its caption.
    void TakeCalendarDate();
    void RaiseMouse(int number, Integer button, Integer shift, Single x, Single y);
    const Locale& Loc() const;
    host::Size Measure(std::string_view text) const;
    Long DaysInPartsMonth() const;
    void Redraw();
    void PaintBox(host::Surface& s, int index);
    void PaintLabel(host::Surface& s, const LabelElement& label);
    void PaintButton(host::Surface& s);

    PartRangeTable partRange_;
    PartValues parts_ = kAllBlank;
    std::vector<FormatToken> tokens_;
    Date value_ = 0;
    std::string dateFormat_ = kDefaultFormat;
    Date minDate_ = kMinDateSerial;
    Date maxDate_ = kMaxDateSerial;
    Long smallChange_ = 1;
    Long largeChange_ = 10;
    bool nullable_ = true;
    bool calendarButton_ = true;
    Long alignment_ = 0;
    bool ready_ = false;
    bool initialised_ = false;

    Long textLeft_ = 0;
    Long textTop_ = 0;
    Long textWidth_ = 0;
    Long textHeight_ = 0;

    ElementArray<TextBoxElement> txtData_;
    ElementArray<LabelElement> lblSeparator_;
    ButtonElement cmdSelezione_;
    ExchangeLabel lblValueChanged_;

    bool hasFocus_ = false;
    int activeBox_ = 0;
    // Set when the focus has just arrived and no input followed yet: a
    // press that brought it goes straight to the box under the pointer.
    bool focusJustArrived_ = false;
    Hit captured_;           // the element that took the mouse press
    int selAnchor_ = 0;      // where a drag selection started
    int keyUnderscore_ = 0;  // width of "_", measured once for each key
};

}  // namespace kelvarin::controls

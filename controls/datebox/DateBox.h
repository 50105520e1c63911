// SPDX-License-Identifier: MIT
// DateBox: a one-line date entry field made of one small box per date or
// time field of its pattern (DateFormat), literal separators between them,
// and a button that opens a month calendar. The value may be empty when the
// control is Nullable and is kept within MinDate..MaxDate.
//
// The editing itself (parts, fields, keys) is DateEditor's; the control
// owns the constituents, lays them out, paints them and bridges to the
// month calendar.
//
// Sections, and the file that defines each:
//   members (the table, persistence orders, reader and writer)
//                                                          DateBoxMembers.cpp
//   construction; editor context; value; properties; life-cycle;
//   focus and mouse; keyboard; diagnostics                 DateBox.cpp
//   layout                                                 DateBoxLayout.cpp
//   painting                                               DateBoxPaint.cpp
//   calendar                                               DateBoxCalendar.cpp
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <kelvarin/Export.h>

#include "common/DateTime.h"
#include "common/OleColor.h"
#include "controls/datebox/Constituents.h"
#include "controls/datebox/DateEditor.h"
#include "host/Control.h"

namespace kelvarin::controls {

class KELVARIN_CORE_API DateBox : public host::Control, private DateEditorContext {
public:
    // ---- Members ------------------------------------------------------------
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

    // eAlignment: where the fields stand in the control (not the order of
    // the other controls' caption alignment).
    enum FieldsAlignment : Long { kLeftJustify = 0, kRightJustify = 1, kCenter = 2 };
    static constexpr const char* kDefaultFormat = "dd/mm/yyyy";

    // ---- Construction -------------------------------------------------------
    DateBox();
    ~DateBox() override;

    static host::MemberTable Table();
    host::MemberTable Members() const override { return Table(); }

    // ---- Properties (each write records its change under its own name) ------
    // Appearance, BackColor and BorderStyle read as the control base keeps them.
    void SetAppearance(Long appearance);
    void SetBackColor(OLE_COLOR color);
    OLE_COLOR ForeColor() const noexcept { return txtData_(1).foreColor; }
    void SetForeColor(OLE_COLOR color);
    Long Alignment() const noexcept { return alignment_; }
    void SetAlignment(Long alignment);
    bool Enabled() const noexcept { return txtData_(1).enabled; }
    void SetEnabled(bool enabled);
    std::shared_ptr<Font> GetFont() const { return txtData_(1).font; }
    void SetFont(std::shared_ptr<Font> font);
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

    // ---- Life-cycle ---------------------------------------------------------
    void InitProperties() override;
    void ReadProperties(host::PropertyBag& bag) override;
    void WriteProperties(host::PropertyBag& bag) override;
    void Show() override;
    void Resize() override;
    void Paint() override;

    // ---- Focus and mouse ----------------------------------------------------
    void GotFocus() override;
    bool QueryLeaveFocus() override;
    void LostFocus() override;
    void MouseDown(Integer button, Integer shift, Single x, Single y) override;
    void MouseMove(Integer button, Integer shift, Single x, Single y) override;
    void MouseUp(Integer button, Integer shift, Single x, Single y) override;

    // ---- Keyboard -----------------------------------------------------------
    void KeyDown(Integer& keyCode, Integer shift) override;
    void KeyPress(Integer& keyAscii) override;
    void KeyUp(Integer& keyCode, Integer shift) override;

    // ---- Diagnostics --------------------------------------------------------
    // The boxes' and separators' texts in pattern order, as one line.
    std::string ShownText() const;
    // The field that has the focus, as assistive technology reads it: where
    // its text starts in ShownText and its length, in characters, and its
    // selection within it; offset -1 while no field has the focus.
    struct FieldFocus {
        int offset = -1;
        int length = 0;
        int selStart = 0;
        int selLength = 0;
    };
    FieldFocus FocusedField() const;
    std::vector<std::string> Dump() const override;

private:
    // The constituents' share of a property, for writes and loads alike.
    void StoreBackColor(OLE_COLOR color);
    void StoreForeColor(OLE_COLOR color);
    void StoreEnabled(bool enabled);
    void StoreFont(const std::shared_ptr<Font>& font);
    void StoreLocked(bool locked);
    // The calendar button's width in pixels. Its drop-down glyph is sized
    // from the button's height (see LayoutBoxes).
    static constexpr int kButtonWidth = 17;

    // ---- Editor context: what the editor asks of the control
    EditRules Rules() const override;
    const Locale& EditingLocale() const override { return Loc(); }
    Date Today() const override;
    int UnderscoreWidth() const override;
    void ValueChanged() override { RaiseChange(); }

    // ---- Value
    const Locale& Loc() const;
    void RaiseChange();
    void CheckLimits();
    bool IsValueAllowed(Date d) const noexcept;

    // ---- Layout
    // The pattern's tokens and boxes afresh, measured, sized and filled
    // with the stored value; placing them is LayoutBoxes'.
    void RebuildBoxes();
    void MeasureTokens();
    // Numbers the literals from 1 and gives each a separator label.
    void CreateSeparators();
    void SizeBoxes();
    void LayoutBoxes();
    host::Size Measure(std::string_view text) const;

    // ---- Painting
    void Redraw();
    void PaintBox(host::Surface& s, int index);
    void PaintLabel(host::Surface& s, const LabelElement& label);
    void PaintButton(host::Surface& s);

    // ---- Focus and mouse
    // What lies under a point of the client area.
    struct Hit {
        enum Kind { None, Surface, Box, Label, Button } kind = None;
        int index = 0;
    };
    Hit HitTest(Single x, Single y) const;
    int CaretAt(const TextBoxElement& box, Single x) const;
    // The box that has the focus while the control has it; 0 for none.
    int ActiveBox() const noexcept { return hasFocus_ ? editor_.Current() : 0; }

    // ---- Calendar
    // Opens the month calendar under the control and returns once it has
    // closed: the button's release (in the button's coordinates), F4 and
    // modifier+Down come here. Change follows if the date changed meanwhile.
    void OpenCalendar(Integer button, Integer shift, Single x, Single y);
    // Where the calendar of the given pixel size opens, in screen pixels.
    host::Point CalendarPosition(host::Size popup);
    // lblValueChanged's change handler: takes over the date in its caption.
    void TakeCalendarDate();

    // ---- State
    std::string dateFormat_ = kDefaultFormat;
    Date value_ = 0;  // the value as last stored
    Date minDate_ = kMinDateSerial;
    Date maxDate_ = kMaxDateSerial;
    Long smallChange_ = 1;
    Long largeChange_ = 10;
    bool nullable_ = true;
    bool calendarButton_ = true;
    Long alignment_ = 0;
    bool initialised_ = false;

    Long textLeft_ = 0;
    Long textTop_ = 0;
    Long textWidth_ = 0;
    Long textHeight_ = 0;

    ElementArray<TextBoxElement> txtData_;
    ElementArray<LabelElement> lblSeparator_;
    ButtonElement cmdSelezione_;
    ExchangeLabel lblValueChanged_;
    DateEditor editor_{txtData_, *this};  // edits txtData_'s texts and cursors

    bool sendingNoDate_ = false;  // the no-date text going out is not taken over
    bool hasFocus_ = false;
    // Set when the focus has just arrived and no input followed yet: a
    // press that brought it goes straight to the box under the pointer.
    bool focusJustArrived_ = false;
    Hit captured_;       // the element that took the mouse press
    int selAnchor_ = 0;  // where a drag selection started
};

}  // namespace kelvarin::controls

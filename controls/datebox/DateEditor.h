// SPDX-License-Identifier: MIT
// DateEditor: the DateBox's editing engine. It keeps the six part values
// and the pattern's tokens, writes the field boxes' texts and cursors, and
// works the keys on the field that has the cursor: typing over a
// one-character cursor, moving between fields, blanking, stepping and
// today. It knows nothing of sites, painting or the calendar popup; what it
// needs of its control comes through DateEditorContext.
//
// Sections: context; pattern and parts; values; cursor; keys.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "common/DateTime.h"
#include "common/Locale.h"
#include "common/Numeric.h"
#include "controls/datebox/Constituents.h"
#include "controls/datebox/DateModel.h"

namespace kelvarin::controls {

// ---- Context ----------------------------------------------------------------

// The control's settings the editor follows, read afresh whenever it needs them.
struct EditRules {
    Date minDate = kMinDateSerial;  // no step or today leaves MinDate..MaxDate
    Date maxDate = kMaxDateSerial;
    Long smallChange = 1;   // Up and Down
    Long largeChange = 10;  // PageUp and PageDown
    bool nullable = true;   // a field may be left blank
};

// What the editor asks of the control it works for.
class DateEditorContext {
public:
    virtual EditRules Rules() const = 0;
    // Names the fields show, and the text a date and a time are joined through.
    virtual const Locale& EditingLocale() const = 0;
    // The current date without a time of day.
    virtual Date Today() const = 0;
    // Width of "_" in the control's font: a blank name field shows as many as fit.
    virtual int UnderscoreWidth() const = 0;
    // The value has changed (the control raises Change).
    virtual void ValueChanged() = 0;

protected:
    ~DateEditorContext() = default;
};

class DateEditor {
public:
    // What a key leaves for the control to do.
    enum class KeyOutcome { Done, OpenCalendar };

    // The editor is not ready while it lives: a key that arrives meanwhile
    // is dropped. Ready again however the scope ends.
    class Busy {
    public:
        explicit Busy(DateEditor& editor) noexcept : editor_(editor) { editor_.ready_ = false; }
        ~Busy() { editor_.ready_ = true; }
        Busy(const Busy&) = delete;
        Busy& operator=(const Busy&) = delete;

    private:
        DateEditor& editor_;
    };

    // The editor writes the texts and selections of `boxes`, which the
    // control owns, and loads and unloads them as the pattern's fields need.
    DateEditor(ElementArray<TextBoxElement>& boxes, DateEditorContext& context);
    DateEditor(const DateEditor&) = delete;
    DateEditor& operator=(const DateEditor&) = delete;

    // ---- Pattern and parts --------------------------------------------------
    // Cuts the pattern into tokens and gives every field a box, numbered from
    // 1 in pattern order: existing boxes are reused, new ones shown, surplus
    // ones unloaded, last first. Literals are left to the control.
    void SetPattern(std::string_view pattern);
    // Mutable for the control, which measures them and numbers the literals.
    std::vector<FormatToken>& Tokens() noexcept { return tokens_; }
    const std::vector<FormatToken>& Tokens() const noexcept { return tokens_; }
    // The token a field box shows, found through its Tag; null if none.
    const FormatToken* TokenOfBox(int box) const;
    const PartRangeTable& PartRange() const noexcept { return partRange_; }
    const PartValues& Parts() const noexcept { return parts_; }
    // False while the boxes are being rewritten or a key is being worked.
    bool Ready() const noexcept { return ready_; }

    // ---- Values -------------------------------------------------------------
    // Splits a date into the parts; the boxes keep their texts.
    void SetParts(Date d);
    Date PartsToValue() const;
    // The parts with the blanks filled: what stepping starts from.
    Date WorkingValue() const;
    // Stores one part, rewrites the other boxes that show it (not
    // `sourceBox`; -1 for none), and reports a change as the per-thread
    // flags say.
    void SetPart(Long part, Long value, int sourceBox);
    // Stores year, month and day together, then rewrites their boxes: a box
    // rewritten between two of them would show a date normalised from a mix
    // of old and new parts. Reports each change as SetPart does.
    void SetDate(Long year, Long month, Long day);
    // The date the year, month and day parts compose to, normalised as the
    // calendar counts (day 75 of December is in February); empty while any
    // of them is blank or the date lies outside the calendar.
    std::optional<Date> ComposedDate() const;
    // Rewrites every box from a date; the empty date blanks them all.
    void ShowValue(Date d);
    // Completes, validates and stores a field being left; false keeps the
    // cursor in it (a blank field when the value may not be empty).
    bool CommitBox(int box);
    // Commits a partly typed field ("3_", "1___") as leaving it would; a
    // blank or wholly typed one is left as it is.
    void CompleteBox(int box);

    // ---- Cursor -------------------------------------------------------------
    // The box with the cursor; 0 for none.
    int Current() const noexcept { return current_; }
    // Puts the cursor in a box (0: nowhere) with its whole text selected,
    // without committing the box it leaves.
    void Enter(int box);
    // Moves the cursor to another box; the box being left is committed
    // first and a refusal keeps the cursor there.
    bool FocusBox(int box);
    // Selects the whole text of a box.
    void SelectBox(int box);

    // ---- Keys ---------------------------------------------------------------
    // Works one key on the box with the cursor, as the first matching row of
    // the key table says. Keys without a row, and keys that arrive while
    // another is being worked, do nothing.
    KeyOutcome Key(Integer keyCode, Integer shift);

private:
    // Rewrites the boxes that show a part, but not `sourceBox`.
    void ShowPart(Long part, int sourceBox);
    // ValueChanged for a stored part, as the per-thread flags say.
    void ReportChange(Long old, Long value);
    void BlankBox(int box, int underscoreWidth);
    Long DaysInPartsMonth() const;
    // Forces a completely typed field into its range.
    void ClampBox(int box);
    // Commits the box and moves to the next field box (forward) or the
    // previous one, cyclically; returns the box with the cursor afterwards,
    // which is `box` itself when the commit refused.
    int MoveToBox(int box, bool forward);
    // The one-character cursor on the character at `position`.
    void SelectCharacter(int box, int position);
    // Puts `c` in place of the character at `position` of a box's text.
    void OverwriteAt(int box, int position, char c);
    void KeyLeft(int box);
    void KeyDelete(int box);
    void KeyBackspace(int box);
    void KeyDigit(int box, char digit);
    void Step(int box, Integer keyCode);
    void Today(int box);
    const Locale& Loc() const { return context_.EditingLocale(); }

    ElementArray<TextBoxElement>& boxes_;
    DateEditorContext& context_;
    PartRangeTable partRange_;
    PartValues parts_ = kAllBlank;
    std::vector<FormatToken> tokens_;
    int current_ = 0;
    bool ready_ = true;
    int keyUnderscore_ = 0;  // width of "_", measured once for each key
};

}  // namespace kelvarin::controls

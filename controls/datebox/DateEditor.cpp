// SPDX-License-Identifier: MIT
// Sections: pattern and parts; values; cursor; keys (the key table's rows,
// stepping, today).
#include "controls/datebox/DateEditor.h"

#include <algorithm>
#include <optional>

#include "common/HostError.h"
#include "controls/datebox/ChangeFlags.h"
#include "host/Keys.h"

namespace kelvarin::controls {

DateEditor::DateEditor(ElementArray<TextBoxElement>& boxes, DateEditorContext& context)
    : boxes_(boxes), context_(context), partRange_(InitPartRanges()) {}

// ---- Pattern and parts ------------------------------------------------------

void DateEditor::SetPattern(std::string_view pattern) {
    tokens_ = ParseFormat(pattern);
    int fields = 0;
    for (std::size_t i = 0; i < tokens_.size(); ++i) {
        FormatToken& t = tokens_[i];
        if (t.isLiteral) continue;
        ++fields;
        if (!boxes_.Exists(fields)) {
            TextBoxElement& box = boxes_.Load();
            if (fields > 1) box.tabStop = false;  // Tab enters at the first field only
            box.visible = true;
        }
        boxes_(fields).tag = std::to_string(i);
        t.controlIndex = fields;
    }
    while (boxes_.Count() > fields) boxes_.UnloadLast();
    if (current_ > boxes_.Count()) current_ = boxes_.Count() > 0 ? 1 : 0;
}

const FormatToken* DateEditor::TokenOfBox(int box) const {
    if (!boxes_.Exists(box)) return nullptr;
    const Long index = LeadingNumber(boxes_(box).tag);
    if (index < 0 || index >= static_cast<Long>(tokens_.size())) return nullptr;
    return &tokens_[static_cast<std::size_t>(index)];
}

// ---- Values -----------------------------------------------------------------

void DateEditor::SetParts(Date d) { ValueToParts(d, parts_); }

Date DateEditor::PartsToValue() const {
    return controls::PartsToValue(tokens_, parts_, boxes_.Count(), partRange_, Loc());
}

Date DateEditor::WorkingValue() const { return controls::WorkingValue(parts_, Loc()); }

namespace {

// A zero date part means blank; a zero time part is midnight's.
Long StoredPartValue(Long part, Long value) noexcept {
    return (part == kYear || part == kMonth || part == kDay) && value == 0 ? kBlank : value;
}

}  // namespace

void DateEditor::SetPart(Long part, Long value, int sourceBox) {
    if (part < 0 || part >= kPartCount) return;
    const Long old = parts_[part];
    parts_[part] = StoredPartValue(part, value);
    ShowPart(part, sourceBox);
    ReportChange(old, parts_[part]);
}

void DateEditor::SetDate(Long year, Long month, Long day) {
    const PartValues old = parts_;
    parts_[kYear] = StoredPartValue(kYear, year);
    parts_[kMonth] = StoredPartValue(kMonth, month);
    parts_[kDay] = StoredPartValue(kDay, day);
    for (const Long part : {kYear, kMonth, kDay}) ShowPart(part, -1);
    for (const Long part : {kYear, kMonth, kDay}) ReportChange(old[part], parts_[part]);
}

void DateEditor::ShowPart(Long part, int sourceBox) {
    const Long value = parts_[part];
    const int underscore = context_.UnderscoreWidth();
    std::optional<Date> working;
    for (const FormatToken& t : tokens_) {
        if (t.isLiteral || t.part != part || t.controlIndex == sourceBox) continue;
        if (!boxes_.Exists(t.controlIndex)) continue;
        if (value == kBlank) {
            BlankBox(t.controlIndex, underscore);
            continue;
        }
        if (!working) working = WorkingValue();
        boxes_(t.controlIndex).SetText(FormatDate(*working, t.text, Loc()));
    }
}

void DateEditor::ReportChange(Long old, Long value) {
    if ((old != value && NotifyOnChange()) || ForceChange()) context_.ValueChanged();
}

std::optional<Date> DateEditor::ComposedDate() const {
    const Long year = parts_[kYear], month = parts_[kMonth], day = parts_[kDay];
    if (year == kBlank || month == kBlank || day == kBlank) return std::nullopt;
    try {
        return DateSerial(year, month, day);
    } catch (const HostError&) {
        return std::nullopt;
    }
}

void DateEditor::ShowValue(Date d) {
    Busy rewriting(*this);
    const int underscore = context_.UnderscoreWidth();
    if (d == 0) {
        for (int i = 1; i <= boxes_.Count(); ++i) BlankBox(i, underscore);
        return;
    }
    const bool timeOnly = DatePortion(d) == 0;
    for (const FormatToken& t : tokens_) {
        if (t.isLiteral || !boxes_.Exists(t.controlIndex)) continue;
        if (timeOnly && t.text != "hh" && t.text != "nn" && t.text != "ss") {
            BlankBox(t.controlIndex, underscore);
            continue;
        }
        boxes_(t.controlIndex).SetText(FormatDate(d, t.text, Loc()));
    }
}

void DateEditor::BlankBox(int box, int underscoreWidth) {
    const FormatToken* t = TokenOfBox(box);
    if (!t) return;
    Long n = t->digits;
    // A font too small to measure still shows at least one pixel a character.
    if (n < 1) n = IntDiv(t->pixelWidth, std::max(underscoreWidth, 1));
    boxes_(box).SetText(std::string(static_cast<std::size_t>(std::max<Long>(n, 0)), '_'));
}

// Days in the month the parts name (a blank year counts as 2000); 31 for a
// blank month and where the following month lies past the last date.
Long DateEditor::DaysInPartsMonth() const {
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

void DateEditor::ClampBox(int box) {
    const FormatToken* t = TokenOfBox(box);
    if (!t || !t->editable) return;  // only typed digits are clamped
    TextBoxElement& b = boxes_(box);
    const Long v = LeadingNumber(b.text);
    Long min = partRange_[t->part].min;
    Long max = partRange_[t->part].max;
    if (t->part == kDay) {
        min = 1;
        max = DaysInPartsMonth();
    }
    bool corrected = false;
    if (v > max) {
        b.SetText(ZeroPadded(max, t->digits));
        corrected = true;
    }
    if (v < min) {
        b.SetText(ZeroPadded(min, t->digits));
        corrected = true;
    }
    SetPart(t->part, LeadingNumber(b.text), box);
    if (corrected) context_.ValueChanged();
}

bool DateEditor::CommitBox(int box) {
    const FormatToken* t = TokenOfBox(box);
    if (!t) return true;
    const Long part = t->part;
    const bool editable = t->editable;
    const bool nullable = context_.Rules().nullable;
    TextBoxElement& b = boxes_(box);
    const int length = b.Length();
    const std::string typed = StripPlaceholders(b.text);
    const int typedLength = Utf8Length(typed);
    bool mayLeave = true;
    if (typed.empty()) {
        if (!nullable) mayLeave = false;
        SetPart(part, kBlank, box);
    } else if (typedLength == length) {
        ClampBox(box);
    } else if (part == kYear) {
        // A partly typed year is taken as this century's: "7" is 2007.
        std::string year(static_cast<std::size_t>(length - typedLength), '0');
        year.front() = '2';
        b.SetText(year + typed);
        SetPart(kYear, LeadingNumber(b.text), box);
    } else if (typed != "0") {
        if (editable) b.SetText(std::string(1, '0') + typed);
        SetPart(part, LeadingNumber(b.text), box);
    } else if (part == kMonth || part == kDay) {
        if (nullable) b.SetText("__");
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

void DateEditor::CompleteBox(int box) {
    if (!boxes_.Exists(box)) return;
    const TextBoxElement& b = boxes_(box);
    const std::string typed = StripPlaceholders(b.text);
    if (typed.empty() || Utf8Length(typed) == b.Length()) return;
    CommitBox(box);
}

// ---- Cursor -----------------------------------------------------------------

void DateEditor::Enter(int box) {
    current_ = box;
    SelectBox(box);
}

bool DateEditor::FocusBox(int box) {
    if (!boxes_.Exists(box) || box == current_) return true;
    if (current_ != 0 && !CommitBox(current_)) return false;
    Enter(box);  // a box that gets the cursor selects its whole text
    return true;
}

void DateEditor::SelectBox(int box) {
    if (!boxes_.Exists(box)) return;
    TextBoxElement& b = boxes_(box);
    b.selStart = 0;
    b.selLength = b.Length();
}

int DateEditor::MoveToBox(int box, bool forward) {
    const int count = boxes_.Count();
    if (!boxes_.Exists(box)) return box;
    if (!CommitBox(box)) {
        SelectBox(box);
        return box;
    }
    // Cyclic over every field box, display-only ones included. The box that
    // gets the cursor selects its whole text; a box that moves to itself (a
    // pattern of one field) does the same, so the cursor never stays past
    // its last character.
    Enter(forward ? (box >= count ? 1 : box + 1) : (box <= 1 ? count : box - 1));
    return current_;
}

void DateEditor::SelectCharacter(int box, int position) {
    if (!boxes_.Exists(box)) return;
    TextBoxElement& b = boxes_(box);
    const int length = b.Length();
    b.selStart = std::clamp(position, 0, length);
    b.selLength = std::min(1, length - b.selStart);
}

void DateEditor::OverwriteAt(int box, int position, char c) {
    if (!boxes_.Exists(box)) return;
    TextBoxElement& b = boxes_(box);
    if (position < 0 || position >= b.Length()) return;
    const std::size_t from = Utf8Offset(b.text, position), to = Utf8Offset(b.text, position + 1);
    b.SetText(b.text.substr(0, from) + c + b.text.substr(to));
}

// ---- Keys -------------------------------------------------------------------
//
// The boxes never take a character themselves: every key is interpreted
// here, in an overwrite style with a one-character cursor (a selection of
// length 1). Only the first matching row acts.

DateEditor::KeyOutcome DateEditor::Key(Integer keyCode, Integer shift) {
    if (!ready_) return KeyOutcome::Done;
    Busy working(*this);
    keyUnderscore_ = context_.UnderscoreWidth();
    const int box = current_;
    if (box == 0) return KeyOutcome::Done;
    switch (keyCode) {
        case host::kKeyReturn:
            MoveToBox(box, shift == 0);  // with any modifier, back to the previous field
            return KeyOutcome::Done;
        case host::kKeyRight:
            MoveToBox(box, true);  // never within the box, unlike Left
            return KeyOutcome::Done;
        case host::kKeyLeft: KeyLeft(box); return KeyOutcome::Done;
        case host::kKeyDelete: KeyDelete(box); return KeyOutcome::Done;
        case host::kKeyBack: KeyBackspace(box); return KeyOutcome::Done;
        case host::kKeyUp:
        case host::kKeyDown:
        case host::kKeyPageUp:
        case host::kKeyPageDown:
            if (shift == 0) Step(box, keyCode);
            else if (keyCode == host::kKeyDown) return KeyOutcome::OpenCalendar;
            return KeyOutcome::Done;
        case host::kKeyF5: Today(box); return KeyOutcome::Done;
        case host::kKeyF4: return KeyOutcome::OpenCalendar;
        default: break;
    }
    if (keyCode >= host::kKey0 && keyCode <= host::kKey0 + 9)
        KeyDigit(box, static_cast<char>('0' + keyCode - host::kKey0));
    else if (keyCode >= host::kKeyNumpad0 && keyCode <= host::kKeyNumpad0 + 9)
        KeyDigit(box, static_cast<char>('0' + keyCode - host::kKeyNumpad0));
    return KeyOutcome::Done;
}

void DateEditor::KeyLeft(int box) {
    const FormatToken* t = TokenOfBox(box);
    if (!t) return;
    if (!t->editable) {
        MoveToBox(box, false);
        return;
    }
    const TextBoxElement& b = boxes_(box);
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
    if (previous && previous->editable) SelectCharacter(moved, boxes_(moved).Length() - 1);
    else SelectBox(moved);
}

// A cursor in a typed field blanks one character; a whole field, or one
// that only shows a name, is emptied.
void DateEditor::KeyDelete(int box) {
    const FormatToken* t = TokenOfBox(box);
    if (!t) return;
    const Long part = t->part;
    const int position = boxes_(box).selStart;
    if (boxes_(box).selLength != t->digits && t->editable) {
        OverwriteAt(box, position, '_');
        SetPart(part, LeadingNumber(boxes_(box).text), box);
        SelectCharacter(box, position);
        return;
    }
    SetPart(part, kBlank, box);
    SelectBox(box);
    BlankBox(box, keyUnderscore_);
}

// Blanks the character under the cursor (not the one before it) and walks
// back; a whole field is emptied and left for the previous one.
void DateEditor::KeyBackspace(int box) {
    const FormatToken* t = TokenOfBox(box);
    if (!t) return;
    const Long part = t->part;
    const TextBoxElement& b = boxes_(box);
    if (b.selLength == b.Length() || !t->editable) {
        BlankBox(box, keyUnderscore_);
        SetPart(part, kBlank, box);
        MoveToBox(box, false);
        return;
    }
    const int position = b.selStart;
    OverwriteAt(box, position, '_');
    if (position != 0) {
        SetPart(part, LeadingNumber(boxes_(box).text), box);
        SelectCharacter(box, position - 1);
        return;
    }
    const int moved = MoveToBox(box, false);
    if (moved == box) return;
    // The field left behind has been completed by its commit; store what it shows.
    SetPart(part, LeadingNumber(boxes_(box).text), box);
    SelectCharacter(moved, boxes_(moved).Length() - 1);
}

// Overwrites the character under the cursor; the last one typed moves on
// to the next field. Ranges are not checked here but when the field is left.
void DateEditor::KeyDigit(int box, char digit) {
    const FormatToken* t = TokenOfBox(box);
    if (!t || !t->editable) return;
    const Long part = t->part;
    TextBoxElement& b = boxes_(box);
    if (b.selLength == b.Length()) {
        b.SetText(std::string(static_cast<std::size_t>(b.Length()), '_'));
        SelectCharacter(box, 0);
    }
    const int position = b.selStart;
    OverwriteAt(box, position, digit);
    SetPart(part, LeadingNumber(b.text), box);
    SelectCharacter(box, position + 1);
    if (b.selStart == b.Length()) MoveToBox(box, true);
}

// Steps the box's part by whole intervals with the calendar's addition; a
// step that would leave MinDate..MaxDate does nothing, and blank fields
// other than this one stay blank.
void DateEditor::Step(int box, Integer keyCode) {
    const FormatToken* t = TokenOfBox(box);
    if (!t || t->part < 0) return;
    const Long part = t->part;
    const EditRules rules = context_.Rules();
    Long step = 0;
    switch (keyCode) {
        case host::kKeyUp: step = rules.smallChange; break;
        case host::kKeyDown: step = CheckedSub(0, rules.smallChange); break;
        case host::kKeyPageUp: step = rules.largeChange; break;
        default: step = CheckedSub(0, rules.largeChange); break;
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
    if (stepped < rules.minDate || stepped > rules.maxDate) return;
    ValueToParts(stepped, parts_);
    for (int i = kYear; i <= kSecond; ++i) {
        if (snapshot[i] == kBlank && i != part) parts_[i] = kBlank;
        else SetPart(i, parts_[i], -1);
    }
    if (parts_ != snapshot) context_.ValueChanged();
    SelectBox(box);
}

// Today's date in every part (the time of day becomes midnight); the cursor
// stays where it was.
void DateEditor::Today(int box) {
    const Date today = context_.Today();
    const EditRules rules = context_.Rules();
    if (today < rules.minDate || today > rules.maxDate) return;
    const int position = boxes_(box).selStart;
    PartValues snapshot;
    SnapshotParts(parts_, snapshot);
    ValueToParts(today, parts_);
    for (int i = kYear; i <= kSecond; ++i) SetPart(i, parts_[i], -1);
    SelectCharacter(box, position);
    // Change only when a part the pattern shows moved.
    for (const FormatToken& token : tokens_) {
        if (token.isLiteral || token.part < 0) continue;
        if (snapshot[token.part] != parts_[token.part]) {
            context_.ValueChanged();
            return;
        }
    }
}

}  // namespace kelvarin::controls

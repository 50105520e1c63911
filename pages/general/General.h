// SPDX-License-Identifier: MIT
// General: the design-time property page of the progress bar and the
// command button. Two groups of fields, one per control class; the group
// shown is the first selected control's. A selection fills the fields from
// that control's properties, an apply writes them back, and the numeric
// fields filter the characters typed into them.
//
// The page reads and writes properties by name through the dispatch it is
// given, so every value is converted by the property's own type, exactly as
// a script's or a property sheet's write would be.
//
// Sections: fields; selection; editing; applying.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <kelvarin/Export.h>

#include "common/Variant.h"
#include "host/Control.h"

namespace kelvarin::pages {

// Which controls a group edits; None when the first selected control is of
// another class, or nothing is selected.
enum class Group { None, ProgressBox, CommandBox };
std::string_view GroupName(Group group) noexcept;

enum class FieldKind {
    Text,     // any character
    Whole,    // digits and "."
    Decimal,  // digits, "." and ","
    Check,    // a check box
};

struct Field {
    std::string_view name;  // txtValue, chkEnabledPB, ...
    FieldKind kind;
    Group group;
    std::string_view property;  // the property it edits
    std::string_view label;     // the text beside it; empty for none
    std::string text = {};      // text fields
    bool checked = false;       // check boxes
};

// Reads and writes a control's property by name, through the library's dispatch.
struct PropertyAccess {
    Variant (*get)(host::Control& control, std::string_view property) = nullptr;
    void (*let)(host::Control& control, std::string_view property, const Variant& value) = nullptr;
};

class KELVARIN_CORE_API General : public host::Control {
public:
    explicit General(PropertyAccess access);

    // ---- Fields --------------------------------------------------------------
    // All fourteen, in table order: the progress bar's, then the button's.
    std::span<const Field> Fields() const noexcept { return fields_; }
    // The named field; an unknown name raises Invalid procedure call (5).
    const Field& Find(std::string_view name) const;
    Group Shown() const noexcept { return shown_; }
    // Set by any change of a field, cleared by an apply.
    bool Changed() const noexcept { return changed_; }

    // ---- Selection -----------------------------------------------------------
    // The first control decides the group; its properties fill the fields.
    void SelectionChanged(std::span<host::Control* const> selected);
    // A selected control is going away: the page no longer writes to it.
    void Forget(const host::Control& control);

    // ---- Editing -------------------------------------------------------------
    // Whether a field's key filter keeps a typed character (its character code).
    static bool KeepsCharacter(FieldKind kind, int ascii) noexcept;
    // One character typed into a text field: filtered, then appended (a
    // backspace the filter keeps removes the last character; other control
    // characters change nothing). Returns whether the filter kept it.
    bool TypeCharacter(std::string_view field, int ascii);
    // Each character of the text, typed.
    void Type(std::string_view field, std::string_view text);
    void SetText(std::string_view field, std::string text);
    void SetChecked(std::string_view field, bool checked);

    // ---- Applying ------------------------------------------------------------
    // Writes the shown group's fields to the first selected control in the
    // page's order. A write that fails ends the apply with its error; what
    // was written stays.
    void Apply();

private:
    Field& Mutable(std::string_view name);
    Field& Mutable(std::string_view name, FieldKind expected);
    void Assign(Field& field, std::string text);
    void Assign(Field& field, bool checked);

    PropertyAccess access_;
    std::array<Field, 14> fields_;
    std::vector<host::Control*> selected_;
    Group shown_ = Group::None;
    bool changed_ = false;
};

}  // namespace kelvarin::pages

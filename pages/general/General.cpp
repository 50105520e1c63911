// SPDX-License-Identifier: MIT
#include "pages/general/General.h"

#include "common/HostError.h"
#include "common/Text.h"

namespace kelvarin::pages {

namespace {

using enum FieldKind;

// The fields in the page's table order; each group fills and applies in
// this order too.
std::array<Field, 14> PageFields() {
    const auto pb = Group::ProgressBox;
    const auto cb = Group::CommandBox;
    return {{
        {"txtTimerChangedInterval", Whole, pb, "TimerChangedInterval", "TimerChangedInterval:"},
        {"txtPercentual", Decimal, pb, "Percentual", "Percentual:"},
        {"txtMaxValue", Decimal, pb, "MaxValue", "MaxValue:"},
        {"txtMinValue", Decimal, pb, "MinValue", "MinValue:"},
        {"chkShowPercentual", Check, pb, "ShowPercentual", ""},
        {"txtValue", Decimal, pb, "Value", "Value:"},
        {"chkEnabledPB", Check, pb, "Enabled", ""},
        {"txtTextPB", Text, pb, "Text", "Text:"},
        {"chkEnabled", Check, cb, "Enabled", ""},
        {"chkHighLighted", Check, cb, "HighLighted", ""},
        {"chkUseMaskColor", Check, cb, "UseMaskColor", ""},
        {"chkShowFocusRect", Check, cb, "ShowFocusRect", ""},
        {"txtText", Text, cb, "Text", ""},
        {"txtInterleave", Whole, cb, "Interleave", "Interleave:"},
    }};
}

Group GroupOf(const host::Control& control) {
    const std::string name = control.TypeName();
    if (name == "ProgressBox") return Group::ProgressBox;
    if (name == "CommandBox") return Group::CommandBox;
    return Group::None;
}

[[noreturn]] void NoSuchField() { RaiseHostError(HostErrorCode::InvalidProcedureCall); }

}  // namespace

std::string_view GroupName(Group group) noexcept {
    switch (group) {
        case Group::ProgressBox: return "ProgressBox";
        case Group::CommandBox: return "CommandBox";
        case Group::None: break;
    }
    return "none";
}

General::General(PropertyAccess access)
    : Control("General"), access_(access), fields_(PageFields()) {}

// ---- Fields -------------------------------------------------------------------------

const Field& General::Find(std::string_view name) const {
    for (const Field& f : fields_)
        if (EqualsIgnoreCase(f.name, name)) return f;
    NoSuchField();
}

Field& General::Mutable(std::string_view name) { return const_cast<Field&>(Find(name)); }

// A text operation on a check box, or a check on a text field, has no field to act on.
Field& General::Mutable(std::string_view name, FieldKind expected) {
    Field& f = Mutable(name);
    if ((f.kind == Check) != (expected == Check)) NoSuchField();
    return f;
}

// Only a real change of a field marks the page, as its change and click
// notices fire only then.
void General::Assign(Field& field, std::string text) {
    if (field.text == text) return;
    field.text = std::move(text);
    changed_ = true;
}

void General::Assign(Field& field, bool checked) {
    if (field.checked == checked) return;
    field.checked = checked;
    changed_ = true;
}

// ---- Selection ------------------------------------------------------------------------

void General::SelectionChanged(std::span<host::Control* const> selected) {
    selected_.assign(selected.begin(), selected.end());
    shown_ = selected_.empty() ? Group::None : GroupOf(*selected_.front());
    for (Field& f : fields_) {
        if (f.group != shown_) continue;
        const Variant value = access_.get(*selected_.front(), f.property);
        // Numbers as their default text in the host's locale.
        if (f.kind == Check) Assign(f, value.ToBoolean());
        else Assign(f, value.ToString());
    }
}

void General::Forget(const host::Control& control) { std::erase(selected_, &control); }

// ---- Editing ----------------------------------------------------------------------------

// The comma only in decimal fields; digits, "." and Ctrl+C (3) in every
// numeric one; nothing else, backspace included: numeric fields are edited
// with Delete and the selection.
bool General::KeepsCharacter(FieldKind kind, int ascii) noexcept {
    if (kind == Text) return true;
    if (kind == Check) return false;
    if (kind == Decimal && ascii == ',') return true;
    return (ascii >= '0' && ascii <= '9') || ascii == '.' || ascii == 3;
}

bool General::TypeCharacter(std::string_view name, int ascii) {
    Field& f = Mutable(name, Text);
    if (!KeepsCharacter(f.kind, ascii)) return false;
    std::string text = f.text;
    if (ascii == 8) {
        if (!text.empty()) {
            std::size_t last = text.size() - 1;
            while (last > 0 && IsUtf8Continuation(text[last])) --last;
            text.erase(last);
        }
    } else if (ascii >= 32 && ascii < 128) {
        text += static_cast<char>(ascii);
    } else if (ascii >= 128 && ascii < 256) {  // Latin-1, kept as UTF-8
        text += static_cast<char>(0xC0 | (ascii >> 6));
        text += static_cast<char>(0x80 | (ascii & 0x3F));
    }
    Assign(f, std::move(text));
    return true;
}

void General::Type(std::string_view name, std::string_view text) {
    Field& f = Mutable(name, Text);
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t size = Utf8CharSize(text, i);
        const auto c = static_cast<unsigned char>(text[i]);
        if (size == 1 && c < 128) {
            TypeCharacter(name, c);
        } else if (f.kind == Text) {  // a letter beyond ASCII: no numeric field keeps it
            Assign(f, f.text + std::string(text.substr(i, size)));
        }
        i += size;
    }
}

void General::SetText(std::string_view name, std::string text) {
    Assign(Mutable(name, Text), std::move(text));
}

void General::SetChecked(std::string_view name, bool checked) {
    Assign(Mutable(name, Check), checked);
}

// ---- Applying -----------------------------------------------------------------------------

// The order matters for the bar: Percentual goes before MaxValue, MinValue
// and Value, which the bar couples to it, so the later writes decide.
void General::Apply() {
    // The control the fields were filled from may have gone since.
    if (selected_.empty() || GroupOf(*selected_.front()) != shown_) return;
    host::Control& control = *selected_.front();
    for (const Field& f : fields_) {
        if (f.group != shown_) continue;
        access_.let(control, f.property, f.kind == Check ? Variant(f.checked) : Variant(f.text));
    }
    changed_ = false;
}

}  // namespace kelvarin::pages

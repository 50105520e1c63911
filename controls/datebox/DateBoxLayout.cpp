// SPDX-License-Identifier: MIT
// The DateBox's layout: measuring the pattern's tokens, giving the literals
// their separator labels, sizing the boxes and labels, and placing them
// with the calendar button on one line (TextLeft, TextTop, TextWidth,
// TextHeight).
#include "controls/datebox/DateBox.h"

#include <algorithm>
#include <string>
#include <vector>

#include "common/Numeric.h"

namespace kelvarin::controls {

namespace {

constexpr Date kFirstOfMarch2001 = 36951;  // base of the samples a name field is measured on

}  // namespace

host::Size DateBox::Measure(std::string_view text) const {
    if (!HasSite()) return {};
    return Site().ClientSurface().MeasureText(text, *SurfaceState().font);
}

void DateBox::RebuildBoxes() {
    editor_.SetPattern(dateFormat_);  // the tokens, and a box for every field
    MeasureTokens();
    CreateSeparators();
    SizeBoxes();
    editor_.ShowValue(value_);
}

// Literals by their text, typed fields by as many "0" as they have digits,
// name fields by their widest name over a run of sample dates.
void DateBox::MeasureTokens() {
    for (FormatToken& t : editor_.Tokens()) {
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
                DateAdd(editor_.PartRange()[t.part].interval,
                        static_cast<double>(t.stepMultiplier) * i, kFirstOfMarch2001);
            width = std::max<Long>(width, Measure(FormatDate(sample, t.text, Loc())).width);
        }
        t.pixelWidth = width;
    }
}

// Fields have their boxes from the editor; literals are numbered apart, from
// 1 in pattern order, existing labels reused and the surplus unloaded, last first.
void DateBox::CreateSeparators() {
    std::vector<FormatToken>& tokens = editor_.Tokens();
    int literals = 0;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        FormatToken& t = tokens[i];
        if (!t.isLiteral) continue;
        ++literals;
        if (!lblSeparator_.Exists(literals)) lblSeparator_.Load().visible = true;
        LabelElement& label = lblSeparator_(literals);
        label.tag = std::to_string(i);
        label.caption = t.text;
        t.controlIndex = literals;
    }
    while (lblSeparator_.Count() > literals) lblSeparator_.UnloadLast();
}

void DateBox::SizeBoxes() {
    for (const FormatToken& t : editor_.Tokens()) {
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
    for (const FormatToken& t : editor_.Tokens()) width = CheckedAdd(width, t.pixelWidth);
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
        case kLeftJustify: textLeft_ = 0; break;
        case kRightJustify: textLeft_ = CheckedSub(innerWidth, textWidth_); break;
        case kCenter:
            textLeft_ = ToLong((static_cast<double>(innerWidth) - textWidth_) / 2.0);
            break;
        default: break;  // any other value leaves the text where it was
    }
    Long x = textLeft_;
    for (const FormatToken& t : editor_.Tokens()) {
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

}  // namespace kelvarin::controls

// SPDX-License-Identifier: MIT
// Sections: keys; leaving a field; parts and boxes.
#include "controls/datebox/DateEditor.h"

#include <gtest/gtest.h>

#include <functional>

#include "controls/datebox/ChangeFlags.h"
#include "host/Keys.h"
#include "tests/ErrorOf.h"

namespace kelvarin::controls {
namespace {

Date Ymd(int y, int m, int d) { return DateSerial(y, m, d); }

const Date kXmas = Ymd(2007, 12, 25);

// The control's side: Italian names, "_" 7 pixels wide, today 22/11/2026.
struct Context : DateEditorContext {
    EditRules Rules() const override { return rules; }
    const Locale& EditingLocale() const override { return ItalianLocale(); }
    Date Today() const override { return today; }
    int UnderscoreWidth() const override { return 7; }
    void ValueChanged() override {
        ++changes;
        if (onChange) onChange();
    }

    EditRules rules;
    Date today = Ymd(2026, 11, 22);
    int changes = 0;
    std::function<void()> onChange;
};

class DateEditorTest : public ::testing::Test {
protected:
    // A pattern showing a value, with the cursor in `box` (its text
    // selected) and no change counted yet. Name fields are measured as nine
    // characters wide.
    void Start(std::string_view pattern, Date value, int box = 1) {
        editor_.SetPattern(pattern);
        for (FormatToken& t : editor_.Tokens())
            if (!t.isLiteral && !t.editable) t.pixelWidth = 9 * 7;
        editor_.SetParts(value);
        editor_.ShowValue(value);
        editor_.Enter(box);
        context_.changes = 0;
    }
    // The fields and literals in order, with the selection of the box that
    // has the cursor in brackets.
    std::string View() const {
        std::string view;
        for (const FormatToken& t : editor_.Tokens()) {
            if (t.isLiteral) {
                view += t.text;
                continue;
            }
            const TextBoxElement& b = boxes_(t.controlIndex);
            if (t.controlIndex != editor_.Current()) {
                view += b.text;
                continue;
            }
            const std::size_t from = Utf8Offset(b.text, b.selStart);
            const std::size_t to = Utf8Offset(b.text, b.selStart + b.selLength);
            view += b.text.substr(0, from) + "[" + b.text.substr(from, to - from) + "]" +
                    b.text.substr(to);
        }
        return view;
    }
    // One character a key: digits, and < D U u P p T for Left, Delete, Up,
    // Down, PageUp, PageDown, F5.
    void Keys(std::string_view keys) {
        using namespace host;
        constexpr std::string_view kNames = "<DUuPpT";
        constexpr Integer kCodes[] = {kKeyLeft,   kKeyDelete,   kKeyUp, kKeyDown,
                                      kKeyPageUp, kKeyPageDown, kKeyF5};
        for (char k : keys) {
            const std::size_t i = kNames.find(k);
            const Integer code = i == kNames.npos ? kKey0 + (k - '0') : kCodes[i];
            EXPECT_EQ(editor_.Key(code, 0), DateEditor::KeyOutcome::Done);
        }
    }

    ElementArray<TextBoxElement> boxes_;
    Context context_;
    DateEditor editor_{boxes_, context_};
};

// ---- Keys -------------------------------------------------------------------

TEST_F(DateEditorTest, KeysEditTheFieldWithTheCursor) {
    const EditRules toXmas{.maxDate = kXmas}, oddSteps{.smallChange = 3, .largeChange = -2},
        hugeSteps{.largeChange = 2000000000};
    struct Case {
        const char* pattern;
        Date start;
        int box;
        const char* keys;
        const char* view;
        int changes;
        EditRules rules = {};
    };
    // The basic cases of each key (typing and wrapping, Enter completing a
    // year, Left and Right, Delete and Backspace on digits walking back
    // across fields, steps by day, month, week and quarter, the lower limit,
    // F5 and its limit) run end to end in the datebox_keys_*.khs scripts;
    // these rows hold the rest.
    const Case cases[] = {
        {"yyyy", 0, 1, "1999", "[1999]", 4},  // one field wraps onto itself
        // Left reaches a name field whole; Delete blanks it as wide as it is
        // measured, and it takes no digits.
        {"dd mmmm yyyy", kXmas, 3, "<<<<<", "25 [dicembre] 2007", 0},
        {"dd mmmm yyyy", kXmas, 2, "<", "[25] dicembre 2007", 0},
        {"dd mmmm yyyy", kXmas, 2, "D", "25 []_________ 2007", 1},
        {"dd mmmm yyyy", kXmas, 2, "5", "25 [dicembre] 2007", 0},
        // Steps: a blank month from August 2000, the upper limit, odd and
        // negative sizes, past the calendar, names and times wrapping.
        {"dd/mm/yyyy", 0, 2, "u", "__/[07]/____", 1},
        {"dd/mm/yyyy", kXmas, 1, "U", "[25]/12/2007", 0, toXmas},
        {"dd/mm/yyyy", kXmas, 2, "Up", "25/[05]/2008", 2, oddSteps},
        {"dd/mm/yyyy", kXmas, 3, "P", "25/12/[2007]", 0, hugeSteps},
        {"dd mmmm yyyy", kXmas, 2, "U", "25 [gennaio] 2008", 1},
        {"dddd dd", kXmas, 1, "U", "[mercoledì] 26", 1},
        {"hh:nn", TimeSerial(23, 30, 0), 1, "U", "[00]:30", 1},
        {"hh:nn:ss", TimeSerial(10, 0, 59), 3, "U", "10:01:[00]", 1},
        // F5 keeps a cursor inside a field where it was, and sets a time to
        // midnight.
        {"dd/mm/yyyy", 0, 2, "<T", "22/1[1]/2026", 1},
        {"hh:nn", TimeSerial(10, 0, 0), 1, "T", "[0]0:00", 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.pattern) + " box " + std::to_string(c.box) + " keys " + c.keys);
        context_.rules = c.rules;
        Start(c.pattern, c.start, c.box);
        Keys(c.keys);
        EXPECT_EQ(View(), c.view);
        EXPECT_EQ(context_.changes, c.changes);
        EXPECT_TRUE(editor_.Ready());
    }
}

// F4, Alt+Down and Ctrl+Down open the calendar (datebox_keys_events);
// Shift+Down does too.
TEST_F(DateEditorTest, ShiftDownOpensTheCalendar) {
    Start("dd/mm/yyyy", kXmas, 2);
    EXPECT_EQ(editor_.Key(host::kKeyDown, host::kShiftMask), DateEditor::KeyOutcome::OpenCalendar);
    EXPECT_EQ(View(), "25/[12]/2007");
}

// A key arriving while another is being worked (from a Change handler, say)
// is dropped.
TEST_F(DateEditorTest, AKeyIsDroppedWhileAnotherIsWorked) {
    Start("dd/mm/yyyy", kXmas);
    int nested = 0;
    context_.onChange = [&] {
        EXPECT_FALSE(editor_.Ready());
        if (nested++ == 0) editor_.Key(host::kKeyUp, 0);
    };
    Keys("U");
    EXPECT_EQ(View(), "[26]/12/2007");
    EXPECT_EQ(context_.changes, 1);
}

TEST_F(DateEditorTest, AStepThatOverflowsIsTheHostsError) {
    context_.rules.smallChange = 400000000;
    Start("dd ww yyyy", kXmas, 2);
    // 7 x 400000000 leaves 32 bits.
    EXPECT_EQ(test::ErrorOf([&] { editor_.Key(host::kKeyUp, 0); }), 6);
    EXPECT_TRUE(editor_.Ready());
}

// ---- Leaving a field --------------------------------------------------------

// A partly typed year completed as Enter leaves it is datebox_keys_typing's;
// these rows are the other edges of leaving a field.
TEST_F(DateEditorTest, CommitCompletesAndClampsTheFieldBeingLeft) {
    struct Case {
        const char* pattern;
        Date start;
        int box;
        const char* typed;
        bool nullable;
        const char* view;  // afterwards
        bool mayLeave;
        int changes;  // one for a stored part that differs, one more for a correction
    };
    const Case cases[] = {
        {"dd/mm/yyyy", kXmas, 3, "9999", true, "25/12/9980", true, 2},
        {"dd/mm/yyyy", kXmas, 3, "0050", true, "25/12/0100", true, 2},
        {"dd/mm/yyyy", kXmas, 2, "00", true, "25/01/2007", true, 2},
        {"dd/mm/yyyy", kXmas, 2, "13", true, "25/12/2007", true, 2},
        {"dd/mm/yyyy", kXmas, 2, "5_", true, "25/05/2007", true, 0},
        {"dd/mm/yyyy", kXmas, 1, "0_", true, "__/12/2007", true, 0},
        {"dd/mm/yyyy", kXmas, 1, "0_", false, "0_/12/2007", false, 0},
        // A new month or year shortens a day that no longer fits; a blank
        // day stays blank.
        {"dd/mm/yyyy", Ymd(2007, 3, 31), 2, "04", true, "30/04/2007", true, 2},
        {"dd/mm/yyyy", Ymd(2000, 2, 29), 3, "2001", true, "28/02/2001", true, 2},
        {"dd/mm/yyyy", 0, 3, "2001", true, "__/__/2001", true, 0},
        {"hh:nn", TimeSerial(10, 0, 0), 1, "0_", true, "00:00", true, 0},
        {"hh:nn", TimeSerial(10, 0, 0), 2, "99", true, "10:59", true, 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.pattern) + " box " + std::to_string(c.box) + " " + c.typed);
        context_.rules.nullable = c.nullable;
        Start(c.pattern, c.start, 0);
        // Typed as the keys leave it: the text, and its number stored.
        boxes_(c.box).SetText(c.typed);
        editor_.SetPart(editor_.TokenOfBox(c.box)->part, LeadingNumber(c.typed), c.box);
        context_.changes = 0;
        EXPECT_EQ(editor_.CommitBox(c.box), c.mayLeave);
        EXPECT_EQ(View(), c.view);
        EXPECT_EQ(context_.changes, c.changes);
    }
}

TEST_F(DateEditorTest, ADayIsClampedToTheLengthOfItsMonth) {
    const struct {
        Long year, month, days;
    } months[] = {{2001, 2, 28}, {2004, 2, 29},  {1900, 2, 28},  {2000, 2, 29},     {kBlank, 2, 29},
                  {2007, 4, 30}, {2007, 12, 31}, {9999, 12, 31}, {2007, kBlank, 31}};
    Start("dd/mm/yyyy", 0, 0);
    for (const auto& m : months) {
        editor_.SetPart(kYear, m.year, -1);
        editor_.SetPart(kMonth, m.month, -1);
        boxes_(1).SetText("99");
        editor_.CommitBox(1);
        EXPECT_EQ(editor_.Parts()[kDay], m.days) << m.year << "-" << m.month;
    }
}

// ---- Parts and boxes --------------------------------------------------------

TEST_F(DateEditorTest, SetPartRewritesEveryOtherBoxOfThePartAndFollowsTheFlags) {
    Start("dddd dd/mm/yyyy dd", kXmas, 0);
    EXPECT_EQ(View(), "martedì 25/12/2007 25");
    editor_.SetPart(kDay, 26, 2);  // typed in box 2: that box is left alone
    EXPECT_EQ(View(), "mercoledì 25/12/2007 26");
    EXPECT_EQ(context_.changes, 1);
    editor_.SetPart(kDay, 26, -1);
    EXPECT_EQ(context_.changes, 1);  // nothing changed
    editor_.SetPart(kDay, 0, -1);    // a zero date part is blank
    EXPECT_EQ(editor_.Parts()[kDay], kBlank);
    EXPECT_EQ(View(), "_________ __/12/2007 __");
    editor_.SetPart(kHour, 0, -1);  // a zero time part is a value
    EXPECT_EQ(editor_.Parts()[kHour], 0);

    context_.changes = 0;
    SetForceChange(true);
    editor_.SetPart(kMonth, 12, -1);
    SetForceChange(false);
    {
        QuietChanges quiet;
        editor_.SetPart(kMonth, 11, -1);
    }
    EXPECT_EQ(context_.changes, 1);
    EXPECT_EQ(View(), "_________ __/11/2007 __");
}

TEST_F(DateEditorTest, APatternGivesEachFieldABoxAndOnlyTheFirstIsATabStop) {
    Start("c", 0, 6);
    EXPECT_EQ(boxes_.Count(), 6);
    for (int i = 1; i <= 6; ++i) EXPECT_EQ(boxes_(i).tabStop, i == 1) << i;
    editor_.SetPattern("hh:nn");
    EXPECT_EQ(boxes_.Count(), 2);
    EXPECT_EQ(editor_.Current(), 1);  // its box went away
    editor_.SetPattern("ab");
    EXPECT_EQ(boxes_.Count(), 0);
    EXPECT_EQ(editor_.Current(), 0);
}

}  // namespace
}  // namespace kelvarin::controls

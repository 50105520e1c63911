// Sections: keys; leaving a field; parts and boxes.
#include "controls/datebox/DateEditor.h"

#include <gtest/gtest.h>

#include <functional>

#include "common/HostError.h"
#include "controls/datebox/ChangeFlags.h"
#include "host/Keys.h"

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
    // One character a key: digits, and < > E e D B U u P p T for Left, Right,
    // Enter, Shift+Enter, Delete, Backspace, Up, Down, PageUp, PageDown, F5.
    void Keys(std::string_view keys) {
        using namespace host;
        constexpr std::string_view kNames = "<>EeDBUuPpT";
        constexpr Integer kCodes[] = {kKeyLeft,   kKeyRight,    kKeyReturn, kKeyReturn,
                                      kKeyDelete, kKeyBack,     kKeyUp,     kKeyDown,
                                      kKeyPageUp, kKeyPageDown, kKeyF5};
        for (char k : keys) {
            const std::size_t i = kNames.find(k);
            const Integer code = i == kNames.npos ? kKey0 + (k - '0') : kCodes[i];
            const Integer shift = k == 'e' ? kShiftMask : 0;
            EXPECT_EQ(editor_.Key(code, shift), DateEditor::KeyOutcome::Done);
        }
    }

    ElementArray<TextBoxElement> boxes_;
    Context context_;
    DateEditor editor_{boxes_, context_};
};

// ---- Keys -------------------------------------------------------------------

TEST_F(DateEditorTest, KeysEditTheFieldWithTheCursor) {
    const EditRules required{.nullable = false}, fromXmas{.minDate = kXmas},
        toXmas{.maxDate = kXmas}, oddSteps{.smallChange = 3, .largeChange = -2},
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
    const Case cases[] = {
        // Typing overwrites under a one-character cursor; the last digit of
        // a field moves on, and the last field wraps to the first.
        {"dd/mm/yyyy", 0, 1, "2", "2[_]/__/____", 1},
        {"dd/mm/yyyy", 0, 1, "25122007", "[25]/12/2007", 8},
        {"dd/mm/yyyy", kXmas, 1, "07", "07/[12]/2007", 2},
        {"yyyy", 0, 1, "1999", "[1999]", 4},  // one field wraps onto itself
        // A partly typed year is this century's when Enter leaves it.
        {"dd/mm/yyyy", 0, 3, "7E", "[__]/__/2007", 2},
        {"dd/mm/yyyy", kXmas, 2, "e", "[25]/12/2007", 0},
        // Right always leaves the box; Left walks back one character, then
        // into the last character of the previous field, cyclically.
        {"dd/mm/yyyy", kXmas, 1, ">", "25/[12]/2007", 0},
        {"dd/mm/yyyy", kXmas, 2, "<", "25/1[2]/2007", 0},
        {"dd/mm/yyyy", kXmas, 2, "<<", "25/[1]2/2007", 0},
        {"dd/mm/yyyy", kXmas, 2, "<<<", "2[5]/12/2007", 0},
        {"dd/mm/yyyy", kXmas, 1, "<<<", "25/12/200[7]", 0},
        {"dd mmmm yyyy", kXmas, 3, "<<<<<", "25 [dicembre] 2007", 0},
        {"dd mmmm yyyy", kXmas, 2, "<", "[25] dicembre 2007", 0},
        // Delete blanks the character under the cursor, or the whole field.
        {"dd/mm/yyyy", kXmas, 1, "<D", "2[_]/12/2007", 1},
        {"dd/mm/yyyy", kXmas, 1, "D", "[]__/12/2007", 1},
        {"dd mmmm yyyy", kXmas, 2, "D", "25 []_________ 2007", 1},
        // Backspace blanks the character under the cursor and walks back; a
        // whole field is emptied and left, unless it may not be blank.
        {"dd/mm/yyyy", kXmas, 2, "<B", "25/[1]_/2007", 1},
        {"dd/mm/yyyy", kXmas, 2, "<BB", "2[5]/__/2007", 2},
        {"dd/mm/yyyy", kXmas, 2, "B", "[25]/__/2007", 1},
        {"dd/mm/yyyy", kXmas, 2, "B", "25/[__]/2007", 1, required},
        // Name fields take no digits.
        {"dd mmmm yyyy", kXmas, 2, "5", "25 [dicembre] 2007", 0},
        // Steps follow the calendar; blank fields other than this one stay
        // blank, and a step past MinDate..MaxDate does nothing.
        {"dd/mm/yyyy", kXmas, 1, "U", "[26]/12/2007", 1},
        {"dd/mm/yyyy", Ymd(2001, 1, 31), 1, "U", "[01]/02/2001", 1},
        {"dd/mm/yyyy", Ymd(2001, 1, 31), 2, "U", "28/[02]/2001", 1},
        {"dd/mm/yyyy", 0, 1, "U", "[02]/__/____", 1},  // from 1 August 2000
        {"dd/mm/yyyy", 0, 2, "u", "__/[07]/____", 1},
        {"dd/mm/yyyy", kXmas, 3, "P", "25/12/[2017]", 1},
        {"dd/mm/yyyy", kXmas, 1, "u", "[25]/12/2007", 0, fromXmas},
        {"dd/mm/yyyy", kXmas, 1, "U", "[25]/12/2007", 0, toXmas},
        {"dd/mm/yyyy", kXmas, 2, "Up", "25/[05]/2008", 2, oddSteps},
        {"dd/mm/yyyy", kXmas, 3, "P", "25/12/[2007]", 0, hugeSteps},  // past the calendar
        {"dd mmmm yyyy", kXmas, 2, "U", "25 [gennaio] 2008", 1},
        {"dddd dd", kXmas, 1, "U", "[mercoledì] 26", 1},
        {"dd ww yyyy", kXmas, 2, "U", "01 [1] 2008", 1},  // a week on
        {"q yyyy", kXmas, 1, "u", "[3] 2007", 1},         // a quarter back
        {"hh:nn", TimeSerial(23, 30, 0), 1, "U", "[00]:30", 1},
        // F5 sets today and keeps the cursor where it was; nothing when
        // today lies outside the limits.
        {"dd/mm/yyyy", 0, 2, "T", "22/[1]1/2026", 1},
        {"dd/mm/yyyy", 0, 2, "<T", "22/1[1]/2026", 1},
        {"dd/mm/yyyy", kXmas, 2, "T", "25/[12]/2007", 0, toXmas},
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

TEST_F(DateEditorTest, CalendarKeysAreLeftToTheControlAndNumericPadDigitsType) {
    Start("dd/mm/yyyy", kXmas, 2);
    using enum DateEditor::KeyOutcome;
    EXPECT_EQ(editor_.Key(host::kKeyF4, 0), OpenCalendar);
    EXPECT_EQ(editor_.Key(host::kKeyDown, host::kAltMask), OpenCalendar);
    EXPECT_EQ(editor_.Key(host::kKeyDown, host::kShiftMask), OpenCalendar);
    for (Integer key : {host::kKeyUp, host::kKeyPageUp, host::kKeyPageDown})
        EXPECT_EQ(editor_.Key(key, host::kShiftMask), Done);  // and do nothing
    EXPECT_EQ(editor_.Key(host::kKeyA, 0), Done);
    EXPECT_EQ(View(), "25/[12]/2007");
    EXPECT_EQ(context_.changes, 0);
    EXPECT_EQ(editor_.Key(host::kKeyNumpad0 + 2, 0), Done);
    EXPECT_EQ(View(), "25/2[_]/2007");
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
    try {
        editor_.Key(host::kKeyUp, 0);  // 7 x 400000000 leaves 32 bits
        ADD_FAILURE() << "no overflow";
    } catch (const HostError& e) {
        EXPECT_EQ(e.Number(), 6);
    }
    EXPECT_TRUE(editor_.Ready());
}

// ---- Leaving a field --------------------------------------------------------

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
        {"dd/mm/yyyy", kXmas, 3, "7___", true, "25/12/2007", true, 1},
        {"dd/mm/yyyy", kXmas, 3, "13__", true, "25/12/2013", true, 1},
        {"dd/mm/yyyy", kXmas, 3, "0___", true, "25/12/2000", true, 1},
        {"dd/mm/yyyy", kXmas, 3, "9999", true, "25/12/9980", true, 2},
        {"dd/mm/yyyy", kXmas, 3, "0050", true, "25/12/0100", true, 2},
        {"dd/mm/yyyy", kXmas, 2, "00", true, "25/01/2007", true, 2},
        {"dd/mm/yyyy", kXmas, 2, "13", true, "25/12/2007", true, 2},
        {"dd/mm/yyyy", kXmas, 2, "5_", true, "25/05/2007", true, 0},
        {"dd/mm/yyyy", kXmas, 1, "0_", true, "__/12/2007", true, 0},
        {"dd/mm/yyyy", kXmas, 1, "0_", false, "0_/12/2007", false, 0},
        {"dd/mm/yyyy", kXmas, 1, "__", true, "__/12/2007", true, 0},
        {"dd/mm/yyyy", kXmas, 1, "__", false, "__/12/2007", false, 0},
        {"dd/mm/yyyy", Ymd(2001, 2, 1), 1, "31", true, "28/02/2001", true, 2},
        {"dd/mm/yyyy", Ymd(2000, 2, 1), 1, "31", true, "29/02/2000", true, 2},
        {"dd/mm/yyyy", Ymd(2007, 4, 1), 1, "31", true, "30/04/2007", true, 2},
        // A new month or year shortens a day that no longer fits; a blank
        // day stays blank.
        {"dd/mm/yyyy", Ymd(2007, 3, 31), 2, "04", true, "30/04/2007", true, 2},
        {"dd/mm/yyyy", Ymd(2000, 2, 29), 3, "2001", true, "28/02/2001", true, 2},
        {"dd/mm/yyyy", 0, 3, "2001", true, "__/__/2001", true, 0},
        {"hh:nn", TimeSerial(10, 0, 0), 1, "0_", true, "00:00", true, 0},
        {"hh:nn", TimeSerial(10, 0, 0), 2, "99", true, "10:59", true, 2},
        {"hh:nn", TimeSerial(10, 0, 0), 1, "4_", true, "04:00", true, 0},
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

TEST_F(DateEditorTest, ABlankFieldOfARequiredValueKeepsTheCursor) {
    context_.rules.nullable = false;
    Start("dd/mm/yyyy", kXmas);
    Keys("D");
    EXPECT_FALSE(editor_.FocusBox(3));
    EXPECT_EQ(editor_.Current(), 1);
    Keys("4");
    EXPECT_TRUE(editor_.FocusBox(3));
    EXPECT_EQ(View(), "04/12/[2007]");
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
    for (int i = 1; i <= 6; ++i) {
        EXPECT_EQ(boxes_(i).tabStop, i == 1) << i;
        EXPECT_EQ(editor_.TokenOfBox(i)->controlIndex, i);
    }
    editor_.SetPattern("hh:nn");
    EXPECT_EQ(boxes_.Count(), 2);
    EXPECT_EQ(editor_.Current(), 1);  // its box went away
    editor_.SetPattern("ab");
    EXPECT_EQ(boxes_.Count(), 0);
    EXPECT_EQ(editor_.Current(), 0);
}

}  // namespace
}  // namespace kelvarin::controls

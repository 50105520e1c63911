#include "controls/datebox/DateBox.h"

#include <gtest/gtest.h>

#include "common/HostError.h"
#include "controls/datebox/ChangeFlags.h"
#include "host/Keys.h"
#include "host/Site.h"
#include "host/headless/HeadlessHost.h"
#include "library/Dispatch.h"

namespace kelvarin::controls {
namespace {

using host::headless::HeadlessHost;
using host::headless::Placed;
using Strings = std::vector<std::string>;

Date Ymd(int y, int m, int d) { return DateSerial(y, m, d); }

class DateBoxTest : public ::testing::Test {
protected:
    DateBoxTest() { host_.eventNames = library::EventName; }
    DateBox& Make(const std::string& pattern = "dd/mm/yyyy", int width = 120, int height = 21) {
        auto box = std::make_unique<DateBox>();
        DateBox& b = *box;
        placed_ = &host_.Add("d1", std::move(box), {width, height});
        host::PlaceNew(b, *placed_);
        if (pattern != "dd/mm/yyyy") b.SetDateFormat(pattern);
        Drain();
        return b;
    }
    DateBox& Load(host::MemoryPropertyBag& bag, int width = 120, int height = 21) {
        auto box = std::make_unique<DateBox>();
        DateBox& b = *box;
        placed_ = &host_.Add("d2", std::move(box), {width, height});
        host::PlaceLoaded(b, bag, *placed_);
        return b;
    }
    void Drain() {
        host_.events.clear();
        host_.notifications.clear();
    }
    Strings Events() {
        Strings out;
        for (auto& e : host_.events) out.push_back(e.name);
        host_.events.clear();
        return out;
    }
    Strings Notified() {
        Strings out;
        for (auto& n : host_.notifications) out.push_back(n.property);
        host_.notifications.clear();
        return out;
    }
    // The texts of the field boxes, in order.
    Strings Texts(const DateBox& b) {
        Strings out;
        for (int i = 1; i <= b.TxtData().Count(); ++i) out.push_back(b.TxtData()(i).text);
        return out;
    }
    // Types a field as the keyboard leaves it: the text, and its number stored.
    void Type(DateBox& b, int box, const std::string& text) {
        b.SetBoxText(box, text);
        b.SetPart(b.TokenOfBox(box)->part, LeadingNumber(text), box);
    }
    OLE_COLOR At(int x, int y) { return placed_->Get().Site().ClientSurface().GetPixel({x, y}); }

    HeadlessHost host_;
    Placed* placed_ = nullptr;
};

// ---- Value, ValueDB, Nullable, limits -------------------------------------------

TEST_F(DateBoxTest, ValueIgnoresTheEmptyDateWhenNotNullableAndDatesOutsideTheLimits) {
    DateBox& b = Make();
    b.SetValue(Ymd(2007, 12, 25));
    EXPECT_EQ(Texts(b), (Strings{"25", "12", "2007"}));
    EXPECT_EQ(Events(), Strings{"Change"});
    EXPECT_EQ(Notified(), Strings{"Value"});

    b.SetValue(Ymd(2007, 12, 25));  // the same date again still tells
    EXPECT_EQ(Events(), Strings{"Change"});

    b.SetMinDate(Ymd(2000, 1, 1));
    b.SetMaxDate(Ymd(2010, 12, 31));
    Drain();
    for (Date outside : {Ymd(1999, 12, 31), Ymd(2011, 1, 1)}) {
        b.SetValue(outside);
        EXPECT_EQ(b.Value(), Ymd(2007, 12, 25));
    }
    b.SetValue(Ymd(2010, 12, 31));  // the limits themselves are allowed
    EXPECT_EQ(b.Value(), Ymd(2010, 12, 31));
    Drain();

    b.SetNullable(false);
    b.SetValue(0);
    EXPECT_EQ(b.Value(), Ymd(2010, 12, 31));
    EXPECT_TRUE(Events().empty());
    b.SetNullable(true);
    b.SetValue(0);
    EXPECT_EQ(b.Value(), 0);
    EXPECT_EQ(Texts(b), (Strings{"__", "__", "____"}));
    EXPECT_EQ(Events(), Strings{"Change"});
}

TEST_F(DateBoxTest, ValueDBTakesNullAndTextAndGivesNullForTheEmptyDate) {
    DateBox& b = Make();
    EXPECT_TRUE(b.ValueDB().IsNull());
    b.SetValueDB(Variant("25/12/2007"));
    EXPECT_EQ(b.ValueDB(), Variant::FromDate(Ymd(2007, 12, 25)));
    b.SetValueDB(Variant::FromDate(Ymd(2008, 1, 2)));
    EXPECT_EQ(b.Value(), Ymd(2008, 1, 2));
    // Null, a text that is no date and a plain number all count as the empty date.
    for (const Variant& empty :
         {Variant::Null(), Variant("not a date"), Variant(39441.0), Variant()}) {
        b.SetValue(Ymd(2008, 1, 2));
        b.SetValueDB(empty);
        EXPECT_TRUE(b.ValueDB().IsNull());
    }
    b.SetValue(Ymd(2008, 1, 2));
    b.SetNullable(false);
    Drain();
    b.SetValueDB(Variant::Null());  // ignored by a control that may not be empty
    EXPECT_EQ(b.Value(), Ymd(2008, 1, 2));
    EXPECT_TRUE(Events().empty());
}

TEST_F(DateBoxTest, NullableOffFillsAnEmptyControlWithTodayWithoutChange) {
    host_.today = Ymd(2026, 11, 22);
    DateBox& b = Make();
    b.SetNullable(false);
    EXPECT_EQ(b.Value(), Ymd(2026, 11, 22));
    EXPECT_EQ(Texts(b), (Strings{"22", "11", "2026"}));
    EXPECT_EQ(Notified(), (Strings{"Value", "Nullable"}));
    EXPECT_TRUE(Events().empty());
}

TEST_F(DateBoxTest, CheckLimitsKeepsTheYearRangeAndOrdersTheLimits) {
    DateBox& b = Make();
    b.SetMaxDate(Ymd(9999, 12, 31));
    EXPECT_EQ(b.MaxDate(), Ymd(9980, 12, 31));
    EXPECT_EQ(Notified(), (Strings{"MaxDate", "MaxDate"}));
    b.SetValue(Ymd(2007, 5, 3));
    b.SetMinDate(Ymd(2008, 1, 1));
    Drain();
    b.SetMaxDate(Ymd(2007, 1, 1));  // below the minimum: the minimum
    EXPECT_EQ(b.MaxDate(), Ymd(2008, 1, 1));
    EXPECT_TRUE(b.IsValueAllowed(0));
    EXPECT_FALSE(b.IsValueAllowed(Ymd(2008, 1, 2)));

    // A stored value outside new limits is moved inside, quietly.
    b.SetMaxDate(Ymd(2009, 1, 1));
    b.SetValue(Ymd(2008, 6, 1));
    Drain();
    b.SetMinDate(Ymd(2008, 7, 1));
    EXPECT_EQ(b.StoredValue(), Ymd(2008, 7, 1));
    EXPECT_EQ(Texts(b), (Strings{"01", "07", "2008"}));
    EXPECT_EQ(Notified(), (Strings{"Value", "MinDate"}));
    EXPECT_TRUE(Events().empty());
}

// ---- Parts and boxes --------------------------------------------------------------

TEST_F(DateBoxTest, SetPartRewritesEveryOtherBoxOfThePartAndFollowsTheFlags) {
    DateBox& b = Make("dddd dd/mm/yyyy dd");
    b.SetValue(Ymd(2007, 12, 25));
    EXPECT_EQ(Texts(b), (Strings{"martedì", "25", "12", "2007", "25"}));
    Drain();
    b.SetPart(kDay, 26, 2);  // typed in box 2: that box is left alone
    EXPECT_EQ(Texts(b), (Strings{"mercoledì", "25", "12", "2007", "26"}));
    EXPECT_EQ(Events(), Strings{"Change"});
    b.SetPart(kDay, 26, -1);
    EXPECT_TRUE(Events().empty());  // nothing changed
    b.SetPart(kDay, 0, -1);         // a zero date part is blank
    EXPECT_EQ(b.Parts()[kDay], kBlank);
    EXPECT_EQ(Texts(b), (Strings{"_________", "__", "12", "2007", "__"}));
    Drain();
    b.SetPart(kHour, 0, -1);  // a zero time part is a value
    EXPECT_EQ(b.Parts()[kHour], 0);

    SetForceChange(true);
    b.SetPart(kMonth, 12, -1);
    EXPECT_EQ(Events(), Strings{"Change"});
    SetForceChange(false);
    {
        QuietChanges quiet;
        b.SetPart(kMonth, 11, -1);
    }
    EXPECT_TRUE(Events().empty());
    EXPECT_EQ(Texts(b)[2], "11");
}

TEST_F(DateBoxTest, ClampBoxAndCommitBoxCompleteTheFieldBeingLeft) {
    struct Case {
        const char* pattern;
        Date start;
        int box;
        const char* typed;
        bool nullable;
        const char* left;  // the box's text afterwards
        bool mayLeave;
        int changes;  // one for a stored part that differs, one more for a correction
    };
    const Date xmas = Ymd(2007, 12, 25);
    const Case cases[] = {
        {"dd/mm/yyyy", xmas, 3, "7___", true, "2007", true, 1},
        {"dd/mm/yyyy", xmas, 3, "13__", true, "2013", true, 1},
        {"dd/mm/yyyy", xmas, 3, "0___", true, "2000", true, 1},
        {"dd/mm/yyyy", xmas, 3, "9999", true, "9980", true, 2},
        {"dd/mm/yyyy", xmas, 3, "0050", true, "0100", true, 2},
        {"dd/mm/yyyy", xmas, 2, "00", true, "01", true, 2},
        {"dd/mm/yyyy", xmas, 2, "13", true, "12", true, 2},
        {"dd/mm/yyyy", xmas, 2, "5_", true, "05", true, 0},
        {"dd/mm/yyyy", xmas, 1, "0_", true, "__", true, 0},
        {"dd/mm/yyyy", xmas, 1, "0_", false, "0_", false, 0},
        {"dd/mm/yyyy", xmas, 1, "__", true, "__", true, 0},
        {"dd/mm/yyyy", xmas, 1, "__", false, "__", false, 0},
        {"dd/mm/yyyy", Ymd(2001, 2, 1), 1, "31", true, "28", true, 2},
        {"dd/mm/yyyy", Ymd(2000, 2, 1), 1, "31", true, "29", true, 2},
        {"dd/mm/yyyy", Ymd(2007, 4, 1), 1, "31", true, "30", true, 2},
        {"hh:nn", TimeSerial(10, 0, 0), 1, "0_", true, "00", true, 0},
        {"hh:nn", TimeSerial(10, 0, 0), 2, "99", true, "59", true, 2},
        {"hh:nn", TimeSerial(10, 0, 0), 1, "4_", true, "04", true, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.pattern) + " box " + std::to_string(c.box) + " " + c.typed);
        host_.Clear();
        DateBox& b = Make(c.pattern);
        b.SetValue(c.start);
        b.SetNullable(c.nullable);
        Type(b, c.box, c.typed);
        Drain();
        EXPECT_EQ(b.CommitBox(c.box), c.mayLeave);
        EXPECT_EQ(b.TxtData()(c.box).text, c.left);
        const Strings events = Events();
        EXPECT_EQ(std::count(events.begin(), events.end(), "Change"), c.changes);
        const Long stored = b.Parts()[b.TokenOfBox(c.box)->part];
        EXPECT_EQ(stored, std::string(c.left).find('_') == 0 || c.left == std::string("0_")
                              ? kBlank
                              : LeadingNumber(c.left));
    }
}

TEST_F(DateBoxTest, ANewMonthOrYearShortensTheDay) {
    DateBox& b = Make();
    b.SetValue(Ymd(2007, 3, 31));
    Type(b, 2, "04");
    Drain();
    EXPECT_TRUE(b.CommitBox(2));
    EXPECT_EQ(Texts(b), (Strings{"30", "04", "2007"}));
    EXPECT_EQ(b.Value(), Ymd(2007, 4, 30));
    EXPECT_EQ(Events(), (Strings{"Change", "Change"}));  // the day stored, then corrected

    b.SetValue(Ymd(2000, 2, 29));
    Type(b, 3, "2001");
    EXPECT_TRUE(b.CommitBox(3));
    EXPECT_EQ(Texts(b), (Strings{"28", "02", "2001"}));
    // Leaving the year of a blank day leaves the day blank.
    b.SetValue(0);
    Type(b, 2, "02");
    Type(b, 3, "2001");
    EXPECT_TRUE(b.CommitBox(3));
    EXPECT_EQ(Texts(b), (Strings{"__", "02", "2001"}));
}

TEST_F(DateBoxTest, ClampBoxKnowsTheLengthOfEveryMonth) {
    DateBox& b = Make();
    const struct {
        Long year, month, days;
    } months[] = {{2001, 2, 28}, {2004, 2, 29},  {1900, 2, 28},  {2000, 2, 29},     {kBlank, 2, 29},
                  {2007, 4, 30}, {2007, 12, 31}, {9999, 12, 31}, {2007, kBlank, 31}};
    for (const auto& m : months) {
        b.SetPart(kYear, m.year, -1);
        b.SetPart(kMonth, m.month, -1);
        b.SetBoxText(1, "99");
        b.ClampBox(1);
        EXPECT_EQ(b.Parts()[kDay], m.days) << m.year << "-" << m.month;
    }
}

TEST_F(DateBoxTest, ShowValueBlanksWhatAValueDoesNotFill) {
    DateBox& b = Make("dd mmmm yyyy hh:nn");
    b.SetValue(TimeSerial(13, 45, 0));
    // A blank name box shows as many "_" as fit in its width.
    EXPECT_EQ(Texts(b), (Strings{"__", "_________", "____", "13", "45"}));
    EXPECT_TRUE(b.Ready());
    b.SetValue(CombineDateTime(Ymd(2007, 9, 5), TimeSerial(8, 5, 0)));
    EXPECT_EQ(Texts(b), (Strings{"05", "settembre", "2007", "08", "05"}));
    b.SetDateFormat("dd/mm/yyyy");
    EXPECT_EQ(b.Value(), Ymd(2007, 9, 5));  // the time has no field left
}

// ---- Boxes and layout ---------------------------------------------------------------

TEST_F(DateBoxTest, CreateBoxesNumbersFieldsAndLiteralsApartAndReusesThem) {
    DateBox& b = Make("c");
    EXPECT_EQ(b.TxtData().Count(), 6);
    EXPECT_EQ(b.LblSeparator().Count(), 5);
    for (int i = 1; i <= 6; ++i) {
        EXPECT_EQ(b.TxtData()(i).tabStop, i == 1) << i;
        EXPECT_TRUE(b.TxtData()(i).visible);
        EXPECT_EQ(b.Tokens()[LeadingNumber(b.TxtData()(i).tag)].controlIndex, i);
    }
    EXPECT_EQ(b.LblSeparator()(3).caption, " ");
    EXPECT_EQ(b.LblSeparator()(3).tag, "5");
    b.SetForeColor(RGB(1, 2, 3));
    b.SetLocked(true);
    b.SetDateFormat("hh:nn");
    EXPECT_EQ(b.TxtData().Count(), 2);
    EXPECT_EQ(b.LblSeparator().Count(), 1);
    b.SetDateFormat("dd/mm/yyyy hh:nn");  // new boxes look like the old ones
    EXPECT_EQ(b.TxtData()(5).foreColor, RGB(1, 2, 3));
    EXPECT_TRUE(b.TxtData()(5).locked);
    EXPECT_FALSE(b.TxtData()(5).tabStop);
    b.SetDateFormat("ab");  // no field at all: the settings are still there
    EXPECT_EQ(b.TxtData().Count(), 0);
    EXPECT_EQ(b.ForeColor(), RGB(1, 2, 3));
    EXPECT_TRUE(b.Locked());
    EXPECT_EQ(b.Value(), 0);
}

TEST_F(DateBoxTest, LayoutFollowsTheFontTheAlignmentAndTheButton) {
    // Headless font: 8 points is 7 pixels a character and 15 a line.
    struct Case {
        const char* pattern;
        int width, height;
        Long border, alignment;
        bool button;
        Long left, top, textWidth, textHeight;
    };
    const Case cases[] = {
        {"dd/mm/yyyy", 120, 21, 1, 0, true, 0, 1, 87, 15},  // 3D border: 116 x 17 inside
        {"dd/mm/yyyy", 120, 21, 1, 1, true, 29, 1, 87, 15},
        {"dd/mm/yyyy", 120, 21, 1, 2, true, 14, 1, 87, 15},  // 14.5 to even
        {"dd/mm/yyyy", 120, 21, 0, 2, true, 16, 3, 87, 15},  // 33 / 2 = 16.5 to even
        {"dd/mm/yyyy", 121, 21, 0, 2, true, 17, 3, 87, 15},  // 17.5 to even
        {"dd/mm/yyyy", 120, 21, 1, 1, false, 46, 1, 70, 15},
        {"dd/mm/yyyy", 60, 10, 1, 1, true, -31, -4, 87, 15},      // too small: negative, truncated
        {"d mmmm yyyy", 200, 30, 1, 0, true, 0, 5, 136, 15},      // "settembre": 9 characters
        {"dddd dd/mm/yyyy", 200, 30, 0, 0, true, 0, 7, 157, 15},  // "mercoledì"
        {"hh:nn:ss", 100, 20, 0, 0, false, 0, 2, 56, 15},
        {"ww", 100, 20, 0, 0, false, 0, 2, 14, 15},
        {"y", 100, 20, 0, 0, false, 0, 2, 14, 15},  // day 60 of 2241
        {"", 100, 20, 0, 0, true, 0, 2, 17, 15},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.pattern) + " " + std::to_string(c.width) + "x" +
                     std::to_string(c.height) + " alignment " + std::to_string(c.alignment));
        host_.Clear();
        DateBox& b = Make(c.pattern, c.width, c.height);
        b.SetBorderStyle(c.border);
        host::SyncFrame(b, *placed_);
        b.SetCalendarButton(c.button);
        b.SetAlignment(c.alignment);
        EXPECT_EQ(b.TextLeft(), c.left);
        EXPECT_EQ(b.TextTop(), c.top);
        EXPECT_EQ(b.TextWidth(), c.textWidth);
        EXPECT_EQ(b.TextHeight(), c.textHeight);
        // Boxes and labels side by side from TextLeft.
        Long x = c.left;
        for (const FormatToken& t : b.Tokens()) {
            const int left = t.isLiteral ? b.LblSeparator()(t.controlIndex).left
                                         : b.TxtData()(t.controlIndex).left;
            EXPECT_EQ(left, x);
            x += t.pixelWidth;
        }
    }
}

TEST_F(DateBoxTest, FontAndButtonResizeTheLayout) {
    DateBox& b = Make("dd/mm/yyyy", 120, 21);
    const ButtonElement& button = b.CmdSelezione();
    EXPECT_EQ(button.left, 99);
    EXPECT_EQ(button.width, DateBox::kButtonWidth);
    EXPECT_EQ(button.height, 17);
    EXPECT_EQ(button.glyphPoints, 7);  // 17 pixels are 255 twips; 255 / 35
    b.SetFont(std::make_shared<Font>("Sans Serif", 10.0, true));  // 10 + 1 pixels, 19 high
    EXPECT_EQ(b.TextWidth(), 10 * 10 + 17);
    EXPECT_EQ(b.TextHeight(), 19);
    EXPECT_EQ(b.TextTop(), -1);
    EXPECT_EQ(b.TxtData()(3).width, 40);
    EXPECT_EQ(b.LblSeparator()(1).width, 10);
    EXPECT_EQ(b.GetFont()->size, 10.0);

    placed_->SetOuterSize({120, 60});
    b.Resize();
    EXPECT_EQ(b.CmdSelezione().glyphPoints, 10);  // 56 high would be 24: at most 10
    placed_->SetOuterSize({120, 4});
    b.Resize();
    EXPECT_EQ(b.CmdSelezione().glyphPoints, 1);
    EXPECT_THROW(b.SetFont(nullptr), HostError);
}

TEST_F(DateBoxTest, AppearanceKeepsTheBackColour) {
    DateBox& b = Make();
    b.SetBackColor(RGB(10, 20, 30));
    b.SetAppearance(0);
    EXPECT_EQ(b.BackColor(), RGB(10, 20, 30));
    EXPECT_EQ(b.TxtData()(2).backColor, RGB(10, 20, 30));
    EXPECT_EQ(Notified(), (Strings{"BackColor", "Appearance"}));
}

TEST_F(DateBoxTest, EnabledReachesEveryConstituentButNotTheSurface) {
    DateBox& b = Make();
    b.SetEnabled(false);
    EXPECT_FALSE(b.Enabled());
    EXPECT_FALSE(b.TxtData()(3).enabled);
    EXPECT_FALSE(b.LblSeparator()(2).enabled);
    EXPECT_FALSE(b.CmdSelezione().enabled);
    EXPECT_TRUE(b.SurfaceState().enabled);
}

// ---- Focus and mouse --------------------------------------------------------------------

TEST_F(DateBoxTest, FocusSelectsAndLeavingABlankFieldOfARequiredDateIsRefused) {
    DateBox& b = Make();
    b.SetValue(Ymd(2007, 12, 25));
    b.GotFocus();
    EXPECT_EQ(b.ActiveBox(), 1);
    EXPECT_EQ(b.TxtData()(1).selLength, 2);
    EXPECT_TRUE(b.QueryLeaveFocus());
    b.LostFocus();
    EXPECT_EQ(b.ActiveBox(), 0);

    b.SetNullable(false);
    b.GotFocus();
    Type(b, 1, "__");
    EXPECT_FALSE(b.FocusBox(3));
    EXPECT_EQ(b.ActiveBox(), 1);
    EXPECT_FALSE(b.QueryLeaveFocus());
    Type(b, 1, "4_");
    EXPECT_TRUE(b.FocusBox(3));
    EXPECT_EQ(b.TxtData()(1).text, "04");
    EXPECT_EQ(b.ActiveBox(), 3);
    EXPECT_EQ(b.TxtData()(3).selLength, 4);
}

TEST_F(DateBoxTest, AClickSelectsABoxAndEveryPressReachesTheContainerInControlCoordinates) {
    DateBox& b = Make();
    b.SetValue(Ymd(2007, 12, 25));
    b.GotFocus();
    Drain();
    // The press that brought the focus lands on the year box directly.
    b.MouseDown(1, 0, 50.0f, 8.0f);
    EXPECT_EQ(b.ActiveBox(), 3);
    EXPECT_EQ(b.TxtData()(3).selStart, 1);  // the caret nearest to the pointer
    EXPECT_EQ(b.TxtData()(3).selLength, 0);
    b.MouseUp(1, 0, 50.0f, 8.0f);
    EXPECT_EQ(b.TxtData()(3).selLength, 4);
    ASSERT_EQ(host_.events.size(), 2u);
    EXPECT_EQ(host_.events[0].name, "MouseDown");
    EXPECT_EQ(host_.events[0].args[2], Variant(50.0f));
    EXPECT_EQ(host_.events[0].args[3], Variant(8.0f));
    Drain();

    // A drag selects part of a box, and the release keeps it.
    b.MouseDown(1, 0, 43.0f, 8.0f);
    b.MouseMove(1, 0, 60.0f, 8.0f);
    b.MouseUp(1, 0, 60.0f, 8.0f);
    EXPECT_EQ(b.TxtData()(3).selStart, 0);
    EXPECT_EQ(b.TxtData()(3).selLength, 3);
    // Separators and the bare surface report the press; the button keeps it.
    Drain();
    b.MouseDown(1, 0, 16.0f, 8.0f);
    b.MouseUp(1, 0, 16.0f, 8.0f);
    b.MouseDown(1, 0, 105.0f, 8.0f);
    b.MouseUp(1, 0, 105.0f, 8.0f);
    b.MouseMove(0, 0, 90.0f, 8.0f);
    EXPECT_EQ(Events(), (Strings{"MouseDown", "MouseUp", "MouseMove"}));
    EXPECT_EQ(b.ActiveBox(), 3);
}

// ---- Painting --------------------------------------------------------------------------

TEST_F(DateBoxTest, PaintShowsTheSelectionOfTheFocusedBoxAndTheButtonFace) {
    DateBox& b = Make();
    b.SetValue(Ymd(2007, 12, 25));
    b.SetBackColor(RGB(250, 250, 250));
    const OLE_COLOR highlight = TranslateSysColor(SystemColor(COLOR_HIGHLIGHT));
    const OLE_COLOR face = TranslateSysColor(SystemColor(COLOR_BTNFACE));
    const OLE_COLOR text = TranslateSysColor(SystemColor(COLOR_WINDOWTEXT));
    EXPECT_EQ(At(0, 5), text);  // "2" of the day box: a solid block
    EXPECT_EQ(At(6, 5), RGB(250, 250, 250));
    b.GotFocus();
    EXPECT_EQ(At(6, 5), highlight);  // the gap between the selected characters
    EXPECT_EQ(At(0, 5), TranslateSysColor(SystemColor(COLOR_HIGHLIGHTTEXT)));
    EXPECT_EQ(At(27, 5), RGB(250, 250, 250));  // the month box is not selected
    EXPECT_EQ(At(108, 2), face);
    EXPECT_EQ(At(99, 5), TranslateSysColor(SystemColor(COLOR_BTNHIGHLIGHT)));
    EXPECT_EQ(At(115, 5), TranslateSysColor(SystemColor(COLOR_3DDKSHADOW)));
    // A 7-point glyph: four rows, seven pixels wide at the top, centred.
    const OLE_COLOR glyph = TranslateSysColor(SystemColor(COLOR_BTNTEXT));
    EXPECT_EQ(At(104, 6), glyph);
    EXPECT_EQ(At(110, 6), glyph);
    EXPECT_EQ(At(103, 6), face);
    EXPECT_EQ(At(107, 9), glyph);
    EXPECT_EQ(At(106, 9), face);
    b.SetCalendarButton(false);
    EXPECT_EQ(At(108, 2), RGB(250, 250, 250));
}

// ---- Persistence --------------------------------------------------------------------------

TEST_F(DateBoxTest, SaveWritesOnlyWhatDiffersAndLoadLowersTheMaximum) {
    DateBox& fresh = Make();
    host::MemoryPropertyBag defaults;
    fresh.WriteProperties(defaults);
    EXPECT_TRUE(defaults.Entries().empty());

    DateBox& reloaded = Load(defaults);
    EXPECT_EQ(reloaded.MaxDate(), Ymd(9980, 12, 31));
    EXPECT_EQ(reloaded.MinDate(), Ymd(100, 1, 1));
    EXPECT_EQ(reloaded.DateFormat(), "dd/mm/yyyy");
    EXPECT_EQ(reloaded.BorderStyle(), 1);
    EXPECT_EQ(reloaded.TextTop(), 1);
    EXPECT_EQ(Notified(), Strings{"MaxDate"});
    host::MemoryPropertyBag again;
    reloaded.WriteProperties(again);
    ASSERT_EQ(again.Entries().size(), 1u);
    EXPECT_EQ(again.Entries()[0].first, "MaxDate");
}

TEST_F(DateBoxTest, EveryPropertySurvivesSaveAndLoadInItsOrder) {
    DateBox& b = Make();
    b.SetAppearance(0);
    b.SetBackColor(RGB(1, 1, 1));
    b.SetBorderStyle(0);
    b.SetForeColor(RGB(2, 2, 2));
    b.SetEnabled(false);
    b.SetFont(std::make_shared<Font>("Serif", 12.0));
    b.SetLocked(true);
    b.SetDateFormat("dd/mm/yyyy hh:nn");
    b.SetMinDate(Ymd(2000, 1, 1));
    b.SetMaxDate(Ymd(2020, 12, 31));
    b.SetValue(CombineDateTime(Ymd(2007, 12, 25), TimeSerial(13, 45, 0)));
    b.SetAlignment(2);
    b.SetSmallChange(-3);
    b.SetLargeChange(0);
    b.SetNullable(false);
    b.SetCalendarButton(false);
    host::MemoryPropertyBag bag;
    b.WriteProperties(bag);
    Strings names;
    for (const auto& [name, value] : bag.Entries()) names.push_back(name);
    EXPECT_EQ(names, (Strings{"Appearance", "BackColor", "BorderStyle", "ForeColor", "Enabled",
                              "Font", "Locked", "Value", "Alignment", "DateFormat", "SmallChange",
                              "LargeChange", "Nullable", "CalendarButton", "MinDate", "MaxDate"}));

    DateBox& c = Load(bag);
    EXPECT_EQ(c.Appearance(), 0);
    EXPECT_EQ(c.BackColor(), RGB(1, 1, 1));
    EXPECT_EQ(c.BorderStyle(), 0);
    EXPECT_EQ(c.ForeColor(), RGB(2, 2, 2));
    EXPECT_FALSE(c.Enabled());
    EXPECT_EQ(c.GetFont()->name, "Serif");
    EXPECT_TRUE(c.Locked());
    EXPECT_EQ(c.Value(), CombineDateTime(Ymd(2007, 12, 25), TimeSerial(13, 45, 0)));
    EXPECT_EQ(Texts(c), (Strings{"25", "12", "2007", "13", "45"}));
    EXPECT_EQ(c.Alignment(), 2);
    EXPECT_EQ(c.SmallChange(), -3);
    EXPECT_EQ(c.LargeChange(), 0);
    EXPECT_FALSE(c.Nullable());
    EXPECT_FALSE(c.CalendarButton());
    EXPECT_FALSE(c.CmdSelezione().visible);
    EXPECT_EQ(c.MinDate(), Ymd(2000, 1, 1));
    EXPECT_EQ(c.MaxDate(), Ymd(2020, 12, 31));
    EXPECT_FALSE(c.TxtData()(4).enabled);
}

TEST_F(DateBoxTest, LoadResetsTheChangeFlagsAndMovesAStoredValueIntoItsLimits) {
    host::MemoryPropertyBag bag;
    bag.Set("Value", Variant::FromDate(Ymd(2030, 1, 1)));
    bag.Set("MaxDate", Variant::FromDate(Ymd(2020, 1, 1)));
    SetNotifyOnChange(false);
    SetForceChange(true);
    DateBox& b = Load(bag);
    EXPECT_TRUE(NotifyOnChange());
    EXPECT_FALSE(ForceChange());
    EXPECT_EQ(b.Value(), Ymd(2020, 1, 1));
    EXPECT_EQ(Texts(b), (Strings{"01", "01", "2020"}));
    EXPECT_EQ(Notified(), Strings{"Value"});
    EXPECT_TRUE(Events().empty());
}

// ---- Dispatch ------------------------------------------------------------------------------

TEST_F(DateBoxTest, DispatchReachesPropertiesAndTheLayoutMethods) {
    DateBox& b = Make();
    library::Let(b, "ValueDB", Variant("05/03/2007"));
    EXPECT_EQ(library::Get(b, "Value"), Variant::FromDate(Ymd(2007, 3, 5)));
    library::Let(b, "DateFormat", Variant("hh:nn"));
    EXPECT_TRUE(library::Get(b, "ValueDB").IsNull());
    EXPECT_EQ(library::Call(b, "TextWidth", {}), Variant(Long(14 + 7 + 14 + 17)));
    EXPECT_EQ(library::Call(b, "TextTop", {}), Variant(Long(1)));
    EXPECT_THROW(library::Get(b, "TextLeft"), HostError);
    EXPECT_THROW(library::Call(b, "Value", {}), HostError);
}

// ---- Keyboard --------------------------------------------------------------------

// Sends one key down and returns the code it leaves behind.
Integer Down(DateBox& b, int code, int shift = 0) {
    Integer key = static_cast<Integer>(code);
    b.KeyDown(key, static_cast<Integer>(shift));
    return key;
}

TEST_F(DateBoxTest, AKeyIsSwallowedOnceWorkedAndIgnoredWhileNotReadyOrLocked) {
    DateBox& b = Make();
    b.SetValue(Ymd(2007, 12, 25));
    b.GotFocus();
    Drain();
    EXPECT_EQ(Down(b, host::kKeyUp), 0);
    EXPECT_TRUE(b.Ready());
    EXPECT_EQ(Events(), (Strings{"Change", "KeyDown"}));
    Integer ascii = '7';
    b.KeyPress(ascii);
    EXPECT_EQ(ascii, 0);
    EXPECT_EQ(Texts(b), (Strings{"26", "12", "2007"}));

    // A key arriving while another is being worked is dropped whole.
    b.SetReady(false);
    EXPECT_EQ(Down(b, host::kKeyUp), host::kKeyUp);
    b.SetReady(true);
    b.SetLocked(true);
    EXPECT_EQ(Down(b, host::kKeyDown), host::kKeyDown);
    EXPECT_EQ(Texts(b), (Strings{"26", "12", "2007"}));
    EXPECT_EQ(Events(), Strings{"KeyPress"});
}

TEST_F(DateBoxTest, AStepThatOverflowsIsTheHostsErrorAndOneBeyondTheCalendarDoesNothing) {
    DateBox& b = Make("dd ww yyyy");
    b.SetValue(Ymd(2007, 12, 25));
    b.GotFocus();
    b.SetSmallChange(400000000);
    Down(b, host::kKeyRight);
    try {
        Down(b, host::kKeyUp);  // 7 x 400000000 leaves 32 bits
        ADD_FAILURE() << "no overflow";
    } catch (const HostError& e) {
        EXPECT_EQ(e.Number(), 6);
    }
    EXPECT_TRUE(b.Ready());
    b.SetLargeChange(2000000000);
    Drain();
    Down(b, host::kKeyRight);
    Down(b, host::kKeyPageUp);  // two thousand million years on
    EXPECT_EQ(Texts(b), (Strings{"25", "52", "2007"}));
    EXPECT_EQ(Events(), (Strings{"KeyDown", "KeyDown"}));
}

TEST_F(DateBoxTest, NameFieldsTakeNoDigitsButStepAndEmpty) {
    DateBox& b = Make("dd mmmm yyyy");
    b.SetValue(Ymd(2007, 12, 25));
    b.GotFocus();
    Down(b, host::kKeyRight);
    Down(b, '5');
    EXPECT_EQ(b.Value(), Ymd(2007, 12, 25));
    EXPECT_EQ(b.ActiveBox(), 2);
    Down(b, host::kKeyUp);
    EXPECT_EQ(b.Value(), Ymd(2008, 1, 25));
    EXPECT_EQ(b.TxtData()(3).text, "2008");
    Down(b, host::kKeyDelete);
    EXPECT_EQ(b.Parts()[kMonth], kBlank);
    EXPECT_EQ(b.TxtData()(2).text.find_first_not_of('_'), std::string::npos);
    Down(b, host::kKeyLeft);  // a name field is left at once
    EXPECT_EQ(b.ActiveBox(), 1);
    EXPECT_EQ(b.TxtData()(1).selLength, 2);
}

TEST_F(DateBoxTest, ASingleFieldWrapsOntoItselfSelectedWhole) {
    DateBox& b = Make("yyyy");
    b.GotFocus();
    for (int key : {'1', '9', '9', '9'}) Down(b, key);
    EXPECT_EQ(b.ActiveBox(), 1);
    EXPECT_EQ(b.TxtData()(1).text, "1999");
    EXPECT_EQ(b.TxtData()(1).selLength, 4);
    Down(b, host::kKeyNumpad0 + 2);
    EXPECT_EQ(b.TxtData()(1).text, "2___");
}

}  // namespace
}  // namespace kelvarin::controls

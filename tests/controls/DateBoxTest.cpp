// SPDX-License-Identifier: MIT
// Sections: value and limits; boxes and layout; mouse; painting;
// persistence.
#include "controls/datebox/DateBox.h"

#include <gtest/gtest.h>

#include "host/Site.h"
#include "host/headless/HeadlessHost.h"
#include "library/Dispatch.h"
#include "tests/ErrorOf.h"

namespace kelvarin::controls {
namespace {

using host::headless::HeadlessHost;
using host::headless::Placed;
using Strings = std::vector<std::string>;
using kelvarin::test::ErrorOf;

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
    void Drain() {
        host_.events.clear();
        host_.notifications.clear();
    }
    Strings Notified() {
        Strings out;
        for (auto& n : host_.notifications) out.push_back(n.property);
        host_.notifications.clear();
        return out;
    }
    // The line of Dump() that starts with `element`, as "txtData(3)".
    std::string Line(const DateBox& b, std::string_view element) {
        for (const std::string& line : b.Dump())
            if (line.starts_with(element)) return line;
        return {};
    }
    OLE_COLOR At(int x, int y) { return placed_->Get().Site().ClientSurface().GetPixel({x, y}); }
    static OLE_COLOR Sys(int index) { return TranslateSysColor(SystemColor(index)); }
    // Pixels of the button's glyph colour inside its face: the glyph of n
    // rows has n * n of them.
    int GlyphPixels(const DateBox& b, OLE_COLOR glyph) {
        const int right = b.Site().ClientSurface().Width(),
                  bottom = b.Site().ClientSurface().Height();
        int n = 0;
        for (int y = 2; y < bottom - 2; ++y)
            for (int x = right - 17 + 2; x < right - 2; ++x) n += At(x, y) == glyph;
        return n;
    }

    HeadlessHost host_;
    Placed* placed_ = nullptr;
};

// Values, ValueDB, Nullable, keys, the layout's basic cases, the selected
// box's and the button's pixels and persistence round trips run end to end
// in the datebox_*.khs scripts; these tests hold the edges they do not reach.

// ---- Value and limits -------------------------------------------------------

// Dates outside the limits are ignored (datebox_values), the lower limit
// is an allowed value (datebox_keys_step), and so is the upper one.
TEST_F(DateBoxTest, TheUpperLimitIsAnAllowedValue) {
    DateBox& b = Make();
    b.SetMaxDate(Ymd(2009, 1, 1));
    b.SetValue(Ymd(2009, 1, 1));
    EXPECT_EQ(b.Value(), Ymd(2009, 1, 1));
}

// ---- Boxes and layout -------------------------------------------------------

// New boxes take the old ones' settings (datebox_persist reads the pattern
// after them); a pattern with no field at all keeps them for the next one.
TEST_F(DateBoxTest, APatternWithoutFieldsKeepsTheBoxesSettings) {
    DateBox& b = Make();
    b.SetForeColor(RGB(1, 2, 3));
    b.SetLocked(true);
    b.SetValue(Ymd(2007, 12, 25));
    b.SetDateFormat("ab");
    EXPECT_EQ(Line(b, "txtData("), "");
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
        {"dd/mm/yyyy", 120, 21, 0, 2, true, 16, 3, 87, 15},  // 33 / 2 = 16.5 to even
        {"dd/mm/yyyy", 121, 21, 0, 2, true, 17, 3, 87, 15},  // 17.5 to even
        {"dd/mm/yyyy", 120, 21, 1, 1, false, 46, 1, 70, 15},
        {"dd/mm/yyyy", 60, 10, 1, 1, true, -31, -4, 87, 15},      // too small: negative, truncated
        {"dddd dd/mm/yyyy", 200, 30, 0, 0, true, 0, 7, 157, 15},  // "mercoledì"
        {"ww", 100, 20, 0, 0, false, 0, 2, 14, 15},
        {"y", 100, 20, 0, 0, false, 0, 2, 14, 15},  // day 60 of 2241
        {"", 100, 20, 0, 0, true, 0, 2, 17, 15},
    };
    const OLE_COLOR ink = Sys(COLOR_WINDOWTEXT);
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
        // The boxes and labels side by side from TextLeft: every character
        // a block of ink but in the last column of its cell.
        const std::string shown = b.ShownText();
        const int limit = b.Site().ClientSurface().Width() - (c.button ? 17 : 0);
        for (int k = 0; k < static_cast<int>(shown.size()); ++k) {
            const int x = c.left + 7 * k;
            if (x < 0 || x + 7 > limit) continue;
            EXPECT_EQ(At(x, c.top + 5), shown[k] == ' ' ? Sys(COLOR_WINDOW) : ink) << k;
            EXPECT_NE(At(x + 6, c.top + 5), ink) << k;
        }
    }
}

TEST_F(DateBoxTest, FontAndHeightResizeTheLayoutAndTheGlyph) {
    DateBox& b = Make("dd/mm/yyyy", 120, 21);
    const OLE_COLOR glyph = Sys(COLOR_BTNTEXT);
    EXPECT_EQ(GlyphPixels(b, glyph), 4 * 4);  // 17 pixels are 255 twips: 7 points, 4 rows
    b.SetFont(std::make_shared<Font>("Sans Serif", 10.0, true));  // 10 pixels, 19 high
    EXPECT_EQ(b.TextTop(), -1);  // taller than the 17 pixels inside the border
    b.SetValue(Ymd(2007, 12, 25));
    EXPECT_EQ(At(60, 5), Sys(COLOR_WINDOWTEXT));  // the year's first digit
    EXPECT_NE(At(59, 5), Sys(COLOR_WINDOWTEXT));

    placed_->SetOuterSize({120, 60});
    b.Resize();
    EXPECT_EQ(GlyphPixels(b, glyph), 6 * 6);  // 56 high would be 24 points: at most 10
    EXPECT_EQ(ErrorOf([&] { b.SetFont(nullptr); }), 380);
}

// ---- Mouse ------------------------------------------------------------------

TEST_F(DateBoxTest, APressPutsTheCaretNearestThePointerAndADragSelects) {
    DateBox& b = Make();
    b.SetValue(Ymd(2007, 12, 25));
    b.GotFocus();
    Drain();
    b.MouseDown(1, 0, 50.0f, 8.0f);  // brings the focus: straight to the year box
    EXPECT_EQ(Line(b, "txtData(3)"), "txtData(3) \"2007\" sel 1 0 focus");
    b.MouseMove(1, 0, 60.0f, 8.0f);
    b.MouseUp(1, 0, 60.0f, 8.0f);
    EXPECT_EQ(Line(b, "txtData(3)"), "txtData(3) \"2007\" sel 1 2 focus");
    // Events in the whole control's coordinates; the button keeps its press.
    b.MouseDown(1, 0, 105.0f, 8.0f);
    b.MouseUp(1, 0, 105.0f, 8.0f);
    ASSERT_EQ(host_.events.size(), 3u);
    EXPECT_EQ(host_.events[2].name, "MouseUp");
    EXPECT_EQ(host_.events[2].args[2], Variant(60.0f));
}

// ---- Focus ------------------------------------------------------------------

// Any focus move commits the field being left, as Tab does: a half-typed
// field is completed, and a blank one of a box that may not be empty keeps
// the focus and shows it, selected whole. A disabled box is no tab stop
// and takes the focus in no way.
TEST_F(DateBoxTest, EveryFocusMoveCommitsTheFieldAndADisabledBoxTakesNone) {
    DateBox& b = Make();
    auto second = std::make_unique<DateBox>();
    DateBox& o = *second;
    Placed& other = host_.Add("d2", std::move(second), {120, 21});
    host::PlaceNew(o, other);
    b.SetValue(Ymd(2007, 12, 25));
    const auto key = [&](Integer code) {
        b.KeyDown(code, 0);
        b.KeyUp(code, 0);
    };
    ASSERT_TRUE(host_.SetFocus(placed_));
    key('3');
    EXPECT_EQ(b.ShownText(), "3_/12/2007");
    ASSERT_TRUE(host_.SetFocus(&other));  // a click on the other box
    EXPECT_EQ(b.ShownText(), "03/12/2007");
    EXPECT_EQ(b.Value(), Ymd(2007, 12, 3));

    b.SetNullable(false);
    ASSERT_TRUE(host_.SetFocus(placed_));
    key(46);  // Delete empties the whole field
    EXPECT_EQ(Line(b, "txtData(1)"), "txtData(1) \"__\" sel 0 0 focus");
    EXPECT_FALSE(host_.SetFocus(&other));
    EXPECT_FALSE(host_.FocusNext(true));
    EXPECT_EQ(host_.Focused(), placed_);
    EXPECT_EQ(Line(b, "txtData(1)"), "txtData(1) \"__\" sel 0 2 focus");

    key('0');
    key('1');
    ASSERT_TRUE(host_.SetFocus(&other));
    b.SetEnabled(false);
    EXPECT_FALSE(host_.SetFocus(placed_));
    EXPECT_TRUE(host_.FocusNext(true));  // round to the other box itself
    EXPECT_EQ(host_.Focused(), &other);
    b.SetEnabled(true);
    EXPECT_TRUE(host_.FocusNext(true));
    EXPECT_EQ(host_.Focused(), placed_);
}

// ---- Painting ---------------------------------------------------------------

TEST_F(DateBoxTest, PaintSelectsOnlyTheFocusedBoxAndGreysADisabledControl) {
    DateBox& b = Make();
    b.SetValue(Ymd(2007, 12, 25));
    b.SetBackColor(RGB(250, 250, 250));
    b.GotFocus();
    EXPECT_EQ(At(6, 5), Sys(COLOR_HIGHLIGHT));      // the gap between the selected characters
    EXPECT_EQ(At(27, 5), RGB(250, 250, 250));       // the month box is not selected
    EXPECT_EQ(At(99, 5), Sys(COLOR_BTNHIGHLIGHT));  // the button's raised edges
    EXPECT_EQ(At(115, 5), Sys(COLOR_3DDKSHADOW));
    // Disabled, the text and the glyph are grey.
    b.SetEnabled(false);
    const OLE_COLOR grey = Sys(COLOR_GRAYTEXT);
    EXPECT_EQ(At(42, 5), grey);  // the year box
    EXPECT_EQ(At(14, 5), grey);  // the first separator
    EXPECT_EQ(GlyphPixels(b, grey), 16);
    b.SetCalendarButton(false);
    EXPECT_EQ(At(108, 2), RGB(250, 250, 250));
}

// ---- Persistence ------------------------------------------------------------

// Loading moves a stored value into its limits quietly: a notification, no Change.
TEST_F(DateBoxTest, LoadMovesAStoredValueIntoItsLimitsWithoutAChange) {
    host::MemoryPropertyBag bag;
    bag.Set("Value", Variant::FromDate(Ymd(2030, 1, 1)));
    bag.Set("MaxDate", Variant::FromDate(Ymd(2020, 1, 1)));
    auto box = std::make_unique<DateBox>();
    DateBox& b = *box;
    host::PlaceLoaded(b, bag, host_.Add("d2", std::move(box), {120, 21}));
    EXPECT_EQ(b.Value(), Ymd(2020, 1, 1));
    EXPECT_EQ(b.ShownText(), "01/01/2020");
    EXPECT_EQ(Notified(), Strings{"Value"});
    EXPECT_TRUE(host_.events.empty());
}

}  // namespace
}  // namespace kelvarin::controls

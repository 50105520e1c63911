// SPDX-License-Identifier: MIT
#include "controls/calendar/frmMese.h"

#include <gtest/gtest.h>

#include <cmath>

#include "controls/calendar/CalendarHook.h"
#include "controls/datebox/DateBox.h"
#include "host/Site.h"
#include "host/headless/HeadlessHost.h"

namespace kelvarin::controls {
namespace {

Date Ymd(int y, int m, int d) { return DateSerial(y, m, d); }

// A popup opened from a text in a label of the test's own, on a DateBox's site.
class CalendarTest : public ::testing::Test {
protected:
    CalendarTest() : site_(host_.Add("d1", std::make_unique<DateBox>(), {120, 24})) {
        host::PlaceNew(site_.Get(), site_);
        host_.today = Ymd(2026, 11, 22);
        SetCalendarResultLabel(&label_);
        SetCalendarMinDate(kMinDateSerial);
        SetCalendarMaxDate(kMaxDateSerial);
        label_.onChange = [this] { written_.push_back(label_.Caption()); };
    }
    ~CalendarTest() override {
        UnhookCalendar();
        ForgetCalendarResultLabel(&label_);
    }
    std::unique_ptr<frmMese> Open(std::string exchange) {
        label_.SetCaption(std::move(exchange));
        written_.clear();
        return std::make_unique<frmMese>(site_, Font("Sans Serif", 8.0));
    }
    void Key(frmMese& f, Integer code) { f.KeyDown(code, 0); }
    void Click(frmMese& f, Single x, Single y) {
        f.MouseDown(1, 0, x, y);
        f.MouseUp(1, 0, x, y);
    }

    host::headless::HeadlessHost host_;
    host::headless::Placed& site_;
    ExchangeLabel label_;
    std::vector<std::string> written_;
};

// The week starts on Monday, and a month that starts on a Monday starts in
// the second row (one that starts on another day is calendar_choose's).
TEST_F(CalendarTest, AMonthThatStartsOnAMondayStartsInTheSecondRow) {
    auto f = Open("10/02/2021");
    EXPECT_EQ(f->CellDate(1, 0), Ymd(2021, 1, 25));
    EXPECT_EQ(f->CellDate(7, 0), Ymd(2021, 1, 31));
    EXPECT_EQ(f->CellDate(1, 1), Ymd(2021, 2, 1));
    EXPECT_EQ(f->CellDate(7, 5), Ymd(2021, 3, 7));
}

TEST_F(CalendarTest, ClampKeepsTheAllowedRangeAndTheCalendarsFirstDay) {
    SetCalendarMinDate(Ymd(2020, 1, 10));
    SetCalendarMaxDate(Ymd(2020, 12, 20));
    EXPECT_EQ(ClampCalendarDate(0), 0);
    EXPECT_EQ(ClampCalendarDate(Ymd(2020, 1, 9)), Ymd(2020, 1, 10));
    EXPECT_EQ(ClampCalendarDate(Ymd(2020, 12, 21)), Ymd(2020, 12, 20));
    SetCalendarMinDate(kMinDateSerial);
    EXPECT_EQ(ClampCalendarDate(Ymd(100, 1, 15)), Ymd(100, 2, 1));
}

TEST_F(CalendarTest, KeysMoveTheHighlightAndTheShownMonthFollows) {
    struct Case {
        const char* exchange;
        Integer key;
        Date expected;
    } cases[] = {
        {"31/03/2020", 33, Ymd(2020, 2, 29)},  // Page Up clips to the month's end
        {"31/01/2021", 34, Ymd(2021, 2, 28)},  {"05/03/2007", 38, Ymd(2007, 2, 26)},
        {"31/12/2007", 39, Ymd(2008, 1, 1)},   {"05/03/2007", 65, Ymd(2007, 3, 5)},
        {"31/12/9999", 39, Ymd(9999, 12, 31)},  // the calendar's last day
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.exchange) + " key " + std::to_string(c.key));
        auto f = Open(c.exchange);
        Key(*f, c.key);
        EXPECT_TRUE(f->IsOpen());
        EXPECT_EQ(f->CurrentDate(), c.expected);
        EXPECT_EQ(f->ShownMonth(), SplitDate(c.expected).month);
        EXPECT_EQ(f->ShownYear(), SplitDate(c.expected).year);
        EXPECT_TRUE(written_.empty());
    }
}

TEST_F(CalendarTest, RightStopsAtCalendarMaxDate) {
    SetCalendarMaxDate(Ymd(2007, 3, 6));
    auto f = Open("05/03/2007");
    Key(*f, 39);
    Key(*f, 39);
    EXPECT_EQ(f->CurrentDate(), Ymd(2007, 3, 6));
}

// Escape after moving writes the opening date back (calendar_cancel); with
// no opening date, today's month is shown and "no date" goes back.
TEST_F(CalendarTest, EscapeWithoutAnOpeningDateWritesNoDate) {
    auto f = Open("-1/-1/-1");
    EXPECT_EQ(f->OpeningDateParts(), (std::array<Long, 3>{-1, -1, -1}));
    EXPECT_EQ(f->ShownMonth(), 11);
    EXPECT_EQ(f->ShownYear(), 2026);
    EXPECT_EQ(f->CurrentDate(), Ymd(2026, 11, 22));
    Key(*f, 37);
    Key(*f, 27);
    EXPECT_EQ(written_, std::vector<std::string>{"-1/-1/-1"});
}

// The owner's no-date text opens on today's month like "-1/-1/-1", and
// Escape writes nothing back: the owner never takes that text for a date.
TEST_F(CalendarTest, TheOwnersNoDateTextOpensOnTodayAndEscapeLeavesIt) {
    auto f = Open(std::string(kNoCalendarDateText));
    EXPECT_EQ(f->OpeningDateParts(), (std::array<Long, 3>{-1, -1, -1}));
    EXPECT_EQ(f->ShownMonth(), 11);
    EXPECT_EQ(f->ShownYear(), 2026);
    EXPECT_EQ(f->CurrentDate(), Ymd(2026, 11, 22));
    Key(*f, 33);
    Key(*f, 27);
    EXPECT_TRUE(written_.empty());
    EXPECT_FALSE(f->IsOpen());
}

// Clicks on days, allowed or not, run in calendar_choose and calendar_cancel.
TEST_F(CalendarTest, TheTodayLineChoosesTodayWhenItIsAllowed) {
    auto f = Open("05/03/2007");
    Click(*f, 3, Single(9 * f->Layout().rh + 2));
    EXPECT_EQ(written_, std::vector<std::string>{"22/11/2026"});

    SetCalendarMaxDate(Ymd(2020, 1, 1));  // today out of range: nothing happens
    written_.clear();
    f = Open("05/03/2007");
    Click(*f, 3, Single(9 * f->Layout().rh + 2));
    EXPECT_TRUE(f->IsOpen());
    EXPECT_TRUE(written_.empty());
}

// Hovering over a day of the shown month moves the highlight
// (calendar_choose); over a day of the month before, it does not: the
// script moves on to a day of the shown month before it looks.
TEST_F(CalendarTest, HoverStaysInTheShownMonth) {
    auto f = Open("05/03/2007");
    const auto& g = f->Layout();
    f->MouseMove(0, 0, Single(g.cw / 2), Single(3 * g.rh + g.rh / 2));  // 26 February
    EXPECT_EQ(f->CurrentDate(), Ymd(2007, 3, 5));
    EXPECT_TRUE(f->IsOpen());
}

TEST_F(CalendarTest, SpinnersStepMonthAndYear) {
    auto f = Open("31/03/2007");
    const auto& g = f->Layout();
    const Single upper = Single(g.rh), lower = Single(g.rh + 2);
    Click(*f, Single(g.monthSpinLeft + 1), upper);
    EXPECT_EQ(f->CurrentDate(), Ymd(2007, 4, 30));
    Click(*f, Single(g.yearSpinLeft + 1), lower);
    EXPECT_EQ(f->CurrentDate(), Ymd(2006, 4, 30));
    EXPECT_EQ(f->ShownYear(), 2006);
    Click(*f, Single(g.monthSpinRight + 3), upper);  // the header between them
    EXPECT_EQ(f->CurrentDate(), Ymd(2006, 4, 30));
    EXPECT_TRUE(f->IsOpen());
}

// A press outside after a move closes it without a choice; calendar_cancel
// presses outside before any move, and its loss of activation after one.
TEST_F(CalendarTest, APressOutsideClosesWithoutAChoice) {
    auto f = Open("05/03/2007");
    Key(*f, 39);
    f->MouseDown(1, 0, -1, 5);
    EXPECT_FALSE(f->IsOpen());
    EXPECT_TRUE(written_.empty());
    EXPECT_EQ(HookedCalendar(), nullptr);
}

// Only the hooked popup closes when it loses activation.
TEST_F(CalendarTest, OpeningTwiceHooksOnce) {
    auto first = Open("05/03/2007");
    EXPECT_EQ(HookedCalendar(), first.get());
    auto second = Open("05/03/2007");
    EXPECT_EQ(HookedCalendar(), second.get());
    first->Deactivated();
    EXPECT_TRUE(first->IsOpen());
    second->Deactivated();
    EXPECT_FALSE(second->IsOpen());
    EXPECT_EQ(HookedCalendar(), nullptr);
}

TEST_F(CalendarTest, BadExchangeTextsAndPointsNeverBreakIt) {
    for (const char* text : {"", "xx/yy/zzzz", "99/99/9999", "31/02/0050", "01/13/99999"}) {
        SCOPED_TRACE(text);
        auto f = Open(text);
        EXPECT_TRUE(IsDateInRange(f->CurrentDate()));
        f->MouseMove(0, 0, 1e30f, -1e30f);
        f->MouseUp(1, 0, std::nanf(""), 3);
        auto raster = std::make_shared<host::headless::Raster>();
        raster->Resize(f->ClientSize().width, f->ClientSize().height, 0);
        host::headless::RasterSurface surface(raster, {0, 0, raster->width, raster->height});
        f->Paint(surface);
    }
}

}  // namespace
}  // namespace kelvarin::controls

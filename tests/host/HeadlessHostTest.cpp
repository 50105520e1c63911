// SPDX-License-Identifier: MIT
#include "host/headless/HeadlessHost.h"

#include <gtest/gtest.h>

#include "tests/ErrorOf.h"

namespace kelvarin::host::headless {
namespace {

using kelvarin::test::ErrorOf;

// A control that logs its timer's ticks and the focus coming and going.
class Ticker : public Control {
public:
    Ticker(std::vector<std::string>& log, std::string tag)
        : Control("Ticker"), log_(log), tag_(tag) {}
    void Show() override {
        timer_ = Site().CreateTimer([this] {
            log_.push_back(tag_ + "@" + std::to_string(Site().TickCount()));
            if (failOnTick) RaiseHostError(HostErrorCode::Overflow);
        });
    }
    Timer& Clock() { return *timer_; }
    void GotFocus() override { log_.push_back(tag_ + " got focus"); }
    void LostFocus() override { log_.push_back(tag_ + " lost focus"); }
    bool failOnTick = false;

private:
    std::vector<std::string>& log_;
    std::string tag_;
    std::unique_ptr<Timer> timer_;
};

TEST(HeadlessHost, TimersFireInTimeOrderAndTheTickWraps) {
    HeadlessHost host;
    std::vector<std::string> log;
    auto* a = new Ticker(log, "a");
    auto* b = new Ticker(log, "b");
    PlaceNew(*a, host.Add("a", std::unique_ptr<Control>(a), {10, 10}));
    PlaceNew(*b, host.Add("b", std::unique_ptr<Control>(b), {10, 10}));
    a->Clock().SetInterval(250);
    b->Clock().SetInterval(100);
    a->Clock().SetEnabled(true);
    b->Clock().SetEnabled(true);
    host.Advance(300);
    EXPECT_EQ(log, (std::vector<std::string>{"b@1100", "b@1200", "a@1250", "b@1300"}));
    EXPECT_EQ(host.TickCount(), 1300u);

    log.clear();
    b->Clock().SetEnabled(false);
    a->Clock().SetInterval(50);  // a new interval counts from now
    host.Advance(120);
    EXPECT_EQ(log, (std::vector<std::string>{"a@1350", "a@1400"}));
    EXPECT_EQ(ErrorOf([&] { a->Clock().SetInterval(-1); }), 380);

    host.SetTickCount(0xFFFFFFF0u);
    log.clear();
    a->Clock().SetInterval(10);
    host.Advance(25);
    EXPECT_EQ(log, (std::vector<std::string>{"a@4294967290", "a@4"}));
    EXPECT_EQ(host.TickCount(), 9u);

    // A failing tick is reported once the clock has moved, and others still fire.
    a->failOnTick = true;
    b->Clock().SetInterval(10);
    b->Clock().SetEnabled(true);
    log.clear();
    EXPECT_EQ(ErrorOf([&] { host.Advance(10); }), 6);
    EXPECT_EQ(log, (std::vector<std::string>{"a@14", "b@19"}));
    EXPECT_EQ(host.TickCount(), 19u);
}

// The focus leaves one control before it reaches the next; a control that
// keeps it is datebox_focus's. A removed control loses it.
TEST(HeadlessHost, FocusLeavesOneControlBeforeItReachesTheNext) {
    HeadlessHost host;
    std::vector<std::string> log;
    Placed& a = host.Add("a", std::make_unique<Ticker>(log, "a"), {10, 10});
    Placed& b = host.Add("b", std::make_unique<Ticker>(log, "b"), {10, 10});
    host.SetFocus(&a);
    host.SetFocus(&b);
    EXPECT_EQ(log, (std::vector<std::string>{"a got focus", "a lost focus", "b got focus"}));
    host.Remove("B");  // names in any case
    EXPECT_EQ(host.Focused(), nullptr);
}

TEST(HeadlessHost, TheBorderShrinksTheClientAreaAndSitesReportGeometry) {
    HeadlessHost host;
    host.unitsPerPixel = 15;
    std::vector<std::string> log;
    auto control = std::make_unique<Ticker>(log, "t");
    Control& c = *control;
    c.SurfaceState().borderStyle = 1;
    Placed& p = host.Add("t", std::move(control), {50, 20});
    p.MoveTo({100, 200});
    EXPECT_EQ(c.ScaleWidth(), 46);  // a 3D border is two pixels wide
    EXPECT_EQ(c.ScaleHeight(), 16);
    EXPECT_EQ(p.ExtenderWidth(), 750);
    EXPECT_EQ(p.ExtenderLeft(), 1500);
    EXPECT_EQ(p.ClientToScreen({1, 1}), (Point{103, 203}));
    EXPECT_EQ(p.Pixels().Get(0, 0), TranslateSysColor(SystemColor(COLOR_BTNSHADOW)));
    EXPECT_EQ(p.Pixels().Get(49, 19), TranslateSysColor(SystemColor(COLOR_BTNHIGHLIGHT)));
    EXPECT_EQ(p.Pixels().Get(1, 1), TranslateSysColor(SystemColor(COLOR_3DDKSHADOW)));
    c.SurfaceState().appearance = 0;
    p.LayOutFrame();
    EXPECT_EQ(c.ScaleWidth(), 48);
    // The client surface draws inside the border only.
    c.Site().ClientSurface().FillRect({-5, -5, 100, 100}, RGB(1, 2, 3));
    EXPECT_EQ(p.Pixels().Get(1, 1), RGB(1, 2, 3));
    EXPECT_NE(p.Pixels().Get(0, 0), RGB(1, 2, 3));
    EXPECT_NE(p.Pixels().Get(49, 10), RGB(1, 2, 3));
}

// Found by fuzzing: a control of 32767 x 32767 pixels, which a script or a
// form may ask for, made the host take 3 GiB for its raster, and a font of
// 1e200 points gave metrics that were no int. The raster is held to a
// picture's cap and raises Out of memory (7), keeping what it had; the
// metrics raise Overflow (6).
TEST(HeadlessHost, RastersAndFontMetricsStayWithinTheirRanges) {
    HeadlessHost host;
    std::vector<std::string> log;
    EXPECT_EQ(ErrorOf([&] {
                  host.Add("huge", std::make_unique<Ticker>(log, "h"), {32767, 32767});
              }),
              7);
    Placed& p = host.Add("t", std::make_unique<Ticker>(log, "t"), {50, 20});
    EXPECT_EQ(ErrorOf([&] { p.SetOuterSize({32767, 32767}); }), 7);
    EXPECT_EQ(p.OuterSize(), (Size{50, 20}));
    EXPECT_EQ(CharWidth(Font("Sans", 8.0, true)), 8);
    EXPECT_EQ(ErrorOf([] { CharWidth(Font("Sans", 1e200)); }), 6);
    EXPECT_EQ(ErrorOf([] { LineHeight(Font("Sans", -1e200)); }), 6);
}

TEST(RasterSurface, LinesAndFocusRectangles) {
    auto raster = std::make_shared<Raster>();
    raster->Resize(8, 6, RGB(255, 255, 255));
    RasterSurface s(raster, {1, 1, 7, 5});  // a 6 x 4 view
    s.DrawLine({0, 0}, {3, 0}, 0);
    EXPECT_EQ(s.GetPixel({2, 0}), 0u);
    EXPECT_EQ(s.GetPixel({3, 0}), RGB(255, 255, 255));  // the end point is left out
    EXPECT_EQ(raster->Get(1, 1), 0u);

    s.FillRect({0, 0, 6, 4}, RGB(0, 0, 0));
    s.DrawFocusRect({0, 0, 4, 3});
    EXPECT_EQ(s.GetPixel({0, 0}), RGB(255, 255, 255));
    EXPECT_EQ(s.GetPixel({1, 0}), RGB(0, 0, 0));
    EXPECT_EQ(s.GetPixel({1, 1}), RGB(0, 0, 0));  // inside stays
    s.DrawFocusRect({0, 0, 4, 3});                // drawing it twice removes it
    EXPECT_EQ(s.GetPixel({0, 0}), RGB(0, 0, 0));
}

}  // namespace
}  // namespace kelvarin::host::headless

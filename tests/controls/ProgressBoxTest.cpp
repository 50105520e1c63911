#include "controls/progressbox/ProgressBox.h"

#include <gtest/gtest.h>

#include "common/HostError.h"
#include "host/Site.h"
#include "host/headless/HeadlessHost.h"
#include "library/Dispatch.h"
#include "tests/ErrorOf.h"

namespace kelvarin::controls {
namespace {

using host::headless::HeadlessHost;
using host::headless::Placed;
using kelvarin::test::ErrorOf;

class ProgressBoxTest : public ::testing::Test {
protected:
    ProgressBoxTest() { host_.eventNames = library::EventName; }
    ProgressBox& Make(int width, int height = 10) {
        auto box = std::make_unique<ProgressBox>();
        ProgressBox& b = *box;
        placed_ = &host_.Add("bar", std::move(box), {width, height});
        host::PlaceNew(b, *placed_);
        return b;
    }
    OLE_COLOR At(int x, int y = 0) {
        return placed_->Get().Site().ClientSurface().GetPixel({x, y});
    }
    std::vector<std::string> Notified() {
        std::vector<std::string> out;
        for (auto& n : host_.notifications) out.push_back(n.property);
        host_.notifications.clear();
        return out;
    }

    HeadlessHost host_;
    Placed* placed_ = nullptr;
};

TEST_F(ProgressBoxTest, ValueAndPercentualClampCoupleAndNotifyInOrder) {
    ProgressBox& b = Make(50);
    b.SetValue(150);
    EXPECT_EQ(b.Value(), 100);
    EXPECT_EQ(b.Percentual(), 100);
    EXPECT_FALSE(b.TimerRunning());
    b.SetValue(-5);
    EXPECT_EQ(b.Value(), 0);
    EXPECT_TRUE(b.TimerRunning());
    EXPECT_EQ(Notified(), (std::vector<std::string>{"Value", "Percentual", "Value", "Percentual"}));

    b.SetValue(40);
    b.SetMinValue(100);  // not below the maximum: dropped
    EXPECT_TRUE(Notified().size() == 2);
    b.SetMinValue(60);
    EXPECT_EQ(b.Value(), 60);
    EXPECT_EQ(b.Percentual(), 0);
    EXPECT_EQ(Notified(), (std::vector<std::string>{"Value", "MinValue", "Percentual"}));
    b.SetMaxValue(80);
    EXPECT_EQ(Notified(), (std::vector<std::string>{"MaxValue", "Percentual"}));

    b.SetMinValue(10);
    b.SetMaxValue(20);
    b.SetPercentual(50);
    EXPECT_EQ(b.Value(), 15);
    EXPECT_EQ(Notified().back(), "Value");  // Percentual, then Value
    b.SetPercentual(100.0000001);
    EXPECT_EQ(b.Percentual(), 100);
    EXPECT_EQ(b.Value(), 20);
    EXPECT_FALSE(b.TimerRunning());
}

TEST_F(ProgressBoxTest, LinearGradientRevealsTheLeftOfTheFullWidth) {
    ProgressBox& b = Make(101);
    b.SetBackColor(RGB(1, 1, 1));
    b.SetStartColor(RGB(0, 0, 0));
    b.SetFinishColor(RGB(202, 0, 0));
    b.SetShowPercentual(false);
    b.SetValue(50);
    EXPECT_EQ(At(0), RGB(0, 0, 0));
    EXPECT_EQ(At(49, 9), RGB(98, 0, 0));  // red = 2 x
    EXPECT_EQ(At(50), RGB(1, 1, 1));
    b.SetValue(0);
    EXPECT_EQ(At(0), RGB(1, 1, 1));  // nothing painted at the minimum
    b.SetValue(100);
    EXPECT_EQ(At(100), RGB(200, 0, 0));  // the last column drawn is L - 1
}

TEST_F(ProgressBoxTest, PivotStylesAtBothEnds) {
    ProgressBox& b = Make(11);
    b.SetShowPercentual(false);
    b.SetStartColor(RGB(0, 0, 0));
    b.SetPivotColor(RGB(0, 250, 0));
    b.SetFinishColor(RGB(0, 0, 250));
    b.SetGradientStyle(1);
    b.SetValue(0);  // P = 0: from the pivot at column 0 to the finish colour at L = 11
    EXPECT_EQ(At(0), RGB(0, 250, 0));
    EXPECT_EQ(At(10), RGB(0, 23, 227));  // d = 1: 250 - 250 / 11, 250 / 11 rounded
    b.SetGradientStyle(2);
    b.SetValue(100);  // P = W - 2 = 10
    EXPECT_EQ(At(10), RGB(0, 250, 0));
    EXPECT_EQ(At(5), RGB(0, 62, 0));  // t = 25 of 100: 62.5 rounds to even
    EXPECT_EQ(At(0), RGB(0, 0, 0));
    b.SetGradientStyle(3);  // no bar: the surface as it was made
    EXPECT_EQ(At(5), RGB(0, 0, 0));
}

TEST_F(ProgressBoxTest, CaptionRoundsHalfToEven) {
    ProgressBox& b = Make(60, 20);
    b.SetPercentual(2.5);
    EXPECT_EQ(b.Caption(), " 2%");
    b.SetPercentual(3.5);
    EXPECT_EQ(b.Caption(), " 4%");
    b.SetText("Copy");
    EXPECT_EQ(b.Caption(), "Copy 4%");
    b.SetShowPercentual(false);
    EXPECT_EQ(b.Caption(), "Copy");
}

TEST_F(ProgressBoxTest, TimingReportsElapsedAndEstimatedTotal) {
    ProgressBox& b = Make(40);
    b.SetTimerChangedInterval(1000);
    b.SetValue(0);
    host_.Advance(1000);
    b.SetValue(0);  // restarts the clock
    b.SetValue(33);
    host_.Advance(1000);
    b.SetValue(0);
    b.SetPercentual(25);
    host_.Advance(2000);
    ASSERT_EQ(host_.events.size(), 4u);
    EXPECT_EQ(host_.events[0].name, "TimerChange");
    EXPECT_EQ(host_.events[0].args[1].ToLong(), -1);  // no estimate at 0 %
    EXPECT_EQ(host_.events[1].args[0].ToLong(), 1000);
    EXPECT_EQ(host_.events[1].args[1].ToLong(), 3030);  // the whole run, not the rest
    EXPECT_EQ(host_.events[3].args[0].ToLong(), 2000);
    EXPECT_EQ(host_.events[3].args[1].ToLong(), 8000);
    b.SetValue(100);
    host_.Advance(5000);
    EXPECT_EQ(host_.events.size(), 4u);  // stopped: no more ticks
    b.SetValue(10);                      // between the bounds: starts nothing
    host_.Advance(5000);
    EXPECT_EQ(host_.events.size(), 4u);

    // The tick counter crossing the signed boundary mid-run is an overflow.
    host_.SetTickCount(0x7FFFFF00u);
    b.SetValue(0);
    host_.events.clear();
    EXPECT_EQ(ErrorOf([&] { host_.Advance(1000); }), 6);
    EXPECT_TRUE(host_.events.empty());
}

TEST_F(ProgressBoxTest, UnguardedDivisionsFailTheWriteAndLeaveTheControlUsable) {
    ProgressBox& b = Make(1);  // W = 2, L = 1
    b.SetGradientStyle(1);
    EXPECT_EQ(ErrorOf([&] { b.SetValue(0); }), 0);
    EXPECT_EQ(ErrorOf([&] { Make(0); }), 11);  // W = 1 makes L = 0
    auto& tiny = static_cast<ProgressBox&>(placed_->Get());
    EXPECT_EQ(ErrorOf([&] { tiny.SetValue(50); }), 11);
    EXPECT_EQ(tiny.Value(), 50);  // stored before the repaint failed
    placed_->SetOuterSize({10, 10});
    tiny.SetShowPercentual(false);
    tiny.SetStartColor(RGB(9, 9, 9));
    EXPECT_EQ(At(0), RGB(9, 9, 9));
    host_.Clear();
    host::MemoryPropertyBag bag;
    bag.Set("MinValue", Variant(5.0));
    bag.Set("MaxValue", Variant(5.0));
    bag.Set("Value", Variant(500.0));
    auto loaded = std::make_unique<ProgressBox>();
    ProgressBox& c = *loaded;
    placed_ = &host_.Add("bar", std::move(loaded), {20, 10});
    EXPECT_EQ(ErrorOf([&] { host::PlaceLoaded(c, bag, *placed_); }), 11);
    EXPECT_EQ(c.Value(), 500);  // loading does not clamp
    c.SetMaxValue(10);
    EXPECT_EQ(c.Value(), 10);
}

}  // namespace
}  // namespace kelvarin::controls

// SPDX-License-Identifier: MIT
// Values, gradients, the caption, timing and persistence run end to end in
// the progressbox_*.khs scripts; here, the bar too narrow to divide by.
#include "controls/progressbox/ProgressBox.h"

#include <gtest/gtest.h>

#include <random>

#include "host/Site.h"
#include "host/headless/HeadlessHost.h"
#include "tests/ErrorOf.h"

namespace kelvarin::controls {
namespace {

using kelvarin::test::ErrorOf;

TEST(ProgressBoxTest, UnguardedDivisionsFailTheWriteAndLeaveTheControlUsable) {
    host::headless::HeadlessHost host;
    host::headless::Placed* placed = nullptr;
    const auto make = [&](int width) -> ProgressBox& {
        auto box = std::make_unique<ProgressBox>();
        ProgressBox& b = *box;
        placed = &host.Add("bar", std::move(box), {width, 10});
        host::PlaceNew(b, *placed);
        return b;
    };
    ProgressBox& narrow = make(1);  // W = 2, L = 1
    narrow.SetGradientStyle(1);
    EXPECT_EQ(ErrorOf([&] { narrow.SetValue(0); }), 0);
    EXPECT_EQ(ErrorOf([&] { make(0); }), 11);  // W = 1 makes L = 0
    auto& tiny = static_cast<ProgressBox&>(placed->Get());
    EXPECT_EQ(ErrorOf([&] { tiny.SetValue(50); }), 11);
    EXPECT_EQ(tiny.Value(), 50);  // stored before the repaint failed
    placed->SetOuterSize({10, 10});
    tiny.SetShowPercentual(false);
    tiny.SetStartColor(RGB(9, 9, 9));
    EXPECT_EQ(placed->Get().Site().ClientSurface().GetPixel({0, 0}), RGB(9, 9, 9));

    // A loaded range of no width divides by zero as it is painted.
    host.Clear();
    host::MemoryPropertyBag bag;
    bag.Set("MinValue", Variant(5.0));
    bag.Set("MaxValue", Variant(5.0));
    auto loaded = std::make_unique<ProgressBox>();
    ProgressBox& c = *loaded;
    placed = &host.Add("bar", std::move(loaded), {20, 10});
    EXPECT_EQ(ErrorOf([&] { host::PlaceLoaded(c, bag, *placed); }), 11);
}

// A write that leaves the look unchanged skips the raster work: after any
// sequence of writes the pixels equal those of a full repaint.
TEST(ProgressBoxTest, SkippedRepaintsLeaveThePixelsOfAFullOne) {
    host::headless::HeadlessHost host;
    std::mt19937 random(7);
    for (Long style :
         {ProgressBox::kLinear, ProgressBox::kGaussian, ProgressBox::kGaussianSquared}) {
        SCOPED_TRACE(style);
        host.Clear();
        auto box = std::make_unique<ProgressBox>();
        ProgressBox& bar = *box;
        host::headless::Placed& placed = host.Add("bar", std::move(box), {97, 13});
        host::PlaceNew(bar, placed);
        bar.SetGradientStyle(style);
        bar.SetPivotColor(RGB(250, 10, 90));
        for (int step = 0; step < 400; ++step) {
            const double v = std::uniform_int_distribution<int>(0, 4000)(random) / 10.0;
            switch (std::uniform_int_distribution<int>(0, 9)(random)) {
                case 0: bar.SetMaxValue(v); break;
                case 1: bar.SetMinValue(v - 200); break;
                case 2: bar.SetPercentual(v / 4); break;
                case 3: bar.SetShowPercentual(!bar.ShowPercentual()); break;
                case 4: bar.SetText(step % 2 ? "x" : ""); break;
                default: bar.SetValue(v); break;  // mostly values, often unchanged looks
            }
            const std::vector<std::uint8_t> written = placed.Pixels().bgr;
            bar.Paint();
            ASSERT_EQ(placed.Pixels().bgr, written) << "after step " << step;
        }
    }
}
}  // namespace
}  // namespace kelvarin::controls

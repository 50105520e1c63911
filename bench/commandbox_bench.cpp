// SPDX-License-Identifier: MIT
// CommandBox: hover in and out on a 120 x 32 button with a 32 x 32 picture
// on the headless host. Each change of look is one full repaint from the
// prepared pictures; the counters show that it allocates nothing and
// prepares no picture.
#include <benchmark/benchmark.h>

#include "bench/AllocationCounter.h"
#include "controls/commandbox/CommandBox.h"
#include "host/Site.h"
#include "host/headless/HeadlessHost.h"

using kelvarin::bench::g_allocations;

namespace {

using kelvarin::controls::CommandBox;
using kelvarin::host::headless::HeadlessHost;

// A picture with a gradient and a mask-coloured frame.
std::shared_ptr<kelvarin::Picture> Icon() {
    auto picture = kelvarin::Picture::MakeBitmap(32, 32, 24);
    for (int y = 0; y < 32; ++y) {
        auto row = picture->Row(y);
        for (int x = 0; x < 32; ++x) {
            const bool frame = x < 2 || y < 2 || x > 29 || y > 29;
            row[3 * x] = frame ? 255 : static_cast<std::uint8_t>(8 * x);
            row[3 * x + 1] = frame ? 0 : static_cast<std::uint8_t>(8 * y);
            row[3 * x + 2] = frame ? 255 : 200;
        }
    }
    return picture;
}

void BM_HoverInAndOut(benchmark::State& state) {
    HeadlessHost host;
    host.recording = false;
    auto control = std::make_unique<CommandBox>();
    CommandBox& box = *control;
    auto& placed = host.Add("button", std::move(control), {120, 32});
    kelvarin::host::PlaceNew(box, placed);
    box.SetText("&Salva");
    box.SetAlignPicture(CommandBox::kLeftAlign);
    box.SetUseMaskColor(true);
    box.SetHighLighted(true);
    box.SetPicture(Icon());
    const kelvarin::clsGFX_2D* prepared = box.PreparedPicture(0);
    long allocations = 0;
    for (auto _ : state) {
        const long before = g_allocations;
        placed.pointerOver = true;
        box.MouseMove(0, 0, 10, 10);  // grey to full colour
        placed.pointerOver = false;
        host.Advance(CommandBox::kHoverInterval);  // and back
        allocations += g_allocations - before;
    }
    if (box.PreparedPicture(0) != prepared) state.SkipWithError("a hover prepared the pictures");
    state.SetItemsProcessed(2 * state.iterations());  // two repaints per iteration
    state.counters["allocs/repaint"] =
        benchmark::Counter(static_cast<double>(allocations) / (2.0 * state.iterations()));
}
BENCHMARK(BM_HoverInAndOut);

}  // namespace

BENCHMARK_MAIN();

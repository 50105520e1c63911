// SPDX-License-Identifier: MIT
// ProgressBox: the cost of one Value write with its full repaint on the
// headless host, and of a program updating its bar in a tight loop. The
// allocation counter shows what a write allocates besides its surface.
#include <benchmark/benchmark.h>

#include "bench/AllocationCounter.h"
#include "controls/progressbox/ProgressBox.h"
#include "host/Site.h"
#include "host/headless/HeadlessHost.h"

using kelvarin::bench::g_allocations;

namespace {

using kelvarin::controls::ProgressBox;
using kelvarin::host::headless::HeadlessHost;

struct Bar {
    HeadlessHost host;
    ProgressBox* box;
    explicit Bar(long style) {
        host.recording = false;
        auto control = std::make_unique<ProgressBox>();
        box = control.get();
        kelvarin::host::PlaceNew(*box, host.Add("bar", std::move(control), {400, 24}));
        box->SetText("Copying");
        box->SetGradientStyle(static_cast<kelvarin::Long>(style));
    }
};

void BM_ValueWriteWithRepaint(benchmark::State& state) {
    Bar bar(state.range(0));
    double v = 1;
    long allocations = 0;
    for (auto _ : state) {
        const long before = g_allocations;
        bar.box->SetValue(v);
        allocations += g_allocations - before;
        v = v >= 99 ? 1 : v + 1;
    }
    state.counters["allocs/write"] =
        benchmark::Counter(static_cast<double>(allocations) / state.iterations());
}
BENCHMARK(BM_ValueWriteWithRepaint)->Arg(0)->Arg(1)->Arg(2)->ArgName("style");

// A program updating its bar in a tight loop: 100 000 writes, 0 to 100.
void BM_TightLoop100k(benchmark::State& state) {
    Bar bar(0);
    for (auto _ : state) {
        for (int i = 0; i < 100000; ++i) bar.box->SetValue(i / 1000.0);
    }
    state.counters["writes/s"] =
        benchmark::Counter(100000.0 * state.iterations(), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_TightLoop100k)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

BENCHMARK_MAIN();

// SPDX-License-Identifier: MIT
// A program updating its progress bar: 10 000 Value writes, each followed
// by a synchronous repaint, on a 400 x 24 ProgressBox widget and on a
// QProgressBar of the same size, offscreen, in the same run. The ProgressBox
// repaints its whole gradient and caption on every write; QProgressBar
// draws its style's bar and text.
//
// BM_SameRun times both loops back to back and reports the ratio
// (ProgressBox time / QProgressBar time; below 1 is faster).
#include <benchmark/benchmark.h>

#include <chrono>

#include <QApplication>
#include <QProgressBar>

#include <kelvarin/ProgressBoxWidget.h>
#include "qt/QtPlatform.h"

namespace {

using kelvarin::qt::ProgressBoxWidget;

constexpr int kWrites = 10000;

void Prepare(QWidget& w) {
    w.resize(400, 24);
    w.show();
    QApplication::processEvents();
}

// QProgressBar takes ProgressBox's range of values.
void Prepare(QProgressBar& bar) {
    bar.setRange(0, 100);
    Prepare(static_cast<QWidget&>(bar));
}

void Write(ProgressBoxWidget& bar, int value) { bar.SetValue(value); }
void Write(QProgressBar& bar, int value) { bar.setValue(value); }

template <typename Bar>
double WriteAndRepaint(Bar& bar) {
    const auto start = std::chrono::steady_clock::now();
    for (int k = 0; k < kWrites; ++k) {
        Write(bar, k % 100);
        bar.repaint();
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

template <typename Bar>
void BM_Bar(benchmark::State& state) {
    Bar bar;
    Prepare(bar);
    for (auto _ : state) WriteAndRepaint(bar);
    state.SetItemsProcessed(state.iterations() * kWrites);
    state.counters["per_write"] = benchmark::Counter(
        kWrites, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK_TEMPLATE(BM_Bar, ProgressBoxWidget)
    ->Name("BM_ProgressBoxWidget")
    ->Unit(benchmark::kMillisecond)
    ->MinTime(1.0);
BENCHMARK_TEMPLATE(BM_Bar, QProgressBar)
    ->Name("BM_QProgressBar")
    ->Unit(benchmark::kMillisecond)
    ->MinTime(1.0);

void BM_SameRun(benchmark::State& state) {
    ProgressBoxWidget ours;
    QProgressBar theirs;
    Prepare(ours);
    Prepare(theirs);
    double oursTotal = 0, theirsTotal = 0;
    for (auto _ : state) {
        oursTotal += WriteAndRepaint(ours);
        theirsTotal += WriteAndRepaint(theirs);
    }
    const double writes = static_cast<double>(state.iterations()) * kWrites;
    state.counters["progressbox_us"] = oursTotal / writes * 1e6;
    state.counters["qprogressbar_us"] = theirsTotal / writes * 1e6;
    state.counters["ratio"] = oursTotal / theirsTotal;
}
BENCHMARK(BM_SameRun)->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace

#include "bench/QtBenchMain.h"

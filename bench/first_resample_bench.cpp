// SPDX-License-Identifier: MIT
// The first Image_Resample to 8192 x 8192 in a fresh process, once: its new
// surface's memory comes from the system, not from memory this process
// freed before. Run the program many times and compare the worst time with
// the median (tools/first-call.sh does). With --benchmark_filter=CV, OpenCV
// resizes into a new image instead, where installed.
#include <benchmark/benchmark.h>

#include <cstring>
#include <random>

#include "gfx/clsGFX_2D.h"

#ifdef KELVARIN_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

using kelvarin::clsGFX_2D;

void RandomBytes(std::uint8_t* p, std::size_t n) {
    std::mt19937 random(42);
    for (std::size_t i = 0; i < n; ++i) p[i] = static_cast<std::uint8_t>(random());
}

void BM_First_Image_Resample(benchmark::State& state) {
    clsGFX_2D gfx;
    gfx.Create(4096, 4096, 24);
    RandomBytes(gfx.Get_ptrDIBSection(), std::size_t{4096} * 4096 * 3);
    for (auto _ : state) {
        gfx.Image_Resample(8192, 8192);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_First_Image_Resample)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

#ifdef KELVARIN_BENCH_OPENCV
void BM_First_CV_resize_linear(benchmark::State& state) {
    cv::Mat src(4096, 4096, CV_8UC3);
    RandomBytes(src.data, std::size_t{4096} * 4096 * 3);
    cv::Mat dst;
    for (auto _ : state) {
        cv::resize(src, dst, cv::Size(8192, 8192), 0, 0, cv::INTER_LINEAR);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_First_CV_resize_linear)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();
#endif

}  // namespace

int main(int argc, char** argv) {
#ifdef KELVARIN_BENCH_OPENCV
    cv::setNumThreads(1);
#endif
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

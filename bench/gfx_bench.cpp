// SPDX-License-Identifier: MIT
// Raster kernels of clsGFX_2D in megapixels per second, on a large image
// (4096 x 4096) and on a progress-bar-sized one (400 x 24), with memcpy of
// the same bytes in the same run as the physical reference. The transforms
// and filters run on the large image; where OpenCV is installed, its
// counterparts run beside them on one thread (CV_ prefix), on the same
// bytes, with the same kernels. Resamples count the pixels they produce.
#include <benchmark/benchmark.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "gfx/BuiltInKernels.h"
#include "gfx/clsGFX_2D.h"

#ifdef KELVARIN_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

using kelvarin::clsGFX_2D;
using kelvarin::gfx_detail::kBuiltInKernels;

void RandomContent(clsGFX_2D& gfx) {
    std::mt19937 random(42);
    std::uint8_t* p = gfx.Get_ptrDIBSection();
    const std::size_t n = static_cast<std::size_t>(gfx.Get_BytesPerScanLine()) *
                          static_cast<std::size_t>(gfx.Get_Height());
    for (std::size_t i = 0; i < n; ++i) p[i] = static_cast<std::uint8_t>(random());
}

std::size_t SurfaceBytes(const clsGFX_2D& gfx) {
    return static_cast<std::size_t>(gfx.Get_BytesPerScanLine()) *
           static_cast<std::size_t>(gfx.Get_Height());
}

void Report(benchmark::State& state, const clsGFX_2D& gfx) {
    const double pixels = static_cast<double>(gfx.Get_Width()) * gfx.Get_Height();
    state.counters["Mpx/s"] =
        benchmark::Counter(pixels / 1e6, benchmark::Counter::kIsIterationInvariantRate);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(SurfaceBytes(gfx)));
}

// Runs op on a random surface of the benchmark's size; with restore, the
// surface gets its first content back before every run (untimed).
template <typename Op>
void RunOnSurface(benchmark::State& state, Op op, bool restore = false) {
    clsGFX_2D gfx;
    if (!gfx.Create(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), 24)) {
        state.SkipWithError("Create failed");
        return;
    }
    RandomContent(gfx);
    const std::vector<std::uint8_t> original(gfx.Get_ptrDIBSection(),
                                             gfx.Get_ptrDIBSection() + SurfaceBytes(gfx));
    for (auto _ : state) {
        if (restore) {
            state.PauseTiming();
            std::memcpy(gfx.Get_ptrDIBSection(), original.data(), original.size());
            state.ResumeTiming();
        }
        op(gfx);
        benchmark::DoNotOptimize(gfx.Get_ptrDIBSection());
        benchmark::ClobberMemory();
    }
    Report(state, gfx);
}

void BM_Memcpy(benchmark::State& state) {
    clsGFX_2D gfx;
    gfx.Create(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), 24);
    std::vector<std::uint8_t> from(SurfaceBytes(gfx), 1), to(SurfaceBytes(gfx), 2);
    for (auto _ : state) {
        std::memcpy(to.data(), from.data(), from.size());
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
    Report(state, gfx);
}

void BM_Color_Fill(benchmark::State& state) {
    RunOnSurface(state, [](clsGFX_2D& g) { g.Color_Fill(0x00336699); });
}
void BM_Color_Invert(benchmark::State& state) {
    RunOnSurface(state, [](clsGFX_2D& g) { g.Color_Invert(true, true, true); });
}
void BM_Color_Invert_RedOnly(benchmark::State& state) {
    RunOnSurface(state, [](clsGFX_2D& g) { g.Color_Invert(true, false, false); });
}
void BM_Color_Gray_Max(benchmark::State& state) {
    RunOnSurface(state, [](clsGFX_2D& g) { g.Color_Gray(0x00FF00FF, false); });
}
void BM_Color_Gray_Weighted(benchmark::State& state) {
    RunOnSurface(state, [](clsGFX_2D& g) { g.Color_Gray(0x00FF00FF, true); });
}
void BM_Color_Replace(benchmark::State& state) {
    RunOnSurface(state, [](clsGFX_2D& g) { g.Color_Replace(0x00FF00FF, 0x00C0C0C0); });
}
// Weight 1, as the button fades its disabled picture.
void BM_Color_FadeTo(benchmark::State& state) {
    RunOnSurface(state, [](clsGFX_2D& g) { g.Color_FadeTo(0x00FF00FF, 0x00C0C0C0, 1.0); });
}
// A weight whose divisor is not a power of two takes the table loop.
void BM_Color_FadeTo_Weight0_6(benchmark::State& state) {
    RunOnSurface(state, [](clsGFX_2D& g) { g.Color_FadeTo(0x00FF00FF, 0x00C0C0C0, 0.6); });
}
void BM_Color_Halftone_ErrorDiffusion(benchmark::State& state) {
    // Halftoned pixels carry no error, so every run starts from the random image.
    RunOnSurface(
        state, [](clsGFX_2D& g) { g.Color_Halftone_ErrorDiffusion(true); }, true);
}
// The progress bar: one full-height column per x, all in one session.
void BM_Draw_Line_Columns(benchmark::State& state) {
    RunOnSurface(state, [](clsGFX_2D& g) {
        const int w = g.Get_Width(), bottom = g.Get_Height() - 1;
        g.Draw_StartSession();
        for (int x = 0; x < w; ++x) g.Draw_Line(x, 0, x, bottom, 0x00010203 * (x & 63));
        g.Draw_EndSession();
    });
}

// ---- Transforms and filters (4096 x 4096) -------------------------------------

void Large(benchmark::internal::Benchmark* b) {
    b->Args({4096, 4096})->Unit(benchmark::kMillisecond)->UseRealTime();
}

void BM_Filter_StandardFilter(benchmark::State& state) {
    const auto type = static_cast<int>(state.range(0));
    state.SetLabel("type " + std::to_string(type));
    state.counters["kernel"] = kBuiltInKernels[type].size;
    clsGFX_2D gfx;
    gfx.Create(4096, 4096, 24);
    RandomContent(gfx);
    for (auto _ : state) {
        gfx.Filter_StandardFilter(type, 0);
        benchmark::ClobberMemory();
    }
    Report(state, gfx);
}

void KernelTypes(benchmark::internal::Benchmark* b) {
    for (int type = 0; type <= 8; ++type) b->Arg(type);
    b->Unit(benchmark::kMillisecond)->UseRealTime();
}

void BM_Filter_Smoothing(benchmark::State& state) {
    RunOnSurface(state, [](clsGFX_2D& g) { g.Filter_Smoothing(false); });
}
void BM_Filter_Smoothing_LinePreserve(benchmark::State& state) {
    RunOnSurface(state, [](clsGFX_2D& g) { g.Filter_Smoothing(true); });
}
void BM_Image_FlipX(benchmark::State& state) {
    RunOnSurface(state, [](clsGFX_2D& g) { g.Image_FlipX(); });
}
void BM_Image_FlipY(benchmark::State& state) {
    RunOnSurface(state, [](clsGFX_2D& g) { g.Image_FlipY(); });
}
void BM_Image_Rotate(benchmark::State& state) {
    RunOnSurface(state, [](clsGFX_2D& g) { g.Image_Rotate(); });
}
void BM_Color_ConvertRGBToHSL(benchmark::State& state) {
    RunOnSurface(
        state, [](clsGFX_2D& g) { g.Color_ConvertRGBToHSL(); }, true);
}

// The image is made afresh at 4096 x 4096 before every run (untimed).
void BM_Image_Resample(benchmark::State& state) {
    const auto to = static_cast<int>(state.range(0));
    clsGFX_2D source;
    source.Create(4096, 4096, 24);
    RandomContent(source);
    const std::size_t bytes = SurfaceBytes(source);
    clsGFX_2D gfx;
    for (auto _ : state) {
        state.PauseTiming();
        gfx.Create(4096, 4096, 24);
        std::memcpy(gfx.Get_ptrDIBSection(), source.Get_ptrDIBSection(), bytes);
        state.ResumeTiming();
        gfx.Image_Resample(to, to);
        benchmark::ClobberMemory();
    }
    Report(state, gfx);
}

#ifdef KELVARIN_BENCH_OPENCV
cv::Mat RandomMat() {
    clsGFX_2D gfx;
    gfx.Create(4096, 4096, 24);
    RandomContent(gfx);
    cv::Mat m(4096, 4096, CV_8UC3);
    for (int y = 0; y < 4096; ++y) {
        std::memcpy(m.ptr(y), gfx.Get_ptrDIBSection() + static_cast<std::size_t>(y) * 4096 * 3,
                    4096 * 3);
    }
    return m;
}

template <typename Op>
void RunOnMat(benchmark::State& state, Op op) {
    const cv::Mat src = RandomMat();
    cv::Mat dst;
    op(src, dst);  // allocates dst once
    for (auto _ : state) {
        op(src, dst);
        benchmark::DoNotOptimize(dst.data);
        benchmark::ClobberMemory();
    }
    const double pixels = static_cast<double>(dst.cols) * dst.rows;
    state.counters["Mpx/s"] =
        benchmark::Counter(pixels / 1e6, benchmark::Counter::kIsIterationInvariantRate);
}

void BM_CV_filter2D(benchmark::State& state) {
    const auto& k = kBuiltInKernels[state.range(0)];
    state.SetLabel("type " + std::to_string(state.range(0)));
    cv::Mat kernel(k.size, k.size, CV_32F);
    for (int i = 0; i < k.size * k.size; ++i) {
        kernel.at<float>(i / k.size, i % k.size) =
            static_cast<float>(k.values[static_cast<std::size_t>(i)]) /
            static_cast<float>(k.weight);
    }
    RunOnMat(state, [&](const cv::Mat& s, cv::Mat& d) { cv::filter2D(s, d, -1, kernel); });
}
void BM_CV_medianBlur3(benchmark::State& state) {
    RunOnMat(state, [](const cv::Mat& s, cv::Mat& d) { cv::medianBlur(s, d, 3); });
}
void BM_CV_resize_linear(benchmark::State& state) {
    const auto to = static_cast<int>(state.range(0));
    RunOnMat(state, [&](const cv::Mat& s, cv::Mat& d) {
        cv::resize(s, d, cv::Size(to, to), 0, 0, cv::INTER_LINEAR);
    });
}
// Image_Resample makes its result a new surface, whose pages the system
// supplies as they are first written; here OpenCV does the same.
void BM_CV_resize_linear_new(benchmark::State& state) {
    const auto to = static_cast<int>(state.range(0));
    RunOnMat(state, [&](const cv::Mat& s, cv::Mat& d) {
        d.release();
        cv::resize(s, d, cv::Size(to, to), 0, 0, cv::INTER_LINEAR);
    });
}
void BM_CV_flip_x(benchmark::State& state) {
    RunOnMat(state, [](const cv::Mat& s, cv::Mat& d) { cv::flip(s, d, 1); });
}
void BM_CV_flip_y(benchmark::State& state) {
    RunOnMat(state, [](const cv::Mat& s, cv::Mat& d) { cv::flip(s, d, 0); });
}
void BM_CV_rotate(benchmark::State& state) {
    RunOnMat(state, [](const cv::Mat& s, cv::Mat& d) {
        cv::rotate(s, d, cv::ROTATE_90_COUNTERCLOCKWISE);
    });
}
void BM_CV_cvtColor_HLS(benchmark::State& state) {
    RunOnMat(state, [](const cv::Mat& s, cv::Mat& d) { cv::cvtColor(s, d, cv::COLOR_BGR2HLS); });
}
#endif

void Sizes(benchmark::internal::Benchmark* b) {
    b->Args({4096, 4096})->Args({400, 24})->Unit(benchmark::kMicrosecond);
}

BENCHMARK(BM_Memcpy)->Apply(Sizes);
BENCHMARK(BM_Color_Fill)->Apply(Sizes);
BENCHMARK(BM_Color_Invert)->Apply(Sizes);
BENCHMARK(BM_Color_Invert_RedOnly)->Apply(Sizes);
BENCHMARK(BM_Color_Gray_Max)->Apply(Sizes);
BENCHMARK(BM_Color_Gray_Weighted)->Apply(Sizes);
BENCHMARK(BM_Color_Replace)->Apply(Sizes);
BENCHMARK(BM_Color_FadeTo)->Apply(Sizes);
BENCHMARK(BM_Color_FadeTo_Weight0_6)->Apply(Sizes);
BENCHMARK(BM_Color_Halftone_ErrorDiffusion)->Apply(Sizes);
BENCHMARK(BM_Draw_Line_Columns)->Apply(Sizes);

BENCHMARK(BM_Filter_StandardFilter)->Apply(KernelTypes);
BENCHMARK(BM_Filter_Smoothing)->Apply(Large);
BENCHMARK(BM_Filter_Smoothing_LinePreserve)->Apply(Large);
BENCHMARK(BM_Image_Resample)->Arg(2048)->Arg(8192)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Image_FlipX)->Apply(Large);
BENCHMARK(BM_Image_FlipY)->Apply(Large);
BENCHMARK(BM_Image_Rotate)->Apply(Large);
BENCHMARK(BM_Color_ConvertRGBToHSL)->Apply(Large);
#ifdef KELVARIN_BENCH_OPENCV
BENCHMARK(BM_CV_filter2D)->Apply(KernelTypes);
BENCHMARK(BM_CV_medianBlur3)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_CV_resize_linear)->Arg(2048)->Arg(8192)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_CV_resize_linear_new)
    ->Arg(2048)
    ->Arg(8192)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(BM_CV_flip_x)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_CV_flip_y)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_CV_rotate)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_CV_cvtColor_HLS)->Unit(benchmark::kMillisecond)->UseRealTime();
#endif

}  // namespace

int main(int argc, char** argv) {
#ifdef KELVARIN_BENCH_OPENCV
    cv::setNumThreads(1);  // the comparison is on one core
#endif
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

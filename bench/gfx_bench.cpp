// SPDX-License-Identifier: MIT
// Raster kernels of clsGFX_2D in megapixels per second, on a large image
// (4096 x 4096) and on a progress-bar-sized one (400 x 24), replace and fade
// on a button's picture (32 x 32) too, with memcpy of the same bytes in the
// same run as the physical reference. The transforms
// and filters run on the large image; where OpenCV is installed, its
// counterparts run beside them on one thread (CV_ prefix), on the same
// bytes, with the same kernels. Resamples count the pixels they produce.
// After the runs a table gives each operation's speed as a multiple of its
// peer's in the same run (OpenCV's counterpart, or memcpy of the same
// bytes), on processor time, from the medians when repeated.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "common/Picture.h"
#include "gfx/BuiltInKernels.h"
#include "gfx/clsGFX_2D.h"

#ifdef KELVARIN_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

using kelvarin::clsGFX_2D;
using kelvarin::Long;
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
void RunOnSurface(benchmark::State& state, Op op, bool restore = false, Long bits = 24) {
    clsGFX_2D gfx;
    if (!gfx.Create(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), bits)) {
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

// Lines in every direction from the centre, a pixel apart at the rim.
void BM_Draw_Line_Fan(benchmark::State& state) {
    RunOnSurface(state, [](clsGFX_2D& g) {
        const Long w = g.Get_Width(), h = g.Get_Height();
        g.Draw_StartSession();
        for (Long x = 0; x < w; x += 4) g.Draw_Line(w / 2, h / 2, x, 0, 0x00336699);
        for (Long y = 0; y < h; y += 4) g.Draw_Line(w / 2, h / 2, w - 1, y, 0x00996633);
        g.Draw_EndSession();
    });
}
// Concentric circles, the largest touching the shorter side, clipped ones too.
void BM_Draw_Circle(benchmark::State& state) {
    RunOnSurface(state, [](clsGFX_2D& g) {
        const Long w = g.Get_Width(), h = g.Get_Height();
        g.Draw_StartSession();
        for (Long r = 1; r < w / 2; r += 8) g.Draw_Circle_C(w / 2, h / 2, r, 0x00123456);
        g.Draw_EndSession();
    });
}
void BM_Draw_Bezier(benchmark::State& state) {
    RunOnSurface(state, [](clsGFX_2D& g) {
        const double w = static_cast<double>(g.Get_Width()),
                     h = static_cast<double>(g.Get_Height());
        g.Draw_StartSession();
        for (int i = 0; i < 16; ++i) {
            const double y = h * i / 16;
            g.Draw_Bezier_C({0, y}, {w / 3, h - y}, {2 * w / 3, y}, {w - 1, h - 1 - y}, 0x00FF8000,
                            8);
        }
        g.Draw_EndSession();
    });
}
void BM_Color_Halftone_Dithering(benchmark::State& state) {
    RunOnSurface(
        state, [](clsGFX_2D& g) { g.Color_Halftone_Dithering(true); }, true);
}
void BM_Color_GetIstogram(benchmark::State& state) {
    RunOnSurface(state, [](clsGFX_2D& g) {
        clsGFX_2D::Histogram a, b, c;
        Long largest = 0;
        g.Color_GetIstogram(-1, a, b, c, largest);
        benchmark::DoNotOptimize(largest);
    });
}
void BM_Color_EqualizeIstogram_Red(benchmark::State& state) {
    RunOnSurface(
        state, [](clsGFX_2D& g) { g.Color_EqualizeIstogram(0); }, true);
}
// The point operations at each depth.
void BM_Color_Fill_Depth(benchmark::State& state) {
    RunOnSurface(
        state, [](clsGFX_2D& g) { g.Color_Fill(0x00336699); }, false, state.range(2));
}
void BM_Color_Replace_Depth(benchmark::State& state) {
    RunOnSurface(
        state, [](clsGFX_2D& g) { g.Color_Replace(0x99, 0x42); }, false, state.range(2));
}
void BM_Create(benchmark::State& state) {
    const auto w = static_cast<Long>(state.range(0)), h = static_cast<Long>(state.range(1));
    clsGFX_2D gfx;
    for (auto _ : state) {
        gfx.Create(w, h, 24);
        benchmark::DoNotOptimize(gfx.Get_ptrDIBSection());
    }
    Report(state, gfx);
}
// Picture exchange: out to a picture, and a surface made from one.
void BM_Get_Picture(benchmark::State& state) {
    RunOnSurface(state, [](clsGFX_2D& g) { benchmark::DoNotOptimize(g.Get_Picture()); });
}
void BM_Create_FromPicture(benchmark::State& state) {
    clsGFX_2D source;
    source.Create(static_cast<Long>(state.range(0)), static_cast<Long>(state.range(1)), 24);
    RandomContent(source);
    const auto picture = source.Get_Picture();
    clsGFX_2D gfx;
    for (auto _ : state) {
        gfx.Create_FromPicture(picture.get());
        benchmark::DoNotOptimize(gfx.Get_ptrDIBSection());
    }
    Report(state, gfx);
}

// ---- Transforms and filters (4096 x 4096) -------------------------------------

void Large(benchmark::internal::Benchmark* b) {
    b->Args({4096, 4096})->Unit(benchmark::kMillisecond)->UseRealTime();
}

// The large image at each depth, or at those with pixels to read and
// write (fill and replace leave 32-bit surfaces alone).
void Depths(benchmark::internal::Benchmark* b) {
    for (int bits : {8, 16, 24, 32}) b->Args({4096, 4096, bits});
    b->Unit(benchmark::kMillisecond)->UseRealTime();
}
void PixelDepths(benchmark::internal::Benchmark* b) {
    for (int bits : {8, 16, 24}) b->Args({4096, 4096, bits});
    b->Unit(benchmark::kMillisecond)->UseRealTime();
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

// A custom kernel of size n (3 to 9) whose weights rise from the rim to the
// centre, scaled by a factor: with factor 1 the sums of sizes 3 and 5 stay
// within 16 bits, with 200 no size's do.
std::vector<Long> CustomKernel(int n, int factor) {
    std::vector<Long> k(static_cast<std::size_t>(n) * static_cast<std::size_t>(n));
    for (int i = 0; i < n * n; ++i) {
        const int dx = std::abs(i % n - n / 2), dy = std::abs(i / n - n / 2);
        k[static_cast<std::size_t>(i)] = factor * (n - dx - dy > 0 ? n - dx - dy : 1);
    }
    return k;
}
Long KernelWeight(const std::vector<Long>& k) {
    Long sum = 0;
    for (Long v : k) sum += v;
    return sum;
}

void BM_Filter_Custom(benchmark::State& state) {
    const auto n = static_cast<int>(state.range(0)), factor = static_cast<int>(state.range(1));
    const std::vector<Long> k = CustomKernel(n, factor);
    clsGFX_2D gfx;
    gfx.Create(4096, 4096, 24);
    RandomContent(gfx);
    gfx.Filter_StandardFilterSetCustom(n, k, KernelWeight(k));
    for (auto _ : state) {
        gfx.Filter_StandardFilter(-1, 0);
        benchmark::ClobberMemory();
    }
    Report(state, gfx);
}

void CustomKernels(benchmark::internal::Benchmark* b) {
    for (int n = 3; n <= 9; n += 2) b->Args({n, 1})->Args({n, 200});
    b->Unit(benchmark::kMillisecond)->UseRealTime();
}

void BM_Filter_EdgeDetection(benchmark::State& state) {
    RunOnSurface(state, [](clsGFX_2D& g) { g.Filter_EdgeDetection(); });
}

void BM_Filter_Smoothing(benchmark::State& state) {
    RunOnSurface(state, [](clsGFX_2D& g) { g.Filter_Smoothing(false); });
}
void BM_Filter_Smoothing_LinePreserve(benchmark::State& state) {
    RunOnSurface(state, [](clsGFX_2D& g) { g.Filter_Smoothing(true); });
}
void BM_Image_FlipX(benchmark::State& state) {
    RunOnSurface(
        state, [](clsGFX_2D& g) { g.Image_FlipX(); }, false, state.range(2));
}
void BM_Image_FlipY(benchmark::State& state) {
    RunOnSurface(
        state, [](clsGFX_2D& g) { g.Image_FlipY(); }, false, state.range(2));
}
void BM_Image_Rotate(benchmark::State& state) {
    RunOnSurface(
        state, [](clsGFX_2D& g) { g.Image_Rotate(); }, false, state.range(2));
}
void BM_Color_ConvertRGBToHSL(benchmark::State& state) {
    RunOnSurface(
        state, [](clsGFX_2D& g) { g.Color_ConvertRGBToHSL(); }, true);
}
void BM_Color_ConvertHSLToRGB(benchmark::State& state) {
    RunOnSurface(
        state, [](clsGFX_2D& g) { g.Color_ConvertHSLToRGB(); }, true);
}
void BM_Color_Colourise(benchmark::State& state) {
    RunOnSurface(
        state, [](clsGFX_2D& g) { g.Color_Colourise(150, 200); }, true);
}
void BM_Color_ChannelComponent_Hue(benchmark::State& state) {
    RunOnSurface(
        state, [](clsGFX_2D& g) { g.Color_ChannelComponent(4); }, true);
}
void BM_Color_ChannelComponent_Luminance(benchmark::State& state) {
    RunOnSurface(
        state, [](clsGFX_2D& g) { g.Color_ChannelComponent(16); }, true);
}
void BM_Color_EqualizeIstogram_Saturation(benchmark::State& state) {
    RunOnSurface(
        state, [](clsGFX_2D& g) { g.Color_EqualizeIstogram(8); }, true);
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
void BM_CV_filter2D_Custom(benchmark::State& state) {
    const auto n = static_cast<int>(state.range(0)), factor = static_cast<int>(state.range(1));
    const std::vector<Long> k = CustomKernel(n, factor);
    const auto weight = static_cast<float>(KernelWeight(k));
    cv::Mat kernel(n, n, CV_32F);
    for (int i = 0; i < n * n; ++i)
        kernel.at<float>(i / n, i % n) =
            static_cast<float>(k[static_cast<std::size_t>(i)]) / weight;
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
void BM_CV_cvtColor_HLS2BGR(benchmark::State& state) {
    RunOnMat(state, [](const cv::Mat& s, cv::Mat& d) { cv::cvtColor(s, d, cv::COLOR_HLS2BGR); });
}
#endif

void Sizes(benchmark::internal::Benchmark* b) {
    b->Args({4096, 4096})->Args({400, 24})->Unit(benchmark::kMicrosecond);
}

// A button's picture, which the controls replace a mask colour in and fade.
void ButtonPicture(benchmark::internal::Benchmark* b) {
    b->Args({32, 32})->Unit(benchmark::kMicrosecond);
}

BENCHMARK(BM_Memcpy)->Apply(Sizes)->Apply(ButtonPicture);
BENCHMARK(BM_Color_Fill)->Apply(Sizes);
BENCHMARK(BM_Color_Invert)->Apply(Sizes);
BENCHMARK(BM_Color_Invert_RedOnly)->Apply(Sizes);
BENCHMARK(BM_Color_Gray_Max)->Apply(Sizes);
BENCHMARK(BM_Color_Gray_Weighted)->Apply(Sizes);
BENCHMARK(BM_Color_Replace)->Apply(Sizes)->Apply(ButtonPicture);
BENCHMARK(BM_Color_FadeTo)->Apply(Sizes)->Apply(ButtonPicture);
BENCHMARK(BM_Color_FadeTo_Weight0_6)->Apply(Sizes);
BENCHMARK(BM_Color_Halftone_ErrorDiffusion)->Apply(Sizes);
BENCHMARK(BM_Draw_Line_Columns)->Apply(Sizes);
BENCHMARK(BM_Draw_Line_Fan)->Apply(Sizes);
BENCHMARK(BM_Draw_Circle)->Apply(Sizes);
BENCHMARK(BM_Draw_Bezier)->Apply(Sizes);
BENCHMARK(BM_Color_Halftone_Dithering)->Apply(Sizes);
BENCHMARK(BM_Color_GetIstogram)->Apply(Sizes);
BENCHMARK(BM_Color_EqualizeIstogram_Red)->Apply(Sizes);
BENCHMARK(BM_Create)->Apply(Sizes);
BENCHMARK(BM_Get_Picture)->Apply(Sizes);
BENCHMARK(BM_Create_FromPicture)->Apply(Sizes);
BENCHMARK(BM_Color_Fill_Depth)->Apply(PixelDepths);
BENCHMARK(BM_Color_Replace_Depth)->Apply(PixelDepths);

BENCHMARK(BM_Filter_StandardFilter)->Apply(KernelTypes);
BENCHMARK(BM_Filter_Custom)->Apply(CustomKernels);
BENCHMARK(BM_Filter_EdgeDetection)->Apply(Large);
BENCHMARK(BM_Filter_Smoothing)->Apply(Large);
BENCHMARK(BM_Filter_Smoothing_LinePreserve)->Apply(Large);
BENCHMARK(BM_Image_Resample)->Arg(2048)->Arg(8192)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_Image_FlipX)->Apply(Depths);
BENCHMARK(BM_Image_FlipY)->Apply(Depths);
BENCHMARK(BM_Image_Rotate)->Apply(Depths);
BENCHMARK(BM_Color_ConvertRGBToHSL)->Apply(Large);
BENCHMARK(BM_Color_ConvertHSLToRGB)->Apply(Large);
BENCHMARK(BM_Color_Colourise)->Apply(Large);
BENCHMARK(BM_Color_ChannelComponent_Hue)->Apply(Large);
BENCHMARK(BM_Color_ChannelComponent_Luminance)->Apply(Large);
BENCHMARK(BM_Color_EqualizeIstogram_Saturation)->Apply(Large);
#ifdef KELVARIN_BENCH_OPENCV
BENCHMARK(BM_CV_filter2D)->Apply(KernelTypes);
BENCHMARK(BM_CV_filter2D_Custom)->Apply(CustomKernels);
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
BENCHMARK(BM_CV_cvtColor_HLS2BGR)->Unit(benchmark::kMillisecond)->UseRealTime();
#endif

// The table after the runs: each operation beside its peer, the peer's time
// over ours (above 1, ours is faster). Processor time, as the machine may be
// shared; the median of the repetitions where there are some.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        benchmark::ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.error_occurred) continue;
            const bool aggregate = run.run_type == Run::RT_Aggregate;
            if (aggregate ? run.aggregate_name != "median" : run.repetitions > 1) continue;
            const std::string name = run.run_name.function_name +
                                     (run.run_name.args.empty() ? "" : "/" + run.run_name.args);
            if (seconds_.count(name) == 0) order_.push_back(name);
            seconds_[name] =
                run.GetAdjustedCPUTime() / benchmark::GetTimeUnitMultiplier(run.time_unit);
        }
    }

    void Finalize() override {
        std::printf("\n%-56s %15s  %-36s %15s %8s\n", "operation", "ours", "peer", "peer's",
                    "speed");
        for (const std::string& name : order_) {
            if (name.rfind("BM_CV_", 0) == 0 || name.rfind("BM_Memcpy", 0) == 0) continue;
            const std::string peer = PeerOf(name);
            const auto found = seconds_.find(peer);
            if (found == seconds_.end()) continue;
            std::printf("%-56s %12.2f us  %-36s %12.2f us %7.2fx\n", name.c_str(),
                        seconds_[name] * 1e6, peer.c_str(), found->second * 1e6,
                        found->second / seconds_[name]);
        }
        benchmark::ConsoleReporter::Finalize();
    }

private:
    // OpenCV's counterpart where there is one, else memcpy of as many bytes
    // (the benchmark's first two arguments are its size).
    static std::string PeerOf(const std::string& name) {
        const auto slash = name.find('/');
        const std::string function = name.substr(0, slash);
        const std::string args = slash == std::string::npos ? "" : name.substr(slash + 1);
        static const std::map<std::string, std::string> kOpenCv = {
            {"BM_Filter_StandardFilter", "BM_CV_filter2D/"},
            {"BM_Filter_Custom", "BM_CV_filter2D_Custom/"},
            {"BM_Image_Resample", "BM_CV_resize_linear_new/"},
            {"BM_Image_FlipX", "BM_CV_flip_x"},
            {"BM_Image_FlipY", "BM_CV_flip_y"},
            {"BM_Image_Rotate", "BM_CV_rotate"},
            {"BM_Color_ConvertRGBToHSL", "BM_CV_cvtColor_HLS"},
            {"BM_Color_ConvertHSLToRGB", "BM_CV_cvtColor_HLS2BGR"},
        };
        const auto cv = kOpenCv.find(function);
        if (cv != kOpenCv.end()) {
            const std::string& peer = cv->second;
            if (peer.back() == '/') return peer + args;  // the same arguments
            return peer;
        }
        const auto size = args.substr(0, args.find('/', args.find('/') + 1));
        return "BM_Memcpy/" + (args.empty() ? std::string("4096/4096") : size);
    }

    std::map<std::string, double> seconds_;
    std::vector<std::string> order_;
};

}  // namespace

int main(int argc, char** argv) {
#ifdef KELVARIN_BENCH_OPENCV
    cv::setNumThreads(1);  // the comparison is on one core
#endif
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}

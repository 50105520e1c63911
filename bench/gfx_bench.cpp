// Raster kernels of clsGFX_2D in megapixels per second, on a large image
// (4096 x 4096) and on a progress-bar-sized one (400 x 24), with memcpy of
// the same bytes in the same run as the physical reference.
#include <benchmark/benchmark.h>

#include <cstring>
#include <random>
#include <vector>

#include "gfx/clsGFX_2D.h"

namespace {

using kelvarin::clsGFX_2D;

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
    RunOnSurface(state, [](clsGFX_2D& g) { g.Color_Halftone_ErrorDiffusion(true); }, true);
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

}  // namespace

BENCHMARK_MAIN();

// SPDX-License-Identifier: MIT
// The animated effects of clsGFX_2D in frames per second on a 640 x 480
// surface, one step a frame, beside memcpy of the same image (the physical
// limit of one pass over it). Each effect runs twice: with its fast path
// (argument 1) and as the plain loop (argument 0). Every run first plays a
// few hundred frames untimed, so that it measures a scene in full swing:
// a fountain of particles, dense rain, tall flames, water rippled all over.
#include <benchmark/benchmark.h>

#include <cstring>
#include <functional>
#include <random>
#include <vector>

#include "gfx/Simd.h"
#include "gfx/clsGFX_2D.h"

namespace {

using kelvarin::clsGFX_2D;

constexpr int kWidth = 640;
constexpr int kHeight = 480;
constexpr int kWarmUpFrames = 300;

void Picture(clsGFX_2D& gfx) {
    std::mt19937 random(42);
    std::uint8_t* p = gfx.Get_ptrDIBSection();
    const std::size_t n = static_cast<std::size_t>(gfx.Get_BytesPerScanLine()) * kHeight;
    for (std::size_t i = 0; i < n; ++i) p[i] = static_cast<std::uint8_t>(random());
}

// One frame of a scene: its own arguments each time from a fixed sequence.
using Frame = std::function<void(clsGFX_2D& gfx, const clsGFX_2D& picture, std::mt19937& random)>;

void RunScene(benchmark::State& state, const Frame& frame) {
    kelvarin::gfx_detail::EnableSimd(state.range(0) != 0);
    state.SetLabel(state.range(0) != 0 ? "fast path" : "plain loop");
    clsGFX_2D gfx, picture;
    gfx.Create(kWidth, kHeight, 24);
    picture.Create(kWidth, kHeight, 24);
    Picture(picture);
    gfx.BitBlt_LoadPicture(&picture);
    gfx.Effect_Seed(1);
    std::mt19937 random(7);
    for (int i = 0; i < kWarmUpFrames; ++i) frame(gfx, picture, random);
    for (auto _ : state) {
        frame(gfx, picture, random);
        benchmark::ClobberMemory();
    }
    state.counters["fps"] = benchmark::Counter(1, benchmark::Counter::kIsIterationInvariantRate);
    kelvarin::gfx_detail::EnableSimd(true);
}

void BM_Memcpy(benchmark::State& state) {
    std::vector<std::uint8_t> from(static_cast<std::size_t>(kWidth) * kHeight * 3, 1);
    std::vector<std::uint8_t> to(from.size(), 2);
    for (auto _ : state) {
        std::memcpy(to.data(), from.data(), from.size());
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
    state.counters["fps"] = benchmark::Counter(1, benchmark::Counter::kIsIterationInvariantRate);
}

// A fountain of 150 new particles a frame, each living 120 frames: about
// 18 000 at once, over the picture.
void BM_Effect_Particle(benchmark::State& state) {
    RunScene(state, [](clsGFX_2D& gfx, const clsGFX_2D& picture, std::mt19937&) {
        gfx.Effect_ParticleAdd(320, 80, 0, 5, 0x0030A0FF, 120, 150, 2.5f);
        gfx.Effect_Particle(0.06f, 0.01f, &picture);
    });
}

// A new stream every frame.
void BM_Effect_Matrix(benchmark::State& state) {
    RunScene(state, [](clsGFX_2D& gfx, const clsGFX_2D&, std::mt19937&) {
        gfx.Effect_MatrixAdd();
        gfx.Effect_Matrix(16);
    });
}

// Seeding and burning, flames about half the height.
void BM_Effect_Fire(benchmark::State& state) {
    RunScene(state, [](clsGFX_2D& gfx, const clsGFX_2D&, std::mt19937&) {
        gfx.Effect_FireTest(255);
        gfx.Effect_Fire(2);
    });
}

// A drop every fourth frame somewhere on the picture.
void BM_Effect_Water(benchmark::State& state) {
    RunScene(state,
             [n = 0](clsGFX_2D& gfx, const clsGFX_2D& picture, std::mt19937& random) mutable {
                 if (n++ % 4 == 0) {
                     gfx.Effect_Water(static_cast<int>(random() % kWidth),
                                      static_cast<int>(random() % kHeight), 6, 800, 5, &picture);
                     return;
                 }
                 gfx.Effect_Water(0, 0, 0, 0, 5, &picture);
             });
}

void FastAndPlain(benchmark::internal::Benchmark* b) {
    b->Arg(1)->Arg(0)->Unit(benchmark::kMicrosecond);
}

BENCHMARK(BM_Memcpy)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Effect_Particle)->Apply(FastAndPlain);
BENCHMARK(BM_Effect_Matrix)->Apply(FastAndPlain);
BENCHMARK(BM_Effect_Fire)->Apply(FastAndPlain);
BENCHMARK(BM_Effect_Water)->Apply(FastAndPlain);

}  // namespace

BENCHMARK_MAIN();

// SPDX-License-Identifier: MIT
#include "gfx/Simd.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <type_traits>
#include <utility>

#include "gfx/Targets.h"

namespace kelvarin::gfx_detail {

namespace {

bool HasAvx2() noexcept {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2");
#else
    return false;
#endif
}

bool HasAvx512() noexcept {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw");
#else
    return false;
#endif
}

bool HasAvx512Vbmi() noexcept {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
           __builtin_cpu_supports("avx512vbmi");
#else
    return false;
#endif
}

// Settings of the user-interface thread.
bool g_enabled = SimdAvailable();
bool g_avx2 = g_enabled && HasAvx2();
bool g_avx512 = g_avx2 && HasAvx512();
bool g_avx512vbmi = g_avx512 && HasAvx512Vbmi();

#if KELVARIN_X86

// Sixteen pixels are 48 bytes in three vectors: byte p = 3j + c, channel c
// (0 blue, 1 green, 2 red) of pixel j, is byte p % 16 of vector p / 16.
// The kernels move bytes between that layout and one vector per channel by
// shuffling three vectors through three tables and ORing the results; a
// table byte with its high bit set gives 0.
using Mask = std::array<std::uint8_t, 16>;
using MixTables = std::array<std::array<Mask, 3>, 3>;

// Tables[o][i] for output vectors o and input vectors i, where source(o, l)
// names the input vector and the byte that byte l of output o comes from.
template <typename Source>
constexpr MixTables MakeMix(Source source) {
    MixTables m{};
    for (int o = 0; o < 3; ++o) {
        for (int l = 0; l < 16; ++l) {
            const auto [from, at] = source(o, l);
            for (int i = 0; i < 3; ++i)
                m[o][i][l] = static_cast<std::uint8_t>(i == from ? at : 0x80);
        }
    }
    return m;
}

// Channel c from the block: byte j is pixel j's, byte 3j + c of the block.
alignas(16) constexpr MixTables kGather = MakeMix([](int c, int j) {
    const int p = 3 * j + c;
    return std::pair{p / 16, p % 16};
});
// Vector k of the block from the channels: byte p = 16k + l is channel p % 3
// of pixel p / 3.
alignas(16) constexpr MixTables kScatter = MakeMix([](int k, int l) {
    const int p = 16 * k + l;
    return std::pair{p % 3, p / 3};
});

// The same moves for a block of 64 pixels in three 512-bit registers, by
// byte permutes: index byte j picks byte j of the result from the first two
// registers (bit 6 the second), and where fromLast has bit j from the
// third (the low six bits).
struct BytePermute {
    alignas(64) std::array<std::uint8_t, 64> index;
    std::uint64_t fromLast;
};
using Permutes = std::array<BytePermute, 3>;

// Byte j of channel c is byte p = 3j + c of the block.
constexpr Permutes kGather64 = [] {
    Permutes m{};
    for (int c = 0; c < 3; ++c) {
        for (int j = 0; j < 64; ++j) {
            const int p = 3 * j + c;
            m[c].index[j] = static_cast<std::uint8_t>(p & 127);
            if (p >= 128) m[c].fromLast |= std::uint64_t{1} << j;
        }
    }
    return m;
}();
// Byte l of register k is channel p % 3 of pixel p / 3, p = 64k + l:
// blue from the first channel, green from the second, red from the third.
constexpr Permutes kScatter64 = [] {
    Permutes m{};
    for (int k = 0; k < 3; ++k) {
        for (int l = 0; l < 64; ++l) {
            const int p = 64 * k + l, pixel = p / 3, c = p % 3;
            m[k].index[l] = static_cast<std::uint8_t>(pixel + (c == 1 ? 64 : 0));
            if (c == 2) m[k].fromLast |= std::uint64_t{1} << l;
        }
    }
    return m;
}();

#endif

}  // namespace
}  // namespace kelvarin::gfx_detail

#if KELVARIN_X86
#define KELVARIN_SIMD_BITS 128
#include "gfx/SimdKernels.h"
#undef KELVARIN_SIMD_BITS
#define KELVARIN_SIMD_BITS 256
#include "gfx/HslKernels.h"
#include "gfx/SimdKernels.h"
#undef KELVARIN_SIMD_BITS
#define KELVARIN_SIMD_BITS 512
// GCC 12's AVX-512 conversion intrinsics start from a register they leave
// undefined on purpose, which -Wmaybe-uninitialized reports once inlined.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include "gfx/HslKernels.h"
#include "gfx/SimdKernels.h"
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif
#undef KELVARIN_SIMD_BITS
#endif

namespace kelvarin::gfx_detail {

#if KELVARIN_X86
namespace {

// The 512-bit kernel over whole blocks of 64 pixels where it may run, the
// 256-bit one over a block of 32 that remains, then the 128-bit one over a
// block of 16.
template <typename... Args>
Long Widest(Long (*widest)(std::uint8_t*, Long, Args...),
            Long (*wide)(std::uint8_t*, Long, Args...),
            Long (*narrow)(std::uint8_t*, Long, Args...), std::uint8_t* row, Long width,
            std::type_identity_t<Args>... args) {
    if (!g_enabled) return 0;
    Long done = g_avx512vbmi ? widest(row, width, args...) : 0;
    if (g_avx2) done += wide(row + 3 * done, width - done, args...);
    return done + narrow(row + 3 * done, width - done, args...);
}

}  // namespace
#endif

#if KELVARIN_X86
namespace {

// Color_FadeTo's table, four or eight entries at a time: the same additions,
// divisions and floors as the plain loop's, lane by lane.
KELVARIN_AVX2 void FadeTable256(const double part[3], double divisor, std::int16_t outside,
                                std::int16_t table[3][256]) {
    const __m256d d = _mm256_set1_pd(divisor), zero = _mm256_setzero_pd(),
                  top = _mm256_set1_pd(255), other = _mm256_set1_pd(outside);
    for (int c = 0; c < 3; ++c) {
        const __m256d p = _mm256_set1_pd(part[c]);
        for (int v = 0; v < 256; v += 4) {
            const __m256d n = _mm256_add_pd(_mm256_set_pd(v + 3, v + 2, v + 1, v), p);
            const __m256d q = _mm256_floor_pd(_mm256_div_pd(n, d));
            const __m256d inside = _mm256_and_pd(_mm256_cmp_pd(q, zero, _CMP_GE_OQ),
                                                 _mm256_cmp_pd(q, top, _CMP_LE_OQ));
            const __m128i entries = _mm256_cvttpd_epi32(_mm256_blendv_pd(other, q, inside));
            _mm_storel_epi64(reinterpret_cast<__m128i*>(table[c] + v),
                             _mm_packs_epi32(entries, entries));
        }
    }
}

// The zero-masked conversions, all lanes on: the plain ones start from a
// register GCC 12 reports as uninitialised.
KELVARIN_AVX512BW void FadeTable512(const double part[3], double divisor, std::int16_t outside,
                                    std::int16_t table[3][256]) {
    const __m512d d = _mm512_set1_pd(divisor), zero = _mm512_setzero_pd(),
                  top = _mm512_set1_pd(255), other = _mm512_set1_pd(outside);
    const __m256i lanes = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
    for (int c = 0; c < 3; ++c) {
        const __m512d p = _mm512_set1_pd(part[c]);
        for (int v = 0; v < 256; v += 8) {
            const __m512d n = _mm512_add_pd(
                _mm512_maskz_cvtepi32_pd(0xFF, _mm256_add_epi32(lanes, _mm256_set1_epi32(v))), p);
            const __m512d q = _mm512_floor_pd(_mm512_div_pd(n, d));
            const __mmask8 inside =
                _mm512_cmp_pd_mask(q, zero, _CMP_GE_OQ) & _mm512_cmp_pd_mask(q, top, _CMP_LE_OQ);
            const __m256i entries =
                _mm512_maskz_cvttpd_epi32(0xFF, _mm512_mask_blend_pd(inside, other, q));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(table[c] + v),
                             _mm_packs_epi32(_mm256_castsi256_si128(entries),
                                             _mm256_extracti128_si256(entries, 1)));
        }
    }
}

}  // namespace
#endif

bool SimdAvailable() noexcept {
#if KELVARIN_X86
    __builtin_cpu_init();
    return __builtin_cpu_supports("ssse3");
#else
    return false;
#endif
}

void EnableSimd(bool on) noexcept {
    g_enabled = on && SimdAvailable();
#if KELVARIN_X86
    g_avx2 = g_enabled && HasAvx2();
    g_avx512 = g_avx2 && HasAvx512();
    g_avx512vbmi = g_avx512 && HasAvx512Vbmi();
#endif
}
void LimitVectorBits(int bits) noexcept {
#if KELVARIN_X86
    g_avx2 = g_enabled && HasAvx2() && bits >= 256;
    g_avx512 = g_avx2 && HasAvx512() && bits >= 512;
    g_avx512vbmi = g_avx512 && HasAvx512Vbmi();
#else
    (void)bits;
#endif
}
bool SimdEnabled() noexcept { return g_enabled; }
bool Avx2Enabled() noexcept { return g_avx2; }
bool Avx512Enabled() noexcept { return g_avx512; }
bool Avx512VbmiEnabled() noexcept { return g_avx512vbmi; }

#if KELVARIN_X86

Long GrayRowSimd(std::uint8_t* row, Long width, std::uint8_t maskBlue, std::uint8_t maskGreen,
                 std::uint8_t maskRed, bool weighted) noexcept {
    const std::uint8_t mask[3] = {maskBlue, maskGreen, maskRed};
    return Widest(v512::Gray, v256::Gray, v128::Gray, row, width, mask, weighted);
}

Long FadeSimd(std::uint8_t* first, std::ptrdiff_t stride, Long width, Long height,
              const std::uint8_t mask[3], const int part[3], int multiplier, int shift) noexcept {
    if (!g_enabled || height <= 0) return 0;
    if (g_avx512vbmi)
        return v512::Fade(first, stride, width, height, mask, part, multiplier, shift);
    Long done = 0;
    for (Long y = 0; y < height; ++y, first += stride) {
        done = g_avx2 ? v256::Fade(first, width, mask, part, multiplier, shift) : 0;
        done += v128::Fade(first + 3 * done, width - done, mask, part, multiplier, shift);
    }
    return done;
}

bool FadeTableSimd(const double part[3], double divisor, std::int16_t outside,
                   std::int16_t table[3][256]) noexcept {
    if (g_avx512) {
        FadeTable512(part, divisor, outside, table);
        return true;
    }
    if (g_avx2) {
        FadeTable256(part, divisor, outside, table);
        return true;
    }
    return false;
}

Long ReplaceSimd(std::uint8_t* first, std::ptrdiff_t stride, Long width, Long height,
                 const std::uint8_t from[3], const std::uint8_t to[3]) noexcept {
    if (!g_enabled || height <= 0) return 0;
    if (g_avx512vbmi) return v512::Replace(first, stride, width, height, from, to);
    Long done = 0;
    for (Long y = 0; y < height; ++y, first += stride) {
        done = g_avx2 ? v256::Replace(first, width, from, to) : 0;
        done += v128::Replace(first + 3 * done, width - done, from, to);
    }
    return done;
}

Long InvertRowSimd(std::uint8_t* row, Long width, const std::uint8_t pattern[192]) noexcept {
    return Widest(v512::Invert, v256::Invert, v128::Invert, row, width, pattern);
}

Long HslRowSimd(std::uint8_t* row, Long width, HslRow op, std::uint8_t hue,
                std::uint8_t saturation) noexcept {
    if (g_avx512) return hsl512::Hsl(row, width, op, hue, saturation);
    if (g_avx2) return hsl256::Hsl(row, width, op, hue, saturation);
    return 0;
}

#else

Long GrayRowSimd(std::uint8_t*, Long, std::uint8_t, std::uint8_t, std::uint8_t, bool) noexcept {
    return 0;
}
Long FadeSimd(std::uint8_t*, std::ptrdiff_t, Long, Long, const std::uint8_t*, const int*, int,
              int) noexcept {
    return 0;
}
bool FadeTableSimd(const double*, double, std::int16_t, std::int16_t (*)[256]) noexcept {
    return false;
}
Long ReplaceSimd(std::uint8_t*, std::ptrdiff_t, Long, Long, const std::uint8_t*,
                 const std::uint8_t*) noexcept {
    return 0;
}
Long InvertRowSimd(std::uint8_t*, Long, const std::uint8_t*) noexcept { return 0; }
Long HslRowSimd(std::uint8_t*, Long, HslRow, std::uint8_t, std::uint8_t) noexcept { return 0; }

#endif

}  // namespace kelvarin::gfx_detail

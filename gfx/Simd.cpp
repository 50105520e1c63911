#include "gfx/Simd.h"

#include <array>

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
bool g_avx512vbmi = g_avx2 && HasAvx512Vbmi();

#if KELVARIN_X86

// Sixteen pixels are 48 bytes in three vectors. Gather[c][k] takes the
// bytes of channel c (0 blue, 1 green, 2 red) that lie in vector k to their
// pixel's place; Scatter[k][c] puts channel c's bytes back into vector k.
// A mask byte with its high bit set gives 0.
using Mask = std::array<std::uint8_t, 16>;

constexpr std::array<std::array<Mask, 3>, 3> MakeGather() {
    std::array<std::array<Mask, 3>, 3> m{};
    for (int c = 0; c < 3; ++c) {
        for (int k = 0; k < 3; ++k) {
            for (int j = 0; j < 16; ++j) {
                const int at = 3 * j + c;
                m[c][k][j] = static_cast<std::uint8_t>(at / 16 == k ? at % 16 : 0x80);
            }
        }
    }
    return m;
}

constexpr std::array<std::array<Mask, 3>, 3> MakeScatter() {
    std::array<std::array<Mask, 3>, 3> m{};
    for (int k = 0; k < 3; ++k) {
        for (int c = 0; c < 3; ++c) {
            for (int i = 0; i < 16; ++i) {
                const int at = 16 * k + i;
                m[k][c][i] = static_cast<std::uint8_t>(at % 3 == c ? at / 3 : 0x80);
            }
        }
    }
    return m;
}

alignas(16) constexpr auto kGather = MakeGather();
alignas(16) constexpr auto kScatter = MakeScatter();

KELVARIN_SSSE3 inline __m128i Load(const Mask& m) {
    return _mm_load_si128(reinterpret_cast<const __m128i*>(m.data()));
}

KELVARIN_SSSE3 inline __m128i Channel(const __m128i v[3], int c) {
    return _mm_or_si128(_mm_or_si128(_mm_shuffle_epi8(v[0], Load(kGather[c][0])),
                                     _mm_shuffle_epi8(v[1], Load(kGather[c][1]))),
                        _mm_shuffle_epi8(v[2], Load(kGather[c][2])));
}

KELVARIN_SSSE3 inline __m128i Interleave(const __m128i ch[3], int k) {
    return _mm_or_si128(_mm_or_si128(_mm_shuffle_epi8(ch[0], Load(kScatter[k][0])),
                                     _mm_shuffle_epi8(ch[1], Load(kScatter[k][1]))),
                        _mm_shuffle_epi8(ch[2], Load(kScatter[k][2])));
}

// Weighted grey of eight pixels whose channels are widened to 16 bits:
// round-half-even of s / 1000 with s = 222 red + 707 green + 71 blue.
// With n = s + 500, the quotient is floor(floor(n / 8) / 125): n / 8 fits
// 16 bits, and its quotient by 125 is the high half of a 16-bit product with
// ceil(2^22 / 125), exact below 59074. A tie is n a multiple of 1000 (n / 8
// a multiple of 125, and n itself of 8); it loses one when the quotient is odd.
KELVARIN_SSSE3 inline __m128i Weighted8(__m128i b, __m128i g, __m128i r) {
    const __m128i rgWeights = _mm_set1_epi32(222 | 707 << 16);
    const __m128i bWeights = _mm_set1_epi32(71);
    const __m128i half = _mm_set1_epi32(500);
    const __m128i zero = _mm_setzero_si128();
    const __m128i lo =
        _mm_add_epi32(_mm_add_epi32(_mm_madd_epi16(_mm_unpacklo_epi16(r, g), rgWeights),
                                    _mm_madd_epi16(_mm_unpacklo_epi16(b, zero), bWeights)),
                      half);
    const __m128i hi =
        _mm_add_epi32(_mm_add_epi32(_mm_madd_epi16(_mm_unpackhi_epi16(r, g), rgWeights),
                                    _mm_madd_epi16(_mm_unpackhi_epi16(b, zero), bWeights)),
                      half);
    const __m128i eighths = _mm_packs_epi32(_mm_srli_epi32(lo, 3), _mm_srli_epi32(hi, 3));
    const __m128i rest =
        _mm_packs_epi32(_mm_and_si128(lo, _mm_set1_epi32(7)), _mm_and_si128(hi, _mm_set1_epi32(7)));
    const __m128i q = _mm_srli_epi16(
        _mm_mulhi_epu16(eighths, _mm_set1_epi16(static_cast<short>(33555 - 65536))), 6);
    const __m128i tie =
        _mm_and_si128(_mm_cmpeq_epi16(_mm_mullo_epi16(q, _mm_set1_epi16(125)), eighths),
                      _mm_cmpeq_epi16(rest, zero));
    return _mm_sub_epi16(q, _mm_and_si128(tie, _mm_and_si128(q, _mm_set1_epi16(1))));
}

KELVARIN_SSSE3 Long GraySsse3(std::uint8_t* row, Long width, std::uint8_t mb, std::uint8_t mg,
                              std::uint8_t mr, bool weighted) {
    const __m128i maskB = _mm_set1_epi8(static_cast<char>(mb));
    const __m128i maskG = _mm_set1_epi8(static_cast<char>(mg));
    const __m128i maskR = _mm_set1_epi8(static_cast<char>(mr));
    const __m128i zero = _mm_setzero_si128();
    Long x = 0;
    for (; x + 16 <= width; x += 16, row += 48) {
        __m128i v[3];
        for (int k = 0; k < 3; ++k) {
            v[k] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(row + 16 * k));
        }
        const __m128i b = Channel(v, 0), g = Channel(v, 1), r = Channel(v, 2);
        __m128i grey;
        if (weighted) {
            grey =
                _mm_packus_epi16(Weighted8(_mm_unpacklo_epi8(b, zero), _mm_unpacklo_epi8(g, zero),
                                           _mm_unpacklo_epi8(r, zero)),
                                 Weighted8(_mm_unpackhi_epi8(b, zero), _mm_unpackhi_epi8(g, zero),
                                           _mm_unpackhi_epi8(r, zero)));
        } else {
            grey = _mm_max_epu8(b, _mm_max_epu8(g, r));
        }
        const __m128i keep =
            _mm_and_si128(_mm_cmpeq_epi8(b, maskB),
                          _mm_and_si128(_mm_cmpeq_epi8(g, maskG), _mm_cmpeq_epi8(r, maskR)));
        const __m128i out[3] = {_mm_or_si128(_mm_and_si128(keep, b), _mm_andnot_si128(keep, grey)),
                                _mm_or_si128(_mm_and_si128(keep, g), _mm_andnot_si128(keep, grey)),
                                _mm_or_si128(_mm_and_si128(keep, r), _mm_andnot_si128(keep, grey))};
        for (int k = 0; k < 3; ++k) {
            _mm_storeu_si128(reinterpret_cast<__m128i*>(row + 16 * k), Interleave(out, k));
        }
    }
    return x;
}

KELVARIN_SSSE3 Long FadeSsse3(std::uint8_t* row, Long width, const std::uint8_t mask[3],
                              const int part[3], int shift) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i count = _mm_cvtsi32_si128(shift);
    __m128i maskBytes[3], parts[3];
    for (int c = 0; c < 3; ++c) {
        maskBytes[c] = _mm_set1_epi8(static_cast<char>(mask[c]));
        parts[c] = _mm_set1_epi16(static_cast<short>(part[c]));
    }
    Long x = 0;
    for (; x + 16 <= width; x += 16, row += 48) {
        __m128i v[3];
        for (int k = 0; k < 3; ++k) {
            v[k] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(row + 16 * k));
        }
        const __m128i ch[3] = {Channel(v, 0), Channel(v, 1), Channel(v, 2)};
        const __m128i keep = _mm_and_si128(_mm_cmpeq_epi8(ch[0], maskBytes[0]),
                                           _mm_and_si128(_mm_cmpeq_epi8(ch[1], maskBytes[1]),
                                                         _mm_cmpeq_epi8(ch[2], maskBytes[2])));
        __m128i out[3];
        for (int c = 0; c < 3; ++c) {
            const __m128i lo =
                _mm_srl_epi16(_mm_add_epi16(_mm_unpacklo_epi8(ch[c], zero), parts[c]), count);
            const __m128i hi =
                _mm_srl_epi16(_mm_add_epi16(_mm_unpackhi_epi8(ch[c], zero), parts[c]), count);
            const __m128i faded = _mm_packus_epi16(lo, hi);
            out[c] = _mm_or_si128(_mm_and_si128(keep, ch[c]), _mm_andnot_si128(keep, faded));
        }
        for (int k = 0; k < 3; ++k) {
            _mm_storeu_si128(reinterpret_cast<__m128i*>(row + 16 * k), Interleave(out, k));
        }
    }
    return x;
}

KELVARIN_SSSE3 Long ReplaceSsse3(std::uint8_t* row, Long width, const std::uint8_t from[3],
                                 const std::uint8_t to[3]) {
    __m128i fromBytes[3], toBytes[3];
    for (int c = 0; c < 3; ++c) {
        fromBytes[c] = _mm_set1_epi8(static_cast<char>(from[c]));
        toBytes[c] = _mm_set1_epi8(static_cast<char>(to[c]));
    }
    Long x = 0;
    for (; x + 16 <= width; x += 16, row += 48) {
        __m128i v[3];
        for (int k = 0; k < 3; ++k) {
            v[k] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(row + 16 * k));
        }
        const __m128i ch[3] = {Channel(v, 0), Channel(v, 1), Channel(v, 2)};
        const __m128i hit = _mm_and_si128(_mm_cmpeq_epi8(ch[0], fromBytes[0]),
                                          _mm_and_si128(_mm_cmpeq_epi8(ch[1], fromBytes[1]),
                                                        _mm_cmpeq_epi8(ch[2], fromBytes[2])));
        if (_mm_movemask_epi8(hit) == 0) continue;  // the usual case: nothing to write
        __m128i out[3];
        for (int c = 0; c < 3; ++c) {
            out[c] = _mm_or_si128(_mm_and_si128(hit, toBytes[c]), _mm_andnot_si128(hit, ch[c]));
        }
        for (int k = 0; k < 3; ++k) {
            _mm_storeu_si128(reinterpret_cast<__m128i*>(row + 16 * k), Interleave(out, k));
        }
    }
    return x;
}

// The weighted grey again on 256-bit registers where the processor has
// AVX2: each 128-bit half holds its own group of 16 pixels and runs exactly
// the steps above (every instruction used here works within halves).
KELVARIN_AVX2 inline __m256i Load2(const Mask& m) {
    return _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(m.data())));
}

KELVARIN_AVX2 inline __m256i Channel2(const __m256i v[3], int c) {
    return _mm256_or_si256(_mm256_or_si256(_mm256_shuffle_epi8(v[0], Load2(kGather[c][0])),
                                           _mm256_shuffle_epi8(v[1], Load2(kGather[c][1]))),
                           _mm256_shuffle_epi8(v[2], Load2(kGather[c][2])));
}

KELVARIN_AVX2 inline __m256i Interleave2(const __m256i ch[3], int k) {
    return _mm256_or_si256(_mm256_or_si256(_mm256_shuffle_epi8(ch[0], Load2(kScatter[k][0])),
                                           _mm256_shuffle_epi8(ch[1], Load2(kScatter[k][1]))),
                           _mm256_shuffle_epi8(ch[2], Load2(kScatter[k][2])));
}

KELVARIN_AVX2 inline __m256i Weighted16(__m256i b, __m256i g, __m256i r) {
    const __m256i rgWeights = _mm256_set1_epi32(222 | 707 << 16);
    const __m256i bWeights = _mm256_set1_epi32(71 | 500 << 16);  // 71 blue + 500 once
    const __m256i one = _mm256_set1_epi16(1);
    const __m256i zero = _mm256_setzero_si256();
    const __m256i lo = _mm256_add_epi32(_mm256_madd_epi16(_mm256_unpacklo_epi16(r, g), rgWeights),
                                        _mm256_madd_epi16(_mm256_unpacklo_epi16(b, one), bWeights));
    const __m256i hi = _mm256_add_epi32(_mm256_madd_epi16(_mm256_unpackhi_epi16(r, g), rgWeights),
                                        _mm256_madd_epi16(_mm256_unpackhi_epi16(b, one), bWeights));
    const __m256i eighths = _mm256_packs_epi32(_mm256_srli_epi32(lo, 3), _mm256_srli_epi32(hi, 3));
    const __m256i rest = _mm256_packs_epi32(_mm256_and_si256(lo, _mm256_set1_epi32(7)),
                                            _mm256_and_si256(hi, _mm256_set1_epi32(7)));
    const __m256i q = _mm256_srli_epi16(
        _mm256_mulhi_epu16(eighths, _mm256_set1_epi16(static_cast<short>(33555 - 65536))), 6);
    const __m256i tie =
        _mm256_and_si256(_mm256_cmpeq_epi16(_mm256_mullo_epi16(q, _mm256_set1_epi16(125)), eighths),
                         _mm256_cmpeq_epi16(rest, zero));
    return _mm256_sub_epi16(q, _mm256_and_si256(tie, _mm256_and_si256(q, one)));
}

KELVARIN_AVX2 Long GrayWeightedAvx2(std::uint8_t* row, Long width, std::uint8_t mb, std::uint8_t mg,
                                    std::uint8_t mr) {
    const __m256i maskB = _mm256_set1_epi8(static_cast<char>(mb));
    const __m256i maskG = _mm256_set1_epi8(static_cast<char>(mg));
    const __m256i maskR = _mm256_set1_epi8(static_cast<char>(mr));
    const __m256i zero = _mm256_setzero_si256();
    Long x = 0;
    for (; x + 32 <= width; x += 32, row += 96) {
        __m256i v[3];
        for (int k = 0; k < 3; ++k) {
            v[k] = _mm256_loadu2_m128i(reinterpret_cast<const __m128i*>(row + 48 + 16 * k),
                                       reinterpret_cast<const __m128i*>(row + 16 * k));
        }
        const __m256i b = Channel2(v, 0), g = Channel2(v, 1), r = Channel2(v, 2);
        const __m256i grey = _mm256_packus_epi16(
            Weighted16(_mm256_unpacklo_epi8(b, zero), _mm256_unpacklo_epi8(g, zero),
                       _mm256_unpacklo_epi8(r, zero)),
            Weighted16(_mm256_unpackhi_epi8(b, zero), _mm256_unpackhi_epi8(g, zero),
                       _mm256_unpackhi_epi8(r, zero)));
        const __m256i keep = _mm256_and_si256(
            _mm256_cmpeq_epi8(b, maskB),
            _mm256_and_si256(_mm256_cmpeq_epi8(g, maskG), _mm256_cmpeq_epi8(r, maskR)));
        const __m256i out[3] = {_mm256_blendv_epi8(grey, b, keep),
                                _mm256_blendv_epi8(grey, g, keep),
                                _mm256_blendv_epi8(grey, r, keep)};
        for (int k = 0; k < 3; ++k) {
            _mm256_storeu2_m128i(reinterpret_cast<__m128i*>(row + 48 + 16 * k),
                                 reinterpret_cast<__m128i*>(row + 16 * k), Interleave2(out, k));
        }
    }
    return x;
}

#endif

}  // namespace

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
    g_avx512vbmi = g_avx2 && HasAvx512Vbmi();
#endif
}
void LimitVectorBits(int bits) noexcept {
#if KELVARIN_X86
    g_avx2 = g_enabled && HasAvx2() && bits >= 256;
    g_avx512vbmi = g_avx2 && HasAvx512Vbmi() && bits >= 512;
#else
    (void)bits;
#endif
}
bool SimdEnabled() noexcept { return g_enabled; }
bool Avx2Enabled() noexcept { return g_avx2; }
bool Avx512VbmiEnabled() noexcept { return g_avx512vbmi; }

Long GrayRowSimd(std::uint8_t* row, Long width, std::uint8_t maskBlue, std::uint8_t maskGreen,
                 std::uint8_t maskRed, bool weighted) noexcept {
#if KELVARIN_X86
    if (!g_enabled) return 0;
    Long done = 0;
    if (weighted && g_avx2) done = GrayWeightedAvx2(row, width, maskBlue, maskGreen, maskRed);
    return done + GraySsse3(row + 3 * done, width - done, maskBlue, maskGreen, maskRed, weighted);
#else
    (void)row, (void)width, (void)maskBlue, (void)maskGreen, (void)maskRed, (void)weighted;
#endif
    return 0;
}

Long FadeRowSimd(std::uint8_t* row, Long width, const std::uint8_t mask[3], const int part[3],
                 int shift) noexcept {
#if KELVARIN_X86
    if (g_enabled) return FadeSsse3(row, width, mask, part, shift);
#else
    (void)row, (void)width, (void)mask, (void)part, (void)shift;
#endif
    return 0;
}

Long ReplaceRowSimd(std::uint8_t* row, Long width, const std::uint8_t from[3],
                    const std::uint8_t to[3]) noexcept {
#if KELVARIN_X86
    if (g_enabled) return ReplaceSsse3(row, width, from, to);
#else
    (void)row, (void)width, (void)from, (void)to;
#endif
    return 0;
}

}  // namespace kelvarin::gfx_detail

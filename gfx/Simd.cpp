#include "gfx/Simd.h"

#include <array>

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#define KELVARIN_X86 1
#define KELVARIN_SSSE3 __attribute__((target("ssse3")))
#endif

namespace kelvarin::gfx_detail {

namespace {

bool g_enabled = SimdAvailable();  // user-interface thread only

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
    return _mm_or_si128(
        _mm_or_si128(_mm_shuffle_epi8(v[0], Load(kGather[c][0])),
                     _mm_shuffle_epi8(v[1], Load(kGather[c][1]))),
        _mm_shuffle_epi8(v[2], Load(kGather[c][2])));
}

KELVARIN_SSSE3 inline __m128i Interleave(const __m128i ch[3], int k) {
    return _mm_or_si128(
        _mm_or_si128(_mm_shuffle_epi8(ch[0], Load(kScatter[k][0])),
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
    const __m128i lo = _mm_add_epi32(
        _mm_add_epi32(_mm_madd_epi16(_mm_unpacklo_epi16(r, g), rgWeights),
                      _mm_madd_epi16(_mm_unpacklo_epi16(b, zero), bWeights)),
        half);
    const __m128i hi = _mm_add_epi32(
        _mm_add_epi32(_mm_madd_epi16(_mm_unpackhi_epi16(r, g), rgWeights),
                      _mm_madd_epi16(_mm_unpackhi_epi16(b, zero), bWeights)),
        half);
    const __m128i eighths = _mm_packs_epi32(_mm_srli_epi32(lo, 3), _mm_srli_epi32(hi, 3));
    const __m128i rest = _mm_packs_epi32(_mm_and_si128(lo, _mm_set1_epi32(7)),
                                         _mm_and_si128(hi, _mm_set1_epi32(7)));
    const __m128i q = _mm_srli_epi16(_mm_mulhi_epu16(eighths, _mm_set1_epi16(static_cast<short>(33555 - 65536))), 6);
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
            grey = _mm_packus_epi16(
                Weighted8(_mm_unpacklo_epi8(b, zero), _mm_unpacklo_epi8(g, zero),
                          _mm_unpacklo_epi8(r, zero)),
                Weighted8(_mm_unpackhi_epi8(b, zero), _mm_unpackhi_epi8(g, zero),
                          _mm_unpackhi_epi8(r, zero)));
        } else {
            grey = _mm_max_epu8(b, _mm_max_epu8(g, r));
        }
        const __m128i keep =
            _mm_and_si128(_mm_cmpeq_epi8(b, maskB),
                          _mm_and_si128(_mm_cmpeq_epi8(g, maskG), _mm_cmpeq_epi8(r, maskR)));
        const __m128i out[3] = {
            _mm_or_si128(_mm_and_si128(keep, b), _mm_andnot_si128(keep, grey)),
            _mm_or_si128(_mm_and_si128(keep, g), _mm_andnot_si128(keep, grey)),
            _mm_or_si128(_mm_and_si128(keep, r), _mm_andnot_si128(keep, grey))};
        for (int k = 0; k < 3; ++k) {
            _mm_storeu_si128(reinterpret_cast<__m128i*>(row + 16 * k), Interleave(out, k));
        }
    }
    return x;
}

#endif

}  // namespace

bool SimdAvailable() noexcept {
#if KELVARIN_X86
    return __builtin_cpu_supports("ssse3");
#else
    return false;
#endif
}

void EnableSimd(bool on) noexcept { g_enabled = on && SimdAvailable(); }
bool SimdEnabled() noexcept { return g_enabled; }

Long GrayRowSimd(std::uint8_t* row, Long width, std::uint8_t maskBlue, std::uint8_t maskGreen,
                 std::uint8_t maskRed, bool weighted) noexcept {
#if KELVARIN_X86
    if (g_enabled) return GraySsse3(row, width, maskBlue, maskGreen, maskRed, weighted);
#else
    (void)row, (void)width, (void)maskBlue, (void)maskGreen, (void)maskRed, (void)weighted;
#endif
    return 0;
}

}  // namespace kelvarin::gfx_detail

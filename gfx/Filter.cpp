// SPDX-License-Identifier: MIT
// clsGFX_2D: convolution filters and smoothing.
//
//   1. Kernels: custom, and built-in (gfx/BuiltInKernels.h)
//   2. Convolution: the plain loop, the row loop, the 256-bit kernel for
//      16-bit sums, the kernels for 32-bit sums (gfx/ConvolveKernels.h)
//   3. Edge detection
//   4. Smoothing: median and line-keeping, the plain loop and the wavefront
//
// The plain loops follow the rules literally (a full copy of the image, 64-bit
// sums checked against the host's 32-bit range, a sort of nine values) and
// are the reference. The fast paths give the same bytes; they run while the
// vector kernels are enabled (gfx_detail::EnableSimd), and the tests compare
// both on random images.
#include "gfx/clsGFX_2D.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "common/HostError.h"
#include "gfx/BuiltInKernels.h"
#include "gfx/Simd.h"
#include "gfx/Targets.h"

namespace kelvarin {

using namespace gfx_detail;

namespace {

// ---- 2. Convolution ----------------------------------------------------------

struct Convolution {
    Long size = 0;
    Long half = 0;
    const Long* kernel = nullptr;  // size x size, row offset -half first
    Long weight = 1;
    int add[3] = {0, 0, 0};  // per byte of a pixel: blue, green, red
};

inline std::uint8_t ClampByte(std::int64_t v) {
    return static_cast<std::uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v);
}

inline std::int64_t InLong(std::int64_t v) {
    if (v < INT32_MIN || v > INT32_MAX) RaiseHostError(HostErrorCode::Overflow);
    return v;
}

// Every interior pixel from a copy of the whole image, the sums in the
// host's 32-bit arithmetic: a product or partial sum outside it raises
// Overflow there, with the pixels before it written.
template <typename Rows>
void ConvolvePlain(const Rows& rows, const Convolution& f) {
    const std::size_t rowBytes = static_cast<std::size_t>(rows.width) * 3;
    std::vector<std::uint8_t> copy(rowBytes * static_cast<std::size_t>(rows.height));
    for (Long y = 0; y < rows.height; ++y) {
        std::memcpy(copy.data() + rowBytes * static_cast<std::size_t>(y), rows.Row(y), rowBytes);
    }
    auto at = [&](Long x, Long y, int c) {
        return copy[rowBytes * static_cast<std::size_t>(y) + static_cast<std::size_t>(3 * x + c)];
    };
    for (Long y = f.half; y < rows.height - f.half; ++y) {
        for (Long x = f.half; x < rows.width - f.half; ++x) {
            for (int c = 0; c < 3; ++c) {
                std::int64_t sum = 0;
                for (Long j = -f.half; j <= f.half; ++j) {
                    for (Long i = -f.half; i <= f.half; ++i) {
                        const Long k = f.kernel[(j + f.half) * f.size + (i + f.half)];
                        sum = InLong(sum + InLong(std::int64_t{at(x + i, y + j, c)} * k));
                    }
                }
                const std::int64_t value = InLong(InLong(sum / f.weight) + f.add[c]);
                rows.Row(y)[3 * x + c] = ClampByte(value);
            }
        }
    }
}

// One nonzero kernel entry: which source row (0 = offset -half) and the
// byte offset within it.
struct Tap {
    int row;
    int offset;
    Long k;
};

// Bytes [from, to) of an output row from the source rows, in 32-bit sums
// (the caller has made sure they cannot overflow).
void ConvolveBytes(const std::uint8_t* const* src, const std::vector<Tap>& taps,
                   const Convolution& f, std::uint8_t* out, std::size_t from, std::size_t to) {
    for (std::size_t b = from; b < to; ++b) {
        std::int32_t sum = 0;
        for (const Tap& t : taps) {
            sum +=
                static_cast<std::int32_t>(src[t.row][static_cast<std::ptrdiff_t>(b) + t.offset]) *
                t.k;
        }
        out[b] = ClampByte(std::int64_t{sum / f.weight} + f.add[b % 3]);
    }
}

#if KELVARIN_X86
// The 256-bit kernel for kernels whose sums stay within 16 bits (every
// built-in one), where no 512-bit vectors run: 32 output bytes per step,
// widened to two vectors of 16-bit sums. The quotient is the truncated
// product with the reciprocal of the weight rounded away from zero, which
// equals the truncated quotient for sums below 2^15 in magnitude and
// weights up to 2^16.
struct WideConvolution {
    // The taps of 1, then those of -1, then the others, each group with a
    // loop of its own without branches: the sums wrap modulo 2^16 and stay
    // in range, so their order does not matter.
    std::vector<Tap> taps;
    std::size_t ones = 0, minusOnes = 0;
    bool divide = false;
    float reciprocal = 1;
    // Per byte phase (position mod 3 of the block's first byte): the add
    // offsets of the 32 bytes, laid out as the widened halves are.
    __m256i add16Low[3], add16High[3];
};

KELVARIN_AVX2 void PrepareWide(WideConvolution& w, const Convolution& f,
                               const std::vector<Tap>& taps) {
    w.taps = taps;
    const auto begin = w.taps.begin(), end = w.taps.end();
    const auto minusOnes = std::partition(begin, end, [](const Tap& t) { return t.k == 1; });
    const auto others = std::partition(minusOnes, end, [](const Tap& t) { return t.k == -1; });
    w.ones = static_cast<std::size_t>(minusOnes - begin);
    w.minusOnes = static_cast<std::size_t>(others - minusOnes);
    for (int phase = 0; phase < 3; ++phase) {
        alignas(32) std::uint8_t pattern[32];
        for (int b = 0; b < 32; ++b) pattern[b] = static_cast<std::uint8_t>(f.add[(phase + b) % 3]);
        const __m256i v = _mm256_load_si256(reinterpret_cast<const __m256i*>(pattern));
        w.add16Low[phase] = _mm256_unpacklo_epi8(v, _mm256_setzero_si256());
        w.add16High[phase] = _mm256_unpackhi_epi8(v, _mm256_setzero_si256());
    }
    w.divide = f.weight != 1;
    const Long magnitude = f.weight < 0 ? -f.weight : f.weight;
    float r = 1.0f / static_cast<float>(magnitude);
    if (static_cast<double>(r) * magnitude < 1.0) r = std::nextafter(r, 2.0f);
    w.reciprocal = f.weight < 0 ? -r : r;
}

// Quotient of sixteen 16-bit sums (in the widened layout) plus the offsets.
KELVARIN_AVX2 inline __m256i Finish16(__m256i sum, __m256i add, const WideConvolution& w) {
    if (!w.divide) return _mm256_adds_epi16(sum, add);
    const __m256 r = _mm256_set1_ps(w.reciprocal);
    const __m256i lo = _mm256_srai_epi32(_mm256_unpacklo_epi16(sum, sum), 16);
    const __m256i hi = _mm256_srai_epi32(_mm256_unpackhi_epi16(sum, sum), 16);
    const __m256i qlo = _mm256_cvttps_epi32(_mm256_mul_ps(_mm256_cvtepi32_ps(lo), r));
    const __m256i qhi = _mm256_cvttps_epi32(_mm256_mul_ps(_mm256_cvtepi32_ps(hi), r));
    // Back to sixteen 16-bit lanes in the same layout; a quotient is at most
    // 2^15 in magnitude, so the saturation below only acts as the clamp would.
    return _mm256_adds_epi16(_mm256_packs_epi32(qlo, qhi), add);
}

// The taps [first, last) into the 16-bit sums of the 32 bytes at b: kSign 1
// adds their bytes, -1 subtracts them, 0 adds them times their k.
template <int kSign>
KELVARIN_AVX2 inline void Accumulate(const std::uint8_t* const* src, std::size_t b,
                                     const Tap* first, const Tap* last, __m256i& lo, __m256i& hi) {
    const __m256i zero = _mm256_setzero_si256();
    for (const Tap* t = first; t != last; ++t) {
        const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(
            src[t->row] + static_cast<std::ptrdiff_t>(b) + t->offset));
        __m256i vlo = _mm256_unpacklo_epi8(v, zero);
        __m256i vhi = _mm256_unpackhi_epi8(v, zero);
        if constexpr (kSign == 0) {
            const __m256i k = _mm256_set1_epi16(static_cast<short>(t->k));
            vlo = _mm256_mullo_epi16(vlo, k);
            vhi = _mm256_mullo_epi16(vhi, k);
        }
        if constexpr (kSign < 0) {
            lo = _mm256_sub_epi16(lo, vlo);
            hi = _mm256_sub_epi16(hi, vhi);
        } else {
            lo = _mm256_add_epi16(lo, vlo);
            hi = _mm256_add_epi16(hi, vhi);
        }
    }
}

KELVARIN_AVX2 std::size_t ConvolveAvx2(const std::uint8_t* const* src, const WideConvolution& w,
                                       std::uint8_t* out, std::size_t from, std::size_t to) {
    const __m256i zero = _mm256_setzero_si256();
    std::size_t b = from;
    for (; b + 32 <= to; b += 32) {
        __m256i lo = zero, hi = zero;
        const Tap* const ones = w.taps.data();
        const Tap* const minusOnes = ones + w.ones;
        const Tap* const others = minusOnes + w.minusOnes;
        Accumulate<1>(src, b, ones, minusOnes, lo, hi);
        Accumulate<-1>(src, b, minusOnes, others, lo, hi);
        Accumulate<0>(src, b, others, ones + w.taps.size(), lo, hi);
        const std::size_t phase = b % 3;
        const __m256i bytes = _mm256_packus_epi16(Finish16(lo, w.add16Low[phase], w),
                                                  Finish16(hi, w.add16High[phase], w));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + b), bytes);
    }
    return b;
}

// Two taps of an output row for one multiply-add of 16-bit pairs: output
// byte b takes the bytes at a + b and c + b, times the low and the high half
// of weights. Built for each row, as the ring moves.
struct TapPair {
    const std::uint8_t* a;
    const std::uint8_t* c;
    std::int32_t weights;
};

// What the kernels for 32-bit sums need besides the pairs. The quotient is
// the truncated product with the reciprocal of the weight in double
// precision, rounded one step away from zero: for |sum| < 2^31 and
// |weight| = w >= 2, sum * reciprocal lies above sum / w by less than
// 2^-20 / w (relative error below 2^-51 on a quotient below 2^31 / w), and
// its rounding adds less than 2^-22 / w, while a quotient that is not a whole
// number lies at least 1 / w below the next one. So the product neither
// falls below a whole quotient nor reaches the next one: truncated, it is
// the quotient the plain loop takes.
struct Sums32 {
    bool divide = false;
    double reciprocal = 1;
    // Per phase (position mod 3 of a block's first byte): the offset of
    // each of the next 64 bytes.
    alignas(64) std::uint8_t add[3][64] = {};
};

}  // namespace
}  // namespace kelvarin

#define KELVARIN_SIMD_BITS 128
#include "gfx/ConvolveKernels.h"
#undef KELVARIN_SIMD_BITS
#define KELVARIN_SIMD_BITS 256
#include "gfx/ConvolveKernels.h"
#undef KELVARIN_SIMD_BITS
#define KELVARIN_SIMD_BITS 512
// GCC 12's AVX-512 conversion intrinsics start from a register they leave
// undefined on purpose, which -Wmaybe-uninitialized reports once inlined.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include "gfx/ConvolveKernels.h"
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif
#undef KELVARIN_SIMD_BITS

namespace kelvarin {
namespace {

// The weights of the taps as multiply-add halves: each within 16 bits (a
// larger one in several), two to a pair, the last of an odd count with a
// weight of 0 beside it.
struct HalfTap {
    int row;
    int offset;
    std::int16_t k;
};

std::vector<HalfTap> HalfTaps(const std::vector<Tap>& taps) {
    std::vector<HalfTap> halves;
    for (const Tap& t : taps) {
        std::int64_t k = t.k;
        while (k != 0) {
            const std::int64_t piece = std::clamp<std::int64_t>(k, -INT16_MAX, INT16_MAX);
            halves.push_back(HalfTap{t.row, t.offset, static_cast<std::int16_t>(piece)});
            k -= piece;
        }
    }
    if (halves.size() % 2 != 0) halves.push_back(HalfTap{halves.back().row, 0, 0});
    return halves;
}

Sums32 PrepareSums32(const Convolution& f) {
    Sums32 s;
    s.divide = f.weight != 1;
    const double magnitude = f.weight < 0 ? -static_cast<double>(f.weight) : f.weight;
    const double r = magnitude == 1 ? 1 : std::nextafter(1 / magnitude, 2.0);
    s.reciprocal = f.weight < 0 ? -r : r;
    for (int phase = 0; phase < 3; ++phase) {
        for (int b = 0; b < 64; ++b)
            s.add[phase][b] = static_cast<std::uint8_t>(f.add[(phase + b) % 3]);
    }
    return s;
}
#endif

// Which row kernel: bytes one at a time, or vectors with 16-bit sums
// (256 bits, the widest enabled) or with 32-bit sums (at the widest vectors
// enabled).
enum class RowKernel { Bytes, Sums16, Sums32 };

// Row by row in place: the original of the rows at and below the current
// one (which are overwritten by then) is kept in a ring of half + 1 rows;
// the rows above are still untouched in the image.
template <typename Rows>
void ConvolveRows(const Rows& rows, const Convolution& f, RowKernel kernel) {
    const Long n = f.size, half = f.half;
    const std::size_t rowBytes = static_cast<std::size_t>(rows.width) * 3;
    std::vector<Tap> taps;
    for (Long j = 0; j < n; ++j) {
        for (Long i = 0; i < n; ++i) {
            const Long k = f.kernel[j * n + i];
            if (k != 0)
                taps.push_back(Tap{static_cast<int>(j), static_cast<int>(3 * (i - half)), k});
        }
    }
    const auto ringSize = static_cast<std::size_t>(half + 1);
    std::vector<std::uint8_t> ring(ringSize * rowBytes);
    auto ringRow = [&](Long y) {
        return ring.data() + static_cast<std::size_t>(y) % ringSize * rowBytes;
    };
    std::vector<const std::uint8_t*> src(static_cast<std::size_t>(n));
    const auto from = static_cast<std::size_t>(3 * half);
    const std::size_t to = rowBytes - from;
#if KELVARIN_X86
    WideConvolution w;
    if (kernel == RowKernel::Sums16) PrepareWide(w, f, taps);
    const std::vector<HalfTap> halves =
        kernel == RowKernel::Sums32 ? HalfTaps(taps) : std::vector<HalfTap>{};
    const Sums32 sums32 = PrepareSums32(f);
    std::vector<TapPair> pairs(halves.size() / 2);
    const auto sums32Kernel = Avx512Enabled() ? conv512::Convolve
                              : Avx2Enabled() ? conv256::Convolve
                                              : conv128::Convolve;
    // The vector kernels write a row of their own, copied into the image
    // after: stores straight into the image row are followed by loads from
    // the rows below at addresses that agree in their low 12 bits whenever
    // a row spans whole pages (4096 pixels do), and the processor holds
    // such loads back as if they depended on the stores.
    std::vector<std::uint8_t> out(kernel == RowKernel::Bytes ? 0 : rowBytes);
#else
    (void)kernel;
#endif
    for (Long y = 0; y < half; ++y) std::memcpy(ringRow(y), rows.Row(y), rowBytes);
    for (Long y = half; y < rows.height - half; ++y) {
        std::memcpy(ringRow(y), rows.Row(y), rowBytes);
        for (Long j = 0; j < n; ++j) {
            const Long sy = y - half + j;
            src[static_cast<std::size_t>(j)] = sy <= y ? ringRow(sy) : rows.Row(sy);
        }
        std::size_t done = from;
#if KELVARIN_X86
        if (kernel == RowKernel::Sums16) done = ConvolveAvx2(src.data(), w, out.data(), from, to);
        if (kernel == RowKernel::Sums32) {
            // Each pair's bytes for the row's first output byte.
            for (std::size_t p = 0; p < pairs.size(); ++p) {
                const HalfTap& a = halves[2 * p];
                const HalfTap& c = halves[2 * p + 1];
                pairs[p] =
                    TapPair{src[static_cast<std::size_t>(a.row)] +
                                (static_cast<std::ptrdiff_t>(from) + a.offset),
                            src[static_cast<std::size_t>(c.row)] +
                                (static_cast<std::ptrdiff_t>(from) + c.offset),
                            static_cast<std::int32_t>(
                                static_cast<std::uint16_t>(a.k) |
                                static_cast<std::uint32_t>(static_cast<std::uint16_t>(c.k)) << 16)};
            }
            done += sums32Kernel(pairs.data(), pairs.size(), sums32, out.data() + from, to - from,
                                 from % 3);
        }
        if (done > from) std::memcpy(rows.Row(y) + from, out.data() + from, done - from);
#endif
        ConvolveBytes(src.data(), taps, f, rows.Row(y), done, to);
    }
}

// ---- 4. Smoothing -------------------------------------------------------------

inline std::uint8_t Med3(std::uint8_t a, std::uint8_t b, std::uint8_t c) {
    return std::max(std::min(a, b), std::min(std::max(a, b), c));
}

// The line-keeping rule. A line one pixel wide through the centre runs
// horizontally, vertically or along a diagonal, and on it the centre and its
// two neighbours agree while the other six differ: a median of nine sees the
// six and erases the line. Here each of the four lines through the centre
// gives the median of its three values; the result is the median of the
// centre, the largest and the smallest of those four. On a line one of the
// four is the line's own value and the centre stays; a lone spot, which no
// line carries, is still removed, since all four then lie on the surround.
inline std::uint8_t LineKeeping(const std::uint8_t v[3][3]) {  // v[row][column], centre v[1][1]
    const std::uint8_t c = v[1][1];
    const std::uint8_t z[4] = {Med3(v[1][0], c, v[1][2]), Med3(v[0][1], c, v[2][1]),
                               Med3(v[0][0], c, v[2][2]), Med3(v[2][0], c, v[0][2])};
    return Med3(c, *std::max_element(z, z + 4), *std::min_element(z, z + 4));
}

// In place, column by column and up each column, as the rule's loops run:
// neighbours already done (the column to the left, the row below) count
// with their new values.
template <typename Rows>
void SmoothPlain(const Rows& rows, bool linePreserve) {
    for (Long x = 2; x <= rows.width - 3; ++x) {
        for (Long y = 2; y <= rows.height - 3; ++y) {
            for (int c = 0; c < 3; ++c) {
                std::uint8_t v[3][3];
                for (int dy = 0; dy < 3; ++dy) {
                    for (int dx = 0; dx < 3; ++dx)
                        v[dy][dx] = rows.Row(y - 1 + dy)[3 * (x - 1 + dx) + c];
                }
                std::uint8_t result;
                if (linePreserve) {
                    result = LineKeeping(v);
                } else {
                    std::uint8_t all[9];
                    std::memcpy(all, v, 9);
                    // Pairwise exchange over the nine, then the fifth.
                    for (int i = 0; i < 9; ++i) {
                        for (int j = i + 1; j < 9; ++j) {
                            if (all[j] < all[i]) std::swap(all[i], all[j]);
                        }
                    }
                    result = all[4];
                }
                rows.Row(y)[3 * x + c] = result;
            }
        }
    }
}

#if KELVARIN_X86
// The wavefront. Pixel (x, y) needs the new values of (x, y - 1) and
// (x - 1, y + 1), so pixels (x + k, y - 2k) can be done together. A strip
// of kLanes columns is copied into a skewed buffer where column k of the
// strip is shifted down by 2k rows: one row of the buffer is then one such
// set of pixels, contiguous, and each of the nine neighbours is one
// unaligned load. Column -1 (done by the previous strip) and column kLanes
// (not done yet) come along unchanged. In the buffer, column k at image row
// y is at row y + 2(k + 1), bytes 3(k + 1) to 3(k + 1) + 2. The image is
// read and written a row at a time (rows of large images lie pages apart).
constexpr int kLanes = 10;  // 30 bytes of a 32-byte vector
constexpr std::size_t kSkewStride = 64;

struct Window {
    __m256i v[3][3];  // [row offset + 1][column offset + 1]
};

KELVARIN_AVX2 inline __m256i Min(__m256i a, __m256i b) { return _mm256_min_epu8(a, b); }
KELVARIN_AVX2 inline __m256i Max(__m256i a, __m256i b) { return _mm256_max_epu8(a, b); }
KELVARIN_AVX2 inline __m256i Med3(__m256i a, __m256i b, __m256i c) {
    return Max(Min(a, b), Min(Max(a, b), c));
}

// The median of nine: sort each column of three; the median is the median
// of the largest low, the middle median and the smallest high.
KELVARIN_AVX2 inline __m256i Median9(const Window& w) {
    __m256i low[3], mid[3], high[3];
    for (int dc = 0; dc < 3; ++dc) {
        const __m256i a = w.v[0][dc], b = w.v[1][dc], c = w.v[2][dc];
        const __m256i mn = Min(a, b), mx = Max(a, b);
        low[dc] = Min(mn, c);
        high[dc] = Max(mx, c);
        mid[dc] = Max(mn, Min(mx, c));
    }
    return Med3(Max(Max(low[0], low[1]), low[2]), Med3(mid[0], mid[1], mid[2]),
                Min(Min(high[0], high[1]), high[2]));
}

KELVARIN_AVX2 inline __m256i LineKeeping9(const Window& w) {
    const __m256i c = w.v[1][1];
    const __m256i z0 = Med3(w.v[1][0], c, w.v[1][2]);
    const __m256i z1 = Med3(w.v[0][1], c, w.v[2][1]);
    const __m256i z2 = Med3(w.v[0][0], c, w.v[2][2]);
    const __m256i z3 = Med3(w.v[2][0], c, w.v[0][2]);
    return Med3(c, Max(Max(z0, z1), Max(z2, z3)), Min(Min(z0, z1), Min(z2, z3)));
}

template <bool kLinePreserve, typename Rows>
KELVARIN_AVX2 void SmoothWavefront(const Rows& rows) {
    const Long x0 = 2, x1 = rows.width - 3, y0 = 2, y1 = rows.height - 3;
    std::vector<std::uint8_t> skew(static_cast<std::size_t>(rows.height + 2 * kLanes + 4) *
                                   kSkewStride);
    auto cell = [&](Long skewRow, int k) {  // column k = -1..kLanes
        return skew.data() + static_cast<std::size_t>(skewRow) * kSkewStride +
               static_cast<std::size_t>(3 * (k + 1));
    };
    alignas(32) std::uint8_t index[32];
    for (int b = 0; b < 32; ++b) index[b] = static_cast<std::uint8_t>(b);
    const __m256i byteIndex = _mm256_load_si256(reinterpret_cast<const __m256i*>(index));

    for (Long xs = x0; xs <= x1; xs += kLanes) {
        const int lanes = static_cast<int>(std::min<Long>(kLanes, x1 - xs + 1));
        const int columns = static_cast<int>(std::min<Long>(kLanes, rows.width - 1 - xs));
        // A pixel goes in as four bytes; the fourth lands on the next column
        // two image rows lower, which is copied after it (rows go downwards).
        // The image row read is never its last: four bytes stay inside it.
        for (Long y = y1 + 1; y >= y0 - 1; --y) {
            const std::uint8_t* from = rows.Row(y) + 3 * xs;
            for (int k = -1; k <= columns; ++k)
                std::memcpy(cell(y + 2 * (k + 1), k), from + 3 * k, 4);
        }
        // Step t does image row t - 2k of lane k, all at buffer row t + 2.
        for (Long t = y0; t <= y1 + 2 * (lanes - 1); ++t) {
            const Long s = t + 2;
            Window w;
            for (int dr = -1; dr <= 1; ++dr) {
                for (int dc = -1; dc <= 1; ++dc) {
                    w.v[dr + 1][dc + 1] = _mm256_loadu_si256(
                        reinterpret_cast<const __m256i*>(cell(s + dr + 2 * dc, dc)));
                }
            }
            const __m256i result = kLinePreserve ? LineKeeping9(w) : Median9(w);
            // The lanes whose image row lies in y0..y1 this step.
            const Long first = std::max<Long>(0, (t - y1 + 1) / 2);
            const Long last = std::min<Long>(lanes - 1, (t - y0) / 2);
            const __m256i above = _mm256_set1_epi8(static_cast<char>(3 * first - 1));
            const __m256i below = _mm256_set1_epi8(static_cast<char>(3 * (last + 1)));
            const __m256i active = _mm256_and_si256(_mm256_cmpgt_epi8(byteIndex, above),
                                                    _mm256_cmpgt_epi8(below, byteIndex));
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(cell(s, 0)),
                                _mm256_blendv_epi8(w.v[1][1], result, active));
        }
        // Out as four bytes too, the fourth overwritten by the next lane;
        // the last lane's three exactly, its neighbour is not done.
        for (Long y = y0; y <= y1; ++y) {
            std::uint8_t* to = rows.Row(y) + 3 * xs;
            int k = 0;
            for (; k < lanes - 1; ++k) std::memcpy(to + 3 * k, cell(y + 2 * (k + 1), k), 4);
            std::memcpy(to + 3 * k, cell(y + 2 * (k + 1), k), 3);
        }
    }
}

// The same wavefront on 512-bit vectors, 19 lanes (bytes 3..59; bytes 0..2
// hold column -1, 60..62 column 19), with no skewed copy of the strip. A
// lane that must come 2j rows late passes through delay lines of 2, 4, 8,
// 16 and 32 rows, one for each bit of j, each a blend of the row with the
// one that many rows back: image rows go in whole (64 bytes from column -1)
// and skew rows come out in a register. The seven skew rows around the
// current one stay in registers, so a result is used at once rather than
// stored and read back. The results go through the complementary delays
// (lane k waits 2(18 - k) rows) and come out as whole image rows.
constexpr int kWideLanes = 19;
constexpr Long kPrefetchAhead = 5;  // image row t + 11 is asked for at step t

KELVARIN_AVX512 inline __m512i Min(__m512i a, __m512i b) { return _mm512_min_epu8(a, b); }
KELVARIN_AVX512 inline __m512i Max(__m512i a, __m512i b) { return _mm512_max_epu8(a, b); }
KELVARIN_AVX512 inline __m512i Med3(__m512i a, __m512i b, __m512i c) {
    return Max(Min(a, b), Min(Max(a, b), c));
}

// Rows a (below), b, c (above) of the left, centre and right views.
KELVARIN_AVX512 inline __m512i Median9(__m512i la, __m512i lb, __m512i lc, __m512i ca, __m512i cb,
                                       __m512i cc, __m512i ra, __m512i rb, __m512i rc) {
    const __m512i lmn = Min(la, lb), lmx = Max(la, lb);
    const __m512i cmn = Min(ca, cb), cmx = Max(ca, cb);
    const __m512i rmn = Min(ra, rb), rmx = Max(ra, rb);
    const __m512i low = Max(Max(Min(lmn, lc), Min(cmn, cc)), Min(rmn, rc));
    const __m512i high = Min(Min(Max(lmx, lc), Max(cmx, cc)), Max(rmx, rc));
    const __m512i mid =
        Med3(Max(lmn, Min(lmx, lc)), Max(cmn, Min(cmx, cc)), Max(rmn, Min(rmx, rc)));
    return Med3(low, mid, high);
}

KELVARIN_AVX512 inline __m512i LineKeeping9(__m512i la, __m512i lb, __m512i lc, __m512i ca,
                                            __m512i cb, __m512i cc, __m512i ra, __m512i rb,
                                            __m512i rc) {
    const __m512i z0 = Med3(lb, cb, rb);
    const __m512i z1 = Med3(ca, cb, cc);
    const __m512i z2 = Med3(la, cb, rc);
    const __m512i z3 = Med3(lc, cb, ra);
    return Med3(cb, Max(Max(z0, z1), Max(z2, z3)), Min(Min(z0, z1), Min(z2, z3)));
}

// Bytes 3(first + 1) to 3(last + 1) + 2: lanes first..last.
inline __mmask64 LaneBytes(Long first, Long last) {
    if (last < first) return 0;
    const auto count = static_cast<unsigned>(3 * (last - first + 1));
    return (~__mmask64{0} >> (64 - count)) << (3 * (first + 1));
}

// The zero-masked form, all lanes on: GCC 12 warns of the plain form's
// undefined pass-through.
KELVARIN_AVX512 inline __m512i Shifted(__m512i index, __m512i v) {
    return _mm512_maskz_permutexvar_epi8(~__mmask64{0}, index, v);
}

// The delay lines of one strip.
class Shear {
public:
    // delayOf(j): the delay in units of two rows of the lane at bytes 3j..3j+2.
    template <typename DelayOf>
    explicit Shear(DelayOf delayOf) {
        for (int b = 0; b < kStages; ++b) {
            __mmask64 m = 0;
            for (int j = 0; j < 21; ++j) {
                if (delayOf(j) >> b & 1) m |= __mmask64{7} << (3 * j);
            }
            mask_[b] = m;
        }
        std::memset(ring_, 0, sizeof ring_);
    }
    KELVARIN_AVX512 __m512i Push(__m512i x) {
        int at = 0;  // stage b's ring of 2^(b+1) rows starts at 2^(b+1) - 2
#pragma GCC unroll 8
        for (int b = 0; b < kStages; ++b) {
            const int size = 2 << b;
            __m512i* slot = &ring_[at + (count_ & (size - 1))];
            const __m512i old = *slot;
            *slot = x;
            x = _mm512_mask_blend_epi8(mask_[b], x, old);
            at += size;
        }
        ++count_;
        return x;
    }

private:
    static constexpr int kStages = 5;  // delays up to 2 * 31 rows
    __mmask64 mask_[kStages];
    __m512i ring_[(2 << kStages) - 2];
    unsigned count_ = 0;
};

// Pushes image row y of the strip (its readable bytes from column -1 on)
// into the shear; gives skew row y.
template <typename Rows>
KELVARIN_AVX512 inline __m512i PushRow(Shear& in, const Rows& rows, Long xs, __mmask64 readable,
                                       Long y) {
    return in.Push(y < rows.height ? _mm512_maskz_loadu_epi8(readable, rows.Row(y) + 3 * (xs - 1))
                                   : _mm512_setzero_si512());
}

template <bool kLinePreserve, typename Rows>
KELVARIN_AVX512 void SmoothStrip512(const Rows& rows, Long xs, __m512i toLeft, __m512i toRight) {
    const Long y0 = 2, y1 = rows.height - 3;
    // The last strip may have fewer lanes, and its 64 bytes may pass the
    // row's end; rows are read and written through byte masks.
    const Long lanes = std::min<Long>(kWideLanes, rows.width - 2 - xs);
    const bool whole = xs + kWideLanes + 2 <= rows.width;
    const __mmask64 readable =
        whole ? ~__mmask64{0} : ~__mmask64{0} >> (64 - 3 * (rows.width - xs + 1));
    const __mmask64 written = LaneBytes(0, lanes - 1);
    Shear in([](int j) { return j; });  // lane j of skew row q from image row q - 2j
    Shear out([](int j) { return j >= 1 && j <= kWideLanes ? kWideLanes - j : 0; });
    // Step t does image row t - 2k of lane k; its skew row is s = t + 2.
    const Long first = y0, last = y1 + 2 * (kWideLanes - 1);
    for (Long y = 0; y < first - 1; ++y) PushRow(in, rows, xs, readable, y);
    __m512i r0 = PushRow(in, rows, xs, readable, first - 1),
            r1 = PushRow(in, rows, xs, readable, first),
            r2 = PushRow(in, rows, xs, readable, first + 1),
            r3 = PushRow(in, rows, xs, readable, first + 2),
            r4 = PushRow(in, rows, xs, readable, first + 3),
            r5 = PushRow(in, rows, xs, readable, first + 4),
            r6 = PushRow(in, rows, xs, readable, first + 5);
    __m512i l0 = Shifted(toLeft, r0), l1 = Shifted(toLeft, r1), l2 = Shifted(toLeft, r2);
    __m512i q4 = Shifted(toRight, r4), q5 = Shifted(toRight, r5), q6 = Shifted(toRight, r6);
    for (Long t = first; t <= last; ++t) {
        // Both cache lines of an image row a few steps ahead are asked for
        // together; left to the load, the row comes in far slower.
        if (t + 6 + kPrefetchAhead < rows.height) {
            const char* ahead =
                reinterpret_cast<const char*>(rows.Row(t + 6 + kPrefetchAhead) + 3 * (xs - 1));
            _mm_prefetch(ahead, _MM_HINT_T0);
            _mm_prefetch(ahead + 63, _MM_HINT_T0);
        }
        const __m512i result = kLinePreserve ? LineKeeping9(l0, l1, l2, r2, r3, r4, q4, q5, q6)
                                             : Median9(l0, l1, l2, r2, r3, r4, q4, q5, q6);
        const Long a = std::max<Long>(0, (t - y1 + 1) / 2);
        const Long b = std::min<Long>(lanes - 1, (t - y0) / 2);
        const __m512i done = _mm512_mask_blend_epi8(LaneBytes(a, b), r3, result);
        // Image row t - 36 has all its lanes done now.
        const __m512i finished = out.Push(done);
        const Long y = t - 2 * (kWideLanes - 1);
        if (y >= y0) _mm512_mask_storeu_epi8(rows.Row(y) + 3 * (xs - 1), written, finished);
        // One row on: the result joins the rows below, a new row comes above.
        r0 = r1;
        r1 = r2;
        r2 = done;
        r3 = r4;
        r4 = r5;
        r5 = r6;
        r6 = PushRow(in, rows, xs, readable, t + 6);
        l0 = l1;
        l1 = l2;
        l2 = Shifted(toLeft, done);
        q4 = q5;
        q5 = q6;
        q6 = Shifted(toRight, r6);
    }
}

template <bool kLinePreserve, typename Rows>
KELVARIN_AVX512 void SmoothWavefront512(const Rows& rows) {
    // Byte p of the left neighbour's view is byte p - 3 of the row, of the right one's p + 3.
    alignas(64) std::uint8_t leftIndex[64], rightIndex[64];
    for (int p = 0; p < 64; ++p) {
        leftIndex[p] = static_cast<std::uint8_t>(p >= 3 ? p - 3 : p);
        rightIndex[p] = static_cast<std::uint8_t>(p <= 60 ? p + 3 : p);
    }
    const __m512i toLeft = _mm512_load_si512(leftIndex), toRight = _mm512_load_si512(rightIndex);
    for (Long xs = 2; xs <= rows.width - 3; xs += kWideLanes)
        SmoothStrip512<kLinePreserve>(rows, xs, toLeft, toRight);
}
#endif

}  // namespace

// ---- 1. Kernels --------------------------------------------------------------

void clsGFX_2D::StoreKernel(Long size, std::span<const Long> values, Long weight) {
    kernelSize_ = size;
    kernelWeight_ = weight;
    kernel_.assign(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(size) * size);
}

bool clsGFX_2D::Filter_StandardFilterSetCustom(Long lngMatrixSize, std::span<const Long> lngMatrix,
                                               Long lngWeight) {
    if (lngMatrixSize % 2 == 0) {
        lastError_ = "Filter_StandardFilterSetCustom; size must be an odd number";
        return false;
    }
    if (lngMatrixSize < 0 || lngMatrixSize > 9) {
        lastError_ =
            "Filter_StandardFilterSetCustom: Invalid size; size should be an odd number from 3 to "
            "9";
        return false;
    }
    if (lngWeight == 0) {
        lastError_ =
            "Filter_StandardFilterSetCustom: Invalid weight; weight must be different from 0";
        return false;
    }
    if (lngMatrix.size() < static_cast<std::size_t>(lngMatrixSize * lngMatrixSize)) {
        RaiseHostError(HostErrorCode::SubscriptOutOfRange);
    }
    StoreKernel(lngMatrixSize, lngMatrix, lngWeight);
    return true;
}

// ---- 2. Convolution ------------------------------------------------------------

void clsGFX_2D::Filter_StandardFilter(Long lngFilterType, Long lngAddColor) {
    if (!Require24("Filter_StandardFilter is only for 24bit depth images")) return;
    SessionScope session(*this);
    if (lngFilterType >= 0 && lngFilterType <= 8) {
        const BuiltInKernel& k = kBuiltInKernels[lngFilterType];
        StoreKernel(k.size, k.values, k.weight);
    }
    const ImageRows rows = SessionRows();
    Convolution f;
    f.size = kernelSize_;
    f.half = kernelSize_ / 2;
    if (rows.width <= 2 * f.half || rows.height <= 2 * f.half) return;  // no interior
    if (kernel_.empty()) RaiseHostError(HostErrorCode::SubscriptOutOfRange);
    f.kernel = kernel_.data();
    f.weight = kernelWeight_;
    const auto add = static_cast<std::uint32_t>(lngAddColor);
    f.add[0] = static_cast<int>(add >> 16 & 255);  // blue
    f.add[1] = static_cast<int>(add >> 8 & 255);   // green
    f.add[2] = static_cast<int>(add & 255);        // red

    if (!SimdEnabled()) {
        ConvolvePlain(rows, f);
        return;
    }
    // The largest sum in magnitude decides which arithmetic is exact.
    std::int64_t reach = 0;
    for (Long k : kernel_) reach += k < 0 ? -std::int64_t{k} : k;
    reach *= 255;
    if (reach + 255 > INT32_MAX) {
        ConvolvePlain(rows, f);  // sums that may leave 32 bits are checked
        return;
    }
    // The 16-bit kernel is 256 bits wide. Where 512-bit vectors run, the
    // kernel for 32-bit sums at that width is the faster one for every
    // kernel from 3 x 3 to 9 x 9, ones or other weights, so it takes them all.
    const bool sums16 = Avx2Enabled() && !Avx512Enabled() && reach <= INT16_MAX &&
                        f.weight >= -65536 && f.weight <= 65536;
    ConvolveRows(rows, f, sums16 ? RowKernel::Sums16 : RowKernel::Sums32);
}

// ---- 3. Edge detection -----------------------------------------------------------

void clsGFX_2D::Filter_EdgeDetection() {
    if (!Require24("Filter_EdgeDetection is only for 24bit depth images")) return;
    SessionScope session(*this);
    Filter_StandardFilter(8, 0);
    // Mask -1 is red 255, green 0, blue 0 in the pixel's terms: pure red
    // pixels keep their colour.
    Color_Gray(-1, false);
}

// ---- 4. Smoothing -------------------------------------------------------------------

void clsGFX_2D::Filter_Smoothing(bool blnLinePreserve) {
    if (!Require24("Filter_Smoothing is only for 24bit depth images")) return;
    SessionScope session(*this);
    const ImageRows rows = SessionRows();
    if (rows.width < 5 || rows.height < 5) return;  // all frame
#if KELVARIN_X86
    // Each wavefront is compiled once per rule, which then costs nothing per pixel.
    if (Avx512VbmiEnabled()) {
        (blnLinePreserve ? SmoothWavefront512<true, ImageRows>
                         : SmoothWavefront512<false, ImageRows>)(rows);
        return;
    }
    if (Avx2Enabled()) {
        (blnLinePreserve ? SmoothWavefront<true, ImageRows>
                         : SmoothWavefront<false, ImageRows>)(rows);
        return;
    }
#endif
    SmoothPlain(rows, blnLinePreserve);
}

}  // namespace kelvarin

// SPDX-License-Identifier: MIT
// clsGFX_2D: whole-image geometric transforms.
//
//   1. Mirrors
//   2. Bilinear resample
//   3. Quarter turn
//
// Every operation keeps a plain loop that follows its rule pixel by pixel
// from a full copy; that loop is the reference. The fast paths (in-place
// swaps; for the resample a row cache with 256-bit gathers or 512-bit byte
// permutes, and both passes at once where rows are not shared; for the
// 24-bit turn, tiles moved in place round cycles of four) give the same
// bytes and run while the vector kernels are enabled
// (gfx_detail::EnableSimd); the tests compare both on random images.
#include "gfx/clsGFX_2D.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "common/HostError.h"
#include "gfx/Simd.h"
#include "gfx/Targets.h"

namespace kelvarin {

using namespace gfx_detail;

namespace {

using Bytes = std::vector<std::uint8_t>;

// The pixel bytes of every row, without padding, lowest row first.
struct RowsCopy {
    Bytes bytes;
    std::size_t rowBytes = 0;
    const std::uint8_t* Row(Long y) const {
        return bytes.data() + rowBytes * static_cast<std::size_t>(y);
    }
};

template <typename Rows>
RowsCopy CopyRows(const Rows& rows, Long bpp) {
    RowsCopy copy;
    copy.rowBytes = static_cast<std::size_t>(rows.width) * static_cast<std::size_t>(bpp);
    copy.bytes.resize(copy.rowBytes * static_cast<std::size_t>(rows.height));
    for (Long y = 0; y < rows.height; ++y) {
        std::memcpy(copy.bytes.data() + copy.rowBytes * static_cast<std::size_t>(y), rows.Row(y),
                    copy.rowBytes);
    }
    return copy;
}

// ---- 1. Mirrors ------------------------------------------------------------

template <int kBytes>
void ReverseRowInPlace(std::uint8_t* row, Long width) {
    std::uint8_t* left = row;
    std::uint8_t* right = row + static_cast<std::ptrdiff_t>(width - 1) * kBytes;
    for (; left < right; left += kBytes, right -= kBytes) {
        std::uint8_t t[kBytes];
        std::memcpy(t, left, kBytes);
        std::memcpy(left, right, kBytes);
        std::memcpy(right, t, kBytes);
    }
}

#if KELVARIN_X86
// Five pixels reversed within 16 bytes: source bytes 1..15 hold pixels
// w-5..w-1 (byte 0 is the one before them); the result holds them in the
// opposite order in bytes 0..14.
KELVARIN_SSSE3 void ReverseRow24(std::uint8_t* row, const std::uint8_t* copy, Long width) {
    const __m128i order = _mm_setr_epi8(13, 14, 15, 10, 11, 12, 7, 8, 9, 4, 5, 6, 1, 2, 3, 0);
    Long x = 0;
    // Each store writes one byte past its five pixels, which the next store
    // (or the tail) overwrites; the last store stays inside the row's pixels.
    for (; x + 6 <= width; x += 5) {
        const std::uint8_t* from = copy + 3 * static_cast<std::ptrdiff_t>(width - 5 - x) - 1;
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(row + 3 * static_cast<std::ptrdiff_t>(x)),
                         _mm_shuffle_epi8(v, order));
    }
    for (; x < width; ++x) {
        std::memcpy(row + 3 * static_cast<std::ptrdiff_t>(x),
                    copy + 3 * static_cast<std::ptrdiff_t>(width - 1 - x), 3);
    }
}

// Two rows exchanged through registers, 128 bytes a step: each byte is read
// and written once, with no row in between.
KELVARIN_AVX2 void SwapRowsAvx2(std::uint8_t* a, std::uint8_t* b, std::size_t bytes) {
    std::size_t k = 0;
    for (; k + 128 <= bytes; k += 128) {
        __m256i va[4], vb[4];
        for (int q = 0; q < 4; ++q) {
            va[q] = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(a + k + 32 * q));
            vb[q] = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(b + k + 32 * q));
        }
        for (int q = 0; q < 4; ++q) {
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(a + k + 32 * q), vb[q]);
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(b + k + 32 * q), va[q]);
        }
    }
    for (; k < bytes; ++k) std::swap(a[k], b[k]);
}
#endif

// ---- 2. Bilinear resample --------------------------------------------------

// Where destination column (or row) i samples: the source index, its
// clamped neighbour and the two weights. The position i * scale is formed in
// double and kept as a single, and everything after it is single precision.
struct Sample {
    Long at = 0;
    Long next = 0;
    Single keep = 1;  // 1 - t
    Single take = 0;  // t
};

Sample SampleAt(Long i, Single scale, Long sourceSize) {
    const auto f = static_cast<Single>(static_cast<double>(i) * static_cast<double>(scale));
    Sample s;
    s.at = std::min(static_cast<Long>(f), sourceSize - 1);  // f >= 0: truncation is floor
    s.next = std::min(s.at + 1, sourceSize - 1);
    s.take = f - static_cast<Single>(s.at);
    s.keep = 1 - s.take;
    return s;
}

// Nearest, ties to even, of a non-negative single below 256.
inline std::uint8_t RoundByte(Single v) { return static_cast<std::uint8_t>(RoundHalfEven(v)); }

template <typename Rows>
void ResamplePlain(const Rows& from, const Rows& to, Single sx, Single sy) {
    for (Long j = 0; j < to.height; ++j) {
        const Sample row = SampleAt(j, sy, from.height);
        const std::uint8_t* low = from.Row(row.at);
        const std::uint8_t* high = from.Row(row.next);
        std::uint8_t* out = to.Row(j);
        for (Long i = 0; i < to.width; ++i) {
            const Sample col = SampleAt(i, sx, from.width);
            for (int c = 0; c < 3; ++c) {
                const Single p00 = low[3 * col.at + c], p10 = low[3 * col.next + c];
                const Single p01 = high[3 * col.at + c], p11 = high[3 * col.next + c];
                const Single a = RoundByte(col.keep * p00 + col.take * p10);
                const Single b = RoundByte(col.keep * p01 + col.take * p11);
                out[3 * i + c] = RoundByte(row.keep * a + row.take * b);
            }
        }
    }
}

// The fast resample works in two passes with the same arithmetic: each
// source row that a destination row needs is interpolated across once into
// a row of rounded bytes (kept while consecutive destination rows share it),
// then pairs of those rows are blended down.
struct ColumnTables {
    std::vector<std::int32_t> at, next;  // source byte offsets per destination byte
    std::vector<Single> keep, take;
    std::size_t gatherEnd = 0;  // bytes whose 4-byte reads stay inside the row
    // For the byte-permute kernel: per block of kBlock destination bytes, the
    // first source byte it reads; and per destination byte, its two source
    // bytes counted from there, each in the low byte of a 32-bit lane (the
    // permute then widens as it picks). Empty when a block reads a wider
    // span than the kernel holds (a strong reduction).
    static constexpr std::size_t kBlock = 32;
    static constexpr std::int32_t kSpan = 128;
    std::vector<std::int32_t> blockBase;
    std::vector<std::uint8_t> index0, index1;
};

// Prepares the byte-permute tables; false if some block's sources are too far apart.
bool PreparePermute(ColumnTables& t) {
    const std::size_t blocks = t.at.size() / ColumnTables::kBlock;
    t.blockBase.resize(blocks);
    t.index0.assign(4 * blocks * ColumnTables::kBlock, 0);
    t.index1.assign(4 * blocks * ColumnTables::kBlock, 0);
    for (std::size_t b = 0; b < blocks; ++b) {
        const std::size_t k0 = b * ColumnTables::kBlock, k1 = k0 + ColumnTables::kBlock;
        const std::int32_t base = *std::min_element(&t.at[k0], &t.at[k0] + ColumnTables::kBlock);
        for (std::size_t k = k0; k < k1; ++k) {
            if (t.next[k] - base >= ColumnTables::kSpan) {
                t.blockBase.clear();
                return false;
            }
            t.index0[4 * k] = static_cast<std::uint8_t>(t.at[k] - base);
            t.index1[4 * k] = static_cast<std::uint8_t>(t.next[k] - base);
        }
        t.blockBase[b] = base;
    }
    return true;
}

void InterpolateRowPlain(const ColumnTables& t, const std::uint8_t* src, std::uint8_t* out,
                         std::size_t from, std::size_t to) {
    for (std::size_t k = from; k < to; ++k) {
        out[k] = RoundByte(t.keep[k] * static_cast<Single>(src[t.at[k]]) +
                           t.take[k] * static_cast<Single>(src[t.next[k]]));
    }
}

void BlendRowsPlain(const std::uint8_t* a, const std::uint8_t* b, Single keep, Single take,
                    std::uint8_t* out, std::size_t from, std::size_t to) {
    for (std::size_t k = from; k < to; ++k) {
        out[k] = RoundByte(keep * static_cast<Single>(a[k]) + take * static_cast<Single>(b[k]));
    }
}

#if KELVARIN_X86
// Eight rounded results per vector, four vectors to 32 bytes in order.
KELVARIN_AVX2 inline __m256i PackBytes(__m256i r0, __m256i r1, __m256i r2, __m256i r3) {
    const __m256i words =
        _mm256_packus_epi16(_mm256_packus_epi32(r0, r1), _mm256_packus_epi32(r2, r3));
    return _mm256_permutevar8x32_epi32(words, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
}

KELVARIN_AVX2 inline __m256 Floats(__m128i eightBytes) {
    return _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(eightBytes));
}

// Multiplies and adds stay separate instructions (no fused forms): the
// products round as the plain loop's do. Conversion rounds to nearest even.
KELVARIN_AVX2 std::size_t InterpolateRowAvx2(const ColumnTables& t, const std::uint8_t* src,
                                             std::uint8_t* out, std::size_t end) {
    const auto* base = reinterpret_cast<const int*>(src);
    const __m256i low = _mm256_set1_epi32(255);
    std::size_t k = 0;
    for (; k + 32 <= end; k += 32) {
        __m256i r[4];
        for (int q = 0; q < 4; ++q) {
            const std::size_t at = k + 8 * static_cast<std::size_t>(q);
            const __m256i i0 = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(&t.at[at]));
            const __m256i i1 = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(&t.next[at]));
            const __m256 p0 =
                _mm256_cvtepi32_ps(_mm256_and_si256(_mm256_i32gather_epi32(base, i0, 1), low));
            const __m256 p1 =
                _mm256_cvtepi32_ps(_mm256_and_si256(_mm256_i32gather_epi32(base, i1, 1), low));
            const __m256 v = _mm256_add_ps(_mm256_mul_ps(_mm256_loadu_ps(&t.keep[at]), p0),
                                           _mm256_mul_ps(_mm256_loadu_ps(&t.take[at]), p1));
            r[q] = _mm256_cvtps_epi32(v);
        }
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + k), PackBytes(r[0], r[1], r[2], r[3]));
    }
    return k;
}

// The same with the two source bytes of 32 destination bytes picked by
// byte permutes from the 128 bytes where the block reads, in place of
// gathers. Loads stop at the row's last byte. The zero-masked forms of the
// conversions (all lanes on) keep GCC 12 from warning of the plain forms'
// undefined pass-through.
constexpr __mmask16 kAllLanes = 0xFFFF;
// The two-row kernel reads two rows at once, each byte once; it asks for
// the bytes this far ahead of the block, which the hardware alone brings in
// too late.
constexpr std::size_t kReadAhead = 4096;

struct BlockBytes {
    __m512i lo, hi;
};

KELVARIN_AVX512 inline BlockBytes LoadBlock(const std::uint8_t* src, std::size_t base,
                                            std::size_t srcBytes) {
    const std::size_t left = srcBytes - base;
    const __mmask64 m0 = left >= 64 ? ~__mmask64{0} : (__mmask64{1} << left) - 1;
    const __mmask64 m1 = left >= 128 ? ~__mmask64{0}
                         : left > 64 ? (__mmask64{1} << (left - 64)) - 1
                                     : 0;
    return {_mm512_maskz_loadu_epi8(m0, src + base), _mm512_maskz_loadu_epi8(m1, src + base + 64)};
}

KELVARIN_AVX512 inline __m512 Floats16(__m128i bytes) {
    return _mm512_maskz_cvtepi32_ps(kAllLanes, _mm512_maskz_cvtepu8_epi32(kAllLanes, bytes));
}

// Sixteen destination bytes across one source row, rounded, as 32-bit
// lanes; i0 and i1 hold the source bytes' places in the low byte of each lane.
KELVARIN_AVX512 inline __m512i Across16(const BlockBytes& s, __m512i i0, __m512i i1, __m512 keep,
                                        __m512 take) {
    constexpr __mmask64 kLowBytes = 0x1111111111111111;
    const __m512 a = _mm512_maskz_cvtepi32_ps(
        kAllLanes, _mm512_maskz_permutex2var_epi8(kLowBytes, s.lo, i0, s.hi));
    const __m512 b = _mm512_maskz_cvtepi32_ps(
        kAllLanes, _mm512_maskz_permutex2var_epi8(kLowBytes, s.lo, i1, s.hi));
    return _mm512_maskz_cvtps_epi32(kAllLanes,
                                    _mm512_add_ps(_mm512_mul_ps(keep, a), _mm512_mul_ps(take, b)));
}

KELVARIN_AVX512 inline void Store16(std::uint8_t* out, __m512i lanes) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out),
                     _mm512_maskz_cvtusepi32_epi8(kAllLanes, lanes));
}

KELVARIN_AVX512 std::size_t InterpolateRowVbmi(const ColumnTables& t, const std::uint8_t* src,
                                               std::size_t srcBytes, std::uint8_t* out) {
    std::size_t k = 0;
    for (std::size_t b = 0; b < t.blockBase.size(); ++b, k += ColumnTables::kBlock) {
        const BlockBytes s = LoadBlock(src, static_cast<std::size_t>(t.blockBase[b]), srcBytes);
        for (std::size_t at = k; at < k + ColumnTables::kBlock; at += 16) {
            Store16(out + at, Across16(s, _mm512_loadu_si512(&t.index0[4 * at]),
                                       _mm512_loadu_si512(&t.index1[4 * at]),
                                       _mm512_loadu_ps(&t.keep[at]), _mm512_loadu_ps(&t.take[at])));
        }
    }
    return k;
}

// Both passes at once for a destination row whose two source rows no other
// row shares: across each, rounded, then blended down, as the two passes
// would round them.
KELVARIN_AVX512 std::size_t ResampleRowVbmi(const ColumnTables& t, const std::uint8_t* low,
                                            const std::uint8_t* high, std::size_t srcBytes,
                                            Single keep, Single take, std::uint8_t* out) {
    const __m512 wa = _mm512_set1_ps(keep), wb = _mm512_set1_ps(take);
    std::size_t k = 0;
    for (std::size_t b = 0; b < t.blockBase.size(); ++b, k += ColumnTables::kBlock) {
        const auto base = static_cast<std::size_t>(t.blockBase[b]);
        if (base + kReadAhead < srcBytes) {
            _mm_prefetch(reinterpret_cast<const char*>(low + base + kReadAhead), _MM_HINT_T0);
            _mm_prefetch(reinterpret_cast<const char*>(high + base + kReadAhead), _MM_HINT_T0);
        }
        const BlockBytes sa = LoadBlock(low, base, srcBytes);
        const BlockBytes sb = LoadBlock(high, base, srcBytes);
        for (std::size_t at = k; at < k + ColumnTables::kBlock; at += 16) {
            const __m512i i0 = _mm512_loadu_si512(&t.index0[4 * at]);
            const __m512i i1 = _mm512_loadu_si512(&t.index1[4 * at]);
            const __m512 ck = _mm512_loadu_ps(&t.keep[at]), ct = _mm512_loadu_ps(&t.take[at]);
            const __m512 a = _mm512_maskz_cvtepi32_ps(kAllLanes, Across16(sa, i0, i1, ck, ct));
            const __m512 c = _mm512_maskz_cvtepi32_ps(kAllLanes, Across16(sb, i0, i1, ck, ct));
            Store16(out + at,
                    _mm512_maskz_cvtps_epi32(
                        kAllLanes, _mm512_add_ps(_mm512_mul_ps(wa, a), _mm512_mul_ps(wb, c))));
        }
    }
    return k;
}

KELVARIN_AVX512 std::size_t BlendRowsAvx512(const std::uint8_t* a, const std::uint8_t* b,
                                            Single keep, Single take, std::uint8_t* out,
                                            std::size_t end) {
    const __m512 wa = _mm512_set1_ps(keep), wb = _mm512_set1_ps(take);
    std::size_t k = 0;
    for (; k + 16 <= end; k += 16) {
        const __m512 pa = Floats16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(a + k)));
        const __m512 pb = Floats16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(b + k)));
        Store16(out + k, _mm512_maskz_cvtps_epi32(kAllLanes, _mm512_add_ps(_mm512_mul_ps(wa, pa),
                                                                           _mm512_mul_ps(wb, pb))));
    }
    return k;
}

KELVARIN_AVX2 std::size_t BlendRowsAvx2(const std::uint8_t* a, const std::uint8_t* b, Single keep,
                                        Single take, std::uint8_t* out, std::size_t end) {
    const __m256 wa = _mm256_set1_ps(keep), wb = _mm256_set1_ps(take);
    std::size_t k = 0;
    for (; k + 32 <= end; k += 32) {
        __m256i r[4];
        for (int q = 0; q < 4; ++q) {
            const std::size_t at = k + 8 * static_cast<std::size_t>(q);
            const __m256 pa = Floats(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(a + at)));
            const __m256 pb = Floats(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(b + at)));
            r[q] = _mm256_cvtps_epi32(_mm256_add_ps(_mm256_mul_ps(wa, pa), _mm256_mul_ps(wb, pb)));
        }
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + k), PackBytes(r[0], r[1], r[2], r[3]));
    }
    return k;
}
#endif

template <typename Rows>
void ResampleFast(const Rows& from, const Rows& to, Single sx, Single sy) {
    const std::size_t outBytes = static_cast<std::size_t>(to.width) * 3;
    ColumnTables t;
    t.at.resize(outBytes);
    t.next.resize(outBytes);
    t.keep.resize(outBytes);
    t.take.resize(outBytes);
    for (Long i = 0; i < to.width; ++i) {
        const Sample s = SampleAt(i, sx, from.width);
        for (int c = 0; c < 3; ++c) {
            const auto k = static_cast<std::size_t>(3 * i + c);
            t.at[k] = 3 * s.at + c;
            t.next[k] = 3 * s.next + c;
            t.keep[k] = s.keep;
            t.take[k] = s.take;
        }
    }
    // A gather reads four bytes from each offset; past the last pixel of the
    // top row there may be nothing, so those bytes go the plain way there.
    const std::int64_t rowPixelBytes = std::int64_t{from.width} * 3;
    while (t.gatherEnd < outBytes && t.next[t.gatherEnd] + 4 <= rowPixelBytes) ++t.gatherEnd;

    const bool avx2 = Avx2Enabled();
    const bool permute = Avx512VbmiEnabled() && PreparePermute(t);
    const auto srcBytes = static_cast<std::size_t>(rowPixelBytes);
    Bytes cache[2] = {Bytes(outBytes + 32), Bytes(outBytes + 32)};
    Long cached[2] = {-1, -1};
    auto across = [&](Long y) -> const std::uint8_t* {
        if (cached[0] == y) return cache[0].data();
        if (cached[1] == y) return cache[1].data();
        // Replace the entry that is not the other row of the current pair.
        const int slot = cached[0] < cached[1] ? 0 : 1;
        const std::uint8_t* src = from.Row(y);
        std::size_t done = 0;
#if KELVARIN_X86
        const std::size_t safe = y + 1 < from.height ? outBytes : t.gatherEnd;
        if (permute) {
            done = InterpolateRowVbmi(t, src, srcBytes, cache[slot].data());
        } else if (avx2) {
            done = InterpolateRowAvx2(t, src, cache[slot].data(), safe);
        }
#endif
        InterpolateRowPlain(t, src, cache[slot].data(), done, outBytes);
        cached[slot] = y;
        return cache[slot].data();
    };
    for (Long j = 0; j < to.height; ++j) {
        const Sample row = SampleAt(j, sy, from.height);
#if KELVARIN_X86
        // Rows that neither the row before nor the row after reads go
        // through both passes at once.
        const bool shared = cached[0] == row.at || cached[1] == row.at || cached[0] == row.next ||
                            cached[1] == row.next ||
                            (j + 1 < to.height && SampleAt(j + 1, sy, from.height).at <= row.next);
        if (permute && !shared) {
            std::uint8_t* out = to.Row(j);
            const std::uint8_t* low = from.Row(row.at);
            const std::uint8_t* high = from.Row(row.next);
            const std::size_t done =
                ResampleRowVbmi(t, low, high, srcBytes, row.keep, row.take, out);
            // The last bytes by the plain passes, through the cache rows,
            // which no later row would have found there anyway.
            InterpolateRowPlain(t, low, cache[0].data(), done, outBytes);
            InterpolateRowPlain(t, high, cache[1].data(), done, outBytes);
            cached[0] = cached[1] = -1;
            BlendRowsPlain(cache[0].data(), cache[1].data(), row.keep, row.take, out, done,
                           outBytes);
            continue;
        }
#endif
        const std::uint8_t* a = across(row.at);
        const std::uint8_t* b = across(row.next);
        std::uint8_t* out = to.Row(j);
        std::size_t done = 0;
#if KELVARIN_X86
        if (permute) {
            done = BlendRowsAvx512(a, b, row.keep, row.take, out, outBytes);
        } else if (avx2) {
            done = BlendRowsAvx2(a, b, row.keep, row.take, out, outBytes);
        }
#endif
        BlendRowsPlain(a, b, row.keep, row.take, out, done, outBytes);
    }
    (void)avx2;
}

// ---- 3. Quarter turn -------------------------------------------------------

// New pixel (x = r, y = c) is old pixel (x = c, y = n - 1 - r).
template <typename Rows>
void RotatePlain(const Rows& rows, Long bpp) {
    const RowsCopy copy = CopyRows(rows, bpp);
    const Long n = rows.width;
    for (Long r = 0; r < n; ++r) {
        for (Long c = 0; c < n; ++c) {
            std::memcpy(rows.Row(c) + static_cast<std::ptrdiff_t>(r) * bpp,
                        copy.Row(n - 1 - r) + static_cast<std::ptrdiff_t>(c) * bpp,
                        static_cast<std::size_t>(bpp));
        }
    }
}

// The same in square tiles, so that the rows read and written by one tile
// stay in the cache.
template <int kBytes, typename Rows>
void RotateTiled(const Rows& rows) {
    const RowsCopy copy = CopyRows(rows, kBytes);
    const Long n = rows.width;
    constexpr Long kTile = 64;
    for (Long c0 = 0; c0 < n; c0 += kTile) {
        const Long c1 = std::min(c0 + kTile, n);
        for (Long r0 = 0; r0 < n; r0 += kTile) {
            const Long r1 = std::min(r0 + kTile, n);
            for (Long c = c0; c < c1; ++c) {
                std::uint8_t* out = rows.Row(c);
                const std::uint8_t* in =
                    copy.bytes.data() + static_cast<std::ptrdiff_t>(c) * kBytes;
                for (Long r = r0; r < r1; ++r) {
                    std::memcpy(out + static_cast<std::ptrdiff_t>(r) * kBytes,
                                in + static_cast<std::ptrdiff_t>(n - 1 - r) *
                                         static_cast<std::ptrdiff_t>(copy.rowBytes),
                                kBytes);
                }
            }
        }
    }
}

// A square turns in place, a tile at a time. The turn moves every
// pixel around a cycle of four, one in each quadrant: quadrant 0 (x below
// (n + 1) / 2, y below n / 2) takes its pixels from quadrant 1, that one from
// quadrant 2, that from 3, and 3 from 0; the centre of an odd side stays. So
// a tile of quadrant 0 is saved, then each of the four places is filled from
// the next, which is still untouched, and the last from the saved copy. No
// copy of the whole image is made, and the pixels of one tile's four places
// stay in the cache.
template <int kBytes>
struct Plane {
    std::uint8_t* base;  // pixel (x0, y0)
    std::ptrdiff_t stride;
    Long x0, y0;
    std::uint8_t* At(Long x, Long y) const {
        return base + static_cast<std::ptrdiff_t>(y - y0) * stride +
               kBytes * static_cast<std::ptrdiff_t>(x - x0);
    }
};

#if KELVARIN_X86
// Eight rows of eight 32-bit lanes across the diagonal, in place: v[i]
// becomes lane i of rows 0..7 in order.
KELVARIN_AVX2 inline void TransposeLanes8x8(__m256i (&v)[8]) {
    __m256i t[8], u[8];
    for (int j = 0; j < 8; j += 2) {
        t[j] = _mm256_unpacklo_epi32(v[j], v[j + 1]);
        t[j + 1] = _mm256_unpackhi_epi32(v[j], v[j + 1]);
    }
    for (int j = 0; j < 8; j += 4) {
        u[j] = _mm256_unpacklo_epi64(t[j], t[j + 2]);
        u[j + 1] = _mm256_unpackhi_epi64(t[j], t[j + 2]);
        u[j + 2] = _mm256_unpacklo_epi64(t[j + 1], t[j + 3]);
        u[j + 3] = _mm256_unpackhi_epi64(t[j + 1], t[j + 3]);
    }
    for (int i = 0; i < 8; ++i) {
        v[i] = i < 4 ? _mm256_permute2x128_si256(u[i], u[i + 4], 0x20)
                     : _mm256_permute2x128_si256(u[i - 4], u[i], 0x31);
    }
}

// Eight pixels of eight rows across the diagonal: destination row i gets
// pixel i of source rows 0..7 in order. Each row is read and written as
// exactly its 24 bytes; a pixel travels as a 32-bit lane.
KELVARIN_AVX2 inline void Transpose8x8Px24(const std::uint8_t* src, std::ptrdiff_t srcStride,
                                           std::uint8_t* dst, std::ptrdiff_t dstStride) {
    // Bytes 0..15 in the low half, 8..23 in the high half.
    const __m256i widen = _mm256_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1, 4,
                                           5, 6, -1, 7, 8, 9, -1, 10, 11, 12, -1, 13, 14, 15, -1);
    const __m256i narrow = _mm256_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1,
                                            0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
    const __m256i join = _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7);
    __m256i v[8];
    for (int j = 0; j < 8; ++j) {
        const std::uint8_t* p = src + j * srcStride;
        v[j] = _mm256_shuffle_epi8(
            _mm256_setr_m128i(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)),
                              _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 8))),
            widen);
    }
    TransposeLanes8x8(v);
    for (int i = 0; i < 8; ++i) {
        const __m256i packed = _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(v[i], narrow), join);
        std::uint8_t* q = dst + i * dstStride;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(q), _mm256_castsi256_si128(packed));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(q + 16), _mm256_extracti128_si256(packed, 1));
    }
}

// The same for pixels of 32 bits, a pixel a lane.
KELVARIN_AVX2 inline void Transpose8x8Px32(const std::uint8_t* src, std::ptrdiff_t srcStride,
                                           std::uint8_t* dst, std::ptrdiff_t dstStride) {
    __m256i v[8];
    for (int i = 0; i < 8; ++i)
        v[i] = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(src + i * srcStride));
    TransposeLanes8x8(v);
    for (int i = 0; i < 8; ++i)
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + i * dstStride), v[i]);
}

// The same for pixels of 16 bits, in 128-bit registers.
inline void Transpose8x8Px16(const std::uint8_t* src, std::ptrdiff_t srcStride, std::uint8_t* dst,
                             std::ptrdiff_t dstStride) {
    __m128i r[8], t[8], u[8];
    for (int i = 0; i < 8; ++i)
        r[i] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + i * srcStride));
    for (int i = 0; i < 8; i += 2) {
        t[i] = _mm_unpacklo_epi16(r[i], r[i + 1]);      // columns 0-3 of rows i, i + 1
        t[i + 1] = _mm_unpackhi_epi16(r[i], r[i + 1]);  // columns 4-7
    }
    for (int half = 0; half < 2; ++half) {  // rows 0-3, then 4-7
        const __m128i* v = t + 4 * half;
        u[4 * half] = _mm_unpacklo_epi32(v[0], v[2]);      // columns 0, 1
        u[4 * half + 1] = _mm_unpackhi_epi32(v[0], v[2]);  // 2, 3
        u[4 * half + 2] = _mm_unpacklo_epi32(v[1], v[3]);  // 4, 5
        u[4 * half + 3] = _mm_unpackhi_epi32(v[1], v[3]);  // 6, 7
    }
    for (int k = 0; k < 4; ++k) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + 2 * k * dstStride),
                         _mm_unpacklo_epi64(u[k], u[k + 4]));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + (2 * k + 1) * dstStride),
                         _mm_unpackhi_epi64(u[k], u[k + 4]));
    }
}

// The same for pixels of 8 bits: eight bytes of each row.
inline void Transpose8x8Px8(const std::uint8_t* src, std::ptrdiff_t srcStride, std::uint8_t* dst,
                            std::ptrdiff_t dstStride) {
    __m128i pairs[4], quads[4];
    for (int i = 0; i < 4; ++i) {
        const __m128i a =
            _mm_loadl_epi64(reinterpret_cast<const __m128i*>(src + 2 * i * srcStride));
        const __m128i b =
            _mm_loadl_epi64(reinterpret_cast<const __m128i*>(src + (2 * i + 1) * srcStride));
        pairs[i] = _mm_unpacklo_epi8(a, b);  // rows 2i, 2i + 1 by column
    }
    quads[0] = _mm_unpacklo_epi16(pairs[0], pairs[1]);  // rows 0-3, columns 0-3
    quads[1] = _mm_unpackhi_epi16(pairs[0], pairs[1]);  // rows 0-3, columns 4-7
    quads[2] = _mm_unpacklo_epi16(pairs[2], pairs[3]);  // rows 4-7, columns 0-3
    quads[3] = _mm_unpackhi_epi16(pairs[2], pairs[3]);
    const __m128i columns[4] = {
        _mm_unpacklo_epi32(quads[0], quads[2]), _mm_unpackhi_epi32(quads[0], quads[2]),
        _mm_unpacklo_epi32(quads[1], quads[3]), _mm_unpackhi_epi32(quads[1], quads[3])};
    for (int k = 0; k < 4; ++k) {  // columns 2k and 2k + 1
        _mm_storel_epi64(reinterpret_cast<__m128i*>(dst + 2 * k * dstStride), columns[k]);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(dst + (2 * k + 1) * dstStride),
                         _mm_unpackhi_epi64(columns[k], columns[k]));
    }
}

// The destination rectangle x in [xa, xb), y in [ya, yb) takes its pixels
// from src as the turn says: new (x = r, y = c) is old (x = c, y = n - 1 - r).
// Blocks of 8 x 8 go through transpose, the rest a pixel at a time.
template <int kBytes, typename Transpose>
void TurnInto(const Plane<kBytes>& dst, const Plane<kBytes>& src, Long xa, Long xb, Long ya,
              Long yb, Long n, Transpose transpose) {
    Long c = ya;
    for (; c + 8 <= yb; c += 8) {
        Long r = xa;
        for (; r + 8 <= xb; r += 8)
            transpose(src.At(c, n - 1 - r), -src.stride, dst.At(r, c), dst.stride);
        for (Long cc = c; cc < c + 8; ++cc) {
            for (Long rr = r; rr < xb; ++rr)
                std::memcpy(dst.At(rr, cc), src.At(cc, n - 1 - rr), kBytes);
        }
    }
    for (; c < yb; ++c) {
        for (Long r = xa; r < xb; ++r) std::memcpy(dst.At(r, c), src.At(c, n - 1 - r), kBytes);
    }
}

template <int kBytes, typename Rows, typename Transpose>
void RotateInPlace(const Rows& rows, Transpose transpose) {
    const Long n = rows.width;
    const Long qx = (n + 1) / 2, qy = n / 2;  // quadrant 0
    constexpr Long kTile = 64;
    const Plane<kBytes> image{rows.Row(0), rows.stride, 0, 0};
    Bytes saved(static_cast<std::size_t>(kTile * kTile * kBytes));
    for (Long y0 = 0; y0 < qy; y0 += kTile) {
        const Long y1 = std::min(y0 + kTile, qy);
        for (Long x0 = 0; x0 < qx; x0 += kTile) {
            const Long x1 = std::min(x0 + kTile, qx);
            const Plane<kBytes> copy{saved.data(), kTile * kBytes, x0, y0};
            for (Long y = y0; y < y1; ++y) {
                std::memcpy(copy.At(x0, y), image.At(x0, y),
                            static_cast<std::size_t>(kBytes * (x1 - x0)));
            }
            TurnInto(image, image, x0, x1, y0, y1, n, transpose);          // from quadrant 1
            TurnInto(image, image, y0, y1, n - x1, n - x0, n, transpose);  // from quadrant 2
            TurnInto(image, image, n - x1, n - x0, n - y1, n - y0, n,
                     transpose);                                          // from quadrant 3
            TurnInto(image, copy, n - y1, n - y0, x0, x1, n, transpose);  // from the saved tile
        }
    }
}
#endif

}  // namespace

// ---- 1. Mirrors ------------------------------------------------------------

void clsGFX_2D::Image_FlipX() {
    if (width_ < 1) {
        lastError_ = "Width=0";
        return;
    }
    SessionScope session(*this);
    const ImageRows rows = SessionRows();
    const Long bpp = bytesPerPixel_;
    const Long w = rows.width;
    if (!SimdEnabled()) {
        const RowsCopy copy = CopyRows(rows, bpp);
        for (Long y = 0; y < rows.height; ++y) {
            for (Long x = 0; x < w; ++x) {
                std::memcpy(rows.Row(y) + static_cast<std::ptrdiff_t>(x) * bpp,
                            copy.Row(y) + static_cast<std::ptrdiff_t>(w - 1 - x) * bpp,
                            static_cast<std::size_t>(bpp));
            }
        }
        return;
    }
#if KELVARIN_X86
    if (bpp == 3) {
        // The row is copied behind 16 spare bytes, which the first block's
        // load may touch.
        Bytes copy(16 + static_cast<std::size_t>(w) * 3);
        for (Long y = 0; y < rows.height; ++y) {
            std::memcpy(copy.data() + 16, rows.Row(y), static_cast<std::size_t>(w) * 3);
            ReverseRow24(rows.Row(y), copy.data() + 16, w);
        }
        return;
    }
#endif
    for (Long y = 0; y < rows.height; ++y) {
        switch (bpp) {
            case 1: ReverseRowInPlace<1>(rows.Row(y), w); break;
            case 2: ReverseRowInPlace<2>(rows.Row(y), w); break;
            case 3: ReverseRowInPlace<3>(rows.Row(y), w); break;
            default: ReverseRowInPlace<4>(rows.Row(y), w); break;
        }
    }
}

void clsGFX_2D::Image_FlipY() {
    if (width_ < 1) {  // the width, as for the other mirror
        lastError_ = "Width=0";
        return;
    }
    SessionScope session(*this);
    const ImageRows rows = SessionRows();
    const auto rowBytes =
        static_cast<std::size_t>(rows.width) * static_cast<std::size_t>(bytesPerPixel_);
    const Long h = rows.height;
    if (!SimdEnabled()) {
        const RowsCopy copy = CopyRows(rows, bytesPerPixel_);
        for (Long y = 0; y < h; ++y) std::memcpy(rows.Row(y), copy.Row(h - 1 - y), rowBytes);
        return;
    }
#if KELVARIN_X86
    if (Avx2Enabled()) {
        for (Long y = 0; y < h / 2; ++y) SwapRowsAvx2(rows.Row(y), rows.Row(h - 1 - y), rowBytes);
        return;
    }
#endif
    Bytes spare(rowBytes);
    for (Long y = 0; y < h / 2; ++y) {
        std::memcpy(spare.data(), rows.Row(y), rowBytes);
        std::memcpy(rows.Row(y), rows.Row(h - 1 - y), rowBytes);
        std::memcpy(rows.Row(h - 1 - y), spare.data(), rowBytes);
    }
}

// ---- 2. Bilinear resample --------------------------------------------------

bool clsGFX_2D::Image_Resample(Long lNewWidth, Long lNewHeight) {
    if (!Require24("Image_Resample is only for 24 bit images")) return false;
    if (lNewWidth == width_ && lNewHeight == height_) return true;
    clsGFX_2D target;
    // Every pixel byte is written below; only the padding needs clearing.
    if (!target.Allocate(lNewWidth, lNewHeight, 24, false)) {
        if (!target.lastError_.empty()) lastError_ = target.lastError_;
        return false;
    }
    const auto sx = static_cast<Single>(
        Divide(static_cast<double>(width_) - 1, static_cast<double>(lNewWidth) - 1));
    const auto sy = static_cast<Single>(
        Divide(static_cast<double>(height_) - 1, static_cast<double>(lNewHeight) - 1));

    const bool callerSession = sessionOpen_;
    {
        SessionScope session(*this);
        const ImageRows from = SessionRows();
        if (from.width < 1 || from.height < 1) RaiseHostError(HostErrorCode::SubscriptOutOfRange);
        ImageRows to;
        to.base = target.bits_.get();
        to.stride = target.Get_BytesPerScanLine();
        to.width = lNewWidth;
        to.height = lNewHeight;
        if (SimdEnabled()) {
            ResampleFast(from, to, sx, sy);
        } else {
            ResamplePlain(from, to, sx, sy);
        }
        const auto pixelBytes = static_cast<std::size_t>(lNewWidth) * 3;
        const auto padding = static_cast<std::size_t>(to.stride) - pixelBytes;
        for (Long y = 0; y < lNewHeight && padding > 0; ++y) {
            std::memset(to.Row(y) + pixelBytes, 0, padding);
        }
    }
    AdoptSurface(target);
    if (callerSession) Draw_StartSession();  // on the new pixels
    return true;
}

// ---- 3. Quarter turn -------------------------------------------------------

bool clsGFX_2D::Image_Rotate() {
    if (width_ != height_) {
        lastError_ = "Needed height equals weight to rotate image";
        return false;
    }
    SessionScope session(*this);
    const ImageRows rows = SessionRows();
    const Long bpp = bytesPerPixel_;
    if (!SimdEnabled()) {
        RotatePlain(rows, bpp);
        return true;
    }
#if KELVARIN_X86
    const bool avx2 = Avx2Enabled();
    switch (bpp) {
        case 1: RotateInPlace<1>(rows, Transpose8x8Px8); return true;
        case 2: RotateInPlace<2>(rows, Transpose8x8Px16); return true;
        case 3:
            if (avx2) RotateInPlace<3>(rows, Transpose8x8Px24);
            break;
        default:
            if (avx2) RotateInPlace<4>(rows, Transpose8x8Px32);
            break;
    }
    if (avx2) return true;
#endif
    switch (bpp) {
        case 1: RotateTiled<1>(rows); break;
        case 2: RotateTiled<2>(rows); break;
        case 3: RotateTiled<3>(rows); break;
        default: RotateTiled<4>(rows); break;
    }
    return true;
}

}  // namespace kelvarin

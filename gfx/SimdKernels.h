// SPDX-License-Identifier: MIT
// Private to gfx/Simd.cpp: the row kernels of the colour operations, written
// once over the register width. Simd.cpp includes this file with
// KELVARIN_SIMD_BITS 128, 256 and 512, after its shuffle tables (Mask,
// kGather, kScatter, and the byte permutes kGather64 and kScatter64); each
// copy lands in its own namespace (v128, v256, v512) and is compiled for its
// own processor target (SSSE3, AVX2, AVX-512 with VBMI), which a template
// could not be. Hence no include guard.
//
// A 256-bit register holds two groups of 16 pixels, one per 128-bit half,
// and every instruction below works within halves, so both widths take
// exactly the same steps on each group of 16 pixels. A 512-bit register
// holds one channel of 64 pixels in order, moved there and back by byte
// permutes across the whole register; the arithmetic between still works
// within 128-bit lanes, its widening and narrowing in matching pairs.

#if KELVARIN_SIMD_BITS == 128
#define KELVARIN_SIMD_NAMESPACE v128
#define KELVARIN_TARGET KELVARIN_SSSE3
// An intrinsic of this width by its lane-type name, or its whole-register form.
#define VEC(op) _mm_##op
#define VEC_SI(op) _mm_##op##_si128
#elif KELVARIN_SIMD_BITS == 256
#define KELVARIN_SIMD_NAMESPACE v256
#define KELVARIN_TARGET KELVARIN_AVX2
#define VEC(op) _mm256_##op
#define VEC_SI(op) _mm256_##op##_si256
#elif KELVARIN_SIMD_BITS == 512
#define KELVARIN_SIMD_NAMESPACE v512
#define KELVARIN_TARGET KELVARIN_AVX512
#define VEC(op) _mm512_##op
#define VEC_SI(op) _mm512_##op##_si512
#else
#error "KELVARIN_SIMD_BITS must be 128, 256 or 512"
#endif

namespace kelvarin::gfx_detail {
namespace {
namespace KELVARIN_SIMD_NAMESPACE {

#if KELVARIN_SIMD_BITS == 128

using Reg = __m128i;
constexpr Long kPixels = 16;  // in three registers, 16 bytes each

KELVARIN_TARGET inline Reg LoadPart(const std::uint8_t* block, int k) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(block + 16 * k));
}
KELVARIN_TARGET inline void StorePart(std::uint8_t* block, int k, Reg v) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(block + 16 * k), v);
}
KELVARIN_TARGET inline Reg Table(const Mask& m) {
    return _mm_load_si128(reinterpret_cast<const __m128i*>(m.data()));
}
// Per byte, a where keep is set and b elsewhere (SSSE3 has no byte blend).
KELVARIN_TARGET inline Reg Select(Reg keep, Reg a, Reg b) {
    return _mm_or_si128(_mm_and_si128(keep, a), _mm_andnot_si128(keep, b));
}
// All ones in the bytes or 16-bit lanes where a equals b.
KELVARIN_TARGET inline Reg Equal8(Reg a, Reg b) { return _mm_cmpeq_epi8(a, b); }
KELVARIN_TARGET inline Reg Equal16(Reg a, Reg b) { return _mm_cmpeq_epi16(a, b); }
KELVARIN_TARGET inline bool Any(Reg v) { return _mm_movemask_epi8(v) != 0; }

#elif KELVARIN_SIMD_BITS == 256

using Reg = __m256i;
// Two groups of 16: register k holds part k of the first group in its low
// half and of the second (48 bytes on) in its high half.
constexpr Long kPixels = 32;

KELVARIN_TARGET inline Reg LoadPart(const std::uint8_t* block, int k) {
    return _mm256_loadu2_m128i(reinterpret_cast<const __m128i*>(block + 48 + 16 * k),
                               reinterpret_cast<const __m128i*>(block + 16 * k));
}
KELVARIN_TARGET inline void StorePart(std::uint8_t* block, int k, Reg v) {
    _mm256_storeu2_m128i(reinterpret_cast<__m128i*>(block + 48 + 16 * k),
                         reinterpret_cast<__m128i*>(block + 16 * k), v);
}
KELVARIN_TARGET inline Reg Table(const Mask& m) {
    return _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(m.data())));
}
KELVARIN_TARGET inline Reg Select(Reg keep, Reg a, Reg b) { return _mm256_blendv_epi8(b, a, keep); }
KELVARIN_TARGET inline Reg Equal8(Reg a, Reg b) { return _mm256_cmpeq_epi8(a, b); }
KELVARIN_TARGET inline Reg Equal16(Reg a, Reg b) { return _mm256_cmpeq_epi16(a, b); }
KELVARIN_TARGET inline bool Any(Reg v) { return _mm256_movemask_epi8(v) != 0; }

#else

using Reg = __m512i;
// One group of 64 pixels, 192 bytes in three registers in memory order.
constexpr Long kPixels = 64;

KELVARIN_TARGET inline Reg LoadPart(const std::uint8_t* block, int k) {
    return _mm512_loadu_si512(block + 64 * k);
}
KELVARIN_TARGET inline void StorePart(std::uint8_t* block, int k, Reg v) {
    _mm512_storeu_si512(block + 64 * k, v);
}
// Per bit, a where keep is set and b elsewhere.
KELVARIN_TARGET inline Reg Select(Reg keep, Reg a, Reg b) {
    return _mm512_ternarylogic_epi32(keep, a, b, 0xCA);
}
KELVARIN_TARGET inline Reg Equal8(Reg a, Reg b) {
    return _mm512_movm_epi8(_mm512_cmpeq_epi8_mask(a, b));
}
KELVARIN_TARGET inline Reg Equal16(Reg a, Reg b) {
    return _mm512_movm_epi16(_mm512_cmpeq_epi16_mask(a, b));
}
KELVARIN_TARGET inline bool Any(Reg v) { return _mm512_test_epi8_mask(v, v) != 0; }

#endif

#if KELVARIN_SIMD_BITS == 512

// Channel c of the block: from the first two registers by one permute,
// then from the third for the pixels whose byte lies there (kGather64).
KELVARIN_TARGET inline void LoadChannels(const std::uint8_t* row, Reg ch[3]) {
    Reg v[3];
#pragma GCC unroll 3
    for (int k = 0; k < 3; ++k) v[k] = LoadPart(row, k);
#pragma GCC unroll 3
    for (int c = 0; c < 3; ++c) {
        const Reg index = _mm512_load_si512(kGather64[c].index.data());
        ch[c] = _mm512_mask_permutexvar_epi8(_mm512_permutex2var_epi8(v[0], index, v[1]),
                                             kGather64[c].fromLast, index, v[2]);
    }
}

// Register k of the block: blue and green by one permute, then red
// (kScatter64).
KELVARIN_TARGET inline Reg Interleave(const Reg ch[3], int k) {
    const Reg index = _mm512_load_si512(kScatter64[k].index.data());
    return _mm512_mask_permutexvar_epi8(_mm512_permutex2var_epi8(ch[0], index, ch[1]),
                                        kScatter64[k].fromLast, index, ch[2]);
}

KELVARIN_TARGET inline void StoreChannels(std::uint8_t* row, const Reg ch[3]) {
#pragma GCC unroll 3
    for (int k = 0; k < 3; ++k) StorePart(row, k, Interleave(ch, k));
}

// The byte masks of the three registers of a block's first pixels (at
// most kPixels): the bytes a kernel may load and store.
KELVARIN_TARGET inline void BlockBytes(Long pixels, std::uint64_t valid[3]) {
    for (int k = 0; k < 3; ++k) {
        const Long bytes = std::clamp<Long>(3 * pixels - 64 * k, 0, 64);
        valid[k] = bytes == 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << bytes) - 1;
    }
}

// The block's three registers in memory order; with kTail only the valid
// bytes are read (the others are 0 and may lie past the row's end).
template <bool kTail>
KELVARIN_TARGET inline void LoadBlock(const std::uint8_t* block, const std::uint64_t valid[3],
                                      Reg v[3]) {
#pragma GCC unroll 3
    for (int k = 0; k < 3; ++k)
        v[k] = kTail ? _mm512_maskz_loadu_epi8(valid[k], block + 64 * k) : LoadPart(block, k);
}

// The pixels of a block whose three bytes are those of pattern (in memory
// order): bit i of the three compare masks (one 192-bit number) is byte i,
// and a pixel matches where bits i to i + 2 are set with i its first byte
// (of register k, bits l with 64k + l a multiple of 3). Sets bytes[k] to
// the matching pixels' bytes; false where none matches, the usual case,
// which costs no permutes.
KELVARIN_TARGET inline bool PixelsThatAre(const Reg v[3], const Reg pattern[3],
                                          std::uint64_t bytes[3]) {
    constexpr std::uint64_t kFirst[3] = {0x9249249249249249, 0x4924924924924924,
                                         0x2492492492492492};
    std::uint64_t m[3];
#pragma GCC unroll 3
    for (int k = 0; k < 3; ++k) m[k] = _mm512_cmpeq_epi8_mask(v[k], pattern[k]);
    const std::uint64_t first0 =
        m[0] & (m[0] >> 1 | m[1] << 63) & (m[0] >> 2 | m[1] << 62) & kFirst[0];
    const std::uint64_t first1 =
        m[1] & (m[1] >> 1 | m[2] << 63) & (m[1] >> 2 | m[2] << 62) & kFirst[1];
    const std::uint64_t first2 = m[2] & m[2] >> 1 & m[2] >> 2 & kFirst[2];
    if ((first0 | first1 | first2) == 0) [[likely]]
        return false;
    // A pixel's second and third bytes may lie in the next register.
    bytes[0] = first0 | first0 << 1 | first0 << 2;
    bytes[1] = first1 | first1 << 1 | first1 << 2 | first0 >> 62 | first0 >> 63;
    bytes[2] = first2 | first2 << 1 | first2 << 2 | first1 >> 62 | first1 >> 63;
    return true;
}

// Three bytes (one pixel) repeated over a block in memory order.
KELVARIN_TARGET inline void InMemory(const std::uint8_t bytes[3], Reg out[3]) {
    Reg ch[3];
#pragma GCC unroll 3
    for (int c = 0; c < 3; ++c) ch[c] = _mm512_set1_epi8(static_cast<char>(bytes[c]));
#pragma GCC unroll 3
    for (int k = 0; k < 3; ++k) out[k] = Interleave(ch, k);
}

#else

// One vector from three through their tables (see Simd.cpp): kGather[c]
// takes channel c out of a block's three registers, kScatter[k] puts the
// channels back into register k.
KELVARIN_TARGET inline Reg Mix(const Reg in[3], const std::array<Mask, 3>& tables) {
    return VEC_SI(or)(VEC_SI(or)(VEC(shuffle_epi8)(in[0], Table(tables[0])),
                                 VEC(shuffle_epi8)(in[1], Table(tables[1]))),
                      VEC(shuffle_epi8)(in[2], Table(tables[2])));
}

// The block at row as its channels: ch[0] blue, ch[1] green, ch[2] red, a
// byte per pixel. Here and below, loops over a block's three registers are
// unrolled so that they stay registers.
KELVARIN_TARGET inline void LoadChannels(const std::uint8_t* row, Reg ch[3]) {
    Reg v[3];
#pragma GCC unroll 3
    for (int k = 0; k < 3; ++k) v[k] = LoadPart(row, k);
#pragma GCC unroll 3
    for (int c = 0; c < 3; ++c) ch[c] = Mix(v, kGather[c]);
}

KELVARIN_TARGET inline void StoreChannels(std::uint8_t* row, const Reg ch[3]) {
#pragma GCC unroll 3
    for (int k = 0; k < 3; ++k) StorePart(row, k, Mix(ch, kScatter[k]));
}

#endif

KELVARIN_TARGET inline void Splat(const std::uint8_t bytes[3], Reg out[3]) {
    for (int c = 0; c < 3; ++c) out[c] = VEC(set1_epi8)(static_cast<char>(bytes[c]));
}

// All ones in the pixels whose three channels equal bytes[0..2].
KELVARIN_TARGET inline Reg Matches(const Reg ch[3], const Reg bytes[3]) {
    return VEC_SI(and)(Equal8(ch[0], bytes[0]),
                       VEC_SI(and)(Equal8(ch[1], bytes[1]), Equal8(ch[2], bytes[2])));
}

// Weighted grey of pixels whose channels are widened to 16 bits:
// round-half-even of s / 1000 with s = 222 red + 707 green + 71 blue.
// With n = s + 500, the quotient is floor(floor(n / 8) / 125): n / 8 fits
// 16 bits, and its quotient by 125 is the high half of a 16-bit product with
// ceil(2^22 / 125), exact below 59074. A tie is n a multiple of 1000 (n / 8
// a multiple of 125, and n itself of 8); it loses one when the quotient is odd.
KELVARIN_TARGET inline Reg Weighted16(Reg b, Reg g, Reg r) {
    const Reg rgWeights = VEC(set1_epi32)(222 | 707 << 16);
    const Reg bWeights = VEC(set1_epi32)(71 | 500 << 16);  // pairs (b, 1): + 500 once
    const Reg one = VEC(set1_epi16)(1);
    const Reg zero = VEC_SI(setzero)();
    const Reg lo = VEC(add_epi32)(VEC(madd_epi16)(VEC(unpacklo_epi16)(r, g), rgWeights),
                                  VEC(madd_epi16)(VEC(unpacklo_epi16)(b, one), bWeights));
    const Reg hi = VEC(add_epi32)(VEC(madd_epi16)(VEC(unpackhi_epi16)(r, g), rgWeights),
                                  VEC(madd_epi16)(VEC(unpackhi_epi16)(b, one), bWeights));
    const Reg eighths = VEC(packs_epi32)(VEC(srli_epi32)(lo, 3), VEC(srli_epi32)(hi, 3));
    const Reg rest =
        VEC(packs_epi32)(VEC_SI(and)(lo, VEC(set1_epi32)(7)), VEC_SI(and)(hi, VEC(set1_epi32)(7)));
    const Reg q = VEC(srli_epi16)(
        VEC(mulhi_epu16)(eighths, VEC(set1_epi16)(static_cast<short>(33555 - 65536))), 6);
    const Reg tie = VEC_SI(and)(Equal16(VEC(mullo_epi16)(q, VEC(set1_epi16)(125)), eighths),
                                Equal16(rest, zero));
    return VEC(sub_epi16)(q, VEC_SI(and)(tie, VEC_SI(and)(q, one)));
}

KELVARIN_TARGET inline Reg WeightedGrey(const Reg ch[3]) {
    const Reg zero = VEC_SI(setzero)();
    return VEC(packus_epi16)(
        Weighted16(VEC(unpacklo_epi8)(ch[0], zero), VEC(unpacklo_epi8)(ch[1], zero),
                   VEC(unpacklo_epi8)(ch[2], zero)),
        Weighted16(VEC(unpackhi_epi8)(ch[0], zero), VEC(unpackhi_epi8)(ch[1], zero),
                   VEC(unpackhi_epi8)(ch[2], zero)));
}

// The kernels: whole blocks of kPixels pixels from the row's start; each
// returns how many pixels it did.

template <bool kWeighted>
KELVARIN_TARGET Long GrayBlocks(std::uint8_t* row, Long width, const std::uint8_t mask[3]) {
    Reg maskBytes[3];
    Splat(mask, maskBytes);
    Long x = 0;
    for (; x + kPixels <= width; x += kPixels, row += 3 * kPixels) {
        Reg ch[3];
        LoadChannels(row, ch);
        const Reg grey =
            kWeighted ? WeightedGrey(ch) : VEC(max_epu8)(ch[0], VEC(max_epu8)(ch[1], ch[2]));
        const Reg keep = Matches(ch, maskBytes);
        Reg out[3];
#pragma GCC unroll 3
        for (int c = 0; c < 3; ++c) out[c] = Select(keep, ch[c], grey);
        StoreChannels(row, out);
    }
    return x;
}

KELVARIN_TARGET Long Gray(std::uint8_t* row, Long width, const std::uint8_t* mask, bool weighted) {
    return weighted ? GrayBlocks<true>(row, width, mask) : GrayBlocks<false>(row, width, mask);
}

// (v + part) * multiplier / 2^(16 + shift) on 16-bit lanes, or without a
// multiplier (v + part) / 2^shift.
template <bool kMultiply>
KELVARIN_TARGET inline Reg FadeWords(Reg v, Reg part, Reg multiplier, __m128i count) {
    const Reg n = VEC(add_epi16)(v, part);
    return VEC(srl_epi16)(kMultiply ? VEC(mulhi_epu16)(n, multiplier) : n, count);
}

#if KELVARIN_SIMD_BITS == 512

// At this width Fade and Replace take a whole image: height rows of width
// pixels from first on, stride bytes apart. Each row ends in a block of its
// last pixels read and written through byte masks, so one call does every
// pixel, and what a call sets up is set up once. Both work on bytes in
// memory order, where the byte compares find the pixels that match and a
// byte's channel is fixed by its place in the block: no permutes per block.

// Every byte of the block not in a pixel that is the mask (in memory
// order) becomes (v + part) * multiplier >> (16 + shift), or without a
// multiplier (v + part) >> shift, part being the byte's channel's in the
// layout of the unpacks.
template <bool kMultiply, bool kTail>
KELVARIN_TARGET inline void FadeBlock(std::uint8_t* block, const std::uint64_t valid[3],
                                      const Reg mask[3], const Reg partLo[3], const Reg partHi[3],
                                      Reg times, __m128i count) {
    const Reg zero = _mm512_setzero_si512();
    Reg v[3];
    LoadBlock<kTail>(block, valid, v);
    std::uint64_t keep[3] = {0, 0, 0};
    PixelsThatAre(v, mask, keep);
#pragma GCC unroll 3
    for (int k = 0; k < 3; ++k) {
        const Reg lo =
            FadeWords<kMultiply>(_mm512_unpacklo_epi8(v[k], zero), partLo[k], times, count);
        const Reg hi =
            FadeWords<kMultiply>(_mm512_unpackhi_epi8(v[k], zero), partHi[k], times, count);
        _mm512_mask_storeu_epi8(block + 64 * k, valid[k] & ~keep[k], _mm512_packus_epi16(lo, hi));
    }
}

template <bool kMultiply>
KELVARIN_TARGET void FadeImage(std::uint8_t* first, std::ptrdiff_t stride, Long width, Long height,
                               const std::uint8_t* mask, const int* part, int multiplier,
                               int shift) {
    const __m128i count = _mm_cvtsi32_si128(shift);
    const Reg times = _mm512_set1_epi16(static_cast<short>(multiplier));
    // The parts' low and high bytes in memory order, unpacked together as
    // the pixel bytes are unpacked with zeros.
    std::uint8_t low[3], high[3];
    for (int c = 0; c < 3; ++c) {
        low[c] = static_cast<std::uint8_t>(part[c]);
        high[c] = static_cast<std::uint8_t>(part[c] >> 8);
    }
    Reg maskBytes[3], lows[3], highs[3], partLo[3], partHi[3];
    InMemory(mask, maskBytes);
    InMemory(low, lows);
    InMemory(high, highs);
    for (int k = 0; k < 3; ++k) {
        partLo[k] = _mm512_unpacklo_epi8(lows[k], highs[k]);
        partHi[k] = _mm512_unpackhi_epi8(lows[k], highs[k]);
    }
    const Long whole = width - width % kPixels;
    std::uint64_t all[3], tail[3];
    BlockBytes(kPixels, all);
    BlockBytes(width - whole, tail);
    for (Long y = 0; y < height; ++y, first += stride) {
        std::uint8_t* block = first;
        for (Long x = 0; x < whole; x += kPixels, block += 3 * kPixels)
            FadeBlock<kMultiply, false>(block, all, maskBytes, partLo, partHi, times, count);
        if (whole < width)
            FadeBlock<kMultiply, true>(block, tail, maskBytes, partLo, partHi, times, count);
    }
}

KELVARIN_TARGET Long Fade(std::uint8_t* first, std::ptrdiff_t stride, Long width, Long height,
                          const std::uint8_t* mask, const int* part, int multiplier, int shift) {
    if (multiplier != 0) {
        FadeImage<true>(first, stride, width, height, mask, part, multiplier, shift);
    } else {
        FadeImage<false>(first, stride, width, height, mask, part, 0, shift);
    }
    return width;
}

template <bool kTail>
KELVARIN_TARGET inline void ReplaceBlock(std::uint8_t* block, const std::uint64_t valid[3],
                                         const Reg from[3], const Reg to[3]) {
    Reg v[3];
    LoadBlock<kTail>(block, valid, v);
    std::uint64_t hit[3];
    if (!PixelsThatAre(v, from, hit)) [[likely]]
        return;
        // Bytes past the valid ones read as 0 and may match black: never written.
#pragma GCC unroll 3
    for (int k = 0; k < 3; ++k) _mm512_mask_storeu_epi8(block + 64 * k, hit[k] & valid[k], to[k]);
}

KELVARIN_TARGET Long Replace(std::uint8_t* first, std::ptrdiff_t stride, Long width, Long height,
                             const std::uint8_t* from, const std::uint8_t* to) {
    Reg fromBytes[3], toBytes[3];
    InMemory(from, fromBytes);
    InMemory(to, toBytes);
    const Long whole = width - width % kPixels;
    std::uint64_t tail[3];
    BlockBytes(width - whole, tail);
    constexpr std::uint64_t kAll[3] = {~std::uint64_t{0}, ~std::uint64_t{0}, ~std::uint64_t{0}};
    for (Long y = 0; y < height; ++y, first += stride) {
        std::uint8_t* block = first;
        for (Long x = 0; x < whole; x += kPixels, block += 3 * kPixels)
            ReplaceBlock<false>(block, kAll, fromBytes, toBytes);
        if (whole < width) ReplaceBlock<true>(block, tail, fromBytes, toBytes);
    }
    return width;
}

#else

template <bool kMultiply>
KELVARIN_TARGET Long FadeBlocks(std::uint8_t* row, Long width, const std::uint8_t* mask,
                                const int* part, int multiplier, int shift) {
    const Reg zero = VEC_SI(setzero)();
    const __m128i count = _mm_cvtsi32_si128(shift);
    const Reg times = VEC(set1_epi16)(static_cast<short>(multiplier));
    Reg maskBytes[3], parts[3];
    Splat(mask, maskBytes);
    for (int c = 0; c < 3; ++c) parts[c] = VEC(set1_epi16)(static_cast<short>(part[c]));
    Long x = 0;
    for (; x + kPixels <= width; x += kPixels, row += 3 * kPixels) {
        Reg ch[3];
        LoadChannels(row, ch);
        const Reg keep = Matches(ch, maskBytes);
        Reg out[3];
#pragma GCC unroll 3
        for (int c = 0; c < 3; ++c) {
            const Reg lo =
                FadeWords<kMultiply>(VEC(unpacklo_epi8)(ch[c], zero), parts[c], times, count);
            const Reg hi =
                FadeWords<kMultiply>(VEC(unpackhi_epi8)(ch[c], zero), parts[c], times, count);
            out[c] = Select(keep, ch[c], VEC(packus_epi16)(lo, hi));
        }
        StoreChannels(row, out);
    }
    return x;
}

KELVARIN_TARGET Long Fade(std::uint8_t* row, Long width, const std::uint8_t* mask, const int* part,
                          int multiplier, int shift) {
    return multiplier != 0 ? FadeBlocks<true>(row, width, mask, part, multiplier, shift)
                           : FadeBlocks<false>(row, width, mask, part, 0, shift);
}

KELVARIN_TARGET Long Replace(std::uint8_t* row, Long width, const std::uint8_t* from,
                             const std::uint8_t* to) {
    Reg fromBytes[3], toBytes[3];
    Splat(from, fromBytes);
    Splat(to, toBytes);
    Long x = 0;
    for (; x + kPixels <= width; x += kPixels, row += 3 * kPixels) {
        Reg ch[3];
        LoadChannels(row, ch);
        const Reg hit = Matches(ch, fromBytes);
        // Nothing to write is the usual case; as the straight path it saves a
        // taken jump per block.
        if (!Any(hit)) [[likely]]
            continue;
        Reg out[3];
#pragma GCC unroll 3
        for (int c = 0; c < 3; ++c) out[c] = Select(hit, toBytes[c], ch[c]);
        StoreChannels(row, out);
    }
    return x;
}

#endif

// Color_Invert: each byte XOR its byte of the pattern. Bytes stay where
// they are, so the block is three registers in memory order at every width.
KELVARIN_TARGET Long Invert(std::uint8_t* row, Long width, const std::uint8_t* pattern) {
    constexpr int kBytes = sizeof(Reg);
    static_assert(kBytes == kPixels, "a block of kPixels pixels fills three registers");
    Reg flips[3];
    for (int k = 0; k < 3; ++k)
        flips[k] = VEC_SI(loadu)(reinterpret_cast<const Reg*>(pattern + kBytes * k));
    Long x = 0;
    for (; x + kPixels <= width; x += kPixels, row += 3 * kPixels) {
#pragma GCC unroll 3
        for (int k = 0; k < 3; ++k) {
            Reg* const at = reinterpret_cast<Reg*>(row + kBytes * k);
            VEC_SI(storeu)(at, VEC_SI(xor)(VEC_SI(loadu)(at), flips[k]));
        }
    }
    return x;
}

}  // namespace KELVARIN_SIMD_NAMESPACE
}  // namespace
}  // namespace kelvarin::gfx_detail

#undef VEC_SI
#undef VEC
#undef KELVARIN_TARGET
#undef KELVARIN_SIMD_NAMESPACE

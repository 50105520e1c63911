// SPDX-License-Identifier: MIT
// Private to gfx/Filter.cpp: the convolution row kernel for kernels whose
// sums need 32 bits, written once over the register width. Filter.cpp
// includes this file with KELVARIN_SIMD_BITS 128, 256 and 512 after its
// TapPair and Sums32; each copy lands in its own namespace (conv128,
// conv256, conv512) and is compiled for its own processor target. Hence no
// include guard.
//
// Every instruction below works within 128-bit lanes, so each width takes
// the same steps on each group of 16 output bytes. A pair of taps is one
// multiply-add of 16-bit pairs into 32-bit sums: their bytes interleaved
// (a, c, a, c...), widened with zeros, times (weight a, weight c). The sums
// of a group land in four registers, bytes 0-3 of the group in the first,
// 4-7 in the second and so on, which is the order in which two signed packs
// and an unsigned one bring them back to bytes.

#if KELVARIN_SIMD_BITS == 128
#define KELVARIN_CONV_NAMESPACE conv128
#define KELVARIN_TARGET KELVARIN_SSSE3
#define VEC(op) _mm_##op
#define VEC_SI(op) _mm_##op##_si128
#elif KELVARIN_SIMD_BITS == 256
#define KELVARIN_CONV_NAMESPACE conv256
#define KELVARIN_TARGET KELVARIN_AVX2
#define VEC(op) _mm256_##op
#define VEC_SI(op) _mm256_##op##_si256
#elif KELVARIN_SIMD_BITS == 512
#define KELVARIN_CONV_NAMESPACE conv512
#define KELVARIN_TARGET KELVARIN_AVX512BW
#define VEC(op) _mm512_##op
#define VEC_SI(op) _mm512_##op##_si512
#else
#error "KELVARIN_SIMD_BITS must be 128, 256 or 512"
#endif

namespace kelvarin::gfx_detail {
namespace {
namespace KELVARIN_CONV_NAMESPACE {

#if KELVARIN_SIMD_BITS == 128

using Reg = __m128i;

// The truncated quotients of four sums, by the reciprocal (see Sums32).
KELVARIN_TARGET inline Reg Quotients(Reg sums, double reciprocal) {
    const __m128d r = _mm_set1_pd(reciprocal);
    const __m128i lo = _mm_cvttpd_epi32(_mm_mul_pd(_mm_cvtepi32_pd(sums), r));
    const __m128i hi =
        _mm_cvttpd_epi32(_mm_mul_pd(_mm_cvtepi32_pd(_mm_unpackhi_epi64(sums, sums)), r));
    return _mm_unpacklo_epi64(lo, hi);
}

#elif KELVARIN_SIMD_BITS == 256

using Reg = __m256i;

KELVARIN_TARGET inline Reg Quotients(Reg sums, double reciprocal) {
    const __m256d r = _mm256_set1_pd(reciprocal);
    const __m128i lo =
        _mm256_cvttpd_epi32(_mm256_mul_pd(_mm256_cvtepi32_pd(_mm256_castsi256_si128(sums)), r));
    const __m128i hi = _mm256_cvttpd_epi32(
        _mm256_mul_pd(_mm256_cvtepi32_pd(_mm256_extracti128_si256(sums, 1)), r));
    return _mm256_set_m128i(hi, lo);
}

#else

using Reg = __m512i;

KELVARIN_TARGET inline Reg Quotients(Reg sums, double reciprocal) {
    const __m512d r = _mm512_set1_pd(reciprocal);
    const __m256i lo =
        _mm512_cvttpd_epi32(_mm512_mul_pd(_mm512_cvtepi32_pd(_mm512_castsi512_si256(sums)), r));
    const __m256i hi = _mm512_cvttpd_epi32(
        _mm512_mul_pd(_mm512_cvtepi32_pd(_mm512_extracti64x4_epi64(sums, 1)), r));
    return _mm512_inserti64x4(_mm512_castsi256_si512(lo), hi, 1);
}

#endif

constexpr std::size_t kBytes = sizeof(Reg);

KELVARIN_TARGET inline Reg Load(const std::uint8_t* p) {
    return VEC_SI(loadu)(reinterpret_cast<const Reg*>(p));
}

// The kBytes output bytes at out + b; addLo and addHi are their offsets in
// the layout of the signed packs.
KELVARIN_TARGET inline void Block(const TapPair* pairs, std::size_t count, const Sums32& f,
                                  std::size_t b, Reg addLo, Reg addHi, std::uint8_t* out) {
    const Reg zero = VEC_SI(setzero)();
    Reg s0 = zero, s1 = zero, s2 = zero, s3 = zero;
    for (std::size_t p = 0; p < count; ++p) {
        const Reg a = Load(pairs[p].a + b), c = Load(pairs[p].c + b);
        const Reg weights = VEC(set1_epi32)(pairs[p].weights);
        const Reg lo = VEC(unpacklo_epi8)(a, c), hi = VEC(unpackhi_epi8)(a, c);
        s0 = VEC(add_epi32)(s0, VEC(madd_epi16)(VEC(unpacklo_epi8)(lo, zero), weights));
        s1 = VEC(add_epi32)(s1, VEC(madd_epi16)(VEC(unpackhi_epi8)(lo, zero), weights));
        s2 = VEC(add_epi32)(s2, VEC(madd_epi16)(VEC(unpacklo_epi8)(hi, zero), weights));
        s3 = VEC(add_epi32)(s3, VEC(madd_epi16)(VEC(unpackhi_epi8)(hi, zero), weights));
    }
    if (f.divide) {
        s0 = Quotients(s0, f.reciprocal);
        s1 = Quotients(s1, f.reciprocal);
        s2 = Quotients(s2, f.reciprocal);
        s3 = Quotients(s3, f.reciprocal);
    }
    // A quotient beyond 16 bits saturates to one that clamps the same way
    // once the offset (0 to 255) is added.
    const Reg first = VEC(adds_epi16)(VEC(packs_epi32)(s0, s1), addLo);
    const Reg second = VEC(adds_epi16)(VEC(packs_epi32)(s2, s3), addHi);
    VEC_SI(storeu)(reinterpret_cast<Reg*>(out + b), VEC(packus_epi16)(first, second));
}

// The n bytes of an output row at out, the first of them at position phase
// mod 3 in its pixel; returns n, or 0 when there are fewer than kBytes. The
// last block may start before the end of the one before it: the sources are
// never the output row, so bytes done twice come out the same.
KELVARIN_TARGET std::size_t Convolve(const TapPair* pairs, std::size_t count, const Sums32& f,
                                     std::uint8_t* out, std::size_t n, std::size_t phase) {
    if (n < kBytes) return 0;
    const Reg zero = VEC_SI(setzero)();
    Reg addLo[3], addHi[3];
    for (std::size_t p = 0; p < 3; ++p) {
        const Reg add = Load(f.add[(phase + p) % 3]);
        addLo[p] = VEC(unpacklo_epi8)(add, zero);
        addHi[p] = VEC(unpackhi_epi8)(add, zero);
    }
    std::size_t b = 0;
    for (; b + kBytes <= n; b += kBytes) Block(pairs, count, f, b, addLo[b % 3], addHi[b % 3], out);
    if (b < n) {
        b = n - kBytes;
        Block(pairs, count, f, b, addLo[b % 3], addHi[b % 3], out);
    }
    return n;
}

}  // namespace KELVARIN_CONV_NAMESPACE
}  // namespace
}  // namespace kelvarin::gfx_detail

#undef VEC_SI
#undef VEC
#undef KELVARIN_TARGET
#undef KELVARIN_CONV_NAMESPACE

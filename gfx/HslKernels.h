// SPDX-License-Identifier: MIT
// Private to gfx/Simd.cpp: the hue, saturation and luminance row kernels,
// written once over the register width. Simd.cpp includes this file once
// with KELVARIN_SIMD_BITS 256 and once with 512, after SimdKernels.h (whose
// 128-bit LoadChannels and StoreChannels move a block of 16 pixels between
// its bytes and one vector per channel); each copy lands in its own
// namespace and is compiled for its own target. Hence no include guard.
//
// The plain loops in Color.cpp are the reference: every step below is the
// same single or double precision operation on the same operands in the
// same order, a lane per pixel, so each lane rounds as the plain loop does.
// Branches become selections; where the plain loop returns early (equal
// channels, zero saturation) the general formula already gives its result
// or the selection takes the early one.

#if KELVARIN_SIMD_BITS == 256
#define KELVARIN_HSL_NAMESPACE hsl256
#define KELVARIN_TARGET KELVARIN_AVX2
#elif KELVARIN_SIMD_BITS == 512
#define KELVARIN_HSL_NAMESPACE hsl512
#define KELVARIN_TARGET KELVARIN_AVX512BW
#else
#error "KELVARIN_SIMD_BITS must be 256 or 512"
#endif

namespace kelvarin::gfx_detail {
namespace {
namespace KELVARIN_HSL_NAMESPACE {

#if KELVARIN_SIMD_BITS == 256

using VF = __m256;   // a single per pixel
using VD = __m256d;  // a double per pixel, half of a VF's pixels
using VI = __m256i;  // an int32 per pixel
constexpr int kLanes = 8;

// Pixels 8 * part to 8 * part + 7 of a channel's 16 bytes.
KELVARIN_TARGET inline VF Widen(__m128i bytes, int part) {
    return _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(part == 0 ? bytes : _mm_srli_si128(bytes, 8)));
}
KELVARIN_TARGET inline VD LowHalf(VF v) { return _mm256_cvtps_pd(_mm256_castps256_ps128(v)); }
KELVARIN_TARGET inline VD HighHalf(VF v) { return _mm256_cvtps_pd(_mm256_extractf128_ps(v, 1)); }
KELVARIN_TARGET inline VF Join(VD low, VD high) {
    return _mm256_set_m128(_mm256_cvtpd_ps(high), _mm256_cvtpd_ps(low));
}
// Nearest, ties to even (the processor's rounding), of values within 0..255.
KELVARIN_TARGET inline VI Round(VF v) { return _mm256_cvtps_epi32(v); }
KELVARIN_TARGET inline VI Round(VD low, VD high) {
    return _mm256_set_m128i(_mm256_cvtpd_epi32(high), _mm256_cvtpd_epi32(low));
}
// The 16 bytes of a channel from its parts, each value within 0..255.
KELVARIN_TARGET inline VF Max(VF a, VF b) { return _mm256_max_ps(a, b); }
KELVARIN_TARGET inline VF Min(VF a, VF b) { return _mm256_min_ps(a, b); }
KELVARIN_TARGET inline __m128i Narrow(const VI parts[2]) {
    const __m256i words = _mm256_permute4x64_epi64(_mm256_packus_epi32(parts[0], parts[1]), 0xD8);
    return _mm_packus_epi16(_mm256_castsi256_si128(words), _mm256_extracti128_si256(words, 1));
}

#else

using VF = __m512;
using VD = __m512d;
using VI = __m512i;
constexpr int kLanes = 16;

KELVARIN_TARGET inline VF Widen(__m128i bytes, int) {
    return _mm512_cvtepi32_ps(_mm512_cvtepu8_epi32(bytes));
}
KELVARIN_TARGET inline VD LowHalf(VF v) { return _mm512_cvtps_pd(_mm512_castps512_ps256(v)); }
KELVARIN_TARGET inline VD HighHalf(VF v) {
    return _mm512_cvtps_pd(_mm256_castpd_ps(_mm512_extractf64x4_pd(_mm512_castps_pd(v), 1)));
}
KELVARIN_TARGET inline VF Join(VD low, VD high) {
    return _mm512_castpd_ps(
        _mm512_insertf64x4(_mm512_castps_pd(_mm512_castps256_ps512(_mm512_cvtpd_ps(low))),
                           _mm256_castps_pd(_mm512_cvtpd_ps(high)), 1));
}
KELVARIN_TARGET inline VI Round(VF v) { return _mm512_cvtps_epi32(v); }
KELVARIN_TARGET inline VI Round(VD low, VD high) {
    return _mm512_inserti64x4(_mm512_castsi256_si512(_mm512_cvtpd_epi32(low)),
                              _mm512_cvtpd_epi32(high), 1);
}
KELVARIN_TARGET inline VF Max(VF a, VF b) { return _mm512_max_ps(a, b); }
KELVARIN_TARGET inline VF Min(VF a, VF b) { return _mm512_min_ps(a, b); }
KELVARIN_TARGET inline __m128i Narrow(const VI parts[1]) { return _mm512_cvtepi32_epi8(parts[0]); }

#endif

constexpr int kParts = 16 / kLanes;

// v kept to 0..255, a value that is not a number to 0, as ScaleToByte and
// FractionToByte keep their rounded value: rounding is monotonic and both
// ends are whole, so keeping before rounding gives the same.
KELVARIN_TARGET inline VF Keep(VF v) {
    v = v > 0.0f ? v : VF{};
    return v < 255.0f ? v : VF{} + 255.0f;
}
KELVARIN_TARGET inline VD Keep(VD v) {
    v = v > 0.0 ? v : VD{};
    return v < 255.0 ? v : VD{} + 255.0;
}

// ScaleToByte of each lane.
KELVARIN_TARGET inline VI ScaleToByte(VF v) { return Round(Keep(v)); }

// FractionToByte of each lane: the product by 255 is exact in double precision.
KELVARIN_TARGET inline VI FractionToByte(VF v) {
    return Round(Keep(LowHalf(v) * 255.0), Keep(HighHalf(v) * 255.0));
}

// Channel bytes (as singles) to fractions of 1: v / 255.0 rounded to single
// precision is the single quotient, double rounding being harmless for a
// quotient.
KELVARIN_TARGET inline VF Fraction(VF v) { return v / 255.0f; }

// LuminanceOf: the weighted sum in double precision, then single.
KELVARIN_TARGET inline VF LuminanceOf(VF r, VF g, VF b) {
    const VD low = 0.3 * LowHalf(r) + 0.59 * LowHalf(g) + 0.11 * LowHalf(b);
    const VD high = 0.3 * HighHalf(r) + 0.59 * HighHalf(g) + 0.11 * HighHalf(b);
    return Join(low, high);
}

// std::min(v, 255).
KELVARIN_TARGET inline VF Min255(VF v) { return 255.0f < v ? VF{} + 255.0f : v; }

struct ScaledHls {
    VF hue, saturation, luminance;
};

// GFX2D_conv_cRGB_cHLS of channel bytes widened to singles.
template <bool kHueAndSaturation>
KELVARIN_TARGET inline ScaledHls HlsOf(VF red, VF green, VF blue) {
    const VF r = Fraction(red), g = Fraction(green), b = Fraction(blue);
    const VF l = LuminanceOf(r, g, b);
    ScaledHls out{};
    out.luminance = Min255(l * 255.0f);
    if constexpr (kHueAndSaturation) {
        const VF zero{};
        const VF mx = Max(r, Max(g, b));
        const VF mn = Min(r, Min(g, b));
        const VF delta = mx - mn;
        const VF s = l <= 0.5f ? delta / (mx + mn) : delta / (2.0f - mx - mn);
        const auto redTop = r == mx, greenTop = g == mx;
        const VF q = (redTop ? g - b : greenTop ? b - r : r - g) / delta;
        VF h = redTop ? q : greenTop ? 2.0f + q : 4.0f + q;
        h = h < 0 ? h + 6.0f : h;
        const auto grey = mx == mn;
        out.hue = grey ? zero : Min255(h * 255.0f / 6.0f);
        out.saturation = grey ? zero : Min255(s * 255.0f);
    }
    return out;
}

// One component of the hexcone at h, which lies within -2..8.
KELVARIN_TARGET inline VF Hexcone(VF m1, VF m2, VF h) {
    h = h >= 6.0f ? h - 6.0f : h;  // the remainder by 6, exact here
    h = h < 0 ? h + 6.0f : h;
    const VF rising = m1 + (m2 - m1) * h;
    const VF falling = m1 + (m2 - m1) * (4.0f - h);
    return h < 1.0f ? rising : h < 3.0f ? m2 : h < 4.0f ? falling : m1;
}

// GFX2D_conv_cHLS_cRGB: red, green and blue bytes as int32 lanes.
KELVARIN_TARGET inline void RgbOf(VF hue, VF saturation, VF luminance, VI& red, VI& green,
                                  VI& blue) {
    const VF h = hue * 6.0f / 255.0f;
    const VF s = saturation / 255.0f;
    const VF l = luminance / 255.0f;
    const VF m1 = l <= 0.5f ? l * (1.0f - s) : l - (1.0f - l) * s;
    const VF m2 = 2.0f * l - m1;
    // With s 0, m1 = m2 = l and every component is l, the plain loop's grey.
    red = FractionToByte(Hexcone(m1, m2, h + 2.0f));
    green = FractionToByte(Hexcone(m1, m2, h));
    blue = FractionToByte(Hexcone(m1, m2, h - 2.0f));
}

// The kernel: whole blocks of 16 pixels from the row's start; returns how
// many pixels it did.
template <HslRow kOp>
KELVARIN_TARGET Long HslBlocks(std::uint8_t* row, Long width, std::uint8_t hue,
                               std::uint8_t saturation) {
    const VF fixedHue = VF{} + static_cast<float>(hue);
    const VF fixedSaturation = VF{} + static_cast<float>(saturation);
    Long x = 0;
    for (; x + 16 <= width; x += 16, row += 48) {
        __m128i ch[3];  // blue, green, red
        v128::LoadChannels(row, ch);
        VI out[3][kParts];  // blue, green, red
#pragma GCC unroll 2
        for (int part = 0; part < kParts; ++part) {
            const VF b = Widen(ch[0], part), g = Widen(ch[1], part), r = Widen(ch[2], part);
            if constexpr (kOp == HslRow::ToRgb) {
                // Hue in red, saturation in green, luminance in blue.
                RgbOf(r, g, b, out[2][part], out[1][part], out[0][part]);
            } else if constexpr (kOp == HslRow::Colourise) {
                const VF l = HlsOf<false>(r, g, b).luminance;
                RgbOf(fixedHue, fixedSaturation, l, out[2][part], out[1][part], out[0][part]);
            } else if constexpr (kOp == HslRow::ToHsl) {
                const ScaledHls c = HlsOf<true>(r, g, b);
                out[2][part] = ScaleToByte(c.hue);
                out[1][part] = ScaleToByte(c.saturation);
                out[0][part] = ScaleToByte(c.luminance);
            } else {
                const ScaledHls c = HlsOf<kOp != HslRow::Luminance>(r, g, b);
                const VI v = ScaleToByte(kOp == HslRow::Hue          ? c.hue
                                         : kOp == HslRow::Saturation ? c.saturation
                                                                     : c.luminance);
                out[0][part] = out[1][part] = out[2][part] = v;
            }
        }
        const __m128i bytes[3] = {Narrow(out[0]), Narrow(out[1]), Narrow(out[2])};
        v128::StoreChannels(row, bytes);
    }
    return x;
}

KELVARIN_TARGET Long Hsl(std::uint8_t* row, Long width, HslRow op, std::uint8_t hue,
                         std::uint8_t saturation) {
    switch (op) {
        case HslRow::ToHsl: return HslBlocks<HslRow::ToHsl>(row, width, hue, saturation);
        case HslRow::ToRgb: return HslBlocks<HslRow::ToRgb>(row, width, hue, saturation);
        case HslRow::Colourise: return HslBlocks<HslRow::Colourise>(row, width, hue, saturation);
        case HslRow::Hue: return HslBlocks<HslRow::Hue>(row, width, hue, saturation);
        case HslRow::Saturation: return HslBlocks<HslRow::Saturation>(row, width, hue, saturation);
        case HslRow::Luminance: return HslBlocks<HslRow::Luminance>(row, width, hue, saturation);
    }
    return 0;
}

}  // namespace KELVARIN_HSL_NAMESPACE
}  // namespace
}  // namespace kelvarin::gfx_detail

#undef KELVARIN_TARGET
#undef KELVARIN_HSL_NAMESPACE

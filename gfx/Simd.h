// SPDX-License-Identifier: MIT
// Private to gfx/: the vector kernels of the colour operations, used when the
// processor has them (SSSE3 on x86-64, 256-bit ones where it has AVX2,
// 512-bit ones where it has AVX-512 with VBMI). The scalar loops stay for
// every other processor, and tests can switch the vector kernels off to
// check both.
#pragma once

#include <cstddef>
#include <cstdint>

#include "common/Numeric.h"

namespace kelvarin::gfx_detail {

bool SimdAvailable() noexcept;
// On by default where available; off makes every operation take its scalar loop.
void EnableSimd(bool on) noexcept;
bool SimdEnabled() noexcept;
// Whether the 256-bit kernels may run: enabled and the processor has AVX2.
bool Avx2Enabled() noexcept;
// Whether the 512-bit kernels may run: enabled and the processor has
// AVX-512 F and BW.
bool Avx512Enabled() noexcept;
// Whether the 512-bit byte-permute kernels may run: enabled and the
// processor has AVX-512 F, BW and VBMI.
bool Avx512VbmiEnabled() noexcept;
// Keeps the kernels to vectors of at most this many bits (128, 256 or 512)
// while they are enabled, so that tests can check each set of kernels the
// processor has against the scalar loops. EnableSimd lifts the limit.
void LimitVectorBits(int bits) noexcept;

// Color_Gray over one row of pixels: every pixel not equal to the mask
// (blue, green, red) becomes grey, the largest channel or the weighted
// average 0.222 red + 0.707 green + 0.071 blue rounded half to even.
// Returns how many pixels it did (a multiple of 16); the caller does the rest.
Long GrayRowSimd(std::uint8_t* row, Long width, std::uint8_t maskBlue, std::uint8_t maskGreen,
                 std::uint8_t maskRed, bool weighted) noexcept;

// Color_FadeTo over an image's 24-bit rows: height rows of width pixels
// from first on, stride bytes apart. Every pixel whose bytes are not
// (mask0, mask1, mask2) gets byte (v + part) * multiplier >> (16 + shift),
// or with multiplier 0 (v + part) >> shift, with part[0] for blue, [1]
// green, [2] red; v + part must fit 16 bits and the result 8. Returns how
// many pixels of each row it did from the row's start (a multiple of 16,
// or the width); the caller does the rest.
Long FadeSimd(std::uint8_t* first, std::ptrdiff_t stride, Long width, Long height,
              const std::uint8_t mask[3], const int part[3], int multiplier, int shift) noexcept;

// Color_FadeTo's table: entry v of channel c is floor((v + part[c]) /
// divisor) in double precision where that lies within 0..255, else outside;
// the divisor is not 0. False where no vector kernel runs (the caller
// fills the table).
bool FadeTableSimd(const double part[3], double divisor, std::int16_t outside,
                   std::int16_t table[3][256]) noexcept;

// Color_Replace over an image's 24-bit rows, as FadeSimd: pixels whose
// bytes are from[0..2] (blue, green, red) become to[0..2]. Returns how many
// pixels of each row it did, as FadeSimd.
Long ReplaceSimd(std::uint8_t* first, std::ptrdiff_t stride, Long width, Long height,
                 const std::uint8_t from[3], const std::uint8_t to[3]) noexcept;

// Color_Invert on a 24-bit row: byte i of every block of 64 pixels XOR
// pattern[i] (each channel's byte repeated, blue first). Returns how many
// pixels it did, as GrayRowSimd.
Long InvertRowSimd(std::uint8_t* row, Long width, const std::uint8_t pattern[192]) noexcept;

// The hue, saturation and luminance operations on 24-bit rows.
enum class HslRow {
    ToHsl,      // Color_ConvertRGBToHSL
    ToRgb,      // Color_ConvertHSLToRGB
    Colourise,  // Color_Colourise with the given hue and saturation
    Hue,        // Color_ChannelComponent 4, 8 and 16
    Saturation,
    Luminance,
};
// One of them over one row, with 256-bit or 512-bit vectors (the plain
// loops are the reference; there is no 128-bit kernel). Returns how many
// pixels it did (a multiple of 16), as GrayRowSimd.
Long HslRowSimd(std::uint8_t* row, Long width, HslRow op, std::uint8_t hue,
                std::uint8_t saturation) noexcept;

}  // namespace kelvarin::gfx_detail

// Private to gfx/: the vector kernels of the colour operations, used when the
// processor has them (SSSE3 on x86-64). The scalar loops stay for every other
// processor, and tests can switch the vector kernels off to check both.
#pragma once

#include <cstdint>

#include "common/Numeric.h"

namespace kelvarin::gfx_detail {

bool SimdAvailable() noexcept;
// On by default where available; off makes every operation take its scalar loop.
void EnableSimd(bool on) noexcept;
bool SimdEnabled() noexcept;

// Color_Gray over one row of pixels: every pixel not equal to the mask
// (blue, green, red) becomes grey, the largest channel or the weighted
// average 0.222 red + 0.707 green + 0.071 blue rounded half to even.
// Returns how many pixels it did (a multiple of 16); the caller does the rest.
Long GrayRowSimd(std::uint8_t* row, Long width, std::uint8_t maskBlue, std::uint8_t maskGreen,
                 std::uint8_t maskRed, bool weighted) noexcept;

}  // namespace kelvarin::gfx_detail

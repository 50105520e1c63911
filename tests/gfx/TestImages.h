// SPDX-License-Identifier: MIT
// Helpers for the raster tests: random images, byte snapshots, pixels, and
// the kernel sets to run.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <vector>

#include "common/HostError.h"
#include "gfx/clsGFX_2D.h"
#include "tests/ErrorOf.h"

namespace kelvarin::test {

// Every byte of the surface, padding included, lowest row first.
std::vector<std::uint8_t> Bytes(const clsGFX_2D& gfx);

// A surface of the same size and depth with every byte, padding included, copied.
std::unique_ptr<clsGFX_2D> Clone(const clsGFX_2D& gfx);

// Random bytes over the whole pixel memory, padding included, biased
// towards 0 and 255 where kernels tend to go wrong.
void RandomFill(clsGFX_2D& gfx, std::uint32_t seed);

// Draw_ReadPixel and Draw_Pixel in a session of their own unless one is open.
Long PixelAt(clsGFX_2D& gfx, Long x, Long y);
struct Dot {
    Long x, y, colour;
};
void Paint(clsGFX_2D& gfx, std::initializer_list<Dot> dots);

// A 4096 x 4096 24-bit surface holding every colour once: pixel i (in
// memory order) has blue i & 255, green (i >> 8) & 255, red i >> 16.
void MakeWholeCube(clsGFX_2D& gfx);

// Runs f once with the vector kernels off, then once for each width of
// vectors (128, 256, 512 bits) the processor has; names the set for messages.
void ForEachKernelSet(const std::function<void(const char* kernels)>& f);

// Runs op on copies of original with each set of kernels: every byte,
// padding included, must be what the scalar loop made.
void ExpectKernelsAgree(const char* what, const clsGFX_2D& original,
                        const std::function<void(clsGFX_2D&)>& op);

}  // namespace kelvarin::test

// Helpers for the raster tests: random images, byte snapshots, pixels, the
// kernel sets to run, and plain scalar references of the operations that
// have fast paths.
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

// A copy of a surface's memory, worked on by the reference kernels.
struct Image {
    Long width = 0, height = 0, stride = 0, bytesPerPixel = 0;
    std::vector<std::uint8_t> bytes;
    std::uint8_t& At(Long i, Long y) { return bytes[static_cast<std::size_t>(y * stride + i)]; }
};
Image Snapshot(const clsGFX_2D& gfx);

// Straight from the rules, pixel by pixel, in doubles where the rule says
// so; no tables, no word tricks.
namespace reference {
void Fill(Image& img, Long color);
void Invert(Image& img, bool red, bool green, bool blue);
void Gray(Image& img, Long mask, bool weighted);
void Replace(Image& img, Long original, Long replacement);
void FadeTo(Image& img, Long mask, Long fadeTo, double weight);
void ErrorDiffusion(Image& img);
void Dithering(Image& img);
// Returns false where the walk left the array (the writes up to there done).
bool Line(Image& img, Long x1, Long y1, Long x2, Long y2, Long color);
}  // namespace reference

}  // namespace kelvarin::test

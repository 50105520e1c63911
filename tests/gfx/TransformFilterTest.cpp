// SPDX-License-Identifier: MIT
// Transforms and filters: the rules' own cases, refusals and faults, and
// every fast path against the scalar loops on random images.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "gfx/clsGFX_2D.h"
#include "tests/gfx/TestImages.h"

namespace kelvarin {
namespace {

using namespace test;
using Op = std::function<void(clsGFX_2D&)>;

// A 24-bit surface filled with one colour.
clsGFX_2D& Flat(clsGFX_2D& gfx, Long w, Long h, Long colour) {
    EXPECT_TRUE(gfx.Create(w, h));
    gfx.Color_Fill(colour);
    return gfx;
}

// ---- Transforms ----------------------------------------------------------------

// Where each pixel goes, padding untouched, at every depth and with every
// set of kernels: flips of odd sizes, and turns of squares of every side to
// 17 and of sides whose quarters span several tiles with blocks left over.
TEST(Transform, MirrorsAndTurnMoveWholePixels) {
    std::vector<std::pair<Long, Long>> flips, squares;
    for (Long w : {1, 5, 7, 13, 37, 70}) {
        for (Long h : {1, 5, 20}) flips.push_back({w, h});
    }
    for (Long n = 1; n <= 17; ++n) squares.push_back({n, n});
    for (Long n : {31, 33, 70, 129, 137}) squares.push_back({n, n});
    std::uint32_t seed = 0;
    test::ForEachKernelSet([&](const char* kernels) {
        for (Long bits : {8, 16, 24, 32}) {
            for (int op = 0; op < 3; ++op) {  // FlipX, FlipY, Rotate
                for (const auto& [w, h] : op == 2 ? squares : flips) {
                    clsGFX_2D gfx;
                    ASSERT_TRUE(gfx.Create(w, h, bits));
                    RandomFill(gfx, ++seed);
                    const auto old = Bytes(gfx);
                    auto expected = old;
                    const Long bpp = bits / 8, stride = gfx.Get_BytesPerScanLine();
                    for (Long y = 0; y < h; ++y) {
                        for (Long x = 0; x < w; ++x) {  // the old pixel that new (x, y) shows
                            const Long fx = op == 0 ? w - 1 - x : op == 1 ? x : y;
                            const Long fy = op == 0 ? y : op == 1 ? h - 1 - y : w - 1 - x;
                            std::copy_n(&old[fy * stride + fx * bpp], bpp,
                                        &expected[y * stride + x * bpp]);
                        }
                    }
                    if (op == 0) gfx.Image_FlipX();
                    if (op == 1) gfx.Image_FlipY();
                    if (op == 2) gfx.Image_Rotate();
                    ASSERT_EQ(Bytes(gfx), expected)
                        << op << " " << bits << " " << w << "x" << h << " " << kernels;
                }
            }
        }
    });
}

TEST(Transform, RefusalsKeepTheImageAndGiveTheText) {
    clsGFX_2D gfx;
    EXPECT_FALSE(gfx.Create(0, 3));
    gfx.Image_FlipY();
    EXPECT_EQ(gfx.Get_LastError(), "Width=0");
    ASSERT_TRUE(gfx.Create(3, 2, 16));
    RandomFill(gfx, 3);
    const auto before = Bytes(gfx);
    EXPECT_FALSE(gfx.Image_Rotate());
    EXPECT_EQ(gfx.Get_LastError(), "Needed height equals weight to rotate image");
    EXPECT_EQ(Bytes(gfx), before);
}

TEST(Resample, HalvesRoundToEvenAndTheSurfaceIsMadeAnew) {
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(2, 2));
    test::Paint(gfx, {{1, 0, 0xFFFFFF}, {1, 1, 0xFFFFFF}});
    const auto handle = gfx.Get_hDIB();
    EXPECT_TRUE(gfx.Image_Resample(2, 2));  // same size: nothing happens
    EXPECT_EQ(gfx.Get_hDIB(), handle);
    EXPECT_TRUE(gfx.Image_Resample(3, 2));
    EXPECT_NE(gfx.Get_hDIB(), handle);
    // 127.5 to the even 128; the padding stays zero.
    std::vector<std::uint8_t> row{0, 0, 0, 128, 128, 128, 255, 255, 255, 0, 0, 0};
    row.insert(row.end(), row.begin(), row.end());
    EXPECT_EQ(Bytes(gfx), row);
    // A session the caller had open goes on, on the new pixels.
    gfx.Draw_StartSession();
    EXPECT_TRUE(gfx.Image_Resample(5, 7));
    EXPECT_TRUE(gfx.SessionOpen());
    EXPECT_EQ(gfx.LastRowIndex(), 6);
    EXPECT_EQ(gfx.Draw_ReadPixel(4, 6), 0xFFFFFF);
    gfx.Draw_EndSession();
    // One column or row divides by zero once the new surface exists;
    // no surface at the new size means false.
    const auto before = Bytes(gfx);
    EXPECT_EQ(ErrorOf([&] { gfx.Image_Resample(1, 4); }), 11);
    EXPECT_EQ(ErrorOf([&] { gfx.Image_Resample(4, 1); }), 11);
    EXPECT_FALSE(gfx.Image_Resample(0, 4));
    EXPECT_EQ(Bytes(gfx), before);
    EXPECT_FALSE(gfx.SessionOpen());
}

// ---- Filters -------------------------------------------------------------------

TEST(Filter, SetCustomChecksSizeThenWeightInThatOrder) {
    const std::vector<Long> nine(81, 1);
    const char* const even = "Filter_StandardFilterSetCustom; size must be an odd number";
    const char* const range =
        "Filter_StandardFilterSetCustom: Invalid size; size should be an odd number from 3 to 9";
    const char* const zero =
        "Filter_StandardFilterSetCustom: Invalid weight; weight must be different from 0";
    const struct {
        Long size, weight;
        bool ok;
        const char* text;  // success keeps the last failure's
    } rows[] = {{4, 0, false, even},   {0, 1, false, even}, {11, 0, false, range},
                {-3, 1, false, range}, {3, 0, false, zero}, {1, 1, true, zero}};
    clsGFX_2D gfx;
    for (const auto& r : rows) {
        EXPECT_EQ(gfx.Filter_StandardFilterSetCustom(r.size, nine, r.weight), r.ok) << r.size;
        EXPECT_EQ(gfx.Get_LastError(), r.text) << r.size;
    }
    EXPECT_EQ(ErrorOf([&] { gfx.Filter_StandardFilterSetCustom(3, std::span(nine).first(8), 1); }),
              9);
}

TEST(Filter, BuiltInKernelsOnSmallAndFlatImages) {
    // Type 0 on 3 x 3: only the centre, to the truncated mean, (5 + 9) / 9 -> 1.
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(3, 3));
    test::Paint(gfx, {{1, 1, 0x050505}, {0, 0, 0x090909}});
    gfx.Filter_StandardFilter(0);
    EXPECT_EQ(PixelAt(gfx, 1, 1), 0x010101);
    EXPECT_EQ(PixelAt(gfx, 0, 0), 0x090909);

    const struct {
        Long type, add, flat, interior;
    } rows[] = {
        {5, 0, 0x7F3A10, 0x7F3A10},         // sums to one: unchanged
        {5, 0x0A0B0C, 0x7F3AFA, 0x8945FF},  // plus blue 0A, green 0B, red 0C (clamped)
        {8, 0, 0x808080, 0},                // -v clamped to 0
        {8, 0x203040, 0x101010, 0x102030},  // the offsets added before the clamp
        {6, 0x010101, 0x102030, 0x010101},
    };
    for (const auto& r : rows) {
        clsGFX_2D flat;
        Flat(flat, 6, 5, r.flat);
        flat.Filter_StandardFilter(r.type, r.add);
        for (Long y = 0; y < 5; ++y) {
            for (Long x = 0; x < 6; ++x) {
                const bool edge = x == 0 || y == 0 || x == 5 || y == 4;
                EXPECT_EQ(PixelAt(flat, x, y), edge ? r.flat : r.interior)
                    << r.type << " " << x << "," << y;
            }
        }
    }
    // Type 6 takes -1 from the lower right and +1 from the upper left.
    clsGFX_2D diagonal;
    ASSERT_TRUE(diagonal.Create(3, 3));
    test::Paint(diagonal, {{0, 2, 0x000050}, {2, 0, 0x000010}});
    diagonal.Filter_StandardFilter(6);
    EXPECT_EQ(PixelAt(diagonal, 1, 1), 0x000040);
}

TEST(Filter, KernelFaultsRaiseTheHostsErrorsAndRefusalsKeepTheKernel) {
    clsGFX_2D gfx;
    Flat(gfx, 4, 4, 0x808080);
    EXPECT_EQ(ErrorOf([&] { gfx.Filter_StandardFilter(-1); }), 9);  // no kernel yet
    EXPECT_FALSE(gfx.SessionOpen());
    const std::vector<Long> huge(9, 1 << 30);
    ASSERT_TRUE(gfx.Filter_StandardFilterSetCustom(3, huge, 1));
    EXPECT_EQ(ErrorOf([&] { gfx.Filter_StandardFilter(-1); }), 6);
    const std::vector<Long> one{1};
    ASSERT_TRUE(gfx.Filter_StandardFilterSetCustom(1, one, -1));
    gfx.Filter_StandardFilter(9, 0x808080);  // unknown type: the stored kernel, -v + 128
    gfx.Filter_StandardFilter(-1, 0x808080);
    EXPECT_EQ(gfx.Get_LastError(), "");
    std::vector<std::uint8_t> expected(Bytes(gfx).size(), 0x80);
    EXPECT_EQ(Bytes(gfx), expected);

    // A built-in type refused at another depth does not replace the kernel.
    clsGFX_2D other;
    ASSERT_TRUE(other.Create(9, 9, 32));
    ASSERT_TRUE(other.Filter_StandardFilterSetCustom(1, one, 1));
    other.Filter_StandardFilter(0);
    EXPECT_EQ(other.Get_LastError(), "Filter_StandardFilter is only for 24bit depth images");
    ASSERT_TRUE(other.Create(9, 9, 24));
    RandomFill(other, 5);
    const auto kept = Bytes(other);
    other.Filter_StandardFilter(-1);  // still the identity
    EXPECT_EQ(Bytes(other), kept);
}

// An image smaller than 5 x 5 is all frame, and at 5 x 5 the centre is all
// there is inside. Both kinds remove a spot; line preserving keeps one-pixel
// lines every way, where the median removes them.
TEST(Smoothing, MedianKeepsTheFrameAndRemovesASpotLinePreserveKeepsLines) {
    clsGFX_2D small;
    ASSERT_TRUE(small.Create(4, 9));
    RandomFill(small, 1);
    const auto before = Bytes(small);
    small.Filter_Smoothing();
    EXPECT_EQ(Bytes(small), before);
    for (bool preserve : {false, true}) {
        Flat(small, 5, 5, 0x202020);
        test::Paint(small, {{2, 2, 0xFFFFFF}, {1, 0, 0xFFFFFF}});  // the second in the frame
        small.Filter_Smoothing(preserve);
        EXPECT_EQ(PixelAt(small, 2, 2), 0x202020) << preserve;
        EXPECT_EQ(PixelAt(small, 1, 0), 0xFFFFFF) << preserve;
        const struct {
            Long x1, y1, x2, y2;
        } lines[] = {{0, 5, 10, 5}, {5, 0, 5, 10}, {0, 0, 10, 10}, {0, 10, 10, 0}};
        for (const auto& l : lines) {
            clsGFX_2D gfx;
            Flat(gfx, 11, 11, 0x102030);
            gfx.Draw_StartSession();
            gfx.Draw_Line(l.x1, l.y1, l.x2, l.y2, 0xE0E0E0);
            gfx.Draw_EndSession();
            const auto drawn = Bytes(gfx);
            gfx.Filter_Smoothing(preserve);
            EXPECT_TRUE(preserve ? Bytes(gfx) == drawn : PixelAt(gfx, 5, 5) == 0x102030)
                << preserve << " " << l.x1 << "," << l.y1;
        }
    }
}

// ---- Fast paths against the plain loops ------------------------------------------

// Runs op on random images of the given sizes with each set of kernels. The
// widths are odd, and 23 leaves 63 bytes inside a 3 x 3 frame: one byte short
// of two 32-byte blocks.
void AgreeOnRandomImages(const char* what, const Op& op,
                         std::initializer_list<Long> widths = {1, 5, 7, 13, 23, 37, 70},
                         std::initializer_list<Long> heights = {1, 5, 7, 20}) {
    std::uint32_t seed = 500;
    for (Long w : widths) {
        for (Long h : heights) {
            clsGFX_2D original;
            ASSERT_TRUE(original.Create(w, h));
            RandomFill(original, ++seed);
            test::ExpectKernelsAgree(what, original, op);
        }
    }
}

// Kernels whose sums fit 16 bits take the 16-bit kernel with 256-bit
// vectors and the kernel for 32-bit sums with 128-bit and 512-bit ones, so
// the kernel sets cover every route.
TEST(FastPaths, MatchTheScalarLoopsOnRandomImages) {
    const struct {
        Long w, h;
    } sizes[] = {{2, 2}, {3, 5}, {11, 9}, {23, 6}, {35, 9}, {37, 21}, {71, 33}, {140, 3}};
    for (const auto& s : sizes) {
        AgreeOnRandomImages("Resample", [&](clsGFX_2D& g) { g.Image_Resample(s.w, s.h); });
    }
    for (Long type = 0; type <= 8; ++type) {
        AgreeOnRandomImages(
            "Filter", [&](clsGFX_2D& g) { g.Filter_StandardFilter(type, 0x00F0107F * type); });
    }
    // Custom kernels: every size, both signs of weight, weights whose
    // reciprocal in single precision falls short (41 of 41, 82 of 41), weights
    // beyond the 16-bit kernel's, and sums that need 32 bits.
    const struct {
        Long size, weight, scale;
    } customs[] = {{1, 1, 3},   {1, 41, -1}, {3, -41, 1},    {3, 7, 2},
                   {5, 13, -1}, {9, 5, 1},   {7, 100000, 1}, {3, 9, 300}};
    for (const auto& c : customs) {
        std::vector<Long> kernel(static_cast<std::size_t>(c.size * c.size));
        for (std::size_t i = 0; i < kernel.size(); ++i)
            kernel[i] = (static_cast<Long>(i * 7 % 5) - 2) * c.scale;
        AgreeOnRandomImages("Custom", [&](clsGFX_2D& g) {
            ASSERT_TRUE(g.Filter_StandardFilterSetCustom(c.size, kernel, c.weight));
            g.Filter_StandardFilter(-1, 0x00406080);
        });
    }
    // One sign, 15 in every place, on an image faded towards white: the sums
    // pass 16 bits though the largest possible one is below twice that.
    const std::vector<Long> fifteen(9, 15);
    AgreeOnRandomImages("Custom", [&](clsGFX_2D& g) {
        g.Color_FadeTo(-1, 0xFFFFFF, 15);
        ASSERT_TRUE(g.Filter_StandardFilterSetCustom(3, fifteen, 135));
        g.Filter_StandardFilter(-1);
    });
    AgreeOnRandomImages("EdgeDetection", [](clsGFX_2D& g) { g.Filter_EdgeDetection(); });
    // Smoothing: every width to 17; strips of 19 columns whole and cut short;
    // heights whose skew rows move to the front of their buffer once or twice.
    for (bool preserve : {false, true}) {
        const auto smooth = [preserve](clsGFX_2D& g) { g.Filter_Smoothing(preserve); };
        const char* what = preserve ? "LinePreserve" : "Median";
        for (Long w = 1; w <= 17; ++w) AgreeOnRandomImages(what, smooth, {w}, {5, 6, 9, 24});
        AgreeOnRandomImages(what, smooth, {21, 22, 23, 40, 41, 42, 60, 79}, {5, 7, 300, 601});
    }
}

// Custom kernels whose sums need 32 bits, with each width of vectors. The
// widths leave fewer bytes inside the frame than one vector holds, a few
// more than one, and several vectors with bytes over.
void AgreeWithCustom(const char* what, Long size, const std::vector<Long>& kernel, Long weight,
                     Long add) {
    AgreeOnRandomImages(what,
                        [&](clsGFX_2D& g) {
                            ASSERT_TRUE(g.Filter_StandardFilterSetCustom(size, kernel, weight));
                            g.Filter_StandardFilter(-1, add);
                        },
                        {1, 5, 9, 23, 24, 31, 45, 71}, {1, 9, 12});
}

// The largest sum of weights' sizes the row loop takes: 255 times it, plus
// an offset of 255, stays within 32 bits.
constexpr Long kLargestReach = (INT32_MAX - 255) / 255;

// Random kernels of every size, weights from a few hundred (sums just past
// 16 bits) to past 16 bits themselves, both signs, up to the largest sums;
// divisors of both signs from 1 to the extremes of 32 bits; offsets 0 and 255.
TEST(FastPaths, CustomKernelsWith32BitSumsMatchThePlainLoop) {
    std::mt19937 random(22);
    for (Long size : {1, 3, 5, 7, 9}) {
        for (Long range : {300, 40000, kLargestReach}) {
            std::vector<Long> kernel(static_cast<std::size_t>(size * size));
            std::int64_t reach = 0, total = 0;
            for (Long& k : kernel) {
                k = static_cast<Long>(
                    std::uniform_int_distribution<std::int64_t>(-range, range)(random));
                reach += std::abs(std::int64_t{k});
            }
            // Scaled down to the largest sums where they go past them.
            for (Long& k : kernel) {
                if (reach > kLargestReach)
                    k = static_cast<Long>(std::int64_t{k} * kLargestReach / reach);
                total += k;
            }
            const Long weights[] = {
                total == 0 ? 1 : static_cast<Long>(total / 2 + 1), 1,         -1,       -7,
                static_cast<Long>(std::abs(total) / 255 + 3),      INT32_MAX, INT32_MIN};
            for (Long weight : weights) {
                for (Long add : {0, 0x00FFFFFF, 0x00FF0080}) {
                    AgreeWithCustom("Custom 32-bit", size, kernel, weight, add);
                }
            }
        }
    }
}

// One weight at the largest sums: the quotient of v * K by K is v exactly,
// by K + 1 and by K - 1 it lies just below and just above v. The largest
// weights of a 3 x 3 kernel, and weights of 32768 and -32769, which take
// more than one 16-bit half.
TEST(FastPaths, CustomKernelQuotientsNextToWholeNumbersMatchThePlainLoop) {
    const Long k = kLargestReach;
    for (Long sign : {1, -1}) {
        const std::vector<Long> one{sign * k};
        for (Long weight : {k, k + 1, k - 1, -k, -k - 1, -k + 1, 2 * k, 3})
            AgreeWithCustom("Custom 1x1", 1, one, weight, sign < 0 ? 0x00FFFFFF : 0);
        const std::vector<Long> nine(9, sign * (k / 9));
        for (Long weight : {k / 9, 9 * (k / 9), 9 * (k / 9) + 1, 9 * (k / 9) - 1})
            AgreeWithCustom("Custom 3x3", 3, nine, weight, sign < 0 ? 0x00FFFFFF : 0x00010203);
    }
    const std::vector<Long> halves{32768, -32769, 65535, 1, 0, -1, 65536, -65536, 32767};
    for (Long weight : {1, 2, 255, 131071, -131072})
        AgreeWithCustom("Custom halves", 3, halves, weight, 0x00808080);
}

}  // namespace
}  // namespace kelvarin

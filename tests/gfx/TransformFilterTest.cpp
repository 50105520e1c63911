// Transforms and filters: the rules' own cases, refusals and faults, and
// every fast path against the plain loops on random images.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "gfx/clsGFX_2D.h"
#include "tests/gfx/TestImages.h"

namespace kelvarin {
namespace {

using test::Bytes;
using test::ErrorOf;
using test::PixelAt;
using test::RandomFill;
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
    using Place = std::pair<Long, Long>;
    const struct {
        const char* name;
        Op run;
        Place (*from)(Long w, Long h, Long x, Long y);  // the old pixel new (x, y) shows
        bool square;
    } ops[] = {
        {"FlipX", [](clsGFX_2D& g) { g.Image_FlipX(); },
         [](Long w, Long, Long x, Long y) {
             return Place{w - 1 - x, y};
         },
         false},
        {"FlipY", [](clsGFX_2D& g) { g.Image_FlipY(); },
         [](Long, Long h, Long x, Long y) {
             return Place{x, h - 1 - y};
         },
         false},
        {"Rotate", [](clsGFX_2D& g) { EXPECT_TRUE(g.Image_Rotate()); },
         [](Long w, Long, Long x, Long y) {
             return Place{y, w - 1 - x};
         },
         true},
    };
    std::vector<Place> flips, squares;
    for (Long w : {1, 5, 7, 13, 37, 70}) {
        for (Long h : {1, 5, 20}) flips.push_back({w, h});
    }
    for (Long n = 1; n <= 17; ++n) squares.push_back({n, n});
    for (Long n : {31, 33, 70, 129, 137}) squares.push_back({n, n});
    std::uint32_t seed = 0;
    test::ForEachKernelSet([&](const char* kernels) {
        for (Long bits : {8, 16, 24, 32}) {
            for (const auto& op : ops) {
                for (const auto& [w, h] : op.square ? squares : flips) {
                    clsGFX_2D gfx;
                    ASSERT_TRUE(gfx.Create(w, h, bits));
                    RandomFill(gfx, ++seed);
                    auto old = test::Snapshot(gfx);
                    auto expected = old;
                    const Long bpp = bits / 8;
                    for (Long y = 0; y < h; ++y) {
                        for (Long x = 0; x < w; ++x) {
                            const auto [fx, fy] = op.from(w, h, x, y);
                            for (Long b = 0; b < bpp; ++b)
                                expected.At(x * bpp + b, y) = old.At(fx * bpp + b, fy);
                        }
                    }
                    op.run(gfx);
                    ASSERT_EQ(Bytes(gfx), expected.bytes)
                        << op.name << " " << bits << " " << w << "x" << h << " " << kernels;
                }
            }
        }
    });
    // As shown (top row last in memory): the lower-right corner goes to the upper right.
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(3, 3));
    test::Paint(gfx, {{2, 0, 0x0000FF}});
    gfx.Image_Rotate();
    EXPECT_EQ(PixelAt(gfx, 2, 2), 0x0000FF);
}

TEST(Transform, RefusalsKeepTheImageAndGiveTheText) {
    clsGFX_2D gfx;
    for (const Op& flip :
         {Op([](clsGFX_2D& g) { g.Image_FlipX(); }), Op([](clsGFX_2D& g) { g.Image_FlipY(); })}) {
        EXPECT_FALSE(gfx.Create(0, 3));
        flip(gfx);
        EXPECT_EQ(gfx.Get_LastError(), "Width=0");
        EXPECT_TRUE(gfx.Create(2, 2, 16));
        flip(gfx);  // success keeps the text
        EXPECT_EQ(gfx.Get_LastError(), "Width=0");
    }
    ASSERT_TRUE(gfx.Create(3, 2, 16));
    RandomFill(gfx, 3);
    const auto before = Bytes(gfx);
    EXPECT_FALSE(gfx.Image_Rotate());
    EXPECT_EQ(gfx.Get_LastError(), "Needed height equals weight to rotate image");
    EXPECT_FALSE(gfx.Image_Resample(6, 4));
    EXPECT_EQ(gfx.Get_LastError(), "Image_Resample is only for 24 bit images");
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
    } rows[] = {{4, 0, false, even},   {-2, 1, false, even},  {0, 1, false, even},
                {11, 0, false, range}, {-3, 1, false, range}, {3, 0, false, zero},
                {1, 1, true, zero},    {9, -4, true, zero}};
    clsGFX_2D gfx;
    for (const auto& r : rows) {
        EXPECT_EQ(gfx.Filter_StandardFilterSetCustom(r.size, nine, r.weight), r.ok) << r.size;
        EXPECT_EQ(gfx.Get_LastError(), r.text) << r.size;
    }
    EXPECT_EQ(ErrorOf([&] { gfx.Filter_StandardFilterSetCustom(3, std::span(nine).first(8), 1); }),
              9);
}

TEST(Filter, BuiltInKernelsOnSmallAndFlatImages) {
    // Type 0 on 3 x 3: only the centre, to the truncated mean.
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(3, 3));
    Long sum = 0;
    for (Long y = 0; y < 3; ++y) {
        for (Long x = 0; x < 3; ++x) {
            const Long v = 10 * x + 31 * y + (x == 2 && y == 2 ? 5 : 0);
            test::Paint(gfx, {{x, y, 0x010101 * v}});
            sum += v;
        }
    }
    auto expected = Bytes(gfx);
    for (Long c = 0; c < 3; ++c)
        expected[12 + 3 + c] = static_cast<std::uint8_t>(sum / 9);  // 374 / 9
    gfx.Filter_StandardFilter(0);
    EXPECT_EQ(Bytes(gfx), expected);

    const struct {
        Long type, add, flat, interior;
    } rows[] = {
        {5, 0, 0x7F3A10, 0x7F3A10},         // sums to one: unchanged
        {5, 0x0A0B0C, 0x7F3AFA, 0x8945FF},  // plus blue 0A, green 0B, red 0C (clamped)
        {8, 0, 0x808080, 0},                // -v clamped to 0
        {8, 0x203040, 0x101010, 0x102030},  // the offsets added before the clamp
        {7, 0, 0x123456, 0x123456},
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

    const struct {
        const char* text;
        std::function<void(clsGFX_2D&)> run;
    } refusals[] = {
        {"Filter_StandardFilter is only for 24bit depth images",
         [](clsGFX_2D& g) { g.Filter_StandardFilter(0); }},
        {"Filter_EdgeDetection is only for 24bit depth images",
         [](clsGFX_2D& g) { g.Filter_EdgeDetection(); }},
        {"Filter_Smoothing is only for 24bit depth images",
         [](clsGFX_2D& g) { g.Filter_Smoothing(true); }},
    };
    for (const auto& r : refusals) {
        clsGFX_2D other;
        ASSERT_TRUE(other.Create(9, 9, 32));
        ASSERT_TRUE(other.Filter_StandardFilterSetCustom(1, one, 1));
        RandomFill(other, 5);
        const auto before = Bytes(other);
        r.run(other);
        EXPECT_EQ(other.Get_LastError(), r.text);
        EXPECT_EQ(Bytes(other), before);
        ASSERT_TRUE(other.Create(9, 9, 24));
        RandomFill(other, 5);
        const auto kept = Bytes(other);
        other.Filter_StandardFilter(-1);  // still the identity
        EXPECT_EQ(Bytes(other), kept) << r.text;
    }
}

TEST(Smoothing, MedianKeepsTheFrameAndRemovesASpotLinePreserveKeepsLines) {
    // A smaller image is all frame; at 5 x 5 the centre is all there is inside.
    clsGFX_2D small;
    ASSERT_TRUE(small.Create(4, 9));
    RandomFill(small, 1);
    const auto before = Bytes(small);
    small.Filter_Smoothing();
    EXPECT_EQ(Bytes(small), before);
    Flat(small, 5, 5, 0x202020);
    test::Paint(small, {{2, 2, 0xFFFFFF}});
    small.Filter_Smoothing();
    EXPECT_EQ(PixelAt(small, 2, 2), 0x202020);

    test::ForEachKernelSet([](const char* fast) {
        for (bool preserve : {false, true}) {
            clsGFX_2D spot;
            Flat(spot, 9, 8, 0x202020);
            test::Paint(spot, {{4, 4, 0xFFFFFF}, {1, 1, 0xFFFFFF}});  // the second in the frame
            spot.Filter_Smoothing(preserve);
            EXPECT_EQ(PixelAt(spot, 4, 4), 0x202020) << preserve << fast;
            EXPECT_EQ(PixelAt(spot, 1, 1), 0xFFFFFF) << preserve << fast;

            // One-pixel lines across, up and along both diagonals.
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
                if (preserve) {
                    EXPECT_EQ(Bytes(gfx), drawn) << l.x1 << l.y1 << fast;
                } else {
                    EXPECT_EQ(PixelAt(gfx, 5, 5), 0x102030) << l.x1 << l.y1 << fast;
                }
            }
        }
    });
}

// ---- Fast paths against the plain loops ------------------------------------------

// Runs op on copies of random images of odd sizes with each set of
// kernels and compares every byte with the scalar loops' result.
void ExpectSameBytes(const char* what, const Op& op,
                     std::initializer_list<Long> widths = {1, 5, 7, 13, 37, 70},
                     std::initializer_list<Long> heights = {1, 5, 7, 20}) {
    std::uint32_t seed = 500;
    for (Long w : widths) {
        for (Long h : heights) {
            clsGFX_2D original;
            ASSERT_TRUE(original.Create(w, h));
            RandomFill(original, ++seed);
            std::vector<std::uint8_t> plain;
            test::ForEachKernelSet([&](const char* kernels) {
                auto copy = test::Clone(original);
                op(*copy);
                if (std::string(kernels) == "scalar") {
                    plain = Bytes(*copy);
                    return;
                }
                ASSERT_EQ(Bytes(*copy), plain) << what << " " << w << "x" << h << ", " << kernels;
            });
        }
    }
}

TEST(FastPaths, MatchThePlainLoopsOnRandomImages) {
    const struct {
        Long w, h;
    } sizes[] = {{2, 2}, {3, 5}, {11, 9}, {23, 6}, {35, 9}, {37, 21}, {71, 33}, {140, 3}};
    for (const auto& s : sizes) {
        ExpectSameBytes("Resample", [&](clsGFX_2D& g) { g.Image_Resample(s.w, s.h); });
    }
    for (Long type = 0; type <= 8; ++type) {
        ExpectSameBytes("Filter",
                        [&](clsGFX_2D& g) { g.Filter_StandardFilter(type, 0x00F0107F * type); });
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
        ExpectSameBytes("Custom", [&](clsGFX_2D& g) {
            ASSERT_TRUE(g.Filter_StandardFilterSetCustom(c.size, kernel, c.weight));
            g.Filter_StandardFilter(-1, 0x00406080);
        });
    }
    // One sign, 15 in every place, on an image faded towards white: the sums
    // pass 16 bits though the largest possible one is below twice that.
    const std::vector<Long> fifteen(9, 15);
    ExpectSameBytes("Custom", [&](clsGFX_2D& g) {
        g.Color_FadeTo(-1, 0xFFFFFF, 15);
        ASSERT_TRUE(g.Filter_StandardFilterSetCustom(3, fifteen, 135));
        g.Filter_StandardFilter(-1);
    });
    ExpectSameBytes("EdgeDetection", [](clsGFX_2D& g) { g.Filter_EdgeDetection(); });
    // Smoothing: every width to 17; strips of 19 columns whole and cut short;
    // heights whose skew rows move to the front of their buffer once or twice.
    for (bool preserve : {false, true}) {
        const auto smooth = [preserve](clsGFX_2D& g) { g.Filter_Smoothing(preserve); };
        const char* what = preserve ? "LinePreserve" : "Median";
        for (Long w = 1; w <= 17; ++w) ExpectSameBytes(what, smooth, {w}, {5, 6, 9, 24});
        ExpectSameBytes(what, smooth, {21, 22, 23, 40, 41, 42, 60, 79}, {5, 7, 300, 601});
    }
}

}  // namespace
}  // namespace kelvarin

// SPDX-License-Identifier: MIT
// Drawing primitives: viewport, pixels at and past the row's end, lines
// against the reference, curves, circles, noise.
#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <set>
#include <utility>

#include "common/OleColor.h"
#include "gfx/clsGFX_2D.h"
#include "tests/gfx/TestImages.h"

namespace kelvarin {
namespace {

using namespace test;
using Pixels = std::set<std::pair<Long, Long>>;

// The pixels of a 24-bit surface that are not black.
Pixels Lit(clsGFX_2D& gfx) {
    Pixels lit;
    for (Long y = 0; y < gfx.Get_Height(); ++y) {
        for (Long x = 0; x < gfx.Get_Width(); ++x) {
            if (test::PixelAt(gfx, x, y) != 0) lit.insert({x, y});
        }
    }
    return lit;
}

// A line straight from the rule, on the bytes of a surface of bpp bytes per
// pixel: the walk starts at half the major distance, ties to even, and a
// pixel is the last bpp of (c div 65536), (c div 256), c, each AND 255, in
// that order. False where the walk left the array, the bytes before written.
bool ReferenceLine(std::vector<std::uint8_t>& bytes, Long stride, Long bpp, Long x1, Long y1,
                   Long x2, Long y2, Long c) {
    const Long dx = std::abs(x2 - x1), dy = std::abs(y2 - y1);
    const Long sx = x2 < x1 ? -1 : 1, sy = y2 < y1 ? -1 : 1;
    const bool xMajor = dx >= dy;
    const Long den = xMajor ? dx : dy, add = xMajor ? dy : dx;
    auto num = static_cast<Long>(RoundHalfEven(den / 2.0));
    const Long height = static_cast<Long>(bytes.size()) / stride;
    const Long divisors[3] = {65536, 256, 1};
    for (Long i = 0, x = x1, y = y1; i <= den; ++i) {
        for (Long k = 0; k < bpp; ++k) {
            const std::int64_t at = std::int64_t{x} * bpp + k;
            if (at < 0 || at >= stride || y < 0 || y >= height) return false;
            bytes[static_cast<std::size_t>(y * stride + at)] =
                static_cast<std::uint8_t>(c / divisors[3 - bpp + k] & 255);
        }
        num += add;
        if (num >= den) {
            num -= den;
            (xMajor ? y : x) += xMajor ? sy : sx;
        }
        (xMajor ? x : y) += xMajor ? sx : sy;
    }
    return true;
}

TEST(Viewport, IsNormalisedInsideTheSurface) {
    using Rect = std::array<Long, 4>;  // Xmin, Ymin, Xmax, Ymax
    const struct {
        Rect in, out;
    } rows[] = {
        {{-5, 2, -1, 1}, {0, 2, 9, 2}},   // Ymax below Ymin is raised to it
        {{0, 0, -1, -1}, {0, 0, 9, 9}},   // -1 stands for the far edge
        {{12, 15, 3, 40}, {9, 9, 9, 9}},  // beyond the surface: the last pixel
        {{4, 3, 2, -7}, {4, 3, 4, 3}},    // below the minimum: the minimum
        {{2, 3, 10, 10}, {2, 3, 9, 9}},   // the far edge itself lies outside
    };
    for (const auto& r : rows) {
        clsGFX_2D gfx;
        ASSERT_TRUE(gfx.Create(10, 10));
        gfx.Draw_SetViewport(r.in[0], r.in[1], r.in[2], r.in[3]);
        const auto v = gfx.Viewport();
        EXPECT_EQ((Rect{v.Xmin, v.Ymin, v.Xmax, v.Ymax}), r.out) << r.in[0] << "," << r.in[1];
    }
}

// Found by fuzzing: after a refused Create the header keeps the size asked
// for, and a width or height of -2147483648 made the session's last index
// and the viewport's far edge overflow. They raise Overflow, as the
// runtime's arithmetic does, and a valid surface afterwards works.
TEST(Viewport, OnAHeaderOfTheMostNegativeSizeRaisesOverflow) {
    clsGFX_2D gfx;
    EXPECT_FALSE(gfx.Create(INT32_MIN, 5, 8));
    EXPECT_EQ(ErrorOf([&] { gfx.Draw_SetViewport(3, 0, 1, 1); }), 6);
    EXPECT_FALSE(gfx.Create(-715827884, 5, 24));  // a scan line of -2147483648 bytes
    EXPECT_EQ(gfx.Get_BytesPerScanLine(), INT32_MIN);
    EXPECT_EQ(ErrorOf([&] { gfx.Draw_StartSession(); }), 6);
    EXPECT_FALSE(gfx.Create(5, INT32_MIN));
    EXPECT_EQ(ErrorOf([&] { gfx.Draw_SetViewport(0, 0, 1, -1); }), 6);
    EXPECT_EQ(ErrorOf([&] { gfx.Draw_StartSession(); }), 6);
    ASSERT_TRUE(gfx.Create(5, 4));
    gfx.Draw_SetViewport(0, 0, -1, -1);
    gfx.Draw_StartSession();
    EXPECT_EQ(gfx.LastRowIndex(), 3);
}

TEST(Pixel, PastTheEndOfARowWritesWhatFitsThenRaises) {
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(5, 2, 24));  // 16-byte rows: column 5 has one byte inside
    gfx.Draw_StartSession();
    EXPECT_EQ(gfx.LastColumnIndex(), 5);
    EXPECT_EQ(ErrorOf([&] { gfx.Draw_Pixel(5, 0, 0x00332211); }), 9);
    auto bytes = Bytes(gfx);
    EXPECT_EQ(bytes[15], 0x33);  // blue, in the padding
    EXPECT_EQ(bytes[16], 0);     // row 1 untouched
    // The three-byte write starts with red, so nothing of it fits.
    EXPECT_EQ(ErrorOf([&] { gfx.Draw_PixelRGB(5, 1, {1, 2, 3}); }), 9);
    EXPECT_EQ(ErrorOf([&] { gfx.Draw_ReadPixel(5, 0); }), 9);
    EXPECT_EQ(ErrorOf([&] { gfx.Draw_Pixel(1000000000, 0, 1); }), 6);  // 3X overflows first
    EXPECT_EQ(Bytes(gfx), bytes);                                      // nothing else written

    // The three-byte forms take red, green, blue: blue first in memory.
    gfx.Draw_PixelRGB(2, 0, {10, 20, 30});
    std::array<std::uint8_t, 3> rgb{};
    gfx.Draw_ReadPixelRGB(2, 0, rgb);
    EXPECT_EQ(rgb, (std::array<std::uint8_t, 3>{10, 20, 30}));
    EXPECT_EQ(Bytes(gfx)[6], 30);
}

TEST(Pixel, ClippingFormsStayInsideTheViewport) {
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(6, 6));
    gfx.Draw_SetViewport(1, 1, 3, 3);
    gfx.Draw_StartSession();
    gfx.Draw_Pixel_C(4, 1, 0xFFFFFF);  // Xmax + 1
    gfx.Draw_Pixel_C(2, 0, 0xFFFFFF);
    gfx.Draw_PixelRGB_C(0, 2, {1, 1, 1});
    gfx.Draw_Pixel_C(3, 1, 0xFFFFFF);
    gfx.Draw_EndSession();
    EXPECT_EQ(Lit(gfx), (Pixels{{3, 1}}));
}

TEST(Line, TiesOfTheHalfStepGoToEven) {
    const struct {
        Long x2, y2;
        Pixels lit;
    } rows[] = {
        {5, 2, {{0, 0}, {1, 0}, {2, 1}, {3, 1}, {4, 2}, {5, 2}}},                  // 2.5 -> 2
        {7, 1, {{0, 0}, {1, 0}, {2, 0}, {3, 1}, {4, 1}, {5, 1}, {6, 1}, {7, 1}}},  // 3.5 -> 4
        {3, 1, {{0, 0}, {1, 1}, {2, 1}, {3, 1}}},  // 1.5 -> 2: the second pixel already steps
        {1, 3, {{0, 0}, {1, 1}, {1, 2}, {1, 3}}},  // y-major, the same rule
    };
    for (const auto& r : rows) {
        clsGFX_2D gfx;
        ASSERT_TRUE(gfx.Create(8, 4));
        gfx.Draw_StartSession();
        gfx.Draw_Line(0, 0, r.x2, r.y2, 0xFFFFFF);
        gfx.Draw_EndSession();
        EXPECT_EQ(Lit(gfx), r.lit) << r.x2 << "," << r.y2;
    }
}

// Lines, and pixels as lines of one point, at every depth, inside and
// across the edges, in colours of all 32 bits (negative ones split with the
// truncating div).
TEST(Line, LinesAndPixelsMatchTheRuleInsideAndAcrossTheEdges) {
    std::mt19937 random(11);
    for (Long bits : {8, 16, 24}) {
        for (Long width : {1, 5, 7, 13}) {
            std::uniform_int_distribution<Long> x(-3, width + 3), y(-3, 8);
            for (int n = 0; n < 300; ++n) {
                const Long x1 = x(random), y1 = y(random), x2 = x(random), y2 = y(random);
                const auto c = static_cast<Long>(random());
                clsGFX_2D gfx;
                ASSERT_TRUE(gfx.Create(width, 6, bits));
                RandomFill(gfx, static_cast<std::uint32_t>(n));
                auto expected = Bytes(gfx);
                const Long stride = gfx.Get_BytesPerScanLine(), bpp = bits / 8;
                const bool fits = ReferenceLine(expected, stride, bpp, x1, y1, x2, y2, c);
                gfx.Draw_StartSession();
                ASSERT_EQ(ErrorOf([&] { gfx.Draw_Line(x1, y1, x2, y2, c); }), fits ? 0 : 9);
                ASSERT_EQ(Bytes(gfx), expected)
                    << bits << " w" << width << " " << x1 << "," << y1 << " " << x2 << "," << y2;
                const bool inside = ReferenceLine(expected, stride, bpp, x2, y1, x2, y1, ~c);
                ASSERT_EQ(ErrorOf([&] { gfx.Draw_Pixel(x2, y1, ~c); }), inside ? 0 : 9);
                ASSERT_EQ(Bytes(gfx), expected) << bits << " pixel " << x2 << "," << y1;
            }
        }
    }
}

// Cut where it crosses the viewport (2..6 both ways), the ends rounded:
// the pixels of the plain line between the cut ends.
TEST(Line, ClippedFormIsThePlainLineBetweenTheCutEnds) {
    const struct {
        Long x1, y1, x2, y2;
        std::optional<std::array<Long, 4>> cut;
    } rows[] = {
        {-50, -50, 50, 50, {{2, 2, 6, 6}}},
        {0, 0, 10, 7, {{3, 2, 6, 4}}},  // in through the bottom, out through the right
        {10, 7, 0, 0, {{6, 4, 3, 2}}},
        {0, 0, 1, 9, std::nullopt},  // wholly outside
    };
    for (const auto& r : rows) {
        clsGFX_2D clipped, plain;
        for (clsGFX_2D* gfx : {&clipped, &plain}) {
            ASSERT_TRUE(gfx->Create(10, 10));
            gfx->Draw_SetViewport(2, 2, 6, 6);
            gfx->Draw_StartSession();
        }
        clipped.Draw_Line_C(r.x1, r.y1, r.x2, r.y2, 0xFFFFFF);
        if (r.cut) plain.Draw_Line((*r.cut)[0], (*r.cut)[1], (*r.cut)[2], (*r.cut)[3], 0xFFFFFF);
        EXPECT_EQ(Bytes(clipped), Bytes(plain))
            << r.x1 << "," << r.y1 << " " << r.x2 << "," << r.y2;
    }
}

TEST(Bezier, CurvesBendAndStayBetweenTheirEndsAndWithoutRecursionAreTheChord) {
    clsGFX_2D a, b;
    ASSERT_TRUE(a.Create(20, 20));
    ASSERT_TRUE(b.Create(20, 20));
    a.Draw_StartSession();
    a.Draw_Bezier({1.5, 2.5}, {19, 0}, {0, 19}, {17.5, 13.4}, 0xFFFFFF, 0);
    b.Draw_StartSession();
    b.Draw_Line(2, 2, 18, 13, 0xFFFFFF);  // 1.5 -> 2, 2.5 -> 2, 17.5 -> 18
    EXPECT_EQ(Bytes(a), Bytes(b));

    Pixels lit[2];
    for (int i = 0; i < 2; ++i) {
        clsGFX_2D gfx;
        ASSERT_TRUE(gfx.Create(40, 40));
        gfx.Draw_StartSession();
        // A huge recursion limit is safe and changes nothing once the curve is in pixels.
        gfx.Draw_Bezier({0, 0}, {0, 39}, {39, 39}, {39, 0}, 0xFFFFFF, i == 0 ? 8 : 2147483647);
        lit[i] = Lit(gfx);
    }
    EXPECT_EQ(lit[1], lit[0]);
    EXPECT_TRUE(lit[0].count({0, 0}) && lit[0].count({39, 0}) && lit[0].count({19, 29}));
}

// From (8, 8) by (2, 2) and (8, 8) to (16, 0), the middle point of the
// subdivision is (6, 4): the left half's (6 - 8)^2 + (4 - 8) is 0.
TEST(Bezier, ClippedFormDrawsADegenerateLeftHalfUnclipped) {
    const clsGFX_2D::PointD curve[4] = {{8, 8}, {2, 2}, {8, 8}, {16, 0}};
    clsGFX_2D clipped, unclipped;
    for (clsGFX_2D* gfx : {&clipped, &unclipped}) {
        ASSERT_TRUE(gfx->Create(24, 24));
        gfx->Draw_SetViewport(9, 0, 23, 23);  // leaves out the start's column
        gfx->Draw_StartSession();
    }
    clipped.Draw_Bezier_C(curve[0], curve[1], curve[2], curve[3], 0xFFFFFF, 4);
    unclipped.Draw_Bezier(curve[0], curve[1], curve[2], curve[3], 0xFFFFFF, 4);
    clipped.Draw_EndSession();
    unclipped.Draw_EndSession();
    EXPECT_TRUE(Lit(clipped).count({8, 8}));  // only the unclipped chord reaches it
    const Pixels curvePixels = Lit(unclipped);
    for (const auto& p : Lit(clipped))
        EXPECT_TRUE(curvePixels.count(p)) << p.first << "," << p.second;
}

TEST(Circle, FollowsTheMidpointRule) {
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(9, 9));
    gfx.Draw_StartSession();
    gfx.Draw_Circle(4, 4, 3, 0x0000FF);
    gfx.Draw_Circle(4, 4, 0, 0x0000FF);  // radius 0: the centre
    Pixels expected{{4, 4}};
    for (auto [dx, dy] : {std::pair{0, 3}, {1, 3}, {2, 2}}) {
        for (int sx : {-1, 1}) {
            for (int sy : {-1, 1})
                expected.insert({{4 + sx * dx, 4 + sy * dy}, {4 + sy * dy, 4 + sx * dx}});
        }
    }
    EXPECT_EQ(Lit(gfx), expected);
    // Unclipped, a circle across the edge raises; clipped, it does not.
    ASSERT_TRUE(gfx.Create(8, 8));
    gfx.Draw_StartSession();
    EXPECT_EQ(ErrorOf([&] { gfx.Draw_Circle(1, 1, 3, 0xFFFFFF); }), 9);
    EXPECT_EQ(ErrorOf([&] { gfx.Draw_Circle_C(1, 1, 3, 0xFFFFFF); }), 0);
    EXPECT_TRUE(Lit(gfx).count({4, 1}));
}

// Found by fuzzing: a clipped circle of a radius near a billion walked all
// its columns, for minutes. It draws at once now, the walk's own pixels,
// on a 24-bit surface and on others.
TEST(Circle, ClippedCircleOfHugeRadiusDrawsTheWalksPixelsAtOnce) {
    // The walk itself, clipped to the 40 x 30 surface, as the reference.
    const auto walk = [](Long cx, Long cy, Long r) {
        Pixels lit;
        const auto plot = [&](std::int64_t x, std::int64_t y) {
            if (x >= 0 && x < 40 && y >= 0 && y < 30) lit.insert({int(x), int(y)});
        };
        std::int64_t x = 0, y = r, d = 1 - r, dE = 3, dSE = 5 - 2 * std::int64_t{r};
        for (; x <= y; ++x) {
            for (int sx : {-1, 1})
                for (int sy : {-1, 1})
                    plot(cx + sx * x, cy + sy * y), plot(cx + sx * y, cy + sy * x);
            if (d < 0) d += dE, dE += 2, dSE += 2;
            else d += dSE, dE += 2, dSE += 4, --y;
        }
        return lit;
    };
    const struct {
        Long cx, cy, r;
    } rows[] = {{20, -300, 310}, {-500, 15, 520},    {-200, -200, 300}, {60, 500, 480},
                {20, 15, 1000},  {3000, 3000, 4229}, {-700, 14, 699}};
    for (const auto& c : rows) {
        clsGFX_2D gfx;
        ASSERT_TRUE(gfx.Create(40, 30));
        gfx.Draw_StartSession();
        gfx.Draw_Circle_C(c.cx, c.cy, c.r, 0xFFFFFF);
        EXPECT_EQ(Lit(gfx), walk(c.cx, c.cy, c.r)) << c.cx << " " << c.cy << " " << c.r;
    }
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(40, 30));
    gfx.Draw_StartSession();
    gfx.Draw_Circle_C(20, 1000000000, 999999995, 0xFFFFFF);  // its bottom flat across row 5
    Pixels row5;
    for (Long x = 0; x < 40; ++x) row5.insert({x, 5});
    EXPECT_EQ(Lit(gfx), row5);
    EXPECT_EQ(ErrorOf([&] { gfx.Draw_Circle_C(2, 2, 2000000000, 0xFFFFFF); }), 6);
    ASSERT_TRUE(gfx.Create(40, 30, 8));
    gfx.Draw_StartSession();
    for (const Long r : {1000000000, 5}) {
        gfx.Draw_Circle(20, 15, r, 0xFFFFFF);
        gfx.Draw_Circle_C(20, 15, r, 0xFFFFFF);
    }
    EXPECT_EQ(gfx.Get_LastError(), "Draw_PixelRGB is only for 24bit depth images");
}

TEST(Draw, NeedsASessionAndClearZeroesEveryByte) {
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(5, 3));
    RandomFill(gfx, 4);
    EXPECT_EQ(ErrorOf([&] { gfx.Draw_Line(0, 0, 2, 2, 1); }), 9);
    EXPECT_EQ(ErrorOf([&] { gfx.Draw_Clear(); }), 9);
    EXPECT_EQ(ErrorOf([&] { gfx.Draw_RandomBits(true); }), 9);
    gfx.Draw_StartSession();
    gfx.Draw_Clear();
    EXPECT_EQ(Bytes(gfx), std::vector<std::uint8_t>(48, 0));  // padding included
}

TEST(Draw, RandomBitsAreGreyNoiseOrBlack) {
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(7, 30));
    RandomFill(gfx, 5);
    gfx.Draw_StartSession();
    gfx.Draw_RandomBits(false);  // the double's low bytes: always zero
    EXPECT_TRUE(Lit(gfx).empty());
    gfx.Draw_RandomBits(true);
    std::set<Long> values;
    for (Long i = 0; i < 7 * 30; ++i) values.insert(gfx.Draw_ReadPixel(i % 7, i / 7));
    for (Long v : values) ASSERT_EQ(v, (v & 255) * 0x010101);
    EXPECT_GT(values.size(), 50u);
}

}  // namespace
}  // namespace kelvarin

// Colour operations: one-pixel cases, faults and refusals, sessions, every
// kernel against the scalar reference, and the colour-space pair over the
// whole cube.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>

#include "common/OleColor.h"
#include "gfx/clsGFX_2D.h"
#include "tests/gfx/TestImages.h"

namespace kelvarin {
namespace {

using test::Bytes;
using test::ErrorOf;
using test::PixelAt;
using test::RandomFill;
using Op = std::function<void(clsGFX_2D&)>;

// What the rules without a reference make of one pixel, and the fade's mask
// in memory order: 0x000000FF keeps pure blue.
TEST(ColorRules, OnePixelCases) {
    const struct {
        OLE_COLOR before;
        Op op;
        OLE_COLOR after;
    } rows[] = {
        {RGB(0, 0, 255), [](clsGFX_2D& g) { g.Color_FadeTo(0x000000FF, 0, 1.0); }, RGB(0, 0, 255)},
        {RGB(255, 0, 0), [](clsGFX_2D& g) { g.Color_FadeTo(0x000000FF, 0, 1.0); }, RGB(127, 0, 0)},
        {RGB(128, 128, 128), [](clsGFX_2D& g) { g.Color_Colourise(0, 255); }, RGB(255, 1, 1)},
        {RGB(10, 200, 50), [](clsGFX_2D& g) { g.Color_ChannelComponent(0); }, RGB(10, 10, 10)},
        {RGB(10, 200, 50), [](clsGFX_2D& g) { g.Color_ChannelComponent(1); }, RGB(200, 200, 200)},
        {RGB(10, 200, 50), [](clsGFX_2D& g) { g.Color_ChannelComponent(2); }, RGB(50, 50, 50)},
        // The weighted luminance 0.3 r + 0.59 g + 0.11 b = 126.5.
        {RGB(10, 200, 50), [](clsGFX_2D& g) { g.Color_ChannelComponent(16); }, RGB(126, 126, 126)},
        // Unknown channels change nothing, silently.
        {RGB(1, 2, 3), [](clsGFX_2D& g) { g.Color_ChannelComponent(3); }, RGB(1, 2, 3)},
        {RGB(1, 2, 3), [](clsGFX_2D& g) { g.Color_ChannelComponent(17); }, RGB(1, 2, 3)},
        {RGB(1, 2, 3), [](clsGFX_2D& g) { g.Color_ChannelComponent(-1); }, RGB(1, 2, 3)},
    };
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        clsGFX_2D gfx;
        ASSERT_TRUE(gfx.Create(1, 1));
        test::Paint(gfx, {{0, 0, static_cast<Long>(rows[i].before)}});
        rows[i].op(gfx);
        EXPECT_EQ(PixelAt(gfx, 0, 0), static_cast<Long>(rows[i].after)) << "row " << i;
        EXPECT_EQ(gfx.Get_LastError(), "") << "row " << i;
    }
}

TEST(ColorFadeTo, WeightsThatLeaveTheByteRangeRaiseTheHostsErrors) {
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(3, 1));
    gfx.Color_Fill(0x808080);
    EXPECT_EQ(ErrorOf([&] { gfx.Color_FadeTo(-1, 0, -1.0); }), 11);
    EXPECT_EQ(ErrorOf([&] { gfx.Color_FadeTo(-1, 0, -0.5); }), 6);  // 128 / 0.5
    EXPECT_FALSE(gfx.SessionOpen());
    // Mask pixels are never computed, so an image of mask only is safe.
    EXPECT_EQ(ErrorOf([&] { gfx.Color_FadeTo(0x808080, 0, -1.0); }), 0);
    EXPECT_EQ(ErrorOf([&] { gfx.Color_FadeTo(-1, 0, std::nan("")); }), 6);
}

TEST(ColorHalftone, ErrorDiffusionKeepsTheAverageLevel) {
    for (int level : {32, 128, 200}) {
        clsGFX_2D gfx;
        ASSERT_TRUE(gfx.Create(40, 40));
        gfx.Color_Fill(RGB(level, level, level));
        ASSERT_TRUE(gfx.Color_Halftone_ErrorDiffusion(false));
        double sum = 0;
        for (std::uint8_t b : Bytes(gfx)) {
            ASSERT_TRUE(b == 0 || b == 255);
            sum += b;
        }
        EXPECT_NEAR(sum / (40 * 120), level, 12) << level;
    }
}

// Runs op on a copy of gfx with each set of kernels, and what of the
// reference on a snapshot; every byte, padding included, must agree.
void ExpectReference(const char* what, const clsGFX_2D& gfx, const Op& op,
                     const std::function<void(test::Image&)>& reference) {
    auto expected = test::Snapshot(gfx);
    reference(expected);
    test::ForEachKernelSet([&](const char* kernels) {
        auto copy = test::Clone(gfx);
        op(*copy);
        ASSERT_EQ(Bytes(*copy), expected.bytes)
            << what << ", " << kernels << ", " << gfx.BitsPerPixel() << " bits " << gfx.Get_Width()
            << "x" << gfx.Get_Height();
    });
}

// Random images below, at and across the vector kernels' blocks of 16
// pixels, with magenta pixels scattered in to be masked and replaced.
TEST(ColorKernels, MatchTheReferenceOnRandomImages) {
    namespace ref = test::reference;
    constexpr Long kMagenta = 0x00FF00FF;
    std::uint32_t seed = 100;
    for (Long bits : {8, 16, 24, 32}) {
        for (Long w : {1, 5, 7, 16, 31, 33, 64, 100}) {
            for (Long h : {1, 3, 8}) {
                clsGFX_2D gfx;
                ASSERT_TRUE(gfx.Create(w, h, bits));
                RandomFill(gfx, ++seed);
                if (bits == 24) {
                    gfx.Draw_StartSession();
                    for (Long x = 0; x < w; x += 3) gfx.Draw_Pixel(x, x % h, kMagenta);
                    gfx.Draw_EndSession();
                }
                // A colour that occurs, and one a read never gives.
                const Long c = PixelAt(gfx, w / 2, h / 2);
                for (Long original : {c, c | 0x01000000}) {
                    ExpectReference(
                        "Replace", gfx, [&](clsGFX_2D& g) { g.Color_Replace(original, 0xA1B2C3); },
                        [&](test::Image& img) { ref::Replace(img, original, 0xA1B2C3); });
                }
                ExpectReference(
                    "Fill", gfx, [](clsGFX_2D& g) { g.Color_Fill(0x00C0FFEE); },
                    [](test::Image& img) { ref::Fill(img, 0x00C0FFEE); });
                if (bits != 24) continue;
                for (int m = 1; m < 8; ++m) {
                    ExpectReference(
                        "Invert", gfx, [&](clsGFX_2D& g) { g.Color_Invert(m & 1, m & 2, m & 4); },
                        [&](test::Image& img) { ref::Invert(img, m & 1, m & 2, m & 4); });
                }
                for (bool weighted : {false, true}) {
                    for (Long mask : {kMagenta, c}) {
                        ExpectReference(
                            "Gray", gfx, [&](clsGFX_2D& g) { g.Color_Gray(mask, weighted); },
                            [&](test::Image& img) { ref::Gray(img, mask, weighted); });
                    }
                }
                // Fading has a kernel for divisors 2^n (weights 0, 1, 3, 7, 127).
                const Long swapped = (c & 0x00FF00) | (c >> 16 & 255) | (c & 255) << 16;
                for (double weight : {0.0, 0.5, 1.0, 2.0, 3.0, 3.7, 7.0, 127.0, 1e6}) {
                    for (Long mask : {kMagenta, swapped, Long{-1}}) {
                        ExpectReference(
                            "FadeTo", gfx,
                            [&](clsGFX_2D& g) { g.Color_FadeTo(mask, 0x00FF8001, weight); },
                            [&](test::Image& img) { ref::FadeTo(img, mask, 0x00FF8001, weight); });
                    }
                }
                ExpectReference(
                    "ErrorDiffusion", gfx,
                    [](clsGFX_2D& g) { g.Color_Halftone_ErrorDiffusion(true); },
                    [](test::Image& img) { ref::ErrorDiffusion(img); });
                ExpectReference(
                    "Dithering", gfx, [](clsGFX_2D& g) { g.Color_Halftone_Dithering(true); },
                    [](test::Image& img) { ref::Dithering(img); });
            }
        }
    }
}

// The weighted grey of every colour, ties included, against the rule.
TEST(ColorKernels, WeightedGreyOfEveryColour) {
    clsGFX_2D gfx;
    test::MakeWholeCube(gfx);
    ASSERT_TRUE(gfx.Color_Gray(-1, true));  // the mask, pure red, keeps its one pixel
    const std::uint8_t* bits = gfx.Get_ptrDIBSection();
    for (std::size_t i = 0; i < std::size_t{1} << 24; ++i) {
        const int b = static_cast<std::uint8_t>(i), g = static_cast<std::uint8_t>(i >> 8),
                  r = static_cast<std::uint8_t>(i >> 16);
        if (r == 255 && g == 0 && b == 0) continue;
        const auto expected =
            static_cast<int>(RoundHalfEven((r * 222 + g * 707 + b * 71) / 1000.0));
        ASSERT_EQ(bits[3 * i], expected) << r << "," << g << "," << b;
        ASSERT_EQ(bits[3 * i + 2], expected);
    }
}

TEST(ColorRefusals, OtherDepthsGetTheExactTextAndKeepEveryByte) {
    const auto only24 = [](const char* name) {
        return std::string(name) + " is only for 24bit depth images";
    };
    const struct {
        std::string text;
        std::function<bool(clsGFX_2D&)> run;
    } refusals[] = {
        {"Nothing to do", [](clsGFX_2D& g) { return g.Color_Invert(false, false, false); }},
        {"Only for 24 bits image", [](clsGFX_2D& g) { return g.Color_Invert(); }},
        {only24("Draw_ReadPixelB"), [](clsGFX_2D& g) { return g.Color_Gray(0, false); }},
        {only24("Color_FadeTo"), [](clsGFX_2D& g) { return g.Color_FadeTo(0, 0xFFFFFF, 1); }},
        {only24("Color_Halftone_ErrorDiffusion"),
         [](clsGFX_2D& g) { return g.Color_Halftone_ErrorDiffusion(false); }},
        {only24("Color_Halftone_ErrorDiffusion"),
         [](clsGFX_2D& g) { return g.Color_Halftone_Dithering(true); }},
        {only24("Color_Colourise"), [](clsGFX_2D& g) { return g.Color_Colourise(10, 200); }},
        {only24("Color_ChannelComponent"),
         [](clsGFX_2D& g) { return g.Color_ChannelComponent(3); }},
        {only24("Color_GetIstogram"),
         [](clsGFX_2D& g) {
             clsGFX_2D::Histogram a{}, b{}, c{};
             Long result = 0;
             return g.Color_GetIstogram(0, a, b, c, result);
         }},
        {only24("Color_EqualizeIstogram"),
         [](clsGFX_2D& g) { return g.Color_EqualizeIstogram(16); }},
        {only24("Color_ConvertRGBToHSL"), [](clsGFX_2D& g) { return g.Color_ConvertRGBToHSL(); }},
        {only24("Color_ConvertHSLToRGB"), [](clsGFX_2D& g) { return g.Color_ConvertHSLToRGB(); }},
    };
    for (Long bits : {8, 16, 32}) {
        for (const auto& r : refusals) {
            clsGFX_2D gfx;
            ASSERT_TRUE(gfx.Create(5, 3, bits));
            RandomFill(gfx, 7);
            const auto before = Bytes(gfx);
            EXPECT_FALSE(r.run(gfx)) << r.text;
            EXPECT_EQ(gfx.Get_LastError(), r.text) << bits;
            EXPECT_EQ(Bytes(gfx), before) << r.text << " " << bits;
            EXPECT_FALSE(gfx.SessionOpen());
        }
    }
}

// Colour operations, transforms (but the resample, which makes a new
// surface) and filters alike.
TEST(WholeImageSessions, AnOpenSessionIsUsedAndKept) {
    const Op operations[] = {
        [](clsGFX_2D& g) { g.Color_Fill(0x102030); },
        [](clsGFX_2D& g) { g.Color_Invert(); },
        [](clsGFX_2D& g) { g.Color_Gray(0, true); },
        [](clsGFX_2D& g) { g.Color_Replace(0, 1); },
        [](clsGFX_2D& g) { g.Color_FadeTo(0, 0xFFFFFF, 1); },
        [](clsGFX_2D& g) { g.Color_Halftone_ErrorDiffusion(false); },
        [](clsGFX_2D& g) { g.Color_Halftone_Dithering(false); },
        [](clsGFX_2D& g) { g.Color_Colourise(1, 2); },
        [](clsGFX_2D& g) { g.Color_ChannelComponent(16); },
        [](clsGFX_2D& g) { g.Color_EqualizeIstogram(0); },
        [](clsGFX_2D& g) { g.Color_ConvertRGBToHSL(); },
        [](clsGFX_2D& g) { g.Color_ConvertHSLToRGB(); },
        [](clsGFX_2D& g) { g.Image_FlipX(); },
        [](clsGFX_2D& g) { g.Image_FlipY(); },
        [](clsGFX_2D& g) { g.Image_Rotate(); },
        [](clsGFX_2D& g) { g.Filter_StandardFilter(7, 0x010203); },
        [](clsGFX_2D& g) { g.Filter_EdgeDetection(); },
        [](clsGFX_2D& g) { g.Filter_Smoothing(true); },
    };
    for (std::size_t i = 0; i < std::size(operations); ++i) {
        clsGFX_2D open, closed;
        ASSERT_TRUE(open.Create(5, 5));
        ASSERT_TRUE(closed.Create(5, 5));
        RandomFill(open, 9);
        RandomFill(closed, 9);
        open.Draw_StartSession();
        operations[i](open);
        EXPECT_TRUE(open.SessionOpen()) << i;
        open.Draw_Pixel(0, 0, 0x0A0B0C);  // the session still draws
        open.Draw_EndSession();
        operations[i](closed);
        EXPECT_FALSE(closed.SessionOpen()) << i;
        PixelArray view;
        EXPECT_TRUE(closed.Data_Get(view));
        test::Paint(closed, {{0, 0, 0x0A0B0C}});
        EXPECT_EQ(Bytes(open), Bytes(closed)) << i;
    }
}

// Hue on the 0..6 hexcone scale, for a colour that is not grey.
double HexHue(int r, int g, int b) {
    const int mx = std::max({r, g, b}), mn = std::min({r, g, b});
    const double delta = mx - mn;
    double h = r == mx ? (g - b) / delta : g == mx ? 2 + (b - r) / delta : 4 + (r - g) / delta;
    return h < 0 ? h + 6 : h;
}

// The luminance is the weighted sum, while the way back is the hexcone
// around the mean of the extremes: the round trip keeps hue and turns the
// weighted luminance into the mean of the returned extremes. It is not the
// identity (pure red comes back as (153, 0, 0)), except on the grey axis.
TEST(ColorHsl, RoundTripAcrossTheWholeCube) {
    clsGFX_2D gfx;
    test::MakeWholeCube(gfx);
    ASSERT_TRUE(gfx.Color_ConvertRGBToHSL());
    ASSERT_TRUE(gfx.Color_ConvertHSLToRGB());
    const std::uint8_t* bits = gfx.Get_ptrDIBSection();
    // Bounds from the roundings: hue, saturation and luminance become bytes
    // (half a level each) and so do the returned channels (half a level each,
    // which moves the hue by up to 42.5 / chroma on the 0..255 hue scale).
    for (std::size_t i = 0; i < std::size_t{1} << 24; ++i) {
        const int b0 = static_cast<std::uint8_t>(i), g0 = static_cast<std::uint8_t>(i >> 8),
                  r0 = static_cast<std::uint8_t>(i >> 16);
        const int b = bits[3 * i], g = bits[3 * i + 1], r = bits[3 * i + 2];
        if (r0 == g0 && g0 == b0) {
            ASSERT_TRUE(r == r0 && g == g0 && b == b0) << r0;
            continue;
        }
        const double weighted = 0.3 * r0 + 0.59 * g0 + 0.11 * b0;
        const int chroma = std::max({r, g, b}) - std::min({r, g, b});
        const double lightness = (std::max({r, g, b}) + std::min({r, g, b})) / 2.0;
        ASSERT_LE(std::fabs(lightness - weighted), 1.0) << r0 << "," << g0 << "," << b0;
        if (chroma == 0) continue;
        double dh = std::fabs(HexHue(r, g, b) - HexHue(r0, g0, b0));
        dh = std::min(dh, 6 - dh) * 255 / 6;
        ASSERT_LE(dh, 0.5 + 42.5 / chroma + 1e-3) << r0 << "," << g0 << "," << b0;
    }
    std::uint8_t r, g, b;
    Single h, s, l;
    clsGFX_2D::GFX2D_conv_cRGB_cHLS(255, 0, 0, h, s, l);
    clsGFX_2D::GFX2D_conv_cHLS_cRGB(h, s, l, r, g, b);
    EXPECT_EQ(r, 153);
    EXPECT_EQ(g, 0);
}

TEST(ColorHsl, PrimaryColoursHaveTheirHexconeHueAndWeightedLuminance) {
    const struct {
        int r, g, b;
        float hue, saturation, luminance;
    } rows[] = {
        {255, 0, 0, 0, 255, 76.5f},
        {0, 255, 0, 85, 255, 150.45f},
        {0, 0, 255, 170, 255, 28.05f},
        {128, 128, 128, 0, 0, 128},
        {0, 0, 0, 0, 0, 0},
    };
    for (const auto& row : rows) {
        Single h, s, l;
        clsGFX_2D::GFX2D_conv_cRGB_cHLS(static_cast<std::uint8_t>(row.r),
                                        static_cast<std::uint8_t>(row.g),
                                        static_cast<std::uint8_t>(row.b), h, s, l);
        EXPECT_NEAR(h, row.hue, 1e-3) << row.r << "," << row.g << "," << row.b;
        EXPECT_NEAR(s, row.saturation, 1e-3);
        EXPECT_NEAR(l, row.luminance, 1e-3);
    }
}

TEST(ColorHistogram, CountsEveryChannelAndEqualisesOne) {
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(4, 1));
    test::Paint(gfx, {{0, 0, RGB(100, 7, 7)},
                      {1, 0, RGB(101, 7, 7)},
                      {2, 0, RGB(102, 7, 7)},
                      {3, 0, RGB(103, 7, 7)}});
    clsGFX_2D::Histogram red, green, blue;
    red.fill(99);
    Long largest = 0;
    ASSERT_TRUE(gfx.Color_GetIstogram(1, red, green, blue, largest));
    EXPECT_EQ(red[100], 1);
    EXPECT_EQ(red[0], 0);  // cleared first
    EXPECT_EQ(green[7], 4);
    EXPECT_EQ(largest, 4);
    ASSERT_TRUE(gfx.Color_EqualizeIstogram(0));
    const int expected[] = {0, 85, 170, 255};
    for (Long x = 0; x < 4; ++x) EXPECT_EQ(PixelAt(gfx, x, 0), 0x070700 + expected[x]) << x;
}

}  // namespace
}  // namespace kelvarin

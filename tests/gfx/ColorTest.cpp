// SPDX-License-Identifier: MIT
// Colour operations: each rule on hand-checked pixels, faults and refusals,
// sessions, the vector kernels against the scalar loops, and the weighted
// grey over the whole cube.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <string>

#include "common/OleColor.h"
#include "gfx/Simd.h"
#include "gfx/clsGFX_2D.h"
#include "tests/gfx/TestImages.h"

namespace kelvarin {
namespace {

using namespace test;
using Op = std::function<void(clsGFX_2D&)>;

// One colour through each rule, on a row long enough for the whole-word
// paths: the fade's weights floor, and its mask is in memory order
// (0x000000FF keeps pure blue).
TEST(ColorRules, OneColourThroughEachRule) {
    const struct {
        OLE_COLOR before;
        Op op;
        OLE_COLOR after;
    } rows[] = {
        {RGB(0, 0, 255), [](clsGFX_2D& g) { g.Color_FadeTo(0x000000FF, 0, 1.0); }, RGB(0, 0, 255)},
        {RGB(255, 0, 0), [](clsGFX_2D& g) { g.Color_FadeTo(0x000000FF, 0, 1.0); }, RGB(127, 0, 0)},
        // (v + floor(0.5 * target)) / 1.5, floored.
        {RGB(200, 100, 0), [](clsGFX_2D& g) { g.Color_FadeTo(-1, RGB(0, 0, 255), 0.5); },
         RGB(133, 66, 84)},
        {RGB(10, 20, 30), [](clsGFX_2D& g) { g.Color_Invert(true, false, true); },
         RGB(245, 20, 225)},
        {RGB(10, 200, 50), [](clsGFX_2D& g) { g.Color_Gray(0, false); }, RGB(200, 200, 200)},
        {RGB(10, 200, 50), [](clsGFX_2D& g) { g.Color_Gray(RGB(10, 200, 50), false); },
         RGB(10, 200, 50)},
        {RGB(128, 128, 128), [](clsGFX_2D& g) { g.Color_Colourise(0, 255); }, RGB(255, 1, 1)},
        // Hue, saturation, luminance as red, green, blue bytes, and back.
        {RGB(255, 128, 0), [](clsGFX_2D& g) { g.Color_ConvertRGBToHSL(); }, RGB(21, 255, 152)},
        {RGB(255, 128, 0),
         [](clsGFX_2D& g) { g.Color_ConvertRGBToHSL() && g.Color_ConvertHSLToRGB(); },
         RGB(255, 151, 49)},
        {RGB(10, 200, 50), [](clsGFX_2D& g) { g.Color_ChannelComponent(0); }, RGB(10, 10, 10)},
        {RGB(10, 200, 50), [](clsGFX_2D& g) { g.Color_ChannelComponent(2); }, RGB(50, 50, 50)},
        // The weighted luminance 0.3 r + 0.59 g + 0.11 b = 126.5.
        {RGB(10, 200, 50), [](clsGFX_2D& g) { g.Color_ChannelComponent(16); }, RGB(126, 126, 126)},
        // Unknown channels change nothing, silently.
        {RGB(1, 2, 3), [](clsGFX_2D& g) { g.Color_ChannelComponent(3); }, RGB(1, 2, 3)},
        {RGB(1, 2, 3), [](clsGFX_2D& g) { g.Color_ChannelComponent(17); }, RGB(1, 2, 3)},
    };
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        clsGFX_2D gfx;
        ASSERT_TRUE(gfx.Create(9, 1));
        gfx.Color_Fill(static_cast<Long>(rows[i].before));
        rows[i].op(gfx);
        for (Long x = 0; x < 9; ++x)
            EXPECT_EQ(PixelAt(gfx, x, 0), static_cast<Long>(rows[i].after)) << "row " << i;
        EXPECT_EQ(gfx.Get_LastError(), "") << "row " << i;
    }
}

// A pixel's bytes at each depth: 24 bits (c div 65536), (c div 256), c,
// each AND 255, with the truncating div; 16 bits the last two, 8 bits the
// last, 32 bits none. Replace matches the value a read gives back.
TEST(ColorDepths, FillAndReplaceWriteThePixelBytesOfTheDepth) {
    const struct {
        Long bits, colour;
        std::vector<std::uint8_t> filled, replaced;
    } rows[] = {
        {8, 0x00C0FFEE, {0xEE}, {0x56}},
        {16, 0x00C0FFEE, {0xFF, 0xEE}, {0x34, 0x56}},
        {24, 0x00C0FFEE, {0xC0, 0xFF, 0xEE}, {0x12, 0x34, 0x56}},
        {24, -65538, {0xFF, 0x00, 0xFE}, {0x12, 0x34, 0x56}},
        {32, 0x00C0FFEE, {}, {}},
    };
    for (const auto& r : rows) {
        clsGFX_2D gfx;
        ASSERT_TRUE(gfx.Create(5, 2, r.bits));
        std::fill_n(gfx.Get_ptrDIBSection(), Bytes(gfx).size(), 0x5A);
        const auto expect = [&](const std::vector<std::uint8_t>& pixel) {
            const auto bytes = Bytes(gfx);
            for (std::size_t i = 0; i < bytes.size(); ++i) {
                const std::size_t inRow = i % static_cast<std::size_t>(gfx.Get_BytesPerScanLine());
                EXPECT_EQ(bytes[i], inRow < 5 * pixel.size() ? pixel[inRow % pixel.size()] : 0x5A)
                    << r.bits << " bits, byte " << i;
            }
        };
        gfx.Color_Fill(r.colour);
        expect(r.filled);
        gfx.Color_Replace(PixelAt(gfx, 4, 1) | 0x01000000, 0x123456);  // no read gives it
        expect(r.filled);
        gfx.Color_Replace(PixelAt(gfx, 4, 1), 0x123456);
        expect(r.replaced);
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

// The pixel bytes (blue, green, red), lowest row first, of a w x h image
// made of the given ones and then run through op.
std::vector<int> After(Long w, Long h, const std::vector<int>& pixels, const Op& op) {
    clsGFX_2D gfx;
    EXPECT_TRUE(gfx.Create(w, h));
    std::uint8_t* bits = gfx.Get_ptrDIBSection();
    const Long stride = gfx.Get_BytesPerScanLine();
    for (Long i = 0; i < 3 * w * h; ++i) bits[i / (3 * w) * stride + i % (3 * w)] = pixels[i];
    op(gfx);
    std::vector<int> out;
    for (Long i = 0; i < 3 * w * h; ++i) out.push_back(bits[i / (3 * w) * stride + i % (3 * w)]);
    return out;
}

// Error diffusion walks the columns in turn, down the even ones and up the
// odd ones, and gives 7/16 of each error to the next pixel of the column and
// 3, 5 and 1/16 to the next column; the sixteenth rounds half to even.
// Dithering compares round(9 v / 255) with {5 2 7; 1 0 3; 6 8 4} at
// [y mod 3][x mod 3].
TEST(ColorHalftone, HandCheckedImages) {
    const Op diffuse = [](clsGFX_2D& g) { g.Color_Halftone_ErrorDiffusion(true); };
    // Red, by hand: 100 -> 0 (+42 down, +30 right, +6 right-down), 142 -> 255
    // (-21 right-up, -35 right); up the second column, 71 -> 0 (+28 up) and
    // 137 -> 255. Blue and green change with each weight, the tie (72 / 16 =
    // 4.5 -> 4), the clamp and the direction.
    EXPECT_EQ(After(2, 2, {72, 144, 100, 36, 172, 100, 72, 248, 100, 92, 12, 100}, diffuse),
              (std::vector<int>{0, 255, 0, 255, 0, 255, 0, 255, 255, 0, 0, 0}));
    // Blue 128 is level 5, green 0 never passes, red 255 always does.
    std::vector<int> grey, dithered;
    for (int i = 0; i < 9; ++i) {
        grey.insert(grey.end(), {128, 0, 255});
        dithered.insert(dithered.end(), {(i == 1 || (i >= 3 && i <= 5) || i == 8) * 255, 0, 255});
    }
    EXPECT_EQ(After(3, 3, grey, [](clsGFX_2D& g) { g.Color_Halftone_Dithering(true); }), dithered);
}

// The vector kernels (invert, grey, fade, replace) against the scalar
// loops, on random images below, at and across their blocks of 16, 32 and
// 64 pixels, with tails left for each narrower kernel in turn, and magenta
// scattered in to be masked.
TEST(ColorKernels, MatchTheScalarLoopsOnRandomImages) {
    constexpr Long kMagenta = 0x00FF00FF;
    std::uint32_t seed = 100;
    for (Long w : {1, 5, 7, 16, 31, 33, 63, 64, 65, 100, 127, 128, 129, 241}) {
        for (Long h : {1, 3, 8}) {
            clsGFX_2D gfx;
            ASSERT_TRUE(gfx.Create(w, h));
            RandomFill(gfx, ++seed);
            gfx.Draw_StartSession();
            for (Long x = 0; x < w; x += 3) gfx.Draw_Pixel(x, x % h, kMagenta);
            gfx.Draw_EndSession();
            const Long c = PixelAt(gfx, w / 2, h / 2);
            for (int channels = 1; channels < 8; ++channels) {
                test::ExpectKernelsAgree("Invert", gfx, [&](clsGFX_2D& g) {
                    g.Color_Invert(channels & 4, channels & 2, channels & 1);
                });
            }
            test::ExpectKernelsAgree("Replace", gfx,
                                     [&](clsGFX_2D& g) { g.Color_Replace(c, 0xA1B2C3); });
            // Magenta lies every third pixel, in every row's last block too.
            test::ExpectKernelsAgree("Replace", gfx,
                                     [&](clsGFX_2D& g) { g.Color_Replace(kMagenta, 0xA1B2C3); });
            for (bool weighted : {false, true}) {
                for (Long mask : {kMagenta, c}) {
                    test::ExpectKernelsAgree("Gray", gfx,
                                             [&](clsGFX_2D& g) { g.Color_Gray(mask, weighted); });
                }
            }
            // The fade's mask is in memory order: the swapped colour matches.
            const Long swapped = (c & 0x00FF00) | (c >> 16 & 255) | (c & 255) << 16;
            // Weights below 0 leave the byte range or divide by zero, and raise
            // at the first pixel that does.
            for (double weight : {0.0, 1.0, 3.0, 7.0, 127.0, 0.6, 2.0, 4.5, 9.3, 99.99, 300.0,
                                  1e300, -0.5, -1.0, -3.0}) {
                for (Long mask : {kMagenta, swapped, Long{-1}}) {
                    test::ExpectKernelsAgree("FadeTo", gfx, [&](clsGFX_2D& g) {
                        ErrorOf([&] { g.Color_FadeTo(mask, 0x00FF8001, weight); });
                    });
                }
            }
        }
    }
}

// Black and the mask in whole rows: the bytes past a row's last pixel,
// padding or the next row, are never taken for a pixel to change, whatever
// they hold and wherever the row's last block ends.
TEST(ColorKernels, RowsOfOneColourChangeUpToTheirLastPixelOnly) {
    std::uint32_t seed = 300;
    for (Long w = 1; w <= 140; ++w) {
        clsGFX_2D gfx;
        ASSERT_TRUE(gfx.Create(w, 3));
        RandomFill(gfx, ++seed);
        gfx.Draw_StartSession();
        for (Long x = 0; x < w; ++x) {
            gfx.Draw_Pixel(x, 0, 0);
            gfx.Draw_Pixel(x, 1, 0x00FF00FF);
            if (x % 5 == 0) gfx.Draw_Pixel(x, 2, 0);
        }
        gfx.Draw_EndSession();
        test::ExpectKernelsAgree("Replace", gfx,
                                 [](clsGFX_2D& g) { g.Color_Replace(0, 0x010203); });
        for (Long mask : {Long{0}, Long{0x00FF00FF}}) {
            for (double weight : {1.0, 0.6}) {
                test::ExpectKernelsAgree(
                    "FadeTo", gfx, [&](clsGFX_2D& g) { g.Color_FadeTo(mask, 0x00FF8001, weight); });
            }
        }
    }
}

// The hue, saturation and luminance operations: the vector kernels against
// the plain loops on random images whose widths leave tails of every length.
TEST(ColorKernels, HslOperationsMatchTheScalarLoopsOnRandomImages) {
    std::uint32_t seed = 40;
    for (Long w : {1, 15, 16, 17, 47, 64, 1000}) {
        clsGFX_2D gfx;
        ASSERT_TRUE(gfx.Create(w, w < 1000 ? 3 : 40));
        test::RandomFill(gfx, ++seed);
        test::ExpectKernelsAgree("RGB to HSL", gfx,
                                 [](clsGFX_2D& g) { g.Color_ConvertRGBToHSL(); });
        test::ExpectKernelsAgree("HSL to RGB", gfx,
                                 [](clsGFX_2D& g) { g.Color_ConvertHSLToRGB(); });
        for (Long channel : {4, 8, 16}) {
            test::ExpectKernelsAgree("ChannelComponent", gfx,
                                     [&](clsGFX_2D& g) { g.Color_ChannelComponent(channel); });
            test::ExpectKernelsAgree("EqualizeIstogram", gfx,
                                     [&](clsGFX_2D& g) { g.Color_EqualizeIstogram(channel); });
        }
        for (int hue : {0, 1, 42, 127, 128, 170, 254, 255}) {
            for (int saturation : {0, 1, 128, 255}) {
                test::ExpectKernelsAgree("Colourise", gfx, [&](clsGFX_2D& g) {
                    g.Color_Colourise(static_cast<std::uint8_t>(hue),
                                      static_cast<std::uint8_t>(saturation));
                });
            }
        }
    }
}

// Both conversions of every colour: the cube once through the plain loop,
// then through each width of vectors that has a kernel of its own (128 bits
// has none and takes the plain loop, so it is not run again). A byte that
// differs is reported with its colour.
TEST(ColorKernels, HslConversionsOfEveryColourMatchTheScalarLoop) {
    const struct {
        const char* name;
        bool (clsGFX_2D::*convert)();
    } conversions[] = {{"RGB to HSL", &clsGFX_2D::Color_ConvertRGBToHSL},
                       {"HSL to RGB", &clsGFX_2D::Color_ConvertHSLToRGB}};
    clsGFX_2D cube;
    test::MakeWholeCube(cube);
    for (const auto& c : conversions) {
        gfx_detail::EnableSimd(false);
        auto scalar = test::Clone(cube);
        ASSERT_TRUE(((*scalar).*c.convert)());
        const std::uint8_t* expected = scalar->Get_ptrDIBSection();
        gfx_detail::EnableSimd(true);
        for (int bits : {256, 512}) {
            gfx_detail::LimitVectorBits(bits);
            auto vector = test::Clone(cube);
            ASSERT_TRUE(((*vector).*c.convert)());
            const std::uint8_t* got = vector->Get_ptrDIBSection();
            const std::size_t size = std::size_t{3} << 24;
            const auto diff = std::mismatch(got, got + size, expected).first - got;
            ASSERT_EQ(diff, static_cast<std::ptrdiff_t>(size))
                << c.name << ", " << bits << "-bit: colour " << diff / 3 << " byte " << diff % 3;
        }
        gfx_detail::EnableSimd(true);
    }
}

// The weighted grey of every colour, ties included, against the rule, with
// each set of kernels.
TEST(ColorKernels, WeightedGreyOfEveryColour) {
    test::ForEachKernelSet([](const char* kernels) {
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
            ASSERT_EQ(bits[3 * i], expected) << r << "," << g << "," << b << " " << kernels;
            ASSERT_EQ(bits[3 * i + 2], expected);
        }
    });
}

// The 24-bit-only operations refuse other depths with a text and keep every
// byte. The rows are the texts that are not the operation's own name, and
// the pixel forms that drawing goes through.
TEST(Refusals, OtherDepthsGetTheTextAndKeepEveryByte) {
    const auto only24 = [](const char* name) {
        return std::string(name) + " is only for 24bit depth images";
    };
    const struct {
        std::string text;
        std::function<bool(clsGFX_2D&)> run;  // false for refused
    } refusals[] = {
        {"Nothing to do", [](clsGFX_2D& g) { return g.Color_Invert(false, false, false); }},
        {"Only for 24 bits image", [](clsGFX_2D& g) { return g.Color_Invert(); }},
        {only24("Draw_ReadPixelB"), [](clsGFX_2D& g) { return g.Color_Gray(0, false); }},
        {only24("Color_Halftone_ErrorDiffusion"),
         [](clsGFX_2D& g) { return g.Color_Halftone_Dithering(true); }},
        {"Image_Resample is only for 24 bit images",
         [](clsGFX_2D& g) { return g.Image_Resample(6, 4); }},
        {"Picture property is only for 24bit depth images",
         [](clsGFX_2D& g) { return g.Get_Picture() != nullptr; }},
        // Refused before the session is looked at; circles draw through the
        // three-byte write, and noise is silently not drawn.
        {only24("Draw_PixelRGB"),
         [](clsGFX_2D& g) {
             g.Draw_Circle(2, 2, 1, 0);
             g.Draw_RandomBits(true);
             return false;
         }},
        {only24("Draw_ReadPixelRGB"),
         [](clsGFX_2D& g) {
             std::array<std::uint8_t, 3> rgb{9, 9, 9};
             g.Draw_ReadPixelRGB(1, 1, rgb);
             return rgb[0] != 9;
         }},
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
        [](clsGFX_2D& g) { g.Color_FadeTo(0, 0xFFFFFF, 1); },
        [](clsGFX_2D& g) { g.Color_Halftone_ErrorDiffusion(false); },
        [](clsGFX_2D& g) { g.Color_EqualizeIstogram(4); },
        [](clsGFX_2D& g) { g.Image_FlipX(); },
        [](clsGFX_2D& g) { g.Image_Rotate(); },
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

// Hue on the 0..255 scale of the hexcone, and the weighted luminance; the
// way back is the hexcone around the mean of the extremes, so a colour does
// not come back as it was, except on the grey axis. The rows take every
// branch both ways: each channel the largest, hue wrapping below 0,
// luminance on both sides of one half, and each sector of the hexcone.
TEST(ColorHsl, ToHueSaturationLuminanceAndBack) {
    const struct {
        int r, g, b;
        float hue, saturation, luminance;
        int backR, backG, backB;
    } rows[] = {
        {255, 0, 0, 0, 255, 76.5f, 153, 0, 0},
        {0, 255, 0, 85, 255, 150.45f, 46, 255, 46},
        {0, 0, 255, 170, 255, 28.05f, 0, 0, 56},
        {255, 128, 0, 21.333f, 255, 152.02f, 255, 152, 49},
        {128, 255, 0, 63.667f, 255, 188.85f, 189, 255, 123},
        {255, 0, 128, 233.667f, 255, 90.58f, 181, 0, 91},
        {128, 128, 128, 0, 0, 128, 128, 128, 128},
        {0, 0, 0, 0, 0, 0, 0, 0, 0},
    };
    for (const auto& row : rows) {
        Single h, s, l;
        clsGFX_2D::GFX2D_conv_cRGB_cHLS(static_cast<std::uint8_t>(row.r),
                                        static_cast<std::uint8_t>(row.g),
                                        static_cast<std::uint8_t>(row.b), h, s, l);
        EXPECT_NEAR(h, row.hue, 1e-3) << row.r << "," << row.g << "," << row.b;
        EXPECT_NEAR(s, row.saturation, 1e-3);
        EXPECT_NEAR(l, row.luminance, 1e-3);
        std::uint8_t r, g, b;
        clsGFX_2D::GFX2D_conv_cHLS_cRGB(h, s, l, r, g, b);
        EXPECT_EQ((std::array<int, 3>{r, g, b}),
                  (std::array<int, 3>{row.backR, row.backG, row.backB}));
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

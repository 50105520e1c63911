// Colour operations: the rules' own cases, refusals, sessions, fast kernels
// against the scalar reference, halftones and the colour-space pair.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <string>

#include "common/OleColor.h"
#include "gfx/Simd.h"
#include "gfx/clsGFX_2D.h"
#include "tests/gfx/TestImages.h"

namespace kelvarin {
namespace {

using test::Bytes;
using test::ErrorOf;
using test::RandomFill;

// One 24-bit pixel (red, green, blue) on a 1 x 1 surface.
std::unique_ptr<clsGFX_2D> OnePixel(int red, int green, int blue) {
    auto gfx = std::make_unique<clsGFX_2D>();
    EXPECT_TRUE(gfx->Create(1, 1));
    gfx->Draw_StartSession();
    gfx->Draw_PixelRGB(0, 0,
                       {static_cast<std::uint8_t>(red), static_cast<std::uint8_t>(green),
                        static_cast<std::uint8_t>(blue)});
    gfx->Draw_EndSession();
    return gfx;
}

std::array<int, 3> RgbOf(clsGFX_2D& gfx, Long x = 0, Long y = 0) {
    const auto b = Bytes(gfx);
    const std::size_t at = static_cast<std::size_t>(y * gfx.Get_BytesPerScanLine() + 3 * x);
    return {b[at + 2], b[at + 1], b[at]};
}

TEST(ColorGray, MaximumOrWeightedAverageLeavingTheMask) {
    auto a = OnePixel(10, 200, 50);
    a->Color_Gray(0x00FF00FF, false);
    EXPECT_EQ(RgbOf(*a), (std::array<int, 3>{200, 200, 200}));
    auto b = OnePixel(10, 200, 50);
    b->Color_Gray(0x00FF00FF, true);  // 147.17
    EXPECT_EQ(RgbOf(*b), (std::array<int, 3>{147, 147, 147}));
    auto magenta = OnePixel(255, 0, 255);
    magenta->Color_Gray(0x00FF00FF, true);
    EXPECT_EQ(RgbOf(*magenta), (std::array<int, 3>{255, 0, 255}));
    // A tie of the weighted sum goes to even: 2 * 222 + 1 * 707 + 19 * 71 = 2500 -> 2.5 -> 2.
    auto tie = OnePixel(2, 1, 19);
    tie->Color_Gray(-1, true);
    EXPECT_EQ(RgbOf(*tie)[0], 2);
}

TEST(ColorGray, TheMaskIsComparedChannelByChannel) {
    // Magenta mask against a pixel with red and blue swapped: not the mask.
    auto swapped = OnePixel(255, 0, 254);
    swapped->Color_Gray(0x00FE00FF, false);  // red FF, blue FE
    EXPECT_EQ(RgbOf(*swapped), (std::array<int, 3>{255, 0, 254}));
    auto other = OnePixel(254, 0, 255);
    other->Color_Gray(0x00FE00FF, false);
    EXPECT_EQ(RgbOf(*other), (std::array<int, 3>{255, 255, 255}));
}

TEST(ColorFadeTo, BlendsTowardsTheColourWithTheMaskChannelsSwapped) {
    auto a = OnePixel(0, 100, 200);
    a->Color_FadeTo(-1, 0xFFFFFF, 1.0);
    EXPECT_EQ(RgbOf(*a), (std::array<int, 3>{127, 177, 227}));
    // Mask "red" keeps pure blue pixels and fades pure red ones.
    auto blue = OnePixel(0, 0, 255);
    blue->Color_FadeTo(0x000000FF, 0, 1.0);
    EXPECT_EQ(RgbOf(*blue), (std::array<int, 3>{0, 0, 255}));
    auto red = OnePixel(255, 0, 0);
    red->Color_FadeTo(0x000000FF, 0, 1.0);
    EXPECT_EQ(RgbOf(*red), (std::array<int, 3>{127, 0, 0}));
    // Weight 0 changes nothing; a large weight comes close to the target.
    auto still = OnePixel(3, 99, 250);
    still->Color_FadeTo(-1, 0x00FFFFFF, 0.0);
    EXPECT_EQ(RgbOf(*still), (std::array<int, 3>{3, 99, 250}));
    auto near = OnePixel(0, 0, 0);
    near->Color_FadeTo(-1, RGB(200, 100, 50), 1000.0);
    EXPECT_EQ(RgbOf(*near), (std::array<int, 3>{199, 99, 49}));
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

TEST(ColorInvert, ChosenChannelsOnly) {
    auto a = OnePixel(10, 20, 30);
    a->Color_Invert(true, false, true);
    EXPECT_EQ(RgbOf(*a), (std::array<int, 3>{245, 20, 225}));
    clsGFX_2D sixteen;
    ASSERT_TRUE(sixteen.Create(2, 2, 16));
    EXPECT_FALSE(sixteen.Color_Invert(false, false, false));
    EXPECT_EQ(sixteen.Get_LastError(), "Nothing to do");  // before the depth test
    EXPECT_FALSE(sixteen.Color_Invert(true, false, false));
    EXPECT_EQ(sixteen.Get_LastError(), "Only for 24 bits image");
}

TEST(ColorReplace, ExactColourOnEveryDepth) {
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(3, 1, 24));
    gfx.Draw_StartSession();
    gfx.Draw_Pixel(0, 0, 0x00FF00FF);
    gfx.Draw_Pixel(1, 0, 0x00FF00FE);
    gfx.Color_Replace(0x00FF00FF, 0x00123456);
    EXPECT_EQ(gfx.Draw_ReadPixel(0, 0), 0x00123456);
    EXPECT_EQ(gfx.Draw_ReadPixel(1, 0), 0x00FF00FE);
    EXPECT_EQ(gfx.Draw_ReadPixel(2, 0), 0);
    EXPECT_TRUE(gfx.SessionOpen());
    gfx.Color_Replace(0x01000000, 0x00FFFFFF);  // reads never give that
    EXPECT_EQ(gfx.Draw_ReadPixel(2, 0), 0);

    ASSERT_TRUE(gfx.Create(3, 1, 16));
    gfx.Draw_StartSession();
    gfx.Draw_Pixel(1, 0, 0xBEEF);
    gfx.Color_Replace(0xBEEF, 0x1234);
    EXPECT_EQ(gfx.Draw_ReadPixel(1, 0), 0x1234);
    EXPECT_EQ(gfx.Draw_ReadPixel(0, 0), 0);
}

TEST(ColorChannelComponent, UnknownChannelsChangeNothingSilently) {
    for (Long channel : {3, 5, 6, 7, 17, 32, -1}) {
        auto a = OnePixel(1, 2, 3);
        EXPECT_TRUE(a->Color_ChannelComponent(channel));
        EXPECT_EQ(RgbOf(*a), (std::array<int, 3>{1, 2, 3}));
        EXPECT_EQ(a->Get_LastError(), "");
    }
    const struct {
        Long channel;
        int value;
    } rows[] = {{0, 10}, {1, 200}, {2, 50}, {16, 0}};
    for (const auto& r : rows) {
        auto a = OnePixel(10, 200, 50);
        a->Color_ChannelComponent(r.channel);
        const auto rgb = RgbOf(*a);
        EXPECT_EQ(rgb[0], rgb[1]);
        EXPECT_EQ(rgb[1], rgb[2]);
        if (r.channel <= 2) {
            EXPECT_EQ(rgb[0], r.value);
        } else {
            EXPECT_NEAR(rgb[0], 0.3 * 10 + 0.59 * 200 + 0.11 * 50, 0.5);
        }
    }
}

TEST(ColorHalftone, MidGreyDithersToFiveWhiteOfNine) {
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(6, 6));
    gfx.Color_Fill(0x808080);
    ASSERT_TRUE(gfx.Color_Halftone_Dithering(true));
    gfx.Draw_StartSession();
    const int threshold[3][3] = {{5, 2, 7}, {1, 0, 3}, {6, 8, 4}};
    int white = 0;
    for (Long y = 0; y < 6; ++y) {
        for (Long x = 0; x < 6; ++x) {
            const Long v = gfx.Draw_ReadPixel(x, y);
            const bool expectWhite = threshold[y % 3][x % 3] <= 4;  // level 5 > T
            EXPECT_EQ(v, expectWhite ? 0xFFFFFF : 0) << x << "," << y;
            white += v != 0;
        }
    }
    EXPECT_EQ(white, 20);  // five of every nine
}

TEST(ColorHalftone, ErrorDiffusionKeepsTheAverageLevel) {
    for (int level : {32, 128, 200}) {
        clsGFX_2D gfx;
        ASSERT_TRUE(gfx.Create(40, 40));
        gfx.Color_Fill(RGB(level, level, level));
        ASSERT_TRUE(gfx.Color_Halftone_ErrorDiffusion(false));
        const auto bytes = Bytes(gfx);
        double sum = 0;
        for (Long y = 0; y < 40; ++y) {
            for (Long i = 0; i < 120; ++i) {
                const int b = bytes[static_cast<std::size_t>(y * 120 + i)];
                ASSERT_TRUE(b == 0 || b == 255);
                sum += b;
            }
        }
        EXPECT_NEAR(sum / (40 * 120), level, 12) << level;
    }
}

// Surfaces of the sizes the kernels must get right, with random content.
template <typename Check>
void ForRandomImages(Long bits, Check check) {
    std::uint32_t seed = 100;
    for (Long width : {1, 5, 7, 33, 64}) {
        for (Long height : {1, 3, 8}) {
            clsGFX_2D gfx;
            ASSERT_TRUE(gfx.Create(width, height, bits));
            RandomFill(gfx, ++seed);
            check(gfx, width, height);
        }
    }
}

// A colour that occurs in the image, so that masks and replacement bite.
Long ColourAt(clsGFX_2D& gfx, Long x, Long y) {
    gfx.Draw_StartSession();
    const Long c = gfx.Draw_ReadPixel(x, y);
    gfx.Draw_EndSession();
    return c;
}

TEST(ColorKernels, MatchTheReferenceOnRandomImagesWithOddWidths) {
    const double weights[] = {0.0, 0.5, 1.0, 3.0, 3.7, 1e6};
    for (Long bits : {8, 16, 24}) {
        ForRandomImages(bits, [&](clsGFX_2D& gfx, Long w, Long h) {
            auto expected = test::Snapshot(gfx);
            const Long c = ColourAt(gfx, w / 2, h / 2);
            test::reference::Replace(expected, c, 0x00A1B2C3);
            gfx.Color_Replace(c, 0x00A1B2C3);
            ASSERT_EQ(Bytes(gfx), expected.bytes) << "Replace " << bits << " " << w << "x" << h;
            test::reference::Fill(expected, 0x00C0FFEE);
            gfx.Color_Fill(0x00C0FFEE);
            ASSERT_EQ(Bytes(gfx), expected.bytes) << "Fill " << bits << " " << w << "x" << h;
        });
    }
    ForRandomImages(24, [&](clsGFX_2D& gfx, Long w, Long h) {
        const auto start = test::Snapshot(gfx);
        for (int m = 1; m < 8; ++m) {
            auto expected = start;
            test::reference::Invert(expected, m & 1, m & 2, m & 4);
            gfx.Color_Invert(m & 1, m & 2, m & 4);
            ASSERT_EQ(Bytes(gfx), expected.bytes) << "Invert " << m << " " << w << "x" << h;
            gfx.Color_Invert(m & 1, m & 2, m & 4);
            ASSERT_EQ(Bytes(gfx), start.bytes);
        }
        const Long mask = ColourAt(gfx, 0, h - 1);
        for (bool weighted : {false, true}) {
            auto copy = test::Clone(gfx);
            auto expected = start;
            test::reference::Gray(expected, mask, weighted);
            copy->Color_Gray(mask, weighted);
            ASSERT_EQ(Bytes(*copy), expected.bytes) << "Gray " << weighted << " " << w << "x" << h;
        }
        // A mask in memory order that is present in the image: red and blue swapped.
        const Long pixel = ColourAt(gfx, w - 1, 0);
        const Long swappedMask = (pixel & 0x00FF00) | (pixel >> 16 & 255) | (pixel & 255) << 16;
        for (double weight : weights) {
            for (Long mask2 : {pixel, swappedMask, Long{-1}}) {
                auto copy = test::Clone(gfx);
                auto expected = start;
                test::reference::FadeTo(expected, mask2, 0x00FF8001, weight);
                copy->Color_FadeTo(mask2, 0x00FF8001, weight);
                ASSERT_EQ(Bytes(*copy), expected.bytes)
                    << "FadeTo " << weight << " " << w << "x" << h;
            }
        }
        {
            auto copy = test::Clone(gfx);
            auto expected = start;
            test::reference::ErrorDiffusion(expected);
            copy->Color_Halftone_ErrorDiffusion(true);
            ASSERT_EQ(Bytes(*copy), expected.bytes) << "ErrorDiffusion " << w << "x" << h;
        }
        {
            auto expected = start;
            test::reference::Dithering(expected);
            gfx.Color_Halftone_Dithering(true);
            ASSERT_EQ(Bytes(gfx), expected.bytes) << "Dithering " << w << "x" << h;
        }
    });
}

// Grey, replacing and fading have vector kernels for blocks of 16 pixels:
// with them and without,
// on rows of whole blocks and ragged ends, with mask pixels scattered in.
TEST(ColorKernels, VectorKernelsMatchTheScalarLoops) {
    const bool available = gfx_detail::SimdAvailable();
    for (bool simd : {false, true}) {
        gfx_detail::EnableSimd(simd);
        EXPECT_EQ(gfx_detail::SimdEnabled(), simd && available);
        for (Long width : {16, 31, 48, 100}) {
            for (bool weighted : {false, true}) {
                clsGFX_2D gfx;
                ASSERT_TRUE(gfx.Create(width, 5));
                RandomFill(gfx, static_cast<std::uint32_t>(width));
                gfx.Draw_StartSession();
                for (Long x = 0; x < width; x += 3) gfx.Draw_Pixel(x, x % 5, 0x00FF00FF);
                gfx.Draw_Pixel(width - 1, 4, 0x00FF00FF);
                gfx.Draw_EndSession();
                auto expected = test::Snapshot(gfx);
                test::reference::Gray(expected, 0x00FF00FF, weighted);
                gfx.Color_Gray(0x00FF00FF, weighted);
                ASSERT_EQ(Bytes(gfx), expected.bytes) << simd << " " << width << " " << weighted;
            }
            {
                clsGFX_2D gfx;
                ASSERT_TRUE(gfx.Create(width, 3));
                RandomFill(gfx, static_cast<std::uint32_t>(width + 2));
                gfx.Draw_StartSession();
                for (Long x = 0; x < width; x += 5) gfx.Draw_Pixel(x, x % 3, 0x00FF00FF);
                gfx.Draw_EndSession();
                auto expected = test::Snapshot(gfx);
                test::reference::Replace(expected, 0x00FF00FF, 0x00123456);
                gfx.Color_Replace(0x00FF00FF, 0x00123456);
                ASSERT_EQ(Bytes(gfx), expected.bytes) << simd << " " << width << " replace";
            }
            // Fading by a power-of-two divisor has one too; the mask is in
            // memory order, so (R FF, G 00, B FF) is the magenta pixels here.
            for (double weight : {0.0, 1.0, 3.0, 7.0, 127.0, 2.0}) {
                clsGFX_2D gfx;
                ASSERT_TRUE(gfx.Create(width, 3));
                RandomFill(gfx, static_cast<std::uint32_t>(width + 1));
                gfx.Draw_StartSession();
                for (Long x = 0; x < width; x += 4) gfx.Draw_Pixel(x, x % 3, 0x00FF00FF);
                gfx.Draw_EndSession();
                auto expected = test::Snapshot(gfx);
                test::reference::FadeTo(expected, 0x00FF00FF, 0x00FF7F01, weight);
                gfx.Color_FadeTo(0x00FF00FF, 0x00FF7F01, weight);
                ASSERT_EQ(Bytes(gfx), expected.bytes) << simd << " " << width << " " << weight;
            }
        }
    }
    gfx_detail::EnableSimd(true);
}

// Every colour once (a 4096 x 4096 image holds the whole cube): the weighted
// grey of each against the rule, ties included.
TEST(ColorKernels, WeightedGreyOfEveryColour) {
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(4096, 4096));
    std::uint8_t* bits = gfx.Get_ptrDIBSection();
    for (std::size_t i = 0; i < std::size_t{1} << 24; ++i) {
        bits[3 * i] = static_cast<std::uint8_t>(i);
        bits[3 * i + 1] = static_cast<std::uint8_t>(i >> 8);
        bits[3 * i + 2] = static_cast<std::uint8_t>(i >> 16);
    }
    ASSERT_TRUE(gfx.Color_Gray(-1, true));  // the mask, pure red, keeps its one pixel
    for (std::size_t i = 0; i < std::size_t{1} << 24; ++i) {
        const int b = static_cast<std::uint8_t>(i), g = static_cast<std::uint8_t>(i >> 8),
                  r = static_cast<std::uint8_t>(i >> 16);
        const int expected =
            r == 255 && g == 0 && b == 0
                ? -1
                : static_cast<int>(RoundHalfEven((r * 222 + g * 707 + b * 71) / 1000.0));
        if (expected < 0) continue;
        ASSERT_EQ(bits[3 * i], expected) << r << "," << g << "," << b;
        ASSERT_EQ(bits[3 * i + 2], expected);
    }
}

// The 24-bit-only operations, each with the text it must leave.
struct Refusal {
    const char* text;
    std::function<bool(clsGFX_2D&)> run;
};

std::vector<Refusal> Refusals() {
    return {
        {"Only for 24 bits image", [](clsGFX_2D& g) { return g.Color_Invert(); }},
        {"Draw_ReadPixelB is only for 24bit depth images",
         [](clsGFX_2D& g) { return g.Color_Gray(0, false); }},
        {"Color_FadeTo is only for 24bit depth images",
         [](clsGFX_2D& g) { return g.Color_FadeTo(0, 0xFFFFFF, 1); }},
        {"Color_Halftone_ErrorDiffusion is only for 24bit depth images",
         [](clsGFX_2D& g) { return g.Color_Halftone_ErrorDiffusion(false); }},
        {"Color_Halftone_ErrorDiffusion is only for 24bit depth images",
         [](clsGFX_2D& g) { return g.Color_Halftone_Dithering(true); }},
        {"Color_Colourise is only for 24bit depth images",
         [](clsGFX_2D& g) { return g.Color_Colourise(10, 200); }},
        {"Color_ChannelComponent is only for 24bit depth images",
         [](clsGFX_2D& g) { return g.Color_ChannelComponent(3); }},
        {"Color_GetIstogram is only for 24bit depth images",
         [](clsGFX_2D& g) {
             clsGFX_2D::Histogram a{}, b{}, c{};
             Long result = 0;
             return g.Color_GetIstogram(0, a, b, c, result);
         }},
        {"Color_EqualizeIstogram is only for 24bit depth images",
         [](clsGFX_2D& g) { return g.Color_EqualizeIstogram(16); }},
        {"Color_ConvertRGBToHSL is only for 24bit depth images",
         [](clsGFX_2D& g) { return g.Color_ConvertRGBToHSL(); }},
        {"Color_ConvertHSLToRGB is only for 24bit depth images",
         [](clsGFX_2D& g) { return g.Color_ConvertHSLToRGB(); }},
    };
}

TEST(ColorRefusals, OtherDepthsGetTheExactTextAndKeepEveryByte) {
    for (Long bits : {8, 16, 32}) {
        for (const Refusal& r : Refusals()) {
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
    const std::function<void(clsGFX_2D&)> operations[] = {
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
        closed.Draw_StartSession();
        closed.Draw_Pixel(0, 0, 0x0A0B0C);
        closed.Draw_EndSession();
        EXPECT_EQ(Bytes(open), Bytes(closed)) << i;
    }
}

TEST(ColorFill, EveryDepthAndNeverThePadding) {
    const struct {
        Long bits;
        std::vector<int> row;  // 5 pixels and the padding
    } rows[] = {
        {8, {0x56, 0x56, 0x56, 0x56, 0x56, 0xEE, 0xEE, 0xEE}},
        {16, {0x34, 0x56, 0x34, 0x56, 0x34, 0x56, 0x34, 0x56, 0x34, 0x56, 0xEE, 0xEE}},
        {24,
         {0x12, 0x34, 0x56, 0x12, 0x34, 0x56, 0x12, 0x34, 0x56, 0x12, 0x34, 0x56, 0x12, 0x34, 0x56,
          0xEE}},
    };
    for (const auto& r : rows) {
        clsGFX_2D gfx;
        ASSERT_TRUE(gfx.Create(5, 2, r.bits));
        std::fill_n(gfx.Get_ptrDIBSection(), r.row.size() * 2, 0xEE);
        gfx.Color_Fill(0x00123456);
        const auto bytes = Bytes(gfx);
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            EXPECT_EQ(bytes[i], r.row[i % r.row.size()]) << r.bits << " byte " << i;
        }
    }
    clsGFX_2D deep;
    ASSERT_TRUE(deep.Create(2, 2, 32));
    deep.Color_Fill(0xFFFFFF);  // not a fill depth: nothing
    for (std::uint8_t b : Bytes(deep)) EXPECT_EQ(b, 0);
}

// Hue on the 0..6 hexcone scale, for a colour that is not grey.
double HexHue(int r, int g, int b) {
    const int mx = std::max({r, g, b}), mn = std::min({r, g, b});
    const double delta = mx - mn;
    double h = r == mx ? (g - b) / delta : g == mx ? 2 + (b - r) / delta : 4 + (r - g) / delta;
    return h < 0 ? h + 6 : h;
}

// The colour-space pair over every colour of the cube (a 4096 x 4096 image
// holds each once). The luminance is the weighted sum, while the way back is
// the hexcone around the mean of the extremes: the round trip keeps hue and
// turns the weighted luminance into the mean of the returned extremes. It is
// not the identity (pure red comes back as (153, 0, 0)), except on the grey axis.
TEST(ColorHsl, RoundTripAcrossTheWholeCube) {
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(4096, 4096));
    std::uint8_t* bits = gfx.Get_ptrDIBSection();
    for (std::size_t i = 0; i < std::size_t{1} << 24; ++i) {
        bits[3 * i] = static_cast<std::uint8_t>(i);
        bits[3 * i + 1] = static_cast<std::uint8_t>(i >> 8);
        bits[3 * i + 2] = static_cast<std::uint8_t>(i >> 16);
    }
    ASSERT_TRUE(gfx.Color_ConvertRGBToHSL());
    ASSERT_TRUE(gfx.Color_ConvertHSLToRGB());
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
        {255, 0, 0, 0, 255, 76.5f}, {0, 255, 0, 85, 255, 150.45f}, {0, 0, 255, 170, 255, 28.05f},
        {128, 128, 128, 0, 0, 128}, {255, 255, 255, 0, 0, 255},    {0, 0, 0, 0, 0, 0},
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

TEST(ColorColourise, KeepsLuminanceAndGivesTheHue) {
    auto a = OnePixel(128, 128, 128);
    ASSERT_TRUE(a->Color_Colourise(0, 255));  // hue 0 is red
    const auto rgb = RgbOf(*a);
    EXPECT_EQ(rgb[0], 255);
    EXPECT_EQ(rgb[1], 1);
    EXPECT_EQ(rgb[2], 1);
}

TEST(ColorHistogram, CountsEveryChannelAndEqualisesOne) {
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(4, 1));
    gfx.Draw_StartSession();
    for (Long x = 0; x < 4; ++x)
        gfx.Draw_PixelRGB(x, 0, {static_cast<std::uint8_t>(100 + x), 7, 7});
    gfx.Draw_EndSession();
    clsGFX_2D::Histogram red, green, blue;
    red.fill(99);
    Long largest = 0;
    ASSERT_TRUE(gfx.Color_GetIstogram(1, red, green, blue, largest));
    EXPECT_EQ(red[100], 1);
    EXPECT_EQ(red[0], 0);  // cleared first
    EXPECT_EQ(green[7], 4);
    EXPECT_EQ(largest, 4);
    ASSERT_TRUE(gfx.Color_EqualizeIstogram(0));
    gfx.Draw_StartSession();
    std::array<std::uint8_t, 3> rgb{};
    const int expected[] = {0, 85, 170, 255};
    for (Long x = 0; x < 4; ++x) {
        gfx.Draw_ReadPixelRGB(x, 0, rgb);
        EXPECT_EQ(rgb[0], expected[x]);
        EXPECT_EQ(rgb[1], 7);  // other channels untouched
    }
}

}  // namespace
}  // namespace kelvarin

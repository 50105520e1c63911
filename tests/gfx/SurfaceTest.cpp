// SPDX-License-Identifier: MIT
// The surface: layout, creation, the pixel array, sessions, pictures in and out.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "common/Picture.h"
#include "gfx/PixelMemory.h"
#include "gfx/clsGFX_2D.h"
#include "tests/gfx/TestImages.h"

namespace kelvarin {
namespace {

using namespace test;

TEST(Surface, ScanLinesArePaddedToFourBytesAndSessionsReachIntoThePadding) {
    const struct {
        Long width, height, bits, stride, lastColumn;
    } rows[] = {
        {5, 3, 24, 16, 5},  // 15 bytes of pixels: the last column index reaches the padding
        {4, 2, 24, 12, 3},  // no padding
        {1, 1, 24, 4, 1},  {7, 2, 24, 24, 7}, {5, 1, 8, 8, 7}, {3, 2, 16, 8, 3}, {2, 1, 32, 8, 1},
    };
    for (const auto& r : rows) {
        clsGFX_2D gfx;
        ASSERT_TRUE(gfx.Create(r.width, r.height, r.bits)) << r.width << "x" << r.bits;
        EXPECT_EQ(gfx.Get_BytesPerScanLine(), r.stride) << r.width << "x" << r.bits;
        EXPECT_EQ(Bytes(gfx).size(), static_cast<std::size_t>(r.stride * r.height));
        gfx.Draw_StartSession();
        EXPECT_EQ(gfx.LastColumnIndex(), r.lastColumn) << r.width << "x" << r.bits;
        EXPECT_EQ(gfx.LastRowIndex(), r.height - 1);
    }
}

// A size past the memory cap (256 MiB, at any depth) says so; the other
// refusals leave no text, as Create has none of its own.
TEST(Surface, UnusableSizesAndDepthsLeaveNoSurface) {
    const struct {
        Long width, height, bits;
        bool tooLarge = false;
    } rows[] = {{0, 5, 24},
                {4, -3, 24},
                {4, 4, 12},
                {4, 4, -24},
                {100000, 100000, 24, true},
                {2147483647, 1, 24, true},
                {16400, 16400, 8, true},  // 256.5 MiB
                {-2147483647 - 1, 1, 8}};
    for (const auto& r : rows) {
        clsGFX_2D gfx;
        ASSERT_TRUE(gfx.Create(3, 3));
        EXPECT_FALSE(gfx.Create(r.width, r.height, r.bits)) << r.width << " " << r.bits;
        EXPECT_EQ(gfx.Get_hDIB(), 0u);
        EXPECT_EQ(gfx.Get_ptrDIBSection(), nullptr);
        EXPECT_EQ(gfx.Get_Width(), r.width);  // the header keeps what was asked
        EXPECT_EQ(gfx.Get_LastError(),
                  r.tooLarge ? "Create: " + std::to_string(r.width) + "x" +
                                   std::to_string(r.height) + " at " + std::to_string(r.bits) +
                                   " bits is more than the 256 MiB a surface may have"
                             : "");
    }
    // 256 MiB itself is allowed: 16384 x 16384 at 8 bits, without touching it.
    EXPECT_EQ(clsGFX_2D::kMaxSurfaceBytes, std::int64_t{16384} * 16384);
    // A resample to such a size leaves the image as it was, with the reason.
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(2, 2));
    EXPECT_FALSE(gfx.Image_Resample(100000, 100000));
    EXPECT_EQ(gfx.Get_Width(), 2);
    EXPECT_NE(gfx.Get_LastError().find("256 MiB"), std::string::npos);
}

TEST(Surface, OperationsOnAMissingSurfaceRaiseInsteadOfTouchingMemory) {
    clsGFX_2D gfx;
    EXPECT_FALSE(gfx.Create(100000, 100000, 24));
    EXPECT_EQ(ErrorOf([&] { gfx.Color_Gray(0, true); }), 9);
    EXPECT_EQ(ErrorOf([&] { gfx.Get_Picture(); }), 9);
    gfx.Draw_StartSession();
    EXPECT_EQ(ErrorOf([&] { gfx.Draw_Line(0, 0, 3, 3, 0); }), 9);
    gfx.Draw_EndSession();
    // Width 0: nothing to walk, nothing raised.
    EXPECT_FALSE(gfx.Create(0, 4, 24));
    EXPECT_EQ(ErrorOf([&] { gfx.Color_Fill(0); }), 0);
    // A fresh instance has no depth: its session divides by zero.
    clsGFX_2D fresh;
    EXPECT_EQ(ErrorOf([&] { fresh.Draw_StartSession(); }), 11);
    EXPECT_FALSE(fresh.SessionOpen());
}

TEST(Surface, DataGetSharesTheMemoryAndIsRefusedDuringASession) {
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(5, 3, 24));
    // As a device context rows count from the top: row 0 of memory is shown last.
    EXPECT_EQ(gfx.ScanLine(2), gfx.Get_ptrDIBSection());
    EXPECT_EQ(gfx.ScanLine(0), gfx.Get_ptrDIBSection() + 32);
    PixelArray view;
    ASSERT_TRUE(gfx.Data_Get(view));
    EXPECT_EQ(view.Data(), gfx.Get_ptrDIBSection());
    EXPECT_EQ(view.BytesPerRow(), 16);
    view(15, 2) = 7;  // the padding byte of the top row
    EXPECT_EQ(Bytes(gfx)[2 * 16 + 15], 7);
    EXPECT_EQ(ErrorOf([&] { view(16, 0) = 1; }), 9);
    EXPECT_EQ(ErrorOf([&] { view(0, 3) = 1; }), 9);

    gfx.Draw_StartSession();
    PixelArray other(view.Data(), 1, 1);
    EXPECT_FALSE(gfx.Data_Get(other));
    EXPECT_EQ(other.BytesPerRow(), 1);  // untouched
    gfx.Draw_EndSession();
    gfx.Draw_EndSession();  // harmless twice
    gfx.Data_Release(view);
    EXPECT_TRUE(view.Empty());
    EXPECT_EQ(ErrorOf([&] { view(0, 0) = 1; }), 9);
    EXPECT_NE(gfx.Get_ptrDIBSection(), nullptr);  // releasing the view frees nothing
}

TEST(Surface, GetPictureCopiesTheSurface) {
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(5, 3, 24));
    RandomFill(gfx, 2);
    const auto picture = gfx.Get_Picture();
    ASSERT_NE(picture, nullptr);
    EXPECT_FALSE(gfx.SessionOpen());
    EXPECT_EQ(picture->BitsPerPixel(), 24);
    const auto before = Bytes(gfx);
    for (int y = 0; y < 3; ++y) {
        const auto row = picture->Row(y);
        ASSERT_EQ(row.size(), 15u);
        for (int i = 0; i < 15; ++i) EXPECT_EQ(row[i], before[y * 16 + i]);
    }
    gfx.Color_Fill(0x123456);
    EXPECT_EQ(picture->Row(0)[0], before[0]);  // independent of the surface

    EXPECT_FALSE(gfx.Create(0, 3, 24));
    EXPECT_EQ(gfx.Get_Picture(), nullptr);
    EXPECT_EQ(gfx.Get_LastError(), "Image has width=0");

    // A session of the caller is used and left open.
    ASSERT_TRUE(gfx.Create(2, 2, 24));
    gfx.Draw_StartSession();
    EXPECT_NE(gfx.Get_Picture(), nullptr);
    EXPECT_TRUE(gfx.SessionOpen());
}

TEST(Surface, BitmapPicturesKeepTheirDepthBytesAndColourTable) {
    clsGFX_2D gfx;
    for (int bits : {8, 16, 24, 32}) {
        const auto p = Picture::MakeBitmap(7, 2, bits);
        for (int y = 0; y < 2; ++y) {
            for (auto& b : p->Row(y)) b = static_cast<std::uint8_t>(&b - p->Row(y).data() + 40 * y);
        }
        ASSERT_TRUE(gfx.Create_FromPicture(p.get()));
        EXPECT_EQ(gfx.BitsPerPixel(), bits);
        const auto stride = gfx.Get_BytesPerScanLine();
        for (int y = 0; y < 2; ++y) {
            const auto row = p->Row(y);
            for (std::size_t i = 0; i < row.size(); ++i) {
                ASSERT_EQ(gfx.Get_ptrDIBSection()[y * stride + static_cast<Long>(i)], row[i]);
            }
        }
    }
    const std::vector<RgbQuad> palette = {{1, 2, 3, 0}, {4, 5, 6, 0}, {200, 100, 50, 0}};
    ASSERT_TRUE(gfx.Create_FromPicture(Picture::MakeBitmap(5, 3, 8, palette).get()));
    ASSERT_EQ(gfx.ColorTable().size(), 256u);
    EXPECT_EQ(gfx.ColorTable()[2], palette[2]);
    EXPECT_EQ(gfx.ColorTable()[3], (RgbQuad{3, 3, 3, 0}));  // the rest stays grey
}

// Rendering an icon is the picture context's; here, the size it is given.
TEST(Surface, IconsGiveTwiceTheirHotSpotAndShowTheBackColourWhereTransparent) {
    auto icon = Picture::MakeIcon(32, 32, 4, 10);  // a hot spot off centre decides the size
    for (int y = 0; y < 32; ++y) std::fill_n(icon->MaskRow(y).begin(), 32, 1);
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create_FromPicture(icon.get(), 0x00FF00));
    EXPECT_EQ(gfx.Get_Width(), 8);
    EXPECT_EQ(gfx.Get_Height(), 20);
    EXPECT_EQ(PixelAt(gfx, 0, 0), 0x00FF00);
    ASSERT_TRUE(gfx.Create_FromPicture(icon.get()));
    EXPECT_EQ(PixelAt(gfx, 0, 0), 0);  // without a back colour: black
    EXPECT_FALSE(gfx.Create_FromPicture(Picture::MakeIcon(8, 8, 0, 3).get()));
}

TEST(Surface, PicturesThatAreNotBitmapsOrIconsGiveNoSurface) {
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(4, 4));
    EXPECT_FALSE(gfx.Create_FromPicture(Picture::MakeOfType(PictureType::Metafile).get()));
    EXPECT_EQ(gfx.Get_hDC(), nullptr);
    EXPECT_FALSE(gfx.Create_FromPicture(Picture::MakeOfType(PictureType::None).get()));
    EXPECT_FALSE(gfx.Create_FromPicture(nullptr));
}

// A surface's memory, once released, goes to the next surface of about its
// size on the same thread, which still starts all 0; the kept memory stays
// within its bounds, in bytes and in buffers.
TEST(Surface, ReleasedMemoryIsReusedZeroedAndBounded) {
    using gfx_detail::CachedPixelBytes;
    using gfx_detail::kPixelCacheBytes;
    gfx_detail::ReleaseCachedPixels();
    EXPECT_EQ(CachedPixelBytes(), 0u);
    std::uint8_t* first = nullptr;
    {
        clsGFX_2D gfx;
        ASSERT_TRUE(gfx.Create(300, 200));
        first = gfx.Get_ptrDIBSection();
        std::fill_n(first, 900 * 200, std::uint8_t{0xAB});
    }
    EXPECT_EQ(CachedPixelBytes(), 900u * 200);
    {
        clsGFX_2D gfx;
        ASSERT_TRUE(gfx.Create(299, 200));  // 4 bytes a row fewer: near enough
        EXPECT_EQ(gfx.Get_ptrDIBSection(), first);
        EXPECT_EQ(CachedPixelBytes(), 0u);
        const std::uint8_t* bits = gfx.Get_ptrDIBSection();
        EXPECT_TRUE(std::all_of(bits, bits + 900 * 200, [](std::uint8_t b) { return b == 0; }));
        // A resample gets it back and writes every byte, padding included.
        ASSERT_TRUE(gfx.Create(300, 200));
        test::RandomFill(gfx, 7);
        ASSERT_TRUE(gfx.Image_Resample(299, 200));
        ASSERT_TRUE(gfx.Image_Resample(300, 200));
        EXPECT_EQ(gfx.Get_ptrDIBSection(), first);
    }
    {
        clsGFX_2D gfx;  // a much smaller surface does not take the large buffer
        ASSERT_TRUE(gfx.Create(10, 10));
        EXPECT_NE(gfx.Get_ptrDIBSection(), first);
    }
    // At most a few buffers are kept, the ones released last: rows of
    // 3000, 3900, ... 7500 bytes.
    std::vector<std::unique_ptr<clsGFX_2D>> many;
    for (Long i = 0; i < gfx_detail::kPixelCacheBuffers + 2; ++i) {
        many.push_back(std::make_unique<clsGFX_2D>());
        ASSERT_TRUE(many.back()->Create(1000 + i * 300, 100));
    }
    for (auto& gfx : many) gfx.reset();
    static_assert(gfx_detail::kPixelCacheBuffers == 4);
    EXPECT_EQ(CachedPixelBytes(), std::size_t{4800 + 5700 + 6600 + 7500} * 100);
    {
        // And never more bytes than the bound: of three surfaces of 40 % of
        // it each, the oldest goes back to the system.
        const auto side = static_cast<Long>(std::sqrt(kPixelCacheBytes * 0.4 / 3));
        std::vector<clsGFX_2D> large(3);
        for (auto& gfx : large) ASSERT_TRUE(gfx.Create(side, side));
    }
    EXPECT_LE(CachedPixelBytes(), kPixelCacheBytes);
    EXPECT_GT(CachedPixelBytes(), kPixelCacheBytes / 2);
}

}  // namespace
}  // namespace kelvarin

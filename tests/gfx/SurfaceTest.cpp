// The surface: layout, creation, the pixel array, sessions, pictures in and out.
#include <gtest/gtest.h>

#include "common/Picture.h"
#include "gfx/clsGFX_2D.h"
#include "tests/gfx/TestImages.h"

namespace kelvarin {
namespace {

using test::Bytes;
using test::ErrorOf;
using test::PixelAt;
using test::RandomFill;

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
        EXPECT_EQ(gfx.Get_BytesPerPixel(), r.bits / 8);
        EXPECT_EQ(Bytes(gfx).size(), static_cast<std::size_t>(r.stride * r.height));
        gfx.Draw_StartSession();
        EXPECT_EQ(gfx.LastColumnIndex(), r.lastColumn) << r.width << "x" << r.bits;
        EXPECT_EQ(gfx.LastRowIndex(), r.height - 1);
    }
}

TEST(Surface, CreateGivesZeroedMemoryAndANewHandleEachTime) {
    clsGFX_2D gfx;
    EXPECT_EQ(gfx.Get_hDC(), nullptr);
    EXPECT_EQ(gfx.Get_hDIB(), 0u);
    ASSERT_TRUE(gfx.Create(7, 3));  // 24 bits by default
    const auto first = gfx.Get_hDIB();
    EXPECT_NE(first, 0u);
    EXPECT_EQ(gfx.Get_hDC(), &gfx);
    RandomFill(gfx, 1);
    ASSERT_TRUE(gfx.Create(7, 3, 24));
    EXPECT_NE(gfx.Get_hDIB(), first);
    EXPECT_EQ(Bytes(gfx), std::vector<std::uint8_t>(72, 0));
    const auto v = gfx.Viewport();
    EXPECT_EQ(v.Xmax, 6);
    EXPECT_EQ(v.Ymax, 2);
}

TEST(Surface, UnusableSizesAndDepthsLeaveNoSurface) {
    const struct {
        Long width, height, bits;
    } rows[] = {{0, 5, 24},         {5, 0, 24},           {-3, 4, 24},
                {4, -3, 24},        {4, 4, 12},           {4, 4, 0},
                {4, 4, -24},        {100000, 100000, 24}, {2147483647, 2147483647, 32},
                {2147483647, 1, 24}};
    for (const auto& r : rows) {
        clsGFX_2D gfx;
        ASSERT_TRUE(gfx.Create(3, 3));
        EXPECT_FALSE(gfx.Create(r.width, r.height, r.bits)) << r.width << " " << r.bits;
        EXPECT_EQ(gfx.Get_hDC(), nullptr);
        EXPECT_EQ(gfx.Get_hDIB(), 0u);
        EXPECT_EQ(gfx.Get_ptrDIBSection(), nullptr);
        EXPECT_EQ(gfx.Get_Width(), r.width);  // the header keeps what was asked
        EXPECT_EQ(gfx.Get_LastError(), "");
    }
}

TEST(Surface, OperationsOnAMissingSurfaceRaiseInsteadOfTouchingMemory) {
    clsGFX_2D gfx;
    EXPECT_FALSE(gfx.Create(100000, 100000, 24));
    EXPECT_EQ(ErrorOf([&] { gfx.Color_Fill(0); }), 9);
    EXPECT_EQ(ErrorOf([&] { gfx.Color_Gray(0, true); }), 9);
    EXPECT_EQ(ErrorOf([&] { gfx.Get_Picture(); }), 9);
    gfx.Draw_StartSession();
    EXPECT_EQ(ErrorOf([&] { gfx.Draw_Pixel(0, 0, 0); }), 9);
    EXPECT_EQ(ErrorOf([&] { gfx.Draw_Line(0, 0, 3, 3, 0); }), 9);
    EXPECT_EQ(ErrorOf([&] { gfx.Draw_Clear(); }), 9);
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
    EXPECT_EQ(view.Rows(), 3);
    view(15, 2) = 7;  // the padding byte of the top row
    EXPECT_EQ(Bytes(gfx)[2 * 16 + 15], 7);
    EXPECT_EQ(ErrorOf([&] { view(16, 0) = 1; }), 9);
    EXPECT_EQ(ErrorOf([&] { view(0, 3) = 1; }), 9);
    EXPECT_EQ(ErrorOf([&] { view(-1, 0) = 1; }), 9);

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

TEST(Surface, GetPictureCopiesA24BitSurfaceAndRefusesOthers) {
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(4, 4, 16));
    EXPECT_EQ(gfx.Get_Picture(), nullptr);
    EXPECT_EQ(gfx.Get_LastError(), "Picture property is only for 24bit depth images");
    ASSERT_TRUE(gfx.Create(5, 3, 24));
    RandomFill(gfx, 2);
    const auto picture = gfx.Get_Picture();
    ASSERT_NE(picture, nullptr);
    // Success keeps the earlier failure's text.
    EXPECT_EQ(gfx.Get_LastError(), "Picture property is only for 24bit depth images");
    EXPECT_FALSE(gfx.SessionOpen());
    EXPECT_EQ(picture->Type(), PictureType::Bitmap);
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

TEST(Surface, BitmapPicturesKeepTheirDepthAndColourTable) {
    std::vector<RgbQuad> palette = {{1, 2, 3, 0}, {4, 5, 6, 0}, {200, 100, 50, 0}};
    const auto picture = Picture::MakeBitmap(5, 3, 8, palette);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 5; ++x) picture->Row(y)[x] = static_cast<std::uint8_t>((x + y) % 3);
    }
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create_FromPicture(picture.get()));
    EXPECT_EQ(gfx.Get_BytesPerPixel(), 1);
    ASSERT_EQ(gfx.ColorTable().size(), 256u);
    EXPECT_EQ(gfx.ColorTable()[2], palette[2]);
    EXPECT_EQ(gfx.ColorTable()[3], (RgbQuad{3, 3, 3, 0}));  // the rest stays grey
    const auto bytes = Bytes(gfx);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 5; ++x) EXPECT_EQ(bytes[y * 8 + x], (x + y) % 3);
    }
    // The 24-bit-only operations refuse such a surface.
    EXPECT_FALSE(gfx.Color_Gray(0, true));
    EXPECT_EQ(gfx.Get_LastError(), "Draw_ReadPixelB is only for 24bit depth images");

    for (int bits : {16, 24, 32}) {
        const auto p = Picture::MakeBitmap(7, 2, bits);
        for (int y = 0; y < 2; ++y) {
            for (auto& b : p->Row(y)) b = static_cast<std::uint8_t>(&b - p->Row(y).data() + 40 * y);
        }
        ASSERT_TRUE(gfx.Create_FromPicture(p.get()));
        EXPECT_EQ(gfx.BitsPerPixel(), bits);
        const auto copy = gfx.Get_BytesPerScanLine();
        for (int y = 0; y < 2; ++y) {
            const auto row = p->Row(y);
            for (std::size_t i = 0; i < row.size(); ++i) {
                ASSERT_EQ(gfx.Get_ptrDIBSection()[y * copy + static_cast<Long>(i)], row[i]);
            }
        }
    }
}

TEST(Surface, IconsGiveTwiceTheirHotSpotAndShowTheBackColourWhereTransparent) {
    auto icon = Picture::MakeIcon(32, 32);  // hot spot (16, 16)
    // Opaque red in the lower half, transparent above.
    for (int y = 0; y < 32; ++y) {
        for (int x = 0; x < 32; ++x) {
            if (y < 16) {
                icon->Row(y)[3 * x + 2] = 255;
            } else {
                icon->MaskRow(y)[x] = 1;
            }
        }
    }
    clsGFX_2D gfx;
    for (Long back : {-1, 0x00FF00}) {
        ASSERT_TRUE(gfx.Create_FromPicture(icon.get(), back));
        EXPECT_EQ(gfx.Get_Width(), 32);
        EXPECT_EQ(gfx.Get_Height(), 32);
        EXPECT_EQ(PixelAt(gfx, 3, 3), 0x0000FF);
        EXPECT_EQ(PixelAt(gfx, 3, 20), back < 0 ? 0 : back);  // transparent: black without one
    }

    // A hot spot off centre decides the size, whatever the icon's own.
    auto odd = Picture::MakeIcon(32, 32, 4, 10);
    ASSERT_TRUE(gfx.Create_FromPicture(odd.get()));
    EXPECT_EQ(gfx.Get_Width(), 8);
    EXPECT_EQ(gfx.Get_Height(), 20);
    auto none = Picture::MakeIcon(8, 8, 0, 3);
    EXPECT_FALSE(gfx.Create_FromPicture(none.get()));
}

TEST(Surface, PicturesThatAreNotBitmapsOrIconsGiveNoSurface) {
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(4, 4));
    const auto metafile = Picture::MakeOfType(PictureType::Metafile);
    EXPECT_FALSE(gfx.Create_FromPicture(metafile.get()));
    EXPECT_EQ(gfx.Get_hDC(), nullptr);
    ASSERT_TRUE(gfx.Create(4, 4));
    const auto empty = Picture::MakeOfType(PictureType::None);
    EXPECT_FALSE(gfx.Create_FromPicture(empty.get()));
    EXPECT_FALSE(gfx.Create_FromPicture(nullptr));
    EXPECT_EQ(gfx.Get_hDC(), nullptr);
}

}  // namespace
}  // namespace kelvarin

// SPDX-License-Identifier: MIT
// Block transfers between device contexts: raster operations, clipping,
// depth conversion, overlap; pictures as contexts.
#include <gtest/gtest.h>

#include <vector>

#include "common/OleColor.h"
#include "common/Picture.h"
#include "gfx/PictureDC.h"
#include "gfx/clsGFX_2D.h"
#include "tests/gfx/TestImages.h"

namespace kelvarin {
namespace {

using namespace test;

// A plain top-down 24-bit context, as a control's drawing area might be.
class Canvas final : public DeviceContext {
public:
    Canvas(int width, int height, std::uint8_t fill)
        : width_(width),
          height_(height),
          bytes_(static_cast<std::size_t>(width * height * 3), fill) {}
    int PixelWidth() const override { return width_; }
    int PixelHeight() const override { return height_; }
    int BitsPerPixel() const override { return 24; }
    const std::uint8_t* ScanLine(int y) const override { return bytes_.data() + y * width_ * 3; }
    std::uint8_t* WritableScanLine(int y) override { return bytes_.data() + y * width_ * 3; }
    std::uint8_t At(int x, int y, int channel) const {
        return bytes_[(y * width_ + x) * 3 + channel];
    }

private:
    int width_, height_;
    std::vector<std::uint8_t> bytes_;
};

TEST(BitBlt, RasterOperationsCombineSourceAndDestinationBits) {
    const std::uint8_t s = 0b11001100, d = 0b10101010;
    const struct {
        std::uint32_t rop;
        std::uint8_t result;
    } rows[] = {
        {SRCCOPY, s},
        {SRCPAINT, s | d},
        {SRCAND, s & d},
        {SRCINVERT, s ^ d},
        {SRCERASE, static_cast<std::uint8_t>(s & ~d)},
        {NOTSRCCOPY, static_cast<std::uint8_t>(~s)},
        {NOTSRCERASE, static_cast<std::uint8_t>(~(s | d))},
        {MERGEPAINT, static_cast<std::uint8_t>(~s | d)},
        {DSTINVERT, static_cast<std::uint8_t>(~d)},
        {BLACKNESS, 0},
        {WHITENESS, 0xFF},
    };
    for (const auto& r : rows) {
        clsGFX_2D source, target;
        ASSERT_TRUE(source.Create(3, 2));
        ASSERT_TRUE(target.Create(3, 2));
        std::fill_n(source.Get_ptrDIBSection(), 24, s);
        std::fill_n(target.Get_ptrDIBSection(), 24, d);
        ASSERT_TRUE(source.BitBlt_PaintPicture(&target, 0, 0, -1, -1, 0, 0, r.rop));
        const auto bytes = Bytes(target);
        for (int y = 0; y < 2; ++y) {
            for (int i = 0; i < 9; ++i) EXPECT_EQ(bytes[y * 12 + i], r.result) << std::hex << r.rop;
            EXPECT_EQ(bytes[y * 12 + 9], d);  // padding is not part of the picture
        }
    }
}

TEST(BitBlt, AnUnknownOperationCopiesNothingAndSaysSo) {
    clsGFX_2D source, target;
    ASSERT_TRUE(source.Create(2, 2));
    ASSERT_TRUE(target.Create(2, 2));
    source.Color_Fill(0xFFFFFF);
    EXPECT_FALSE(source.BitBlt_PaintPicture(&target, 0, 0, -1, -1, 0, 0, 0x00123456));
    EXPECT_EQ(source.Get_LastError(), "BitBlt_PaintPicture: unknown raster operation 0x00123456");
    EXPECT_FALSE(target.BitBlt_LoadPicture(&source, 0, 0, -1, -1, 0x00CC0021));
    EXPECT_EQ(target.Get_LastError(), "BitBlt_LoadPicture: unknown raster operation 0x00CC0021");
    for (std::uint8_t b : Bytes(target)) EXPECT_EQ(b, 0);
}

TEST(BitBlt, NegativeSizesPaintTheWholeSurfaceAndEdgesClip) {
    clsGFX_2D gfx;
    ASSERT_TRUE(gfx.Create(4, 3));
    for (Long y = 0; y < 3; ++y) {
        for (Long x = 0; x < 4; ++x)
            test::Paint(gfx, {{x, y, static_cast<Long>(RGB(10 * x + 1, 10 * y + 1, 7))}});
    }

    Canvas whole(6, 5, 0xEE);
    ASSERT_TRUE(gfx.BitBlt_PaintPicture(&whole, 1, 1, -1, -1, 0, 0, SRCCOPY));
    // Device rows count from the top: surface row 2 (the top) lands on canvas row 1.
    EXPECT_EQ(whole.At(1, 1, 1), 21);
    EXPECT_EQ(whole.At(4, 3, 2), 31);
    EXPECT_EQ(whole.At(0, 0, 0), 0xEE);
    EXPECT_EQ(whole.At(5, 4, 0), 0xEE);

    // Off every edge of the target, and a source rectangle past the surface.
    Canvas clipped(3, 3, 0xEE);
    ASSERT_TRUE(gfx.BitBlt_PaintPicture(&clipped, -2, -1, 10, 10, 0, 0, SRCCOPY));
    EXPECT_EQ(clipped.At(0, 0, 2), 21);  // surface pixel (2, 1)
    EXPECT_EQ(clipped.At(1, 1, 1), 1);   // surface pixel (3, 0)
    EXPECT_EQ(clipped.At(2, 0, 0), 0xEE);
    ASSERT_TRUE(gfx.BitBlt_PaintPicture(&clipped, 0, 0, 3, 3, -1, 2, SRCCOPY));
    EXPECT_EQ(clipped.At(1, 0, 2), 1);   // surface pixel (0, 0); column 0 had no source
    EXPECT_EQ(clipped.At(0, 0, 2), 21);  // left as it was
    EXPECT_EQ(clipped.At(1, 1, 1), 1);   // row 1 had no source either: as before
    // Cut at the top: one row of the two asked for.
    Canvas top(4, 3, 0xEE);
    ASSERT_TRUE(gfx.BitBlt_PaintPicture(&top, 0, -1, 4, 2, 0, 0, SRCCOPY));
    EXPECT_EQ(top.At(0, 0, 1), 11);  // surface row 1 from the top
    EXPECT_EQ(top.At(0, 1, 1), 0xEE);

    // Loading from a context at an offset fills the surface from its corner.
    Canvas canvas(5, 5, 0);
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 5; ++x)
            canvas.WritableScanLine(y)[3 * x] = static_cast<std::uint8_t>(10 * y + x);
    }
    ASSERT_TRUE(gfx.BitBlt_LoadPicture(&canvas, 2, 3, -1, -1, SRCCOPY));
    EXPECT_EQ(PixelAt(gfx, 0, 2) >> 16, 32);  // top-left of the surface
    EXPECT_EQ(PixelAt(gfx, 2, 1) >> 16, 44);
    EXPECT_EQ(PixelAt(gfx, 0, 0), RGB(1, 1, 7));  // below the canvas: as before
}

TEST(BitBlt, OverlappingCopiesWithinOneSurfaceReadTheOriginal) {
    for (int dx : {-1, 0, 1}) {
        for (int dy : {-1, 1}) {
            clsGFX_2D gfx;
            ASSERT_TRUE(gfx.Create(7, 5));
            RandomFill(gfx, 21);
            const auto copy = test::Clone(gfx);
            ASSERT_TRUE(
                gfx.BitBlt_PaintPicture(gfx.Get_hDC(), 1 + dx, 1 + dy, 5, 3, 1, 1, SRCINVERT));
            EXPECT_FALSE(copy->BitBlt_PaintPicture(nullptr));
            auto expected = test::Clone(*copy);
            ASSERT_TRUE(
                copy->BitBlt_PaintPicture(expected.get(), 1 + dx, 1 + dy, 5, 3, 1, 1, SRCINVERT));
            EXPECT_EQ(Bytes(gfx), Bytes(*expected)) << dx << "," << dy;
        }
    }
}

TEST(BitBlt, OtherDepthsAreConvertedToTheDestinations) {
    std::vector<RgbQuad> palette = {
        {0, 0, 0, 0}, {255, 255, 255, 0}, {0, 0, 200, 0}, {0, 200, 0, 0}};
    auto indexed = Picture::MakeBitmap(4, 1, 8, palette);
    for (int x = 0; x < 4; ++x) indexed->Row(0)[x] = static_cast<std::uint8_t>(x);
    clsGFX_2D full;
    ASSERT_TRUE(full.Create(4, 1, 24));
    const BitmapDC source(*indexed);
    ASSERT_TRUE(full.BitBlt_LoadPicture(&source));
    EXPECT_EQ(PixelAt(full, 2, 0), RGB(200, 0, 0));
    EXPECT_EQ(PixelAt(full, 3, 0), RGB(0, 200, 0));
    test::Paint(full, {{0, 0, RGB(190, 10, 0)}});  // nearest to the table's red

    clsGFX_2D back;
    ASSERT_TRUE(back.Create_FromPicture(indexed.get()));
    std::fill_n(back.Get_ptrDIBSection(), 4, 0);
    ASSERT_TRUE(full.BitBlt_PaintPicture(&back));
    const auto bytes = Bytes(back);
    EXPECT_EQ(bytes[0], 2);
    EXPECT_EQ(bytes[1], 1);
    EXPECT_EQ(bytes[3], 3);

    auto five = Picture::MakeBitmap(1, 1, 16);
    five->Row(0)[0] = 0x1F;  // blue 31
    five->Row(0)[1] = 0x7C;  // red 31
    const BitmapDC fiveDC(*five);
    ASSERT_TRUE(full.BitBlt_LoadPicture(&fiveDC, 0, 0, 1, 1));
    EXPECT_EQ(PixelAt(full, 0, 0), RGB(255, 0, 255));
}

TEST(PictureDC, RendersBitmapsAndIconsOnTheBackColour) {
    auto icon = Picture::MakeIcon(2, 2);
    icon->MaskRow(0)[0] = 1;  // bottom-left transparent
    icon->Row(1)[5] = 200;    // top-right red
    const RenderedPictureDC rendered(*icon, RGB(1, 2, 3));
    ASSERT_EQ(rendered.PixelWidth(), 2);
    EXPECT_EQ(rendered.ScanLine(1)[0], 3);  // back colour blue, bottom-left
    EXPECT_EQ(rendered.ScanLine(0)[5], 200);
    EXPECT_EQ(rendered.ScanLine(0)[3], 0);  // opaque black

    const auto metafile = Picture::MakeOfType(PictureType::Metafile);
    const RenderedPictureDC nothing(*metafile, 0);
    EXPECT_EQ(nothing.PixelWidth(), 0);
    EXPECT_EQ(BitmapDC(*metafile).ScanLine(0), nullptr);
}

// A rectangle filled a row at a time holds the colour in every pixel of it
// and leaves every byte around it, the rows' padding too, as it was.
TEST(FillPixels24, FillsEveryPixelOfTheRectangleAndNothingElse) {
    const std::uint8_t bgr[3] = {0x11, 0x22, 0x33};
    for (int width : {1, 5, 7, 15, 16, 17, 31, 33, 70}) {
        for (int height : {1, 2, 5}) {
            SCOPED_TRACE(std::to_string(width) + " x " + std::to_string(height));
            const int stride = (width + 5) * 3 + 2;  // three pixels each side, and padding
            std::vector<std::uint8_t> bytes(static_cast<std::size_t>(stride * (height + 2)), 0xEE);
            FillPixels24(bytes.data() + stride + 9, stride, width, height, bgr);
            for (int y = 0; y < height + 2; ++y) {
                for (int i = 0; i < stride; ++i) {
                    const int x = i / 3 - 3;
                    const bool inside = y >= 1 && y <= height && i >= 9 && x < width;
                    const std::uint8_t expected = inside ? bgr[i % 3] : 0xEE;
                    ASSERT_EQ(bytes[static_cast<std::size_t>(y * stride + i)], expected)
                        << "row " << y << " byte " << i;
                }
            }
        }
    }
    std::vector<std::uint8_t> untouched(12, 0xEE);
    FillPixels24(untouched.data(), 12, 0, 3, bgr);
    FillPixels24(untouched.data(), 12, 4, 0, bgr);
    EXPECT_EQ(untouched, std::vector<std::uint8_t>(12, 0xEE));
}

}  // namespace
}  // namespace kelvarin

// SPDX-License-Identifier: MIT
// The Qt host's surface: exact bytes in a padded 24-bit image, drawing
// clipped to the view, text measured and drawn by Qt and placed by the
// host's layout rule. Lines and the focus rectangle are drawn pixel by pixel
// by the host's own code, tested on the headless surface.
#include "qt/ImageSurface.h"

#include <gtest/gtest.h>

#include "tests/qt/QtPrinters.h"

#include <QFontMetrics>

#include "host/TextLayout.h"
#include "qt/QtPlatform.h"

namespace kelvarin::qt {
namespace {

constexpr OLE_COLOR kPaper = RGB(250, 250, 250);

class ImageSurfaceTest : public ::testing::Test {
protected:
    // An image of w x h with the view inset by `border` on every side.
    void Make(int w, int h, int border = 0) {
        image_ = QImage(w, h, QImage::Format_BGR888);
        image_.fill(ToQColor(kPaper));
        surface_.SetView(QRect(border, border, w - 2 * border, h - 2 * border));
    }
    OLE_COLOR ImageAt(int x, int y) const { return FromQColor(image_.pixelColor(x, y)); }
    // Columns of the view holding a pixel other than the paper's.
    std::pair<int, int> InkColumns() const {
        int first = -1, last = -1;
        const QRect v = surface_.View();
        for (int x = 0; x < v.width(); ++x)
            for (int y = 0; y < v.height(); ++y)
                if (surface_.GetPixel({x, y}) != kPaper) {
                    if (first < 0) first = x;
                    last = x;
                }
        return {first, last};
    }

    QImage image_;
    TextPainter text_;
    ImageSurface surface_{image_, text_};
};

// What a raster blit writes through: the view's rows, each starting at the
// view's first pixel.
TEST_F(ImageSurfaceTest, RowsAreBlueGreenRedBytesOfThePaddedImageFromTheView) {
    Make(7, 4, 1);  // 21 bytes of pixels in rows padded to 24; a 5 x 2 view
    ASSERT_EQ(image_.bytesPerLine(), 24);
    EXPECT_EQ(surface_.PixelWidth(), 5);
    EXPECT_EQ(surface_.PixelHeight(), 2);
    surface_.SetPixel({4, 1}, RGB(1, 2, 3));
    const std::uint8_t* row = surface_.ScanLine(1);
    EXPECT_EQ(row, image_.constScanLine(2) + 3);
    EXPECT_EQ(row[12], 3);
    EXPECT_EQ(row[14], 1);
    EXPECT_EQ(ImageAt(5, 2), RGB(1, 2, 3));
    surface_.WritableScanLine(0)[0] = 255;  // blue of the view's first pixel
    EXPECT_EQ(surface_.GetPixel({0, 0}), RGB(250, 250, 255));
}

TEST_F(ImageSurfaceTest, DrawingStaysInsideTheView) {
    Make(9, 7, 2);  // a 5 x 3 view at (2, 2)
    surface_.FillRect({-10, -10, 100, 100}, RGB(9, 9, 9));
    EXPECT_EQ(ImageAt(1, 1), kPaper);
    EXPECT_EQ(ImageAt(6, 4), RGB(9, 9, 9));
    EXPECT_EQ(ImageAt(7, 4), kPaper);
    EXPECT_EQ(ImageAt(6, 5), kPaper);

    surface_.DrawLine({-3, 0}, {20, 0}, RGB(0, 200, 0));  // clipped, not wrapped
    EXPECT_EQ(ImageAt(1, 2), kPaper);
    EXPECT_EQ(ImageAt(7, 2), kPaper);
    surface_.SetPixel({5, 0}, RGB(1, 1, 1));  // right of the view
    EXPECT_EQ(ImageAt(7, 2), kPaper);
    EXPECT_EQ(surface_.GetPixel({-1, 0}), 0u);
}

TEST_F(ImageSurfaceTest, TextIsMeasuredByQtAndPlacedByTheFormatFlags) {
    Make(200, 40);
    const Font font("DejaVu Sans", 10);
    const QFontMetrics fm(ToQFont(font), &image_);
    const host::Size wide = surface_.MeasureText("WWWW", font);
    const host::Size narrow = surface_.MeasureText("iiii", font);
    EXPECT_EQ(wide.width, fm.horizontalAdvance(QStringLiteral("WWWW")));
    EXPECT_GT(wide.width, narrow.width);  // a real, proportional face

    // Measuring wraps at blanks to fit and draws nothing.
    host::Rect calc{0, 0, fm.horizontalAdvance(QStringLiteral("alpha beta")) + 2, 0};
    surface_.DrawText("alpha beta alpha beta", calc, host::DT_WORDBREAK | host::DT_CALCRECT, font,
                      0);
    EXPECT_EQ(calc.bottom, 2 * fm.height());
    EXPECT_EQ(InkColumns().first, -1);

    const std::string caption = "Copying 42%";
    const int width = fm.horizontalAdvance(QString::fromStdString(caption));
    host::Rect rect{0, 0, 199, 39};
    surface_.DrawText(caption, rect, host::DT_SINGLELINE | host::DT_VCENTER | host::DT_RIGHT, font,
                      RGB(0, 0, 0));
    const auto [first, last] = InkColumns();
    EXPECT_NEAR(first, 199 - width, 3);
    EXPECT_TRUE(last >= 195 && last < 199) << last;  // the rectangle's right is exclusive
    // Vertically centred on one line: ink only in the middle rows.
    for (int x = 0; x < 200; ++x)
        EXPECT_TRUE(surface_.GetPixel({x, 0}) == kPaper && surface_.GetPixel({x, 38}) == kPaper);
}

TEST_F(ImageSurfaceTest, TextIsClippedToTheViewAndTheAccessKeyUnderlined) {
    Make(60, 30, 5);
    const Font font("DejaVu Sans", 12);
    host::Rect rect{-40, -10, 200, 40};
    surface_.DrawText("A long caption that overflows", rect, host::DT_SINGLELINE, font, 0);
    for (int x = 0; x < 60; ++x)
        for (int y : {0, 4, 25, 29}) EXPECT_EQ(ImageAt(x, y), kPaper) << x << "," << y;

    Make(100, 30);
    host::Rect plain{0, 0, 100, 30};
    surface_.DrawText("Save", plain, host::DT_SINGLELINE, font, 0);
    const QImage without = image_.copy();
    Make(100, 30);
    surface_.DrawText("&Save", plain, host::DT_SINGLELINE, font, 0);
    EXPECT_NE(image_, without);  // the same letters, and the line under S
}

}  // namespace
}  // namespace kelvarin::qt

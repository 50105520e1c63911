// SPDX-License-Identifier: MIT
// The Qt host's surface: exact bytes in a padded 24-bit image, drawing
// clipped to the view, text measured and drawn by Qt and placed by the
// host's layout rule. Lines and the focus rectangle are drawn pixel by pixel
// by the host's own code, tested on the headless surface.
#include "qt/ImageSurface.h"

#include <gtest/gtest.h>

#include "tests/qt/QtPrinters.h"

#include <QFontMetrics>
#include <QPainter>

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

// A date as its field paints it at a device pixel ratio of 2: each field
// filled and written, then the transparent separators between them, whose
// slanted ink leans into the next field. Shown at the ratio, every field's
// digits are drawn again sharp, none left as the image scaled up.
TEST_F(ImageSurfaceTest, FieldsNextToSeparatorsShowSharpAtRatioTwo) {
    Make(120, 24);
    const Font font("DejaVu Sans", 10);
    constexpr unsigned kFormat = host::DT_LEFT | host::DT_SINGLELINE | host::DT_NOPREFIX;
    const int digit = surface_.MeasureText("0", font).width;
    const int slash = surface_.MeasureText("/", font).width;
    const int height = surface_.MeasureText("_", font).height;
    struct Piece {
        const char* text;
        int left, width;
    };
    const Piece fields[] = {{"25", 2, 2 * digit},
                            {"12", 2 + 2 * digit + slash, 2 * digit},
                            {"2007", 2 + 4 * digit + 2 * slash, 4 * digit}};
    const Piece separators[] = {{"/", 2 + 2 * digit, slash}, {"/", 2 + 4 * digit + slash, slash}};
    const auto paint = [&] {
        surface_.FillRect({0, 0, 120, 24}, kPaper);
        for (const Piece& f : fields) {
            host::Rect rect{f.left, 2, f.left + f.width, 2 + height};
            surface_.FillRect(rect, RGB(255, 255, 255));
            surface_.DrawText(f.text, rect, kFormat, font, 0);
        }
        for (const Piece& s : separators) {
            host::Rect rect{s.left, 2, s.left + s.width, 2 + height};
            surface_.DrawText(s.text, rect, kFormat, font, 0);
        }
    };
    paint();
    const QImage plain = image_.copy();
    text_.SetRecording(true);
    paint();
    EXPECT_EQ(image_, plain);  // what the control reads back is the same either way

    // The case at hand: a separator's ink reaches into the field after it.
    const QRect year(fields[2].left, 2, fields[2].width, height);
    bool leans = false;
    for (int y = year.top(); y <= year.bottom(); ++y)
        leans |= ImageAt(year.left(), y) != RGB(255, 255, 255);
    ASSERT_TRUE(leans);

    const QImage shown = text_.ShowAtRatio(image_, 2);
    const QImage scaled =
        image_.convertToFormat(QImage::Format_RGB32)
            .scaled(image_.size() * 2, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    ASSERT_EQ(shown.size(), scaled.size());
    for (const Piece& f : fields) {
        // Right of the column the separator touches: sharp glyphs, not the
        // scaled-up pixels.
        const QRect device((f.left + 1) * 2, 2 * 2, (f.width - 1) * 2, height * 2);
        EXPECT_TRUE(shown.copy(device) != scaled.copy(device)) << f.text;
    }
}

// ---- The painter kept through a pass and the lines shaped once -------------

struct Caption {
    std::string text;
    host::Rect rect;
    Font font;
    OLE_COLOR color;
};

constexpr unsigned kLine = host::DT_LEFT | host::DT_SINGLELINE | host::DT_NOPREFIX;

// The text as a painter of its own, laying it out afresh, draws it:
// drawText at each line's baseline, clipped to the view.
void DrawFresh(QImage& image, const QRect& view, const Caption& c, unsigned format) {
    const QFont font = ToQFont(c.font);
    const QFontMetrics fm(font, &image);
    std::vector<std::pair<QPoint, QString>> lines;
    const auto measure = [&](std::string_view s) {
        return fm.horizontalAdvance(QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size())));
    };
    host::LayoutText(c.text, c.rect, format, measure, fm.height(), [&](const host::TextLine& l) {
        lines.emplace_back(view.topLeft() + QPoint(l.x, l.y + fm.ascent()),
                           QString::fromUtf8(l.text.data(), static_cast<qsizetype>(l.text.size())));
    });
    QPainter painter(&image);
    painter.setClipRect(view & image.rect());
    painter.setFont(font);
    painter.setPen(ToQColor(c.color));
    for (const auto& [at, line] : lines) painter.drawText(at, line);
}

// Lines of every kind: digits and names as the controls draw them, letters
// Qt shapes together, and lines drawn by drawText itself (a tab, a
// right-to-left word, an invisible joiner, an underlined or struck font).
std::vector<Caption> Captions(int frame) {
    const Font sans("DejaVu Sans", 8), bold("DejaVu Sans", 8, true);
    const Font serif("DejaVu Serif", 11, false, true), mono("DejaVu Sans Mono", 9);
    const Font underlined("DejaVu Sans", 9, false, false, true);
    const Font struck("DejaVu Sans", 10, true, false, false, true);
    const std::string day = std::to_string(1 + frame % 28);
    const OLE_COLOR ink = frame % 2 ? RGB(0, 0, 0) : RGB(200, 30, 60);
    return {
        {day, {2, 2, 30, 20}, sans, ink},
        {"/", {20, 2, 30, 20}, sans, ink},
        {"2007", {26, 2, 70, 20}, frame % 3 ? bold : sans, RGB(10, 90, 200)},
        {"Oggi: " + day + "/03/2007", {2, 22, 160, 40}, frame % 4 ? sans : serif, RGB(255, 0, 0)},
        {"lun mar mer", {80, 2, 200, 20}, bold, ink},
        {"März fi fl AV", {2, 42, 150, 62}, serif, RGB(0, 128, 0)},
        {"WWW iii", {120, 42, 230, 62}, mono, ink},
        {"a\tb", {2, 62, 80, 80}, sans, ink},
        {"\xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d", {90, 62, 160, 80}, sans, ink},
        {"a\xe2\x80\x8d"
         "b",
         {170, 62, 230, 80},
         sans,
         ink},
        {"Save " + day, {2, 82, 90, 100}, underlined, ink},
        {"Stop", {100, 82, 180, 100}, struck, frame % 2 ? RGB(1, 2, 3) : RGB(90, 90, 250)},
        {"  ", {190, 82, 230, 100}, sans, ink},
        {"", {190, 2, 230, 20}, sans, ink},
        {"clipped at the edge", {180, 100, 300, 130}, sans, ink},
    };
}

// What lies under the captions of a frame: paper, a band, and in some
// frames a few pixels of another colour, in the same place or one further.
void PaintBackground(host::Surface& s, int frame) {
    s.FillRect({0, 0, 240, 120}, kPaper);
    s.FillRect({80, 2, 200, 20}, frame % 5 == 4 ? RGB(200, 255, 255) : RGB(255, 255, 200));
    if (frame % 3 == 2) {
        for (int i = 0; i < 40; ++i)
            s.SetPixel({(i * 37 + frame / 3) % 240, (i * 11) % 120}, RGB(i * 6, 255 - i * 6, 90));
    }
}

// A pass keeps one painter on the image, every line shaped, and what each
// line's glyphs did where it was drawn. Frame after frame, with captions,
// fonts, colours and what lies under them changing, what it draws is what a
// fresh painter and layout draw.
TEST_F(ImageSurfaceTest, AKeptPainterAndShapedLinesDrawWhatAFreshPainterDraws) {
    Make(240, 120, 3);
    QImage fresh = image_.copy();
    const QRect view = surface_.View();
    for (int frame = 0; frame < 40; ++frame) {
        SCOPED_TRACE(frame);
        // Captions of a frame come back two frames later, and four.
        const int captions = frame / 2 % 3;
        {
            const TextPainter::Pass pass(text_);
            PaintBackground(surface_, frame);
            for (const Caption& c : Captions(captions)) {
                host::Rect rect = c.rect;
                surface_.DrawText(c.text, rect, kLine, c.font, c.color);
            }
        }
        EXPECT_FALSE(text_.Painting());
        EXPECT_FALSE(image_.paintingActive());

        TextPainter unused;
        ImageSurface plain(fresh, unused);
        plain.SetView(view);
        PaintBackground(plain, frame);
        for (const Caption& c : Captions(captions)) DrawFresh(fresh, view, c, kLine);
        ASSERT_EQ(image_, fresh);
    }
}

// Word-broken and centred lines, and an access key, drawn by a painter
// whose lines are already shaped, equal those of a new painter.
TEST_F(ImageSurfaceTest, ShapedLinesKeepBreakingAlignmentAndAccessKeys) {
    const Font font("DejaVu Sans", 9);
    const auto paint = [&](TextPainter& text, QImage& image) {
        ImageSurface surface(image, text);
        surface.SetView(QRect(0, 0, 160, 80));
        surface.FillRect({0, 0, 160, 80}, kPaper);
        host::Rect rect{4, 4, 120, 76};
        surface.DrawText("A &long caption that breaks at blanks", rect,
                         host::DT_WORDBREAK | host::DT_CENTER, font, RGB(0, 0, 0));
        host::Rect key{4, 60, 156, 78};
        surface.DrawText("&Salva", key, host::DT_SINGLELINE | host::DT_RIGHT, font, RGB(0, 0, 90));
    };
    Make(160, 80);
    for (int i = 0; i < 3; ++i) {
        const TextPainter::Pass pass(text_);
        paint(text_, image_);
    }
    QImage fresh(160, 80, QImage::Format_BGR888);
    TextPainter newPainter;
    paint(newPainter, fresh);
    EXPECT_EQ(image_, fresh);
}

// The painter follows the image it is asked to paint, and one ended before
// its image is replaced paints the new one, of another size, afresh.
TEST_F(ImageSurfaceTest, TheKeptPainterFollowsItsImageThroughAReplacement) {
    const Font font("DejaVu Sans", 10);
    const Caption caption{"25/12", {2, 2, 80, 24}, font, RGB(0, 0, 0)};
    const auto reference = [&](int w, int h) {
        QImage image(w, h, QImage::Format_BGR888);
        image.fill(ToQColor(kPaper));
        DrawFresh(image, image.rect(), caption, kLine);
        return image;
    };
    Make(60, 20);
    QImage other(90, 30, QImage::Format_BGR888);
    other.fill(ToQColor(kPaper));
    {
        const TextPainter::Pass pass(text_);
        host::Rect rect = caption.rect;
        surface_.DrawText(caption.text, rect, kLine, font, caption.color);
        ImageSurface second(other, text_);
        second.SetView(other.rect());
        rect = caption.rect;
        second.DrawText(caption.text, rect, kLine, font, caption.color);  // another image
        EXPECT_FALSE(image_.paintingActive());
        EXPECT_TRUE(other.paintingActive());

        text_.End();
        image_ = QImage(90, 30, QImage::Format_BGR888);  // resized
        image_.fill(ToQColor(kPaper));
        surface_.SetView(image_.rect());
        rect = caption.rect;
        surface_.DrawText(caption.text, rect, kLine, font, caption.color);
    }
    EXPECT_EQ(other, reference(90, 30));
    EXPECT_EQ(image_, reference(90, 30));
    EXPECT_FALSE(image_.paintingActive());
}

}  // namespace
}  // namespace kelvarin::qt

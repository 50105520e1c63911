// SPDX-License-Identifier: MIT
// The three widgets on a screen of device pixel ratio 2 (this program runs
// with QT_SCALE_FACTOR=2): they keep their logical size and logical image,
// every device pixel outside their text is its logical pixel's (fills and
// lines stay crisp, nothing is smoothed), and their text is drawn again at
// device resolution, inside the place the text has at ratio 1.
#include <functional>
#include <vector>

#include <gtest/gtest.h>

#include <QApplication>
#include <QDateTime>
#include <QImage>

#include <kelvarin/CommandBoxWidget.h>
#include <kelvarin/DateBoxWidget.h>
#include <kelvarin/ProgressBoxWidget.h>
#include "tests/qt/QtPrinters.h"

namespace kelvarin::qt {
namespace {

constexpr int kRatio = 2;

// The logical pixels whose device block is not the logical pixel repeated.
std::vector<QPoint> BlocksNotScaled(const QImage& logical, const QImage& shown) {
    std::vector<QPoint> found;
    for (int y = 0; y < logical.height(); ++y)
        for (int x = 0; x < logical.width(); ++x) {
            const QRgb want = logical.pixel(x, y) | 0xFF000000u;
            bool same = true;
            for (int dy = 0; dy < kRatio; ++dy)
                for (int dx = 0; dx < kRatio; ++dx)
                    same &= (shown.pixel(x * kRatio + dx, y * kRatio + dy) | 0xFF000000u) == want;
            if (!same) found.emplace_back(x, y);
        }
    return found;
}

// Where two logical images differ, as one rectangle.
QRect Differing(const QImage& a, const QImage& b) {
    QRect box;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            if (a.pixel(x, y) != b.pixel(x, y)) box |= QRect(x, y, 1, 1);
    return box;
}

struct Case {
    const char* name;
    QSize size;
    std::function<ControlWidget*(QWidget*)> make;
    std::function<void(ControlWidget*)> hideText;  // leaves every fill and line as it was
};

TEST(HighDpiTest, WidgetsShowTheirLogicalPixelsScaledAndTheirTextSharpAtRatioTwo) {
    const std::vector<Case> cases = {
        {"DateBox",
         {160, 22},
         [](QWidget* parent) {
             auto* box = new DateBoxWidget(parent);
             box->SetDateFormat(QStringLiteral("dd/mm/yyyy"));
             box->SetValue(QDateTime(QDate(2007, 12, 25), QTime(), Qt::UTC));
             return box;
         },
         // Text in the colour of the field under it.
         [](ControlWidget* w) { w->setForeColor(w->backColor()); }},
        {"ProgressBox",
         {200, 24},
         [](QWidget* parent) {
             auto* bar = new ProgressBoxWidget(parent);
             bar->SetText(QStringLiteral("Copia "));
             bar->SetValue(40);
             return bar;
         },
         [](ControlWidget* w) {
             auto* bar = static_cast<ProgressBoxWidget*>(w);
             bar->SetText(QString());
             bar->SetShowPercentual(false);
         }},
        {"CommandBox",
         {120, 32},
         [](QWidget* parent) {
             auto* button = new CommandBoxWidget(parent);
             button->SetText(QStringLiteral("&Salva"));
             return button;
         },
         [](ControlWidget* w) { static_cast<CommandBoxWidget*>(w)->SetText(QString()); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        QWidget window;
        ControlWidget* w = c.make(&window);
        w->setGeometry(QRect(QPoint(10, 10), c.size));
        window.resize(c.size + QSize(20, 20));
        // The focus elsewhere: a focused field is drawn selected, in colours of its own.
        window.setFocusPolicy(Qt::StrongFocus);
        window.show();
        window.setFocus();
        QApplication::processEvents();
        ASSERT_EQ(w->devicePixelRatioF(), kRatio) << "run with QT_SCALE_FACTOR=2";

        // Geometry is logical: the widget and the image it paints keep their size.
        EXPECT_EQ(w->size(), c.size);
        ASSERT_EQ(w->image().size(), c.size);
        const QImage withText = w->image().copy();
        const QImage shownWithText = w->grab().toImage();
        ASSERT_EQ(shownWithText.size(), c.size * kRatio);

        c.hideText(w);
        QApplication::processEvents();
        const QImage noText = w->image().copy();
        const QImage shownNoText = w->grab().toImage();

        // With nothing but fills and lines, every device pixel is its logical
        // pixel's: nothing blurred, nothing shifted.
        EXPECT_TRUE(BlocksNotScaled(noText, shownNoText).empty());

        // The text is drawn again at device resolution (its device pixels are
        // not blocks of four), and only where the text is at ratio 1, give or
        // take the one pixel a glyph's edge may lean over.
        const QRect text = Differing(withText, noText);
        ASSERT_FALSE(text.isEmpty());
        const std::vector<QPoint> sharp = BlocksNotScaled(withText, shownWithText);
        EXPECT_GT(sharp.size(), 10u);
        const QRect allowed = text.adjusted(-1, -1, 1, 1);
        for (const QPoint& p : sharp)
            EXPECT_TRUE(allowed.contains(p)) << "sharp at " << p.x() << "," << p.y();
    }
}

}  // namespace
}  // namespace kelvarin::qt

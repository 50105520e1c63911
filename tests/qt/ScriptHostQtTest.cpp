// SPDX-License-Identifier: MIT
// kelvarin-host --qt: paint writes a PNG of the same pixels as its bitmap,
// and the text in them is Qt's. That a script gives the same events and
// values with --qt is the acceptance scripts' (tests/scripts, script_qt.*).
#include <gtest/gtest.h>

#include "tests/qt/QtPrinters.h"
#include "tests/qt/RunProgram.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>

namespace kelvarin::test {
namespace {

TEST(ScriptHostQtTest, PaintWritesTheBitmapAsAPngWithQtsText) {
    QTemporaryDir dir;
    QFile script(dir.filePath(QStringLiteral("bar.khs")));
    ASSERT_TRUE(script.open(QIODevice::WriteOnly));
    script.write(
        "create ProgressBox bar1 200 24\n"
        "let bar1.Text \"Copying\"\n"
        "let bar1.Value 40\n"
        "paint bar1 bar.bmp\n");
    script.close();
    const ProgramRun qt = RunProgram(QStringLiteral(KELVARIN_HOST_PATH),
                                     {QStringLiteral("--qt"), script.fileName()}, dir.path());
    ASSERT_EQ(qt.exitCode, 0) << qt.err.toStdString();

    const QImage bitmap(dir.filePath(QStringLiteral("bar.bmp")));
    const QImage png(dir.filePath(QStringLiteral("bar.png")));
    ASSERT_EQ(png.size(), QSize(200, 24));
    EXPECT_EQ(png.convertToFormat(QImage::Format_RGB32),
              bitmap.convertToFormat(QImage::Format_RGB32));

    // Qt's text is anti-aliased: shades between the ink and the bar, which
    // the fixed-metric blocks never have.
    int shades = 0;
    for (int y = 0; y < 24; ++y)
        for (int x = 0; x < 200; ++x) {
            const int g = qGray(png.pixel(x, y));
            shades += g > 40 && g < 200 && qBlue(png.pixel(x, y)) < 180;
        }
    EXPECT_GT(shades, 5);
}

}  // namespace
}  // namespace kelvarin::test

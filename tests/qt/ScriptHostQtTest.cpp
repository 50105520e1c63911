// kelvarin-host --qt: the same script gives the same events and values,
// the text is Qt's, and paint writes a PNG of the same pixels as its bitmap.
#include <gtest/gtest.h>

#include "tests/qt/QtPrinters.h"
#include "tests/qt/RunProgram.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>

namespace kelvarin::test {
namespace {

ProgramRun Host(const QStringList& args, const QString& workDir) {
    return RunProgram(QStringLiteral(KELVARIN_HOST_PATH), args, workDir);
}

TEST(ScriptHostQtTest, QtFontsChangeTheTextAndNothingElse) {
    QTemporaryDir dir;
    QFile script(dir.filePath(QStringLiteral("bar.khs")));
    ASSERT_TRUE(script.open(QIODevice::WriteOnly));
    script.write(
        "create ProgressBox bar1 200 24\n"
        "let bar1.Text \"Copying\"\n"
        "let bar1.TimerChangedInterval 100\n"
        "let bar1.Value 0\n"
        "tick 100\n"
        "let bar1.Value 40\n"
        "tick 100\n"
        "events\n"
        "notified\n"
        "get bar1.Percentual\n"
        "paint bar1 bar.bmp\n"
        "let bar1.Nothing 1\n");
    script.close();

    const ProgramRun plain = Host({script.fileName()}, dir.path());
    const ProgramRun qt = Host({QStringLiteral("--qt"), script.fileName()}, dir.path());
    EXPECT_EQ(plain.exitCode, 1);  // the last line fails on purpose, in both
    EXPECT_EQ(qt.exitCode, 1);
    EXPECT_EQ(qt.out, plain.out);
    EXPECT_TRUE(qt.out.contains(QStringLiteral("bar1.TimerChange(200, 500)")))
        << qt.out.toStdString();

    const QImage bitmap(dir.filePath(QStringLiteral("bar.bmp")));
    const QImage png(dir.filePath(QStringLiteral("bar.png")));
    ASSERT_FALSE(png.isNull());
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

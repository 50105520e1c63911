// SPDX-License-Identifier: MIT
// What the Qt host takes from the platform: keys, masks, locale, system
// colours, the tick, fonts and pictures.
#include "qt/QtPlatform.h"

#include <gtest/gtest.h>

#include "tests/qt/QtPrinters.h"

#include <QKeyEvent>

#include "common/DateTime.h"
#include "qt/PictureImage.h"

namespace kelvarin::qt {
namespace {

struct KeyCase {
    int key;
    Qt::KeyboardModifiers modifiers;
    int expected;
};

// Digits, Return, Escape, Left, Up, Down, PageUp and F4 are typed through
// real widgets in DateBoxWidgetTest and GalleryTest; these rows are the
// other keys, and Backspace, which those tests type where Delete would act
// alike.
TEST(QtPlatformTest, KeysMapToTheHostsCodesWithTheNumericPadApart) {
    const KeyCase cases[] = {
        {Qt::Key_A, Qt::NoModifier, 65},
        {Qt::Key_9, Qt::KeypadModifier, 105},
        {Qt::Key_Right, Qt::NoModifier, 39},
        {Qt::Key_Comma, Qt::KeypadModifier, 110},
        {Qt::Key_Enter, Qt::KeypadModifier, 13},
        {Qt::Key_Backspace, Qt::NoModifier, 8},
        {Qt::Key_Tab, Qt::NoModifier, 9},
        {Qt::Key_Home, Qt::KeypadModifier, 36},  // the pad's Home with Num Lock off
        {Qt::Key_Delete, Qt::NoModifier, 46},
        {Qt::Key_Shift, Qt::ShiftModifier, 16},
        {Qt::Key_Exclam, Qt::ShiftModifier, 49},  // Shift+1
        {Qt::Key_Comma, Qt::NoModifier, 188},
        {Qt::Key_VolumeUp, Qt::NoModifier, 0},  // no code of the host's
    };
    for (const KeyCase& c : cases) {
        const QKeyEvent event(QEvent::KeyPress, c.key, c.modifiers);
        EXPECT_EQ(KeyCodeOf(event), c.expected) << "Qt key 0x" << std::hex << c.key;
    }
}

TEST(QtPlatformTest, ModifiersAndButtonsBecomeTheHostsMasks) {
    EXPECT_EQ(ShiftMaskOf(Qt::ShiftModifier), 1);
    EXPECT_EQ(ShiftMaskOf(Qt::ControlModifier), 2);
    EXPECT_EQ(ShiftMaskOf(Qt::AltModifier), 4);
    EXPECT_EQ(ShiftMaskOf(Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier), 7);
    EXPECT_EQ(ShiftMaskOf(Qt::KeypadModifier | Qt::MetaModifier), 0);
    EXPECT_EQ(ButtonMaskOf(Qt::LeftButton), 1);
    EXPECT_EQ(ButtonMaskOf(Qt::RightButton), 2);
    EXPECT_EQ(ButtonMaskOf(Qt::LeftButton | Qt::MiddleButton), 5);
    EXPECT_EQ(ButtonMaskOf(Qt::BackButton), 0);
}

TEST(QtPlatformTest, QtDateFormatsBecomeFormatterPatterns) {
    const std::pair<const char*, const char*> dates[] = {
        {"d.M.yy", "d.m.yyyy"},         {"dd/MM/yy", "dd/mm/yyyy"},
        {"M/d/yy", "m/d/yyyy"},         {"yyyy-MM-dd", "yyyy-mm-dd"},
        {"dd MMM yyyy", "dd mmm yyyy"}, {"dddd d 'de' MMMM", "dddd d \"de\" mmmm"},
        {"d 'it''s'", "d \"it's\""},    {"yy/MM/dd 'n'", "yyyy/mm/dd \"n\""},
    };
    for (const auto& [qt, ours] : dates)
        EXPECT_EQ(DatePatternFrom(QString::fromUtf8(qt), true), ours) << qt;
    EXPECT_EQ(DatePatternFrom(QStringLiteral("d.M.yy"), false), "d.m.yy");
    EXPECT_EQ(DatePatternFrom(QStringLiteral("h:mm:ss AP"), false), "h:nn:ss AM/PM");
    EXPECT_EQ(DatePatternFrom(QStringLiteral("HH:mm:ss t"), false), "hh:nn:ss");
    EXPECT_EQ(DatePatternFrom(QStringLiteral("h:mm ap"), false), "h:nn AM/PM");
}

TEST(QtPlatformTest, LocalesGiveNamesAndAShortDateWithFourDigitYears) {
    const Date christmas = CombineDateTime(DateSerial(2007, 12, 25), TimeSerial(13, 45, 0));

    const Locale it = LocaleFrom(QLocale(QLocale::Italian, QLocale::Italy));
    EXPECT_EQ(it.shortDatePattern, "dd/mm/yyyy");
    EXPECT_EQ(it.monthNames[0], "gennaio");
    EXPECT_EQ(it.weekdayNames[0], "domenica");  // Sunday first
    EXPECT_EQ(it.thousandsSeparator, '.');
    EXPECT_EQ(FormatDate(christmas, it.timePattern, it), "13:45:00");

    const Locale us = LocaleFrom(QLocale(QLocale::English, QLocale::UnitedStates));
    EXPECT_EQ(us.shortDatePattern, "m/d/yyyy");
    EXPECT_EQ(us.weekdayNames[6], "Saturday");
    EXPECT_EQ(FormatDate(christmas, us.timePattern, us), "1:45:00 PM");

    // A group separator the conversions cannot hold (a narrow no-break
    // space) still gives two different separators.
    const Locale fr = LocaleFrom(QLocale(QLocale::French, QLocale::France));
    EXPECT_EQ(fr.decimalSeparator, ',');
    EXPECT_NE(fr.thousandsSeparator, fr.decimalSeparator);
}

TEST(QtPlatformTest, ThePaletteBecomesTheSystemColourTable) {
    QPalette palette;
    palette.setColor(QPalette::Active, QPalette::Highlight, QColor(1, 2, 3));
    palette.setColor(QPalette::Active, QPalette::Button, QColor(10, 20, 30));
    palette.setColor(QPalette::Active, QPalette::ButtonText, QColor(40, 50, 60));
    palette.setColor(QPalette::Disabled, QPalette::Text, QColor(70, 80, 90));
    const SysColorTable table = SysColorsFrom(palette);
    EXPECT_EQ(table[COLOR_HIGHLIGHT], RGB(1, 2, 3));
    EXPECT_EQ(table[COLOR_BTNFACE], RGB(10, 20, 30));
    EXPECT_EQ(table[COLOR_BTNTEXT], RGB(40, 50, 60));
    EXPECT_EQ(table[COLOR_GRAYTEXT], RGB(70, 80, 90));
    EXPECT_EQ(table[1], DefaultSysColors()[1]);  // no role for the desktop

    const SysColorTable saved = CurrentSysColors();
    SetSysColors(table);
    EXPECT_EQ(TranslateSysColor(0x8000000D), RGB(1, 2, 3));
    EXPECT_EQ(ToQColor(0x8000000F), QColor(10, 20, 30));
    SetSysColors(saved);
}

TEST(QtPlatformTest, PicturesAndImagesKeepPixelsRowsAndTransparency) {
    // Pictures keep rows bottom-up: the image's top row is the picture's last.
    auto bitmap = Picture::MakeBitmap(3, 2, 24);
    bitmap->Row(1)[0] = 30, bitmap->Row(1)[1] = 20, bitmap->Row(1)[2] = 10;  // top-left, B G R
    bitmap->Row(0)[6] = 255;                                                 // bottom-right, blue
    const QImage image = ToQImage(*bitmap);
    ASSERT_EQ(image.size(), QSize(3, 2));
    EXPECT_EQ(image.pixel(0, 0), qRgb(10, 20, 30));
    EXPECT_EQ(image.pixel(2, 1), qRgb(0, 0, 255));
    const auto back = FromQImage(image);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->Type(), PictureType::Bitmap);
    EXPECT_TRUE(*back == *bitmap);

    auto grey = Picture::MakeBitmap(2, 1, 8);  // the linear grey palette
    grey->Row(0)[1] = 200;
    EXPECT_EQ(ToQImage(*grey).pixel(1, 0), qRgb(200, 200, 200));

    QImage withHole(2, 2, QImage::Format_ARGB32);
    withHole.fill(qRgba(255, 0, 0, 255));
    withHole.setPixel(1, 0, qRgba(0, 0, 0, 0));
    const auto icon = FromQImage(withHole);
    ASSERT_TRUE(icon);
    EXPECT_EQ(icon->Type(), PictureType::Icon);
    EXPECT_NE(icon->MaskRow(1)[1], 0);  // top-right is transparent
    EXPECT_EQ(icon->MaskRow(1)[0], 0);
    const QImage shown = ToQImage(*icon);
    EXPECT_EQ(qAlpha(shown.pixel(1, 0)), 0);
    EXPECT_EQ(shown.pixel(0, 1), qRgb(255, 0, 0));

    EXPECT_TRUE(ToQImage(*Picture::MakeOfType(PictureType::None)).isNull());
    EXPECT_EQ(FromQImage(QImage()), nullptr);
}

}  // namespace
}  // namespace kelvarin::qt

// SPDX-License-Identifier: MIT
// The picture button as a real widget: its Qt properties are dispatch's,
// pictures come from image files, Qt's clicks and keys arrive as its events
// in the host's order, Alt with its access key clicks it from anywhere in
// the window, and the pointer test under a real 50 ms timer drives hover.
#include <kelvarin/CommandBoxWidget.h>

#include <gtest/gtest.h>

#include <QApplication>
#include <QCursor>
#include <QFile>
#include <QImageWriter>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QVBoxLayout>

#include "controls/commandbox/CommandBox.h"
#include "library/Dispatch.h"
#include "qt/QtPlatform.h"
#include "tests/qt/QtPrinters.h"

namespace kelvarin::qt {
namespace {

using controls::CommandBox;

const CommandBox& Box(CommandBoxWidget& w) { return dynamic_cast<const CommandBox&>(*w.control()); }

OLE_COLOR Shown(CommandBoxWidget& w, host::Point at) {
    const QRgb c = w.grab().toImage().pixel(at.x, at.y);
    return RGB(qRed(c), qGreen(c), qBlue(c));
}

// A 16 x 16 square of one colour in a file of the format.
QString SquareFile(const QTemporaryDir& dir, const char* format, QRgb color) {
    QImage image(16, 16, QImage::Format_ARGB32);
    image.fill(color);
    const QString path = dir.filePath(QStringLiteral("square.") + QString::fromLatin1(format));
    QImageWriter writer(path, format);
    EXPECT_TRUE(writer.write(image)) << writer.errorString().toStdString();
    return path;
}

TEST(CommandBoxWidgetTest, PropertiesGoThroughDispatchAndPicturesComeFromImageFiles) {
    CommandBoxWidget w;
    QSignalSpy notified(&w, &ControlWidget::propertyChanged);
    const std::pair<const char*, QVariant> writes[] = {
        {"Text", QStringLiteral("&Salva")},
        {"style", 0},
        {"AlignPicture", 3},
        {"Interleave", 7},
        {"MaskColor", 0x0000FF00u},
        {"UseMaskColor", true},
        {"HighLighted", true},
        {"ForeColorHighLighted", 0x8000000Du},
        {"ShowFocusRect", false},
        {"OLEDropMode", 1},
    };
    QStringList names;
    for (const auto& [name, value] : writes) {
        ASSERT_TRUE(w.setProperty(name, value)) << name;
        const Variant read = library::Get(*w.control(), name);
        EXPECT_EQ(static_cast<quint32>(ControlWidget::FromVariant(read).toLongLong()),
                  static_cast<quint32>(w.property(name).toLongLong()))
            << name;
        names << (QString::fromLatin1(name) == "style" ? "Style" : QString::fromLatin1(name));
    }
    EXPECT_EQ(w.Text(), QStringLiteral("&Salva"));
    QStringList heard;
    for (const QList<QVariant>& n : notified) heard << n.at(0).toString();
    EXPECT_EQ(heard, names);  // under the stored names, "Style" for style
    EXPECT_EQ(w.lastErrorNumber(), 0) << w.lastErrorText().toStdString();

    // PNG, ICO and SVG at the size it declares; a file that is no image is
    // refused and changes nothing.
    QTemporaryDir dir;
    w.SetStyle(CommandBoxWidget::Standard);
    w.SetAlignPicture(CommandBoxWidget::LeftAlign);
    w.SetHighLighted(false);
    ASSERT_TRUE(w.loadPicture(SquareFile(dir, "png", qRgb(200, 30, 40))));
    EXPECT_EQ(w.Picture().size(), QSize(16, 16));
    EXPECT_EQ(Shown(w, Box(w).PicturePosition()), RGB(200, 30, 40));
    ASSERT_TRUE(w.loadPicture(SquareFile(dir, "ico", qRgb(10, 90, 200))));
    EXPECT_EQ(Shown(w, Box(w).PicturePosition()), RGB(10, 90, 200));
    QFile svg(dir.filePath(QStringLiteral("bar.svg")));
    ASSERT_TRUE(svg.open(QIODevice::WriteOnly));
    svg.write(R"(<svg xmlns="http://www.w3.org/2000/svg" width="24" height="10">)"
              R"(<rect width="24" height="10" fill="#123456"/></svg>)");
    svg.close();
    ASSERT_TRUE(w.loadPicture(svg.fileName()));
    EXPECT_EQ(w.Picture().size(), QSize(24, 10));
    EXPECT_EQ(Shown(w, Box(w).PicturePosition()), RGB(0x12, 0x34, 0x56));
    EXPECT_FALSE(w.loadPicture(dir.filePath(QStringLiteral("bar.svg.missing"))));
    EXPECT_EQ(w.lastErrorNumber(), 481);
    EXPECT_EQ(w.Picture().size(), QSize(24, 10));
    w.SetPicture(QPixmap());
    EXPECT_EQ(Box(w).GetPictureState(), CommandBox::kNoPicture);
}

// Only the left button clicks; space clicks on release, Enter on press,
// and Enter's release while space is held neither clicks nor is heard.
TEST(CommandBoxWidgetTest, ClicksAndKeysArriveAsEventsInTheHostsOrder) {
    CommandBoxWidget w;
    w.show();
    QSignalSpy events(&w, &ControlWidget::eventRaised);
    QSignalSpy clicks(&w, &CommandBoxWidget::Click);

    QTest::mouseClick(&w, Qt::LeftButton, Qt::NoModifier, QPoint(30, 10));
    EXPECT_EQ(Seen(events),
              (QStringList{"MouseDown(1, 0, 30, 10)", "MouseUp(1, 0, 30, 10)", "Click()"}));
    QTest::mouseClick(&w, Qt::RightButton, Qt::ShiftModifier, QPoint(31, 11));
    EXPECT_EQ(Seen(events), (QStringList{"MouseDown(2, 1, 31, 11)", "MouseUp(2, 1, 31, 11)"}));
    EXPECT_FALSE(Box(w).Pressed());

    QTest::keyPress(&w, Qt::Key_Space);
    EXPECT_TRUE(Box(w).Pressed());
    QTest::keyPress(&w, Qt::Key_Return);
    QTest::keyRelease(&w, Qt::Key_Return);
    QTest::keyRelease(&w, Qt::Key_Space);
    EXPECT_EQ(Seen(events),
              (QStringList{"KeyPress(32)", "Click()", "KeyPress(13)", "Click()", "KeyUp(32, 0)"}));
    EXPECT_EQ(clicks.size(), 3);
}

// Alt with the caption's access key, wherever the focus is in the window:
// the button clicks, the stroke reaches nothing else, the focus stays.
TEST(CommandBoxWidgetTest, AltWithTheAccessKeyClicksFromAnywhereInTheWindow) {
    QWidget window;
    auto* layout = new QVBoxLayout(&window);
    auto* save = new CommandBoxWidget(&window);
    auto* other = new CommandBoxWidget(&window);
    auto* edit = new QLineEdit(&window);
    layout->addWidget(save);
    layout->addWidget(other);
    layout->addWidget(edit);
    save->SetText(QStringLiteral("&Salva"));
    other->SetText(QStringLiteral("Chiudi && esci"));
    window.show();
    QApplication::setActiveWindow(&window);
    QSignalSpy saved(save, &CommandBoxWidget::Click);
    QSignalSpy otherHeard(other, &ControlWidget::eventRaised);

    for (QWidget* focus : {static_cast<QWidget*>(edit), static_cast<QWidget*>(other)}) {
        focus->setFocus(Qt::OtherFocusReason);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_S, Qt::AltModifier);
        EXPECT_EQ(QApplication::focusWidget(), focus);
    }
    EXPECT_EQ(saved.size(), 2);
    EXPECT_TRUE(edit->text().isEmpty());
    EXPECT_EQ(Seen(otherHeard), (QStringList{"KeyDown(18, 4)", "KeyUp(18, 0)"}));  // Alt alone

    QTest::keyClick(other, Qt::Key_E, Qt::AltModifier);  // not an access key: the focused hears it
    EXPECT_EQ(Seen(otherHeard), (QStringList{"KeyDown(18, 4)", "KeyDown(69, 4)", "KeyPress(101)",
                                             "KeyUp(69, 4)", "KeyUp(18, 0)"}));
    save->SetEnabled(false);
    QTest::keyClick(other, Qt::Key_S, Qt::AltModifier);
    EXPECT_EQ(saved.size(), 2);  // a disabled button takes its key and does nothing
}

// The face turns from grey to full colour while the widget is the one under
// the cursor, and back within a tick of the timer once it is not.
TEST(CommandBoxWidgetTest, TheHoverTimerAsksForTheWidgetUnderTheCursor) {
    QWidget window;
    auto* w = new CommandBoxWidget(&window);
    w->setGeometry(20, 20, 120, 32);
    window.resize(200, 100);
    window.move(100, 100);
    window.show();
    QTemporaryDir dir;
    ASSERT_TRUE(w->loadPicture(SquareFile(dir, "png", qRgb(200, 30, 40))));
    w->SetHighLighted(true);
    const host::Point at = Box(*w).PicturePosition();
    const OLE_COLOR grey = Shown(*w, at);
    EXPECT_EQ(RedOf(grey), GreenOf(grey));

    QCursor::setPos(w->mapToGlobal(QPoint(60, 16)));
    QTest::mouseMove(w, QPoint(60, 16));
    EXPECT_EQ(Box(*w).GetPictureState(), CommandBox::kHot);
    EXPECT_EQ(Shown(*w, at), RGB(200, 30, 40));
    EXPECT_TRUE(Box(*w).HoverWatchRunning());

    QCursor::setPos(window.mapToGlobal(QPoint(5, 5)));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !Box(*w).HoverWatchRunning(); }, 1000));
    EXPECT_EQ(Box(*w).GetPictureState(), CommandBox::kNormal);
    EXPECT_EQ(Shown(*w, at), grey);
}

}  // namespace
}  // namespace kelvarin::qt

// The date field as a real widget: its Qt properties are dispatch's, keys
// typed through Qt edit and step it, Tab leaves it, and F4 or Alt+Down drop
// the calendar down below it as a popup window that the keys drive.
#include "qt/DateBoxWidget.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QMetaProperty>
#include <QScreen>
#include <QSet>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>

#include "library/Dispatch.h"
#include "tests/qt/QtPrinters.h"

namespace kelvarin::qt {
namespace {

QDateTime At(int year, int month, int day) {
    return QDateTime(QDate(year, month, day), QTime(0, 0), Qt::UTC);
}

// A window with the field above a line edit that the focus can move to.
struct Form {
    QWidget window;
    DateBoxWidget* box = new DateBoxWidget(&window);
    QLineEdit* next = new QLineEdit(&window);

    explicit Form(const char* pattern = "dd/mm/yyyy") {
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(box);
        layout->addWidget(next);
        box->setObjectName(QStringLiteral("date"));
        box->SetDateFormat(QString::fromLatin1(pattern));
        window.move(40, 40);
        window.resize(260, 90);
        window.show();
        QApplication::setActiveWindow(&window);
        box->setFocus(Qt::TabFocusReason);
        QApplication::processEvents();
    }
};

TEST(DateBoxWidgetTest, QtPropertiesReachTheControlAndBadValuesChangeNothing) {
    DateBoxWidget w;
    EXPECT_TRUE(w.setProperty("Value", At(2007, 12, 25)));
    EXPECT_EQ(library::Get(*w.control(), "Value").ToDate(), DateSerial(2007, 12, 25));
    w.SetDateFormat(QStringLiteral("d mmmm yyyy"));

    // Null empties the field; a time of day survives the trip through QDateTime.
    w.SetValueDB(QVariant::fromValue(nullptr));
    EXPECT_EQ(w.ValueDB().metaType().id(), QMetaType::Nullptr);
    EXPECT_TRUE(w.displayText().startsWith(QStringLiteral("__ ___")))
        << w.displayText().toStdString();
    w.SetDateFormat(QStringLiteral("dd/mm/yyyy hh:nn"));
    w.SetValue(QDateTime(QDate(2024, 3, 31), QTime(2, 30), Qt::UTC));
    EXPECT_EQ(w.Value(), QDateTime(QDate(2024, 3, 31), QTime(2, 30), Qt::UTC));

    // An invalid date is a type mismatch, reported, and the value stays.
    QSignalSpy errors(&w, &ControlWidget::hostError);
    w.SetValue(QDateTime());
    ASSERT_EQ(errors.size(), 1);
    EXPECT_EQ(errors.at(0).at(0).toInt(), 13);
    EXPECT_EQ(w.displayText(), QStringLiteral("31/03/2024 02:30"));
}

TEST(DateBoxWidgetTest, TypedDigitsFillTheFieldsAndArrowsStepIt) {
    Form form;
    DateBoxWidget* box = form.box;
    ASSERT_TRUE(box->hasFocus());
    QSignalSpy downs(box, &DateBoxWidget::KeyDown);
    QSignalSpy presses(box, &DateBoxWidget::KeyPress);
    QSignalSpy changes(box, &DateBoxWidget::Change);
    for (Qt::Key k :
         {Qt::Key_2, Qt::Key_5, Qt::Key_1, Qt::Key_2, Qt::Key_2, Qt::Key_0, Qt::Key_0, Qt::Key_7})
        QTest::keyClick(box, k);
    EXPECT_EQ(box->displayText(), QStringLiteral("25/12/2007"));
    EXPECT_EQ(box->Value(), At(2007, 12, 25));
    EXPECT_EQ(downs.size(), 8);  // every key reaches the container
    EXPECT_EQ(presses.size(), 8);
    EXPECT_GE(changes.size(), 1);

    // The last digit wrapped to the day field: Up steps the day, PageUp
    // the month by LargeChange, numeric-pad digits type like any other.
    QTest::keyClick(box, Qt::Key_Up);
    EXPECT_EQ(box->Value(), At(2007, 12, 26));
    QTest::keyClick(box, Qt::Key_Right);
    QTest::keyClick(box, Qt::Key_PageUp);
    EXPECT_EQ(box->Value(), At(2008, 10, 26));
    QTest::keyClick(box, Qt::Key_Return, Qt::ShiftModifier);  // back to the day
    QTest::keyClick(box, Qt::Key_0, Qt::KeypadModifier);
    QTest::keyClick(box, Qt::Key_3, Qt::KeypadModifier);
    EXPECT_EQ(box->Value(), At(2008, 10, 3));
    EXPECT_EQ(downs.at(downs.size() - 1).at(0).toInt(), 99);  // vbKeyNumpad3

    // Tab leaves from any field.
    QTest::keyClick(box, Qt::Key_Tab);
    EXPECT_TRUE(form.next->hasFocus());
}

TEST(DateBoxWidgetTest, ABlankFieldOfARequiredBoxKeepsTheFocus) {
    Form form;
    DateBoxWidget* box = form.box;
    box->SetValue(At(2001, 1, 31));
    box->SetNullable(false);
    // Backspace on the whole month blanks it; the way back to the day is refused.
    QTest::keyClick(box, Qt::Key_Right);
    QTest::keyClick(box, Qt::Key_Backspace);
    EXPECT_EQ(box->displayText(), QStringLiteral("31/__/2001"));
    QTest::keyClick(box, Qt::Key_Tab);
    EXPECT_TRUE(box->hasFocus());
    EXPECT_EQ(box->displayText(), QStringLiteral("31/__/2001"));

    // Once nullable, the blank month may be left, and the value is Null.
    box->SetNullable(true);
    QTest::keyClick(box, Qt::Key_Tab);
    EXPECT_TRUE(form.next->hasFocus());
    EXPECT_EQ(box->ValueDB().metaType().id(), QMetaType::Nullptr);
}

// Runs `inside` on the calendar once it is open, from the nested loop that
// shows it.
void WhenOpen(std::function<void(QWidget*)> inside) {
    QTimer::singleShot(0, [inside = std::move(inside)] {
        QWidget* popup = QApplication::activePopupWidget();
        ASSERT_NE(popup, nullptr);
        inside(popup);
    });
}

TEST(DateBoxWidgetTest, F4AndAltDownDropTheCalendarBelowTheField) {
    Form form;
    DateBoxWidget* box = form.box;
    box->SetValue(At(2020, 3, 31));
    QSignalSpy changes(box, &DateBoxWidget::Change);

    QRect placed;
    QImage shown;
    WhenOpen([&](QWidget* popup) {
        placed = popup->geometry();
        shown = popup->grab().toImage();
        QTest::keyClick(popup, Qt::Key_Left);
        QTest::keyClick(popup, Qt::Key_Return);
    });
    QTest::keyClick(box, Qt::Key_F4);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    EXPECT_EQ(box->Value(), At(2020, 3, 30));
    EXPECT_EQ(changes.size(), 2);  // as the date is taken over, and once the popup has closed

    // Just below the field, from its client corner.
    const QPoint corner = box->mapToGlobal(QPoint(0, 0)) + QPoint(2, 2);  // inside the 3-D border
    EXPECT_EQ(placed.topLeft(), corner + QPoint(0, box->height()));
    ASSERT_FALSE(shown.isNull());
    QSet<QRgb> colours;
    int red = 0;
    for (int y = 0; y < shown.height(); ++y)
        for (int x = 0; x < shown.width(); ++x) {
            const QRgb c = shown.pixel(x, y);
            colours.insert(c);
            red += qRed(c) > 200 && qGreen(c) < 60 && qBlue(c) < 60;
        }
    EXPECT_GT(colours.size(), 4);  // grid, highlight, header, text
    EXPECT_GT(red, 10);            // the line for today

    // Escape gives back the date the calendar opened with.
    WhenOpen([](QWidget* popup) {
        QTest::keyClick(popup, Qt::Key_PageUp);
        QTest::keyClick(popup, Qt::Key_Escape);
    });
    QTest::keyClick(box, Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(box->Value(), At(2020, 3, 30));
    EXPECT_EQ(changes.size(), 2);

    // Near the screen's right and bottom edges: right-aligned, above the field.
    const QRect screen = QApplication::primaryScreen()->geometry();
    form.window.move(screen.right() - 280, screen.bottom() - 120);
    QApplication::processEvents();
    WhenOpen([&](QWidget* popup) {
        placed = popup->geometry();
        QTest::keyClick(popup, Qt::Key_Escape);
    });
    QTest::keyClick(box, Qt::Key_F4);
    const QPoint moved = box->mapToGlobal(QPoint(2, 2));
    EXPECT_EQ(placed.left(), moved.x() + box->width() - placed.width());
    EXPECT_EQ(placed.top(), moved.y() - placed.height());
}

}  // namespace
}  // namespace kelvarin::qt

// SPDX-License-Identifier: MIT
// The date field as a real widget: its Qt properties are dispatch's, keys
// typed through Qt edit and step it, Tab leaves it, and F4 or Alt+Down drop
// the calendar down below it as a modal popup window that the keys drive
// and a loss of activation closes.
#include <kelvarin/DateBoxWidget.h>

#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QScreen>
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

    // Null empties the field; a time of day survives the trip through QDateTime.
    w.SetValueDB(QVariant::fromValue(nullptr));
    EXPECT_EQ(w.ValueDB().metaType().id(), QMetaType::Nullptr);
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

TEST(DateBoxWidgetTest, TypedDigitsFillTheFieldsAndUpStepsIt) {
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

    // The last digit wrapped to the day field, which Up steps; the other
    // keys' rules are the editor's, and their codes the platform's tests.
    QTest::keyClick(box, Qt::Key_Up);
    EXPECT_EQ(box->Value(), At(2007, 12, 26));

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

    // Just below the field, from its client corner (inside the 3-D border),
    // and painted: the line for today is red.
    EXPECT_EQ(placed.topLeft(), box->mapToGlobal(QPoint(2, 2 + box->height())));
    int red = 0;
    for (int y = 0; y < shown.height(); ++y)
        for (int x = 0; x < shown.width(); ++x) {
            const QRgb c = shown.pixel(x, y);
            red += qRed(c) > 200 && qGreen(c) < 60 && qBlue(c) < 60;
        }
    EXPECT_GT(red, 10);

    // Escape, a click elsewhere (which hides the popup) and the application
    // going inactive each end the modal run without a choice.
    for (int way = 0; way < 3; ++way) {
        WhenOpen([way](QWidget* popup) {
            QTest::keyClick(popup, Qt::Key_PageUp);
            if (way == 0) QTest::keyClick(popup, Qt::Key_Escape);
            else if (way == 1) popup->hide();
            else emit qApp->applicationStateChanged(Qt::ApplicationInactive);
        });
        QTest::keyClick(box, Qt::Key_Down, Qt::AltModifier);
        EXPECT_EQ(QApplication::activePopupWidget(), nullptr) << way;
        EXPECT_EQ(box->Value(), At(2020, 3, 30)) << way;
    }

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

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

    // The null QDateTime is the empty date both ways, so Designer shows an
    // empty box's Value blank; a box that is not nullable ignores it.
    w.SetNullable(false);
    w.SetValue(QDateTime());
    EXPECT_EQ(w.Value(), QDateTime(QDate(2024, 3, 31), QTime(2, 30), Qt::UTC));
    w.SetNullable(true);
    w.SetValue(QDateTime());
    EXPECT_TRUE(w.Value().isNull());
    EXPECT_EQ(w.ValueDB().metaType().id(), QMetaType::Nullptr);
    EXPECT_EQ(w.property("Value").toDateTime(), QDateTime());
    // A time of day alone is a value, not the empty date.
    w.SetValue(QDateTime(QDate(1899, 12, 30), QTime(2, 30), Qt::UTC));
    EXPECT_EQ(w.displayText(), QStringLiteral("__/__/____ 02:30"));
    EXPECT_FALSE(w.Value().isNull());
    w.SetValue(QDateTime(QDate(2024, 3, 31), QTime(2, 30), Qt::UTC));

    // An invalid date is a type mismatch, reported, and the value stays.
    QSignalSpy errors(&w, &ControlWidget::hostError);
    w.SetValue(QDateTime(QDate(), QTime(10, 0), Qt::UTC));
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

// Every focus move inside the window goes the way Tab goes: the mouse and
// the application's setFocus complete a half-typed field, and a blank
// field of a required box takes the focus straight back, selected whole.
TEST(DateBoxWidgetTest, EveryFocusMoveCompletesTheFieldOrIsRefused) {
    Form form;
    DateBoxWidget* box = form.box;
    box->SetValue(At(2007, 12, 25));
    form.next->setFocus(Qt::TabFocusReason);
    box->setFocus(Qt::TabFocusReason);  // the field selected whole
    QTest::keyClick(box, Qt::Key_3);
    EXPECT_EQ(box->displayText(), QStringLiteral("3_/12/2007"));
    QTest::mouseClick(form.next, Qt::LeftButton);
    EXPECT_TRUE(form.next->hasFocus());
    EXPECT_EQ(box->displayText(), QStringLiteral("03/12/2007"));
    EXPECT_EQ(box->Value(), At(2007, 12, 3));

    box->setFocus(Qt::TabFocusReason);
    QTest::keyClick(box, Qt::Key_Right);
    QTest::keyClick(box, Qt::Key_Right);
    QTest::keyClick(box, Qt::Key_1);  // the year reads 1___
    form.next->setFocus(Qt::OtherFocusReason);
    EXPECT_EQ(box->displayText(), QStringLiteral("03/12/2001"));

    box->SetNullable(false);
    box->setFocus(Qt::TabFocusReason);
    QTest::keyClick(box, Qt::Key_Delete);
    QTest::mouseClick(form.next, Qt::LeftButton);
    QApplication::processEvents();
    EXPECT_TRUE(box->hasFocus());
    EXPECT_EQ(box->displayText(), QStringLiteral("__/12/2001"));
    // Selected whole: the next digit starts the field afresh.
    QTest::keyClick(box, Qt::Key_4);
    EXPECT_EQ(box->displayText(), QStringLiteral("4_/12/2001"));
}

// A disabled field is no tab stop, takes no focus from a click and reports
// no key or mouse event.
TEST(DateBoxWidgetTest, ADisabledFieldTakesNoPart) {
    Form form;
    DateBoxWidget* box = form.box;
    QSignalSpy ups(box, &DateBoxWidget::KeyUp);
    QSignalSpy mouseUps(box, &DateBoxWidget::MouseUp);
    form.next->setFocus(Qt::OtherFocusReason);
    box->SetEnabled(false);
    EXPECT_FALSE(box->isEnabled());
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, 10));
    EXPECT_TRUE(form.next->hasFocus());
    QTest::keyClick(form.next, Qt::Key_Tab);
    EXPECT_FALSE(box->hasFocus());
    QTest::keyClick(box, Qt::Key_5);
    EXPECT_EQ(ups.size(), 0);
    EXPECT_EQ(mouseUps.size(), 0);
    box->SetEnabled(true);
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, 10));
    EXPECT_TRUE(box->hasFocus());
    EXPECT_EQ(mouseUps.size(), 1);
}

// Runs `inside` on the calendar once it is open, from the nested loop that
// shows it (a mouse click runs events between its press and its release).
void WhenOpen(std::function<void(QWidget*)> inside) {
    auto* poll = new QTimer(qApp);
    QObject::connect(poll, &QTimer::timeout,
                     [poll, inside = std::move(inside), tries = 0]() mutable {
                         QWidget* popup = QApplication::activePopupWidget();
                         if (!popup && ++tries < 100) return;
                         poll->deleteLater();
                         poll->stop();
                         ASSERT_NE(popup, nullptr);
                         inside(popup);
                     });
    poll->start(0);
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

// A field that has drawn other dates, in another font, colour and size,
// keeps its painter and shaped lines only as long as they hold: it shows
// what a new field with its last settings shows, and no painter is left on
// its image between calls.
TEST(DateBoxWidgetTest, AFieldRedrawnAfterChangesShowsWhatANewFieldShows) {
    const QFont serif(QStringLiteral("DejaVu Serif"), 11);
    const auto last = [&](DateBoxWidget& w) {
        w.resize(190, 30);
        w.SetFont(serif);
        w.setForeColor(QColor(200, 0, 0));
        w.setBackColor(QColor(250, 250, 210));
        w.SetValue(At(2009, 1, 14));
    };
    DateBoxWidget kept;
    kept.resize(160, 24);
    kept.show();
    for (int day = 1; day <= 28; day += 9) {
        kept.SetValue(At(2007, 3, day));
        kept.repaint();
        EXPECT_FALSE(kept.image().paintingActive());
    }
    kept.SetValue(At(2008, 11, 27));
    last(kept);
    QApplication::processEvents();

    DateBoxWidget fresh;
    last(fresh);
    fresh.show();
    QApplication::processEvents();
    EXPECT_EQ(kept.image(), fresh.image());
    EXPECT_FALSE(kept.image().paintingActive());
}

// The calendar painted again after its month and highlight went away and
// came back shows what it showed when it opened.
TEST(DateBoxWidgetTest, TheCalendarRepaintedAfterMovingBackShowsWhatItOpenedWith) {
    Form form;
    DateBoxWidget* box = form.box;
    box->SetValue(At(2020, 3, 15));
    QImage opened, back;
    WhenOpen([&](QWidget* popup) {
        opened = popup->grab().toImage();
        for (Qt::Key k : {Qt::Key_PageUp, Qt::Key_Left, Qt::Key_Right, Qt::Key_PageDown,
                          Qt::Key_PageDown, Qt::Key_PageUp})
            QTest::keyClick(popup, k);
        back = popup->grab().toImage();
        QTest::keyClick(popup, Qt::Key_Escape);
    });
    QTest::keyClick(box, Qt::Key_F4);
    ASSERT_FALSE(opened.isNull());
    EXPECT_EQ(back, opened);
}

// The calendar opened by its button gives the field back selected whole,
// as F4 does, and a click on another widget while it is open closes it and
// reaches that widget.
TEST(DateBoxWidgetTest, TheButtonsCalendarGivesTheFieldBackAndLetsAClickThrough) {
    Form form;
    DateBoxWidget* box = form.box;
    box->SetValue(At(2007, 12, 25));
    const QPoint button(box->width() - 10, box->height() / 2);
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, box->height() / 2));
    WhenOpen([](QWidget* popup) { QTest::keyClick(popup, Qt::Key_Escape); });
    QTest::mouseClick(box, Qt::LeftButton, {}, button);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    QTest::keyClick(box, Qt::Key_7);
    EXPECT_EQ(box->displayText(), QStringLiteral("7_/12/2007"));

    // An empty field opens on today's month and stays empty.
    box->SetValueDB(QVariant::fromValue(nullptr));
    QSignalSpy changes(box, &DateBoxWidget::Change);
    WhenOpen([](QWidget* popup) { QTest::keyClick(popup, Qt::Key_Escape); });
    QTest::keyClick(box, Qt::Key_F4);
    EXPECT_EQ(box->displayText(), QStringLiteral("__/__/____"));
    EXPECT_EQ(changes.size(), 0);

    // The popup holds the mouse: a press on the line edit, beside the
    // popup that covers part of it, reaches the popup first.
    QLineEdit* next = form.next;
    const QPoint aside = next->mapToGlobal(QPoint(next->width() - 4, next->height() / 2));
    WhenOpen([aside](QWidget* popup) {
        ASSERT_FALSE(popup->geometry().contains(aside));
        QTest::mouseClick(popup, Qt::LeftButton, {}, popup->mapFromGlobal(aside));
    });
    QTest::mouseClick(box, Qt::LeftButton, {}, button);
    QApplication::processEvents();
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    // The window's focus went to the line edit (offscreen, no window is
    // active again once a popup has closed).
    EXPECT_EQ(form.window.focusWidget(), next);
}

}  // namespace
}  // namespace kelvarin::qt

// What a screen reader is told, read through QAccessible as the AT-SPI
// bridge reads it: the date field as editable text with its focused field
// and stepping actions, the bar as a progress bar with a value, the button
// as a push button with its press action and access key, the open calendar
// as a table under its field; the application's accessibleName and
// accessibleDescription come first.
#include "qt/Accessibility.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>

#include <kelvarin/CommandBoxWidget.h>
#include <kelvarin/DateBoxWidget.h>
#include <kelvarin/ProgressBoxWidget.h>
#include "tests/qt/QtPrinters.h"

namespace kelvarin::qt {
namespace {

struct Window {
    QWidget window;
    DateBoxWidget* date = new DateBoxWidget(&window);
    ProgressBoxWidget* bar = new ProgressBoxWidget(&window);
    CommandBoxWidget* button = new CommandBoxWidget(&window);

    Window() {
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(date);
        layout->addWidget(bar);
        layout->addWidget(button);
        window.show();
        QApplication::setActiveWindow(&window);
        QApplication::processEvents();
    }
};

TEST(AccessibilityTest, TheDateFieldIsEditableTextWithItsFocusedFieldAndSteps) {
    Window w;
    w.date->SetDateFormat(QStringLiteral("dd/mm/yyyy"));
    w.date->SetValue(QDateTime(QDate(2007, 12, 25), QTime(), Qt::UTC));
    QAccessibleInterface* a = QAccessible::queryAccessibleInterface(w.date);
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->role(), QAccessible::EditableText);
    EXPECT_TRUE(a->state().editable);
    EXPECT_EQ(a->text(QAccessible::Value), QStringLiteral("25/12/2007"));
    QAccessibleTextInterface* text = a->textInterface();
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->characterCount(), 10);
    EXPECT_EQ(text->text(0, 10), QStringLiteral("25/12/2007"));
    EXPECT_EQ(text->selectionCount(), 0);  // no field has the focus

    // The focus puts the caret at the start of the day; Right selects the
    // month whole.
    w.date->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(text->selectionCount(), 0);
    EXPECT_EQ(text->cursorPosition(), 0);
    QTest::keyClick(w.date, Qt::Key_Right);
    int start = -1, end = -1;
    ASSERT_EQ(text->selectionCount(), 1);
    text->selection(0, &start, &end);
    EXPECT_EQ(std::make_pair(start, end), std::make_pair(3, 5));
    EXPECT_EQ(text->text(start, end), QStringLiteral("12"));
    EXPECT_EQ(text->cursorPosition(), 5);

    // Increase and decrease step the focused field, as Up and Down do.
    QAccessibleActionInterface* actions = a->actionInterface();
    ASSERT_NE(actions, nullptr);
    EXPECT_TRUE(actions->actionNames().contains(QAccessibleActionInterface::increaseAction()));
    QSignalSpy change(w.date, &DateBoxWidget::Change);
    actions->doAction(QAccessibleActionInterface::decreaseAction());
    EXPECT_EQ(w.date->Value().date(), QDate(2007, 11, 25));
    actions->doAction(QAccessibleActionInterface::increaseAction());
    actions->doAction(QAccessibleActionInterface::increaseAction());
    EXPECT_EQ(w.date->Value().date(), QDate(2008, 1, 25));
    EXPECT_EQ(change.count(), 3);

    w.date->setAccessibleName(QStringLiteral("Data di nascita"));
    w.date->setAccessibleDescription(QStringLiteral("Il giorno in cui sei nato"));
    EXPECT_EQ(a->text(QAccessible::Name), QStringLiteral("Data di nascita"));
    EXPECT_EQ(a->text(QAccessible::Description), QStringLiteral("Il giorno in cui sei nato"));
    w.date->SetLocked(true);
    EXPECT_FALSE(a->state().editable);
    EXPECT_TRUE(a->state().readOnly);
}

TEST(AccessibilityTest, TheBarIsAProgressBarWithAValue) {
    Window w;
    w.bar->SetMinValue(10);
    w.bar->SetMaxValue(60);
    w.bar->SetValue(35);
    w.bar->SetText(QStringLiteral("Copia"));
    QAccessibleInterface* a = QAccessible::queryAccessibleInterface(w.bar);
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->role(), QAccessible::ProgressBar);
    QAccessibleValueInterface* value = a->valueInterface();
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->minimumValue().toDouble(), 10);
    EXPECT_EQ(value->maximumValue().toDouble(), 60);
    EXPECT_EQ(value->currentValue().toDouble(), 35);
    value->setCurrentValue(50);  // the application's alone, as for QProgressBar
    EXPECT_EQ(w.bar->Value(), 35);
    EXPECT_EQ(a->text(QAccessible::Value), QStringLiteral("Copia 50%"));
    w.bar->setAccessibleName(QStringLiteral("Avanzamento"));
    EXPECT_EQ(a->text(QAccessible::Name), QStringLiteral("Avanzamento"));
}

TEST(AccessibilityTest, TheButtonIsAPushButtonNamedByItsCaptionWithItsAccessKey) {
    Window w;
    w.button->SetText(QStringLiteral("&Salva && chiudi"));
    QAccessibleInterface* a = QAccessible::queryAccessibleInterface(w.button);
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->role(), QAccessible::Button);
    EXPECT_EQ(a->text(QAccessible::Name), QStringLiteral("Salva & chiudi"));
    QAccessibleActionInterface* actions = a->actionInterface();
    ASSERT_NE(actions, nullptr);
    EXPECT_EQ(actions->actionNames(), QStringList{QAccessibleActionInterface::pressAction()});
    EXPECT_EQ(actions->keyBindingsForAction(QAccessibleActionInterface::pressAction()),
              QStringList{QStringLiteral("Alt+S")});
    QSignalSpy clicked(w.button, &CommandBoxWidget::Click);
    actions->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(clicked.count(), 1);
    // A disabled button is not pressed.
    w.button->setEnabled(false);
    EXPECT_TRUE(a->state().disabled);
    actions->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(clicked.count(), 1);

    w.button->setAccessibleName(QStringLiteral("Salva il documento"));
    EXPECT_EQ(a->text(QAccessible::Name), QStringLiteral("Salva il documento"));
    EXPECT_EQ(WithoutAccessKeyMarks(QStringLiteral("Fine&")), QStringLiteral("Fine"));
}

TEST(AccessibilityTest, TheOpenCalendarIsATableUnderItsFieldNamedByItsCurrentDate) {
    Window w;
    w.date->SetDateFormat(QStringLiteral("dd/mm/yyyy"));
    w.date->SetValue(QDateTime(QDate(2007, 12, 25), QTime(), Qt::UTC));
    QAccessibleInterface* field = QAccessible::queryAccessibleInterface(w.date);
    ASSERT_NE(field, nullptr);
    const int closedChildren = field->childCount();

    int openChildren = -1;
    QAccessible::Role role = QAccessible::NoRole;
    QString name, value, movedName;
    bool parentIsField = false, childIsPopup = false;
    QTimer::singleShot(0, [&] {
        QWidget* popup = QApplication::activePopupWidget();
        ASSERT_NE(popup, nullptr);
        QAccessibleInterface* table = QAccessible::queryAccessibleInterface(popup);
        ASSERT_NE(table, nullptr);
        openChildren = field->childCount();
        childIsPopup = field->child(openChildren - 1) == table &&
                       field->indexOfChild(table) == openChildren - 1;
        parentIsField = table->parent() == field;
        role = table->role();
        name = table->text(QAccessible::Name);
        value = table->text(QAccessible::Value);
        QTest::keyClick(popup, Qt::Key_Right);
        movedName = table->text(QAccessible::Name);
        QTest::keyClick(popup, Qt::Key_Escape);
    });
    w.date->setFocus();
    QTest::keyClick(w.date, Qt::Key_F4);

    const QLocale locale;
    EXPECT_EQ(openChildren, closedChildren + 1);
    EXPECT_TRUE(childIsPopup);
    EXPECT_TRUE(parentIsField);
    EXPECT_EQ(role, QAccessible::Table);
    EXPECT_EQ(name, locale.toString(QDate(2007, 12, 25), QLocale::LongFormat));
    EXPECT_EQ(value, name);
    EXPECT_EQ(movedName, locale.toString(QDate(2007, 12, 26), QLocale::LongFormat));
    // Closed, it is no longer a child.
    EXPECT_EQ(field->childCount(), closedChildren);
}

}  // namespace
}  // namespace kelvarin::qt

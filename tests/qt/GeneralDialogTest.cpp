// SPDX-License-Identifier: MIT
// The property page as a Qt dialog, driven by real key and mouse events:
// numeric fields swallow what the page's filter rejects, Apply follows the
// changed flag, an apply writes in the page's order and an error it raises
// is shown, and the gallery opens the dialog on its playground bar.
#include "qt/GeneralDialog.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include <kelvarin/DateBoxWidget.h>
#include <kelvarin/ProgressBoxWidget.h>
#include "apps/gallery/GalleryWindow.h"
#include "library/ClassFactory.h"
#include "pages/general/General.h"
#include "tests/qt/QtPrinters.h"

namespace kelvarin::qt {
namespace {

QLineEdit* Edit(const GeneralDialog& d, const char* name) {
    return d.findChild<QLineEdit*>(QString::fromLatin1(name));
}

QPushButton* ApplyButton(const GeneralDialog& d) {
    for (QPushButton* b : d.findChildren<QPushButton*>())
        if (b->text().remove(QLatin1Char('&')) == QLatin1String("Apply")) return b;
    return nullptr;
}

// Empties a field as a user does without Ctrl+A, which numeric fields reject.
void Clear(QLineEdit* edit) {
    QTest::keyClick(edit, Qt::Key_End);
    QTest::keyClick(edit, Qt::Key_Home, Qt::ShiftModifier);
    QTest::keyClick(edit, Qt::Key_Delete);
}

void Retype(QLineEdit* edit, const char* text) {
    Clear(edit);
    QTest::keyClicks(edit, QString::fromLatin1(text));
}

TEST(GeneralDialogTest, NumericFieldsSwallowWhatThePagesFilterRejects) {
    ProgressBoxWidget bar;
    bar.setObjectName(QStringLiteral("bar"));
    ControlWidget button(library::ClassRegistry::Instance().Create("CommandBox"));
    DateBoxWidget date;

    GeneralDialog barPage({&bar, &button});
    barPage.show();
    EXPECT_EQ(barPage.page().Shown(), pages::Group::ProgressBox);
    EXPECT_EQ(barPage.findChildren<QLineEdit*>().size(), 6);
    EXPECT_EQ(barPage.findChildren<QCheckBox*>().size(), 2);
    EXPECT_EQ(barPage.findChild<QCheckBox*>(QStringLiteral("chkEnabledPB"))->text(),
              QStringLiteral("Enabled"));
    QLineEdit* value = Edit(barPage, "txtValue");
    Retype(value, "1a7,5");
    QTest::keyClick(value, Qt::Key_Backspace);
    QTest::keyClick(value, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(value->text(), QStringLiteral("17,5"));
    EXPECT_EQ(barPage.page().Find("txtValue").text, "17,5");
    // Selection and Delete still edit.
    QTest::keyClick(value, Qt::Key_Left, Qt::ShiftModifier);
    QTest::keyClick(value, Qt::Key_Delete);
    EXPECT_EQ(value->text(), QStringLiteral("17,"));
    QLineEdit* interval = Edit(barPage, "txtTimerChangedInterval");
    Retype(interval, ",2.5");
    EXPECT_EQ(interval->text(), QStringLiteral("2.5"));
    // A text field keeps every key.
    QLineEdit* text = Edit(barPage, "txtTextPB");
    QTest::keyClicks(text, QStringLiteral("ab,"));
    QTest::keyClick(text, Qt::Key_Backspace);
    EXPECT_EQ(barPage.page().Find("txtTextPB").text, "ab");

    GeneralDialog buttonPage({&button, &bar});
    EXPECT_EQ(buttonPage.page().Shown(), pages::Group::CommandBox);
    EXPECT_EQ(buttonPage.findChildren<QLineEdit*>().size(), 2);
    QLineEdit* interleave = Edit(buttonPage, "txtInterleave");
    Retype(interleave, "1,25");
    EXPECT_EQ(interleave->text(), QStringLiteral("125"));

    GeneralDialog datePage({&date, &bar});
    EXPECT_EQ(datePage.page().Shown(), pages::Group::None);
    EXPECT_TRUE(datePage.findChildren<QLineEdit*>().isEmpty());
    EXPECT_NE(datePage.findChild<QLabel*>(QStringLiteral("noGroup")), nullptr);
}

TEST(GeneralDialogTest, ApplyFollowsTheChangedFlagAndWritesInThePagesOrder) {
    ProgressBoxWidget bar;
    bar.SetValue(64);
    GeneralDialog dialog({&bar});
    dialog.show();
    QPushButton* apply = ApplyButton(dialog);
    ASSERT_NE(apply, nullptr);
    QTest::mouseClick(apply, Qt::LeftButton);  // filling the fields marked the page
    EXPECT_FALSE(apply->isEnabled());
    QTest::keyClick(dialog.findChild<QCheckBox*>(QStringLiteral("chkShowPercentual")),
                    Qt::Key_Space);
    EXPECT_TRUE(apply->isEnabled());

    // Percentual goes first, so MaxValue and Value decide it.
    Retype(Edit(dialog, "txtPercentual"), "90");
    Retype(Edit(dialog, "txtMaxValue"), "50");
    Retype(Edit(dialog, "txtValue"), "20");
    QTest::mouseClick(apply, Qt::LeftButton);
    EXPECT_FALSE(apply->isEnabled());
    EXPECT_EQ(bar.Value(), 20);
    EXPECT_EQ(bar.MaxValue(), 50);
    EXPECT_EQ(bar.Percentual(), 40);
    EXPECT_FALSE(bar.ShowPercentual());

    // A field the property cannot take ends the apply with its error, shown;
    // what came before it was written, and OK keeps the dialog open.
    Retype(Edit(dialog, "txtPercentual"), "30");
    Clear(Edit(dialog, "txtMaxValue"));
    QTest::mouseClick(apply, Qt::LeftButton);
    auto* error = dialog.findChild<QMessageBox*>(QStringLiteral("pageError"));
    ASSERT_NE(error, nullptr);
    EXPECT_TRUE(error->isVisible());
    EXPECT_TRUE(error->text().contains(QStringLiteral("13"))) << error->text().toStdString();
    EXPECT_EQ(bar.Percentual(), 30);
    EXPECT_EQ(bar.MaxValue(), 50);
    EXPECT_TRUE(apply->isEnabled());
    error->accept();
    QTest::keyClick(Edit(dialog, "txtValue"), Qt::Key_Return);
    EXPECT_TRUE(dialog.isVisible());
}

TEST(GeneralDialogTest, TheGalleryOpensThePageOnItsPlaygrounds) {
    gallery::GalleryWindow window;
    window.show();
    const auto open = [&](const char* button) {
        QTest::mouseClick(window.findChild<QPushButton*>(QString::fromLatin1(button)),
                          Qt::LeftButton);
        return window.findChild<GeneralDialog*>();
    };
    GeneralDialog* dialog = open("properties");
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(Edit(*dialog, "txtTextPB")->text(), QStringLiteral("Progress"));
    dialog->reject();
    delete dialog;
    dialog = open("commandProperties");
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(Edit(*dialog, "txtText")->text(), QStringLiteral("Salva con &nome"));
    dialog->reject();
}

}  // namespace
}  // namespace kelvarin::qt

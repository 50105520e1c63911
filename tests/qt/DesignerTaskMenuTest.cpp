// SPDX-License-Identifier: MIT
// Designer's context menu: Designer's own form editor loads the plugin from
// its plugin path, and "Edit General…" on a bar of a form opens the page,
// whose apply is one step of the form's undo stack that the property sheet
// shows as changed.
#include <gtest/gtest.h>

#include "tests/qt/QtPrinters.h"

#include <memory>

#include <QAction>
#include <QCoreApplication>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QUndoStack>
#include <QtDesigner/QDesignerComponents>
#include <QtDesigner/QDesignerFormEditorInterface>
#include <QtDesigner/QDesignerFormWindowInterface>
#include <QtDesigner/QDesignerFormWindowManagerInterface>
#include <QtDesigner/QDesignerIntegration>
#include <QtDesigner/QDesignerPropertyEditorInterface>
#include <QtDesigner/QDesignerPropertySheetExtension>
#include <QtDesigner/QDesignerTaskMenuExtension>
#include <QtDesigner/QExtensionManager>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

namespace {

constexpr const char* kForm = R"(<ui version="4.0"><class>Form</class>
 <widget class="QWidget" name="Form">
  <widget class="kelvarin::qt::ProgressBoxWidget" name="bar">
   <property name="geometry"><rect><x>8</x><y>8</y><width>200</width><height>24</height></rect></property>
  </widget>
  <widget class="kelvarin::qt::DateBoxWidget" name="date">
   <property name="geometry"><rect><x>8</x><y>40</y><width>160</width><height>22</height></rect></property>
  </widget>
 </widget>
</ui>)";

TEST(DesignerTaskMenuTest, EditGeneralWritesThroughTheFormsCursorAndUndoesInOneStep) {
    // Designer looks for plugins in "designer" under each library path.
    QTemporaryDir dir;
    ASSERT_TRUE(QDir(dir.path()).mkpath(QStringLiteral("designer")));
    ASSERT_TRUE(QFile::link(QStringLiteral(KELVARIN_DESIGNER_PATH),
                            dir.filePath(QStringLiteral("designer/libkelvarin_designer.so"))));
    QCoreApplication::addLibraryPath(dir.path());
    QDesignerComponents::initializeResources();
    std::unique_ptr<QDesignerFormEditorInterface> core(
        QDesignerComponents::createFormEditor(nullptr));
    QDesignerComponents::initializePlugins(core.get());
    std::unique_ptr<QDesignerPropertyEditorInterface> sheetEditor(
        QDesignerComponents::createPropertyEditor(core.get(), nullptr));
    core->setPropertyEditor(sheetEditor.get());
    QDesignerIntegration integration(core.get());
    QCoreApplication::removeLibraryPath(dir.path());

    std::unique_ptr<QDesignerFormWindowInterface> form(
        core->formWindowManager()->createFormWindow(nullptr));
    ASSERT_TRUE(form->setContents(QString::fromLatin1(kForm)));
    QWidget* bar = form->mainContainer()->findChild<QWidget*>(QStringLiteral("bar"));
    QWidget* date = form->mainContainer()->findChild<QWidget*>(QStringLiteral("date"));
    ASSERT_NE(bar, nullptr);
    ASSERT_NE(date, nullptr);
    // Designer initialised each of the collection's widgets with its core.
    for (QObject* instance : core->pluginInstances()) {
        if (auto* c = qobject_cast<QDesignerCustomWidgetCollectionInterface*>(instance)) {
            for (QDesignerCustomWidgetInterface* w : c->customWidgets())
                EXPECT_TRUE(w->isInitialized()) << w->name().toStdString();
        }
    }
    QExtensionManager* extensions = core->extensionManager();
    EXPECT_EQ(qt_extension<QDesignerTaskMenuExtension*>(extensions, date), nullptr);
    auto* menu = qt_extension<QDesignerTaskMenuExtension*>(extensions, bar);
    ASSERT_NE(menu, nullptr);
    ASSERT_EQ(menu->taskActions().size(), 1);
    EXPECT_EQ(menu->taskActions().front()->text(), QStringLiteral("Edit General…"));
    EXPECT_EQ(menu->preferredEditAction(), menu->taskActions().front());

    menu->taskActions().front()->trigger();
    auto* dialog = form->findChild<QDialog*>(QStringLiteral("generalDialog"));
    ASSERT_NE(dialog, nullptr);
    auto* value = dialog->findChild<QLineEdit*>(QStringLiteral("txtValue"));
    auto* text = dialog->findChild<QLineEdit*>(QStringLiteral("txtTextPB"));
    QTest::keyClick(value, Qt::Key_Home, Qt::ShiftModifier);
    QTest::keyClicks(value, QStringLiteral("3x5"));
    QTest::keyClicks(text, QStringLiteral("Copia"));
    const int before = form->commandHistory()->count();
    QTest::keyClick(value, Qt::Key_Return);  // OK: applies, then closes
    EXPECT_FALSE(dialog->isVisible());

    EXPECT_EQ(bar->property("Value").toDouble(), 35);
    EXPECT_EQ(bar->property("Text").toString(), QStringLiteral("Copia"));
    auto* sheet = qt_extension<QDesignerPropertySheetExtension*>(extensions, bar);
    ASSERT_NE(sheet, nullptr);
    EXPECT_TRUE(sheet->isChanged(sheet->indexOf(QStringLiteral("Value"))));
    EXPECT_TRUE(form->contents().contains(QStringLiteral("<string>Copia</string>")));
    EXPECT_EQ(form->commandHistory()->count(), before + 1);
    form->commandHistory()->undo();
    EXPECT_EQ(bar->property("Value").toDouble(), 0);
    EXPECT_EQ(bar->property("Text").toString(), QString());
}

}  // namespace

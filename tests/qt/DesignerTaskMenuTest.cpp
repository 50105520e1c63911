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

// Designer's own form editor with the plugin loaded from its plugin path,
// a property editor and one form window holding kForm.
struct DesignerSession {
    DesignerSession() {
        // Designer looks for plugins in "designer" under each library path.
        EXPECT_TRUE(QDir(dir.path()).mkpath(QStringLiteral("designer")));
        EXPECT_TRUE(QFile::link(QStringLiteral(KELVARIN_DESIGNER_PATH),
                                dir.filePath(QStringLiteral("designer/libkelvarin_designer.so"))));
        QCoreApplication::addLibraryPath(dir.path());
        QDesignerComponents::initializeResources();
        core.reset(QDesignerComponents::createFormEditor(nullptr));
        QDesignerComponents::initializePlugins(core.get());
        sheetEditor.reset(QDesignerComponents::createPropertyEditor(core.get(), nullptr));
        core->setPropertyEditor(sheetEditor.get());
        integration = std::make_unique<QDesignerIntegration>(core.get());
        QCoreApplication::removeLibraryPath(dir.path());
        form.reset(core->formWindowManager()->createFormWindow(nullptr));
        EXPECT_TRUE(form->setContents(QString::fromLatin1(kForm)));
    }
    QDesignerPropertySheetExtension* sheetOf(QWidget* w) const {
        return qt_extension<QDesignerPropertySheetExtension*>(core->extensionManager(), w);
    }

    QTemporaryDir dir;
    std::unique_ptr<QDesignerFormEditorInterface> core;
    std::unique_ptr<QDesignerPropertyEditorInterface> sheetEditor;
    std::unique_ptr<QDesignerIntegration> integration;
    std::unique_ptr<QDesignerFormWindowInterface> form;
};

TEST(DesignerTaskMenuTest, EditGeneralWritesThroughTheFormsCursorAndUndoesInOneStep) {
    DesignerSession session;
    QDesignerFormEditorInterface* core = session.core.get();
    QDesignerFormWindowInterface* form = session.form.get();
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
    auto* sheet = session.sheetOf(bar);
    ASSERT_NE(sheet, nullptr);
    EXPECT_TRUE(sheet->isChanged(sheet->indexOf(QStringLiteral("Value"))));
    EXPECT_TRUE(form->contents().contains(QStringLiteral("<string>Copia</string>")));
    EXPECT_EQ(form->commandHistory()->count(), before + 1);
    form->commandHistory()->undo();
    EXPECT_EQ(bar->property("Value").toDouble(), 0);
    EXPECT_EQ(bar->property("Text").toString(), QString());
}

// The property sheet shows enabled and font once (the widget's, which are
// the control's) and colours with the colour picker;
// a system colour nobody edited stays out of the form, so it stays one.
TEST(DesignerTaskMenuTest, ThePropertySheetSpeaksQt) {
    DesignerSession session;
    QWidget* date = session.form->mainContainer()->findChild<QWidget*>(QStringLiteral("date"));
    ASSERT_NE(date, nullptr);
    QDesignerPropertySheetExtension* sheet = session.sheetOf(date);
    ASSERT_NE(sheet, nullptr);
    const auto shown = [&](const char* name) {
        const int i = sheet->indexOf(QString::fromLatin1(name));
        return i >= 0 && sheet->isVisible(i);
    };
    EXPECT_TRUE(shown("enabled"));
    EXPECT_TRUE(shown("font"));
    EXPECT_FALSE(shown("Enabled"));
    EXPECT_FALSE(shown("Font"));
    EXPECT_FALSE(shown("BackColor"));
    ASSERT_TRUE(shown("backColor"));
    EXPECT_EQ(sheet->property(sheet->indexOf(QStringLiteral("backColor"))).metaType().id(),
              QMetaType::QColor);

    sheet->setProperty(sheet->indexOf(QStringLiteral("enabled")), false);
    EXPECT_FALSE(date->property("Enabled").toBool());

    EXPECT_FALSE(session.form->contents().contains(QStringLiteral("backColor")));
    EXPECT_EQ(date->property("BackColor").toUInt(), 0x80000005u);
    sheet->setProperty(sheet->indexOf(QStringLiteral("backColor")), QColor(1, 2, 3));
    sheet->setChanged(sheet->indexOf(QStringLiteral("backColor")), true);
    EXPECT_EQ(date->property("BackColor").toUInt(), 0x00030201u);
    EXPECT_TRUE(session.form->contents().contains(QStringLiteral("backColor")));
}

}  // namespace

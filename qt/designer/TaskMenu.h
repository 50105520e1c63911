// SPDX-License-Identifier: MIT
// "Edit General…" in Qt Designer's context menu of a control that the
// property page General edits. The page's writes go through the form
// window's cursor, as the property sheet's own do: the sheet shows them and
// one undo takes back one apply.
#pragma once

#include <QList>
#include <QObject>
#include <QtDesigner/QDesignerTaskMenuExtension>
#include <QtDesigner/QExtensionFactory>

class QAction;
class QDesignerFormEditorInterface;

namespace kelvarin::qt {

class ControlWidget;

class GeneralTaskMenu : public QObject, public QDesignerTaskMenuExtension {
    Q_OBJECT
    Q_INTERFACES(QDesignerTaskMenuExtension)

public:
    GeneralTaskMenu(ControlWidget* widget, QObject* parent);

    // Also what a double click on the widget does.
    QAction* preferredEditAction() const override { return edit_; }
    QList<QAction*> taskActions() const override { return {edit_}; }

private:
    void edit();

    ControlWidget* widget_;
    QAction* edit_;
};

class GeneralTaskMenuFactory : public QExtensionFactory {
    Q_OBJECT

public:
    explicit GeneralTaskMenuFactory(QExtensionManager* parent);
    // Once for each Designer core, whichever widget entry is initialised first.
    static void Register(QDesignerFormEditorInterface* core);

protected:
    QObject* createExtension(QObject* object, const QString& iid, QObject* parent) const override;
};

}  // namespace kelvarin::qt

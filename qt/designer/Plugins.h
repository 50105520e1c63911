// SPDX-License-Identifier: MIT
// Qt Designer's entries for the Kelvarin widgets: one widget-box item per
// control (its icon, default geometry and the header generated code
// includes), gathered in one plugin.
#pragma once

#include <functional>

#include <QIcon>
#include <QList>
#include <QObject>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

namespace kelvarin::qt {

class WidgetPlugin : public QObject, public QDesignerCustomWidgetInterface {
    Q_OBJECT
    Q_INTERFACES(QDesignerCustomWidgetInterface)

public:
    struct Entry {
        QString className;    // the widget's C++ class
        QString displayName;  // the control's class, as the widget box names it
        QString objectName;   // the name a new one gets in a form
        QString toolTip;
        QString whatsThis;
        QString includeFile;
        QSize size;
        std::function<QIcon()> icon;
        std::function<QWidget*(QWidget*)> create;
    };

    WidgetPlugin(Entry entry, QObject* parent);

    QString name() const override { return entry_.className; }
    QString group() const override { return QStringLiteral("Kelvarin"); }
    QString toolTip() const override { return entry_.toolTip; }
    QString whatsThis() const override { return entry_.whatsThis; }
    QString includeFile() const override { return entry_.includeFile; }
    QIcon icon() const override { return entry_.icon(); }
    bool isContainer() const override { return false; }
    QWidget* createWidget(QWidget* parent) override { return entry_.create(parent); }
    bool isInitialized() const override { return initialized_; }
    void initialize(QDesignerFormEditorInterface* core) override;
    QString domXml() const override;

private:
    Entry entry_;
    bool initialized_ = false;
};

class KelvarinPlugins : public QObject, public QDesignerCustomWidgetCollectionInterface {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QDesignerCustomWidgetCollectionInterface")
    Q_INTERFACES(QDesignerCustomWidgetCollectionInterface)

public:
    explicit KelvarinPlugins(QObject* parent = nullptr);
    QList<QDesignerCustomWidgetInterface*> customWidgets() const override { return widgets_; }

private:
    QList<QDesignerCustomWidgetInterface*> widgets_;
};

}  // namespace kelvarin::qt

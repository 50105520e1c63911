// Qt Designer's entry for the progress bar widget: the widget box item, its
// default geometry, and the header that generated code includes.
#pragma once

#include <QObject>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

namespace kelvarin::qt {

class ProgressBoxPlugin : public QObject, public QDesignerCustomWidgetInterface {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QDesignerCustomWidgetInterface")
    Q_INTERFACES(QDesignerCustomWidgetInterface)

public:
    explicit ProgressBoxPlugin(QObject* parent = nullptr) : QObject(parent) {}

    QString name() const override;
    QString group() const override;
    QString toolTip() const override;
    QString whatsThis() const override;
    QString includeFile() const override;
    QIcon icon() const override;
    bool isContainer() const override { return false; }
    QWidget* createWidget(QWidget* parent) override;
    bool isInitialized() const override { return initialized_; }
    void initialize(QDesignerFormEditorInterface* core) override;
    QString domXml() const override;

private:
    bool initialized_ = false;
};

}  // namespace kelvarin::qt

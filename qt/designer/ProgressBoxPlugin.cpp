#include "qt/designer/ProgressBoxPlugin.h"

#include <QIcon>
#include <QLinearGradient>
#include <QPainter>
#include <QPixmap>

#include "qt/ProgressBoxWidget.h"
#include "qt/QtPlatform.h"

namespace kelvarin::qt {

QString ProgressBoxPlugin::name() const { return QStringLiteral("kelvarin::qt::ProgressBoxWidget"); }
QString ProgressBoxPlugin::group() const { return QStringLiteral("Kelvarin"); }
QString ProgressBoxPlugin::toolTip() const { return QStringLiteral("Gradient progress bar"); }

QString ProgressBoxPlugin::whatsThis() const {
    return QStringLiteral(
        "A progress bar painted as a colour gradient, with a caption of its text and "
        "percentage, that reports elapsed and estimated time while a run goes on.");
}

QString ProgressBoxPlugin::includeFile() const { return QStringLiteral("qt/ProgressBoxWidget.h"); }

QIcon ProgressBoxPlugin::icon() const {
    QPixmap pixmap(22, 22);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    QLinearGradient g(0, 0, 22, 0);
    g.setColorAt(0, QColor(0, 120, 215));
    g.setColorAt(1, QColor(0, 200, 170));
    p.setPen(QColor(90, 90, 90));
    p.setBrush(Qt::white);
    p.drawRect(1, 7, 19, 8);
    p.fillRect(2, 8, 12, 7, g);
    return QIcon(pixmap);
}

void ProgressBoxPlugin::initialize(QDesignerFormEditorInterface*) {
    if (initialized_) return;
    ApplyPlatformSettings();
    initialized_ = true;
}

QWidget* ProgressBoxPlugin::createWidget(QWidget* parent) { return new ProgressBoxWidget(parent); }

QString ProgressBoxPlugin::domXml() const {
    return QStringLiteral(
        "<ui language=\"c++\">\n"
        " <widget class=\"kelvarin::qt::ProgressBoxWidget\" name=\"progressBox\">\n"
        "  <property name=\"geometry\"><rect><x>0</x><y>0</y><width>200</width><height>24</height></rect></property>\n"
        " </widget>\n"
        "</ui>\n");
}

}  // namespace kelvarin::qt

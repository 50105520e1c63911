#include "qt/designer/Plugins.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPixmap>

#include "qt/DateBoxWidget.h"
#include "qt/ProgressBoxWidget.h"
#include "qt/QtPlatform.h"
#include "qt/designer/TaskMenu.h"

namespace kelvarin::qt {

WidgetPlugin::WidgetPlugin(Entry entry, QObject* parent)
    : QObject(parent), entry_(std::move(entry)) {}

void WidgetPlugin::initialize(QDesignerFormEditorInterface* core) {
    if (initialized_) return;
    // Both idempotent: every entry may be first.
    ApplyPlatformSettings();
    GeneralTaskMenuFactory::Register(core);
    initialized_ = true;
}

QString WidgetPlugin::domXml() const {
    return QStringLiteral(
               "<ui language=\"c++\">\n"
               " <widget class=\"%1\" name=\"%2\">\n"
               "  <property "
               "name=\"geometry\"><rect><x>0</x><y>0</y><width>%3</width><height>%4</height>"
               "</rect></property>\n"
               " </widget>\n"
               "</ui>\n")
        .arg(entry_.className, entry_.objectName)
        .arg(entry_.size.width())
        .arg(entry_.size.height());
}

namespace {

QIcon ProgressIcon() {
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

// A field with three parts and the drop-down button.
QIcon DateIcon() {
    QPixmap pixmap(22, 22);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setPen(QColor(90, 90, 90));
    p.setBrush(Qt::white);
    p.drawRect(0, 6, 21, 10);
    p.fillRect(2, 9, 4, 5, QColor(0, 120, 215));
    p.fillRect(7, 9, 3, 5, QColor(150, 150, 150));
    p.fillRect(11, 9, 3, 5, QColor(150, 150, 150));
    p.setBrush(QColor(60, 60, 60));
    p.setPen(Qt::NoPen);
    const QPoint arrow[] = {{16, 10}, {20, 10}, {18, 13}};
    p.drawPolygon(arrow, 3);
    return QIcon(pixmap);
}

}  // namespace

KelvarinPlugins::KelvarinPlugins(QObject* parent) : QObject(parent) {
    widgets_.append(new WidgetPlugin(
        {QStringLiteral("kelvarin::qt::DateBoxWidget"), QStringLiteral("dateBox"),
         QStringLiteral("Date field with a drop-down calendar"),
         QStringLiteral(
             "A date field edited part by part, that may be empty (a database Null), stays within "
             "its limits and drops down a month calendar."),
         QStringLiteral("qt/DateBoxWidget.h"), QSize(160, 22), DateIcon,
         [](QWidget* parent) -> QWidget* { return new DateBoxWidget(parent); }},
        this));
    widgets_.append(new WidgetPlugin(
        {QStringLiteral("kelvarin::qt::ProgressBoxWidget"), QStringLiteral("progressBox"),
         QStringLiteral("Gradient progress bar"),
         QStringLiteral("A progress bar painted as a colour gradient, with a caption of its text "
                        "and percentage, "
                        "that reports elapsed and estimated time while a run goes on."),
         QStringLiteral("qt/ProgressBoxWidget.h"), QSize(200, 24), ProgressIcon,
         [](QWidget* parent) -> QWidget* { return new ProgressBoxWidget(parent); }},
        this));
}

}  // namespace kelvarin::qt

// SPDX-License-Identifier: MIT
#include "qt/designer/Plugins.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPixmap>

#include <kelvarin/CommandBoxWidget.h>
#include <kelvarin/DateBoxWidget.h>
#include <kelvarin/ProgressBoxWidget.h>
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
    // The widget box shows the control's own class name ("DateBox"); forms
    // and generated code name the C++ class.
    return QStringLiteral(
               "<ui language=\"c++\" displayname=\"%5\">\n"
               " <widget class=\"%1\" name=\"%2\">\n"
               "  <property "
               "name=\"geometry\"><rect><x>0</x><y>0</y><width>%3</width><height>%4</height>"
               "</rect></property>\n"
               " </widget>\n"
               "</ui>\n")
        .arg(entry_.className, entry_.objectName)
        .arg(entry_.size.width())
        .arg(entry_.size.height())
        .arg(entry_.displayName);
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

// A raised button face with a small landscape picture beside a caption.
QIcon CommandIcon() {
    QPixmap pixmap(22, 22);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.fillRect(1, 4, 20, 14, QColor(236, 238, 241));
    p.setPen(Qt::white);
    p.drawLine(1, 4, 20, 4);
    p.drawLine(1, 4, 1, 17);
    p.setPen(QColor(70, 70, 70));
    p.drawLine(1, 18, 21, 18);
    p.drawLine(21, 4, 21, 18);
    p.setPen(QColor(150, 150, 150));
    p.drawLine(2, 17, 20, 17);
    p.drawLine(20, 5, 20, 17);
    p.fillRect(4, 7, 7, 8, QColor(125, 200, 250));  // sky
    p.fillRect(9, 8, 2, 2, QColor(250, 190, 40));   // sun
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(40, 150, 90));
    const QPoint hill[] = {{4, 15}, {7, 10}, {11, 15}};  // hill
    p.drawPolygon(hill, 3);
    p.fillRect(13, 9, 5, 1, QColor(60, 60, 60));  // caption
    p.fillRect(13, 12, 4, 1, QColor(60, 60, 60));
    return QIcon(pixmap);
}

}  // namespace

KelvarinPlugins::KelvarinPlugins(QObject* parent) : QObject(parent) {
    widgets_.append(new WidgetPlugin(
        {QStringLiteral("kelvarin::qt::DateBoxWidget"), QStringLiteral("DateBox"),
         QStringLiteral("dateBox"), QStringLiteral("Date field with a drop-down calendar"),
         QStringLiteral(
             "A date field edited part by part, that may be empty (a database Null), stays within "
             "its limits and drops down a month calendar."),
         QStringLiteral("kelvarin/DateBoxWidget.h"), QSize(160, 22), DateIcon,
         [](QWidget* parent) -> QWidget* { return new DateBoxWidget(parent); }},
        this));
    widgets_.append(new WidgetPlugin(
        {QStringLiteral("kelvarin::qt::ProgressBoxWidget"), QStringLiteral("ProgressBox"),
         QStringLiteral("progressBox"), QStringLiteral("Gradient progress bar"),
         QStringLiteral("A progress bar painted as a colour gradient, with a caption of its text "
                        "and percentage, "
                        "that reports elapsed and estimated time while a run goes on."),
         QStringLiteral("kelvarin/ProgressBoxWidget.h"), QSize(200, 24), ProgressIcon,
         [](QWidget* parent) -> QWidget* { return new ProgressBoxWidget(parent); }},
        this));
    widgets_.append(new WidgetPlugin(
        {QStringLiteral("kelvarin::qt::CommandBoxWidget"), QStringLiteral("CommandBox"),
         QStringLiteral("commandBox"), QStringLiteral("Picture button"),
         QStringLiteral("A push button that paints its own face: a caption with an access key "
                        "and a picture in one of five places, greyed until the pointer is over "
                        "it if wished, in two edge styles."),
         QStringLiteral("kelvarin/CommandBoxWidget.h"), QSize(120, 32), CommandIcon,
         [](QWidget* parent) -> QWidget* { return new CommandBoxWidget(parent); }},
        this));
}

}  // namespace kelvarin::qt

// SPDX-License-Identifier: MIT
#include "apps/gallery/EventTrace.h"

#include <QApplication>
#include <QEvent>
#include <QTabBar>
#include <QTabWidget>
#include <QTimer>
#include <QWindow>

#include <kelvarin/ControlWidget.h>
#include <kelvarin/DateBoxWidget.h>
#include "apps/gallery/Cards.h"
#include "apps/gallery/GalleryWindow.h"

namespace kelvarin::gallery {

using qt::ControlWidget;

namespace {

QString Place(const QWidget* w, const QRect& local) {
    const QPoint p = w->mapToGlobal(local.topLeft());
    return QStringLiteral("%1 %2 %3 %4")
        .arg(p.x())
        .arg(p.y())
        .arg(local.width())
        .arg(local.height());
}

QString DateText(const QDateTime& d) {
    if (d.isNull()) return QStringLiteral("empty");
    return d.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
}

}  // namespace

EventTrace::EventTrace(GalleryWindow& window, std::FILE* out)
    : QObject(&window), window_(window), out_(out) {
    for (ControlWidget* w : window_.controls()) follow(w);
    if (auto* tabs = window_.findChild<QTabWidget*>(QStringLiteral("pages"))) {
        // After the new page's layout, so that its places are the shown ones.
        connect(tabs, &QTabWidget::currentChanged, this,
                [this] { QTimer::singleShot(0, this, &EventTrace::printPage); });
    }
    qApp->installEventFilter(this);  // popups open and close
}

void EventTrace::start() {
    auto* poll = new QTimer(this);
    connect(poll, &QTimer::timeout, this, [this, poll] {
        const QWindow* handle = window_.windowHandle();
        if (!handle || !handle->isExposed()) return;
        if (!window_.isActiveWindow()) {
            window_.activateWindow();
            return;
        }
        poll->deleteLater();
        printPage();
        print(QStringLiteral("READY"));
    });
    poll->start(50);
}

void EventTrace::follow(ControlWidget* control) {
    connect(control, &ControlWidget::eventRaised, this,
            [this, control](int, const QString& event, const QVariantList& args) {
                print(eventLine(control, event, args));
                if (event != QStringLiteral("MouseMove")) {
                    const QString value = valueLine(control);
                    if (!value.isEmpty()) print(value);
                }
            });
}

QString EventTrace::eventLine(ControlWidget* control, const QString& event,
                              const QVariantList& args) {
    return QStringLiteral("EVENT %1 %2").arg(control->objectName(), EventText(event, args));
}

QString EventTrace::valueLine(ControlWidget* control) {
    auto* box = qobject_cast<qt::DateBoxWidget*>(control);
    if (!box) return {};
    const QVariant db = box->ValueDB();
    const bool null = db.isNull() || db.metaType().id() == QMetaType::Nullptr;
    return QStringLiteral("VALUE %1 \"%2\" %3 %4")
        .arg(box->objectName(), box->displayText(), DateText(box->Value()),
             null ? QStringLiteral("Null") : DateText(db.toDateTime()));
}

QString EventTrace::layoutLines() const {
    QStringList lines;
    const auto* tabs = window_.findChild<QTabWidget*>(QStringLiteral("pages"));
    if (!tabs) return {};
    lines << QStringLiteral("PAGE ") + tabs->tabText(tabs->currentIndex());
    const QTabBar* bar = tabs->tabBar();
    for (int i = 0; i < tabs->count(); ++i) {
        if (!tabs->isTabVisible(i)) continue;
        lines << QStringLiteral("TAB %1 %2").arg(tabs->tabText(i), Place(bar, bar->tabRect(i)));
    }
    for (ControlWidget* w : window_.controls()) {
        if (!w->isVisible()) continue;
        lines << QStringLiteral("AT %1 %2").arg(w->objectName(), Place(w, w->rect()));
        if (auto* box = qobject_cast<qt::DateBoxWidget*>(w)) {
            lines << QStringLiteral("FIELDS %1 %2 %3 %4 %5")
                         .arg(w->objectName())
                         .arg(box->TextLeft())
                         .arg(box->TextTop())
                         .arg(box->TextWidth())
                         .arg(box->TextHeight());
        }
    }
    return lines.join(QLatin1Char('\n'));
}

void EventTrace::printPage() { print(layoutLines()); }

bool EventTrace::eventFilter(QObject* watched, QEvent* event) {
    const auto type = event->type();
    if (type == QEvent::Show || type == QEvent::Hide) {
        auto* w = qobject_cast<QWidget*>(watched);
        if (w && w->isWindow() && w->windowType() == Qt::Popup) {
            print(type == QEvent::Hide ? QStringLiteral("POPUP closed")
                                       : QStringLiteral("POPUP ") + Place(w, w->rect()));
        }
    }
    return QObject::eventFilter(watched, event);
}

void EventTrace::print(const QString& line) {
    std::fprintf(out_, "%s\n", line.toUtf8().constData());
    std::fflush(out_);
}

}  // namespace kelvarin::gallery

// SPDX-License-Identifier: MIT
#include "qt/PopupWindow.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>

#include "qt/Accessibility.h"
#include "qt/Guard.h"
#include "qt/QtPlatform.h"

namespace kelvarin::qt {

PopupWindow::PopupWindow(host::Popup& popup, QWidget* owner)
    : QWidget(owner, Qt::Popup | Qt::FramelessWindowHint),
      popup_(popup),
      surface_(image_, text_),
      colors_(SysColorsFrom(owner ? owner->palette() : QApplication::palette())) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoMouseReplay);  // PopupWindow replays a press outside itself
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    // Another application coming to the front takes the activation away.
    connect(qApp, &QGuiApplication::applicationStateChanged, this,
            [this](Qt::ApplicationState state) {
                if (state != Qt::ApplicationActive && isVisible()) hide();
            });
}

namespace {

// Delivers a press that closed a popup to the widget under it once the
// modal run has ended, as a press outside a Qt popup is replayed: the
// widget takes the focus as its policy says, then hears the press. Qt's own
// replay is off (WA_NoMouseReplay), since not every platform has it.
void ReplayPress(const QMouseEvent& event) {
    const QPoint global = event.globalPosition().toPoint();
    const Qt::MouseButton button = event.button();
    const Qt::MouseButtons buttons = event.buttons();
    const Qt::KeyboardModifiers modifiers = event.modifiers();
    QMetaObject::invokeMethod(
        qApp,
        [=] {
            QPointer<QWidget> target = QApplication::widgetAt(global);
            if (!target || !target->isEnabled() || QApplication::activePopupWidget()) return;
            for (QWidget* w = target; w; w = w->parentWidget()) {
                if (w->isEnabled() && (w->focusPolicy() & Qt::ClickFocus)) {
                    w->setFocus(Qt::MouseFocusReason);
                    break;
                }
                if (w->isWindow()) break;
            }
            if (!target) return;
            const QPointF local = target->mapFromGlobal(QPointF(global));
            QMouseEvent press(QEvent::MouseButtonPress, local, QPointF(global), button, buttons,
                              modifiers);
            QApplication::sendEvent(target, &press);
        },
        Qt::QueuedConnection);
}

}  // namespace

template <typename F>
void PopupWindow::guard(const char* where, F&& f) noexcept {
    const ScopedSysColors colors(colors_);
    const Failure failure = Guard(std::forward<F>(f));
    if (!failure) return;
    WarnFailure(QStringLiteral("popup"), where, failure);
    emit hostError(failure.number, failure.text, QString::fromUtf8(where));
}

template <typename F>
void PopupWindow::forward(const char* where, F&& f) noexcept {
    const Date before = popup_.CurrentDate();
    guard(where, std::forward<F>(f));
    closeIfDone();
    update();
    if (isVisible() && popup_.CurrentDate() != before) AnnounceName(this);
}

void PopupWindow::exec(const QPoint& screen) {
    if (!popup_.IsOpen()) return;
    const host::Size size = popup_.ClientSize();
    resize(std::max(size.width, 1), std::max(size.height, 1));
    move(screen);
    // Qt gives a popup the keyboard as it opens; the owner keeps its focus
    // and hears only that a popup took the keys for a while.
    show();
    if (popup_.IsOpen() && isVisible()) loop_.exec();
    hide();
}

void PopupWindow::closeIfDone() {
    if (!popup_.IsOpen() && isVisible()) hide();
}

void PopupWindow::paintEvent(QPaintEvent*) {
    const host::Size size = popup_.ClientSize();
    text_.End();  // no painter outlives a paint; this one would go with a replaced image
    if (image_.width() != size.width || image_.height() != size.height)
        image_ = QImage(std::max(size.width, 1), std::max(size.height, 1), QImage::Format_BGR888);
    surface_.SetView(image_.rect());
    surface_.FillRect({0, 0, image_.width(), image_.height()}, RGB(255, 255, 255));
    // Sharp text above a device pixel ratio of 1 (see qt/QtText.h).
    const qreal ratio = devicePixelRatioF();
    text_.SetRecording(ratio > 1);
    {
        // One painter for the whole paint.
        const TextPainter::Pass pass(text_);
        guard("Paint", [&] { popup_.Paint(surface_); });
    }
    if (ratio > 1) {
        QPainter(this).drawImage(0, 0, text_.ShowAtRatio(image_, ratio));
        return;
    }
    CopyForShowing(image_, image_.rect(), shown_);
    QPainter(this).drawImage(QPoint(0, 0), shown_, image_.rect());
}

void PopupWindow::keyPressEvent(QKeyEvent* event) {
    const Integer shift = static_cast<Integer>(ShiftMaskOf(event->modifiers()));
    forward("KeyDown", [&] {
        if (Integer code = static_cast<Integer>(KeyCodeOf(*event))) popup_.KeyDown(code, shift);
        const QString text = event->text();
        if (!text.isEmpty() && popup_.IsOpen()) {
            Integer ascii = static_cast<Integer>(text[0].unicode() < 256 ? text[0].unicode() : '?');
            popup_.KeyPress(ascii);
        }
    });
}

void PopupWindow::keyReleaseEvent(QKeyEvent* event) {
    if (event->isAutoRepeat()) return;
    const Integer shift = static_cast<Integer>(ShiftMaskOf(event->modifiers()));
    forward("KeyUp", [&] {
        if (Integer code = static_cast<Integer>(KeyCodeOf(*event))) popup_.KeyUp(code, shift);
    });
}

void PopupWindow::mousePressEvent(QMouseEvent* event) {
    if (!rect().contains(event->position().toPoint())) {
        // A press outside: the popup loses activation, as a click elsewhere
        // does, and the press then goes where it was aimed.
        forward("Deactivated", [&] { popup_.Deactivated(); });
        hide();
        ReplayPress(*event);
        return;
    }
    const Integer b = static_cast<Integer>(ButtonMaskOf(event->button()));
    const Integer s = static_cast<Integer>(ShiftMaskOf(event->modifiers()));
    const QPointF p = event->position();
    forward("MouseDown", [&] { popup_.MouseDown(b, s, ToSingle(p.x()), ToSingle(p.y())); });
}

void PopupWindow::mouseMoveEvent(QMouseEvent* event) {
    const Integer b = static_cast<Integer>(ButtonMaskOf(event->buttons()));
    const Integer s = static_cast<Integer>(ShiftMaskOf(event->modifiers()));
    const QPointF p = event->position();
    forward("MouseMove", [&] { popup_.MouseMove(b, s, ToSingle(p.x()), ToSingle(p.y())); });
}

void PopupWindow::mouseReleaseEvent(QMouseEvent* event) {
    const Integer b = static_cast<Integer>(ButtonMaskOf(event->button()));
    const Integer s = static_cast<Integer>(ShiftMaskOf(event->modifiers()));
    const QPointF p = event->position();
    forward("MouseUp", [&] { popup_.MouseUp(b, s, ToSingle(p.x()), ToSingle(p.y())); });
}

void PopupWindow::hideEvent(QHideEvent* event) {
    // Hidden by Qt (a click outside a popup window) while still open: that
    // is a loss of activation.
    if (popup_.IsOpen()) guard("Deactivated", [&] { popup_.Deactivated(); });
    loop_.quit();
    QWidget::hideEvent(event);
}

}  // namespace kelvarin::qt

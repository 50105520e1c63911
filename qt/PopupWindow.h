// SPDX-License-Identifier: MIT
// A control's modal popup (the month calendar) in a Qt popup window: it
// paints the popup into an image of its own, forwards keys and the mouse,
// and runs a nested event loop until the popup closes itself or loses
// activation (a click elsewhere, the window hidden).
#pragma once

#include <QEventLoop>
#include <QImage>
#include <QWidget>

#include "common/OleColor.h"
#include "host/ControlSite.h"
#include "qt/ImageSurface.h"
#include "qt/QtText.h"

namespace kelvarin::qt {

class PopupWindow : public QWidget {
    Q_OBJECT

public:
    // `report` receives errors the popup raises while it handles input.
    PopupWindow(host::Popup& popup, QWidget* owner);

    host::Popup& popup() const noexcept { return popup_; }

    // Shows the window at the screen point and returns once the popup has closed.
    void exec(const QPoint& screen);

signals:
    void hostError(int number, const QString& text, const QString& where);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    // Runs a call into the popup, reporting what it raises.
    template <typename F>
    void guard(const char* where, F&& f) noexcept;
    // The same for input, after which the window follows the popup.
    template <typename F>
    void forward(const char* where, F&& f) noexcept;
    void closeIfDone();

    host::Popup& popup_;
    QImage image_;
    QImage shown_;  // the image in Qt's own 32-bit format
    TextPainter text_;
    ImageSurface surface_;
    QEventLoop loop_;
    SysColorTable colors_;  // the owner's palette's: the popup paints as the owner does
};

}  // namespace kelvarin::qt

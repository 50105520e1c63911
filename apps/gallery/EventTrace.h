// SPDX-License-Identifier: MIT
// kelvarin-gallery --trace: what the controls do and where they stand, a
// line each on standard output, so that a program driving the gallery with
// a real pointer and keyboard can aim its clicks and check the outcome.
// Positions are in screen pixels.
//
//   READY                                  the window is shown, laid out and active
//   PAGE <title>                           a page came to the front (then its layout)
//   TAB <title> <x> <y> <w> <h>            each tab of the window
//   AT <name> <x> <y> <w> <h>              each control of the page in front
//   FIELDS <name> <left> <top> <w> <h>     where a date field's boxes stand in it
//   EVENT <name> <Event>(<arguments>)      an event a control raised
//   VALUE <name> "<shown>" <Value> <ValueDB>  a date field after each of its
//                                          events but a pointer move; "empty"
//                                          and "Null" for no date
//   POPUP <x> <y> <w> <h>, POPUP closed    a popup (the month calendar) opens, closes
#pragma once

#include <cstdio>

#include <QObject>
#include <QString>

namespace kelvarin::qt {
class ControlWidget;
}

namespace kelvarin::gallery {

class GalleryWindow;

class EventTrace : public QObject {
    Q_OBJECT

public:
    EventTrace(GalleryWindow& window, std::FILE* out);

    // Says READY once the window is on the screen and has the focus, after
    // the layout of the page in front.
    void start();

    // The lines for the page in front, as a test reads them.
    QString layoutLines() const;
    // The line of a date field's value ("VALUE ..."); empty for another control.
    static QString valueLine(qt::ControlWidget* control);
    // The line of an event ("EVENT ...").
    static QString eventLine(qt::ControlWidget* control, const QString& event,
                             const QVariantList& args);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow(qt::ControlWidget* control);
    void print(const QString& line);
    void printPage();

    GalleryWindow& window_;
    std::FILE* out_;
};

}  // namespace kelvarin::gallery

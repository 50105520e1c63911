// What assistive technology (a screen reader, through AT-SPI) is told about
// the widgets: each is described as the Qt widget it stands in for.
//
//   DateBoxWidget     editable text: the shown date as its text, the
//                     focused field as caret and selection, and the
//                     increase and decrease actions stepping that field.
//   ProgressBoxWidget progress bar with a value (minimum, maximum, current)
//                     and the caption as its value text.
//   CommandBoxWidget  push button named by its caption (access-key "&"
//                     removed), with the press action and Alt and the
//                     access key as its shortcut.
//   PopupWindow       the month calendar: a table named by its current
//                     date, a child of the control that opened it.
//
// A name or description the application set (accessibleName,
// accessibleDescription) comes first, as for Qt's own widgets.
#pragma once

#include <QString>
#include <QVariant>

class QWidget;

namespace kelvarin::host {
class Popup;
}

namespace kelvarin::qt {

// Registers the interfaces with QAccessible; once per application, any
// widget may call it.
void InstallAccessibility();

// Tells assistive technology that the widget's value is now `value`.
void AnnounceValue(QWidget* widget, const QVariant& value);

// Tells assistive technology that the widget's name is new (the calendar's
// current date).
void AnnounceName(QWidget* widget);

// The calendar's current date as a screen reader reads it; empty while the
// popup is closed.
QString CalendarDateText(const host::Popup& calendar);

// A caption without its access-key markers ("&Save" reads "Save", "&&" one "&").
QString WithoutAccessKeyMarks(const QString& caption);

}  // namespace kelvarin::qt

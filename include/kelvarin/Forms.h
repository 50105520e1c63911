// SPDX-License-Identifier: MIT
// Control widgets by class name, and whole forms of them saved to and
// loaded from a form file.
#pragma once

#include <QList>
#include <QString>
#include <QWidget>

#include <kelvarin/ControlWidget.h>
#include <kelvarin/Export.h>

namespace kelvarin::qt {

// A new widget for a control class ("ProgressBox" or "Kelvarin.ProgressBox"):
// the class's own widget where there is one, otherwise a generic control
// widget. Null for a class the library cannot create.
KELVARIN_WIDGETS_API ControlWidget* CreateControlWidget(const QString& className,
                                                        QWidget* parent = nullptr);
// The same for a control of a form, placed as a loaded control from the
// entry (name, geometry in the parent, properties). An error the control
// raises while it is placed is reported by the widget (hasReportedError).
KELVARIN_WIDGETS_API ControlWidget* LoadControlWidget(host::FormControl& entry,
                                                      const QString& place,
                                                      QWidget* parent = nullptr);

// Writes the widgets as one form (geometry in their parents). Returns the
// error text, empty on success.
KELVARIN_WIDGETS_API QString SaveForm(const QString& path, const QList<ControlWidget*>& widgets);

struct LoadedForm {
    QList<ControlWidget*> widgets;  // children of the given parent, in file order
    QString error;                  // empty when everything loaded
};

// Reads a form file and makes a widget for each control under `parent`. A
// file that cannot be read, is malformed or names an unknown class makes
// no widget at all. A control that raises a runtime error while reading its
// properties is kept with what it read; the first such error is reported.
KELVARIN_WIDGETS_API LoadedForm LoadForm(const QString& path, QWidget* parent);

}  // namespace kelvarin::qt

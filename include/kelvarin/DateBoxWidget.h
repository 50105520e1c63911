// SPDX-License-Identifier: MIT
// The date field as a Qt widget. Its properties carry the names of the type
// library (setProperty("DateFormat", "d mmmm yyyy")) and go through dispatch
// like any host's; its events are signals in the order of the event
// interface.
//
// Value is a QDateTime (the field may hold a time of day); ValueDB is Null
// (a QVariant holding nullptr) for an empty field. Colours are OLE colours
// as unsigned numbers, as for the progress bar.
#pragma once

#include <QDateTime>
#include <QFont>
#include <QString>
#include <QVariant>

#include <kelvarin/ControlWidget.h>
#include <kelvarin/Export.h>

namespace kelvarin::qt {

class KELVARIN_WIDGETS_API DateBoxWidget : public ControlWidget {
    Q_OBJECT
    Q_PROPERTY(ControlWidget::AppearanceKind Appearance READ Appearance WRITE SetAppearance)
    Q_PROPERTY(uint BackColor READ BackColor WRITE SetBackColor)
    Q_PROPERTY(uint ForeColor READ ForeColor WRITE SetForeColor)
    Q_PROPERTY(AlignmentKind Alignment READ Alignment WRITE SetAlignment)
    Q_PROPERTY(bool Enabled READ Enabled WRITE SetEnabled)
    Q_PROPERTY(QFont Font READ Font WRITE SetFont)
    Q_PROPERTY(ControlWidget::BorderStyleKind BorderStyle READ BorderStyle WRITE SetBorderStyle)
    Q_PROPERTY(bool Locked READ Locked WRITE SetLocked)
    Q_PROPERTY(QDateTime Value READ Value WRITE SetValue)
    Q_PROPERTY(QVariant ValueDB READ ValueDB WRITE SetValueDB DESIGNABLE false)
    Q_PROPERTY(QString DateFormat READ DateFormat WRITE SetDateFormat)
    Q_PROPERTY(int SmallChange READ SmallChange WRITE SetSmallChange)
    Q_PROPERTY(int LargeChange READ LargeChange WRITE SetLargeChange)
    Q_PROPERTY(bool Nullable READ Nullable WRITE SetNullable)
    Q_PROPERTY(bool CalendarButton READ CalendarButton WRITE SetCalendarButton)
    Q_PROPERTY(QDateTime MinDate READ MinDate WRITE SetMinDate)
    Q_PROPERTY(QDateTime MaxDate READ MaxDate WRITE SetMaxDate)

public:
    // eAlignment: value 1 is right here, unlike the progress bar's caption.
    enum AlignmentKind { LeftJustify = 0, RightJustify = 1, Center = 2 };
    Q_ENUM(AlignmentKind)

    // A new control.
    explicit DateBoxWidget(QWidget* parent = nullptr);
    // A control of a form (see ControlWidget).
    DateBoxWidget(host::FormControl& entry, const QString& place, QWidget* parent = nullptr);

    AlignmentKind Alignment();
    void SetAlignment(AlignmentKind alignment);
    bool Locked();
    void SetLocked(bool locked);
    QDateTime Value();
    void SetValue(const QDateTime& value);
    QVariant ValueDB();
    void SetValueDB(const QVariant& value);
    QString DateFormat();
    void SetDateFormat(const QString& pattern);
    int SmallChange();
    void SetSmallChange(int step);
    int LargeChange();
    void SetLargeChange(int step);
    bool Nullable();
    void SetNullable(bool nullable);
    bool CalendarButton();
    void SetCalendarButton(bool show);
    QDateTime MinDate();
    void SetMinDate(const QDateTime& date);
    QDateTime MaxDate();
    void SetMaxDate(const QDateTime& date);

    // Where the fields stand in the client area after the last layout, in pixels.
    Q_INVOKABLE int TextLeft();
    Q_INVOKABLE int TextTop();
    Q_INVOKABLE int TextWidth();
    Q_INVOKABLE int TextHeight();

    // The text the field boxes and separators show, as one line ("25/12/2007",
    // "__/__/____" for an empty field).
    QString displayText() const;

signals:
    void KeyDown(int KeyCode, int Shift);
    void KeyPress(int KeyAscii);
    void KeyUp(int KeyCode, int Shift);
    void Change();
    void MouseDown(int Button, int Shift, float X, float Y);
    void MouseUp(int Button, int Shift, float X, float Y);
    void MouseMove(int Button, int Shift, float X, float Y);

protected:
    void emitTypedEvent(int number, const QVariantList& args) override;
};

}  // namespace kelvarin::qt

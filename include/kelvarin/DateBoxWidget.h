// SPDX-License-Identifier: MIT
// The date field as a Qt widget. Its properties carry the names of the type
// library (setProperty("DateFormat", "d mmmm yyyy")) and go through dispatch
// like any host's; its events are signals in the order of the event
// interface.
//
// Value is a QDateTime (the field may hold a time of day), null for an
// empty field, where ValueDB is Null (a QVariant holding nullptr). Colours are OLE colours
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
    Q_PROPERTY(ControlWidget::AppearanceKind Appearance READ Appearance WRITE SetAppearance NOTIFY
                   AppearanceChanged)
    // Colours: the OLE colour for code (a system colour reads back as one)
    // and, under the Qt name, a QColor for Designer's colour picker.
    Q_PROPERTY(
        uint BackColor READ BackColor WRITE SetBackColor NOTIFY BackColorChanged DESIGNABLE false)
    Q_PROPERTY(QColor backColor READ backColor WRITE setBackColor RESET resetBackColor NOTIFY
                   BackColorChanged)
    Q_PROPERTY(
        uint ForeColor READ ForeColor WRITE SetForeColor NOTIFY ForeColorChanged DESIGNABLE false)
    Q_PROPERTY(QColor foreColor READ foreColor WRITE setForeColor RESET resetForeColor NOTIFY
                   ForeColorChanged)
    // The widget's own enabled and font, under the type library's names.
    Q_PROPERTY(bool Enabled READ Enabled WRITE SetEnabled NOTIFY EnabledChanged DESIGNABLE false)
    Q_PROPERTY(QFont Font READ Font WRITE SetFont NOTIFY FontChanged DESIGNABLE false)
    Q_PROPERTY(AlignmentKind Alignment READ Alignment WRITE SetAlignment NOTIFY AlignmentChanged)
    Q_PROPERTY(ControlWidget::BorderStyleKind BorderStyle READ BorderStyle WRITE SetBorderStyle
                   NOTIFY BorderStyleChanged)
    Q_PROPERTY(bool Locked READ Locked WRITE SetLocked NOTIFY LockedChanged)
    Q_PROPERTY(QDateTime Value READ Value WRITE SetValue NOTIFY ValueChanged)
    Q_PROPERTY(QVariant ValueDB READ ValueDB WRITE SetValueDB NOTIFY ValueChanged DESIGNABLE false)
    Q_PROPERTY(QString DateFormat READ DateFormat WRITE SetDateFormat NOTIFY DateFormatChanged)
    Q_PROPERTY(int SmallChange READ SmallChange WRITE SetSmallChange NOTIFY SmallChangeChanged)
    Q_PROPERTY(int LargeChange READ LargeChange WRITE SetLargeChange NOTIFY LargeChangeChanged)
    Q_PROPERTY(bool Nullable READ Nullable WRITE SetNullable NOTIFY NullableChanged)
    Q_PROPERTY(bool CalendarButton READ CalendarButton WRITE SetCalendarButton NOTIFY
                   CalendarButtonChanged)
    Q_PROPERTY(QDateTime MinDate READ MinDate WRITE SetMinDate NOTIFY MinDateChanged)
    Q_PROPERTY(QDateTime MaxDate READ MaxDate WRITE SetMaxDate NOTIFY MaxDateChanged)

public:
    // eAlignment: value 1 is right here, unlike the progress bar's caption.
    enum AlignmentKind { LeftJustify = 0, RightJustify = 1, Center = 2 };
    Q_ENUM(AlignmentKind)

    // A new control.
    explicit DateBoxWidget(QWidget* parent = nullptr);
    // A control of a form (see ControlWidget).
    DateBoxWidget(host::FormControl& entry, const QString& place, QWidget* parent = nullptr);

    AlignmentKind Alignment() const;
    void SetAlignment(AlignmentKind alignment);
    bool Locked() const;
    void SetLocked(bool locked);
    QDateTime Value() const;
    void SetValue(const QDateTime& value);
    QVariant ValueDB() const;
    void SetValueDB(const QVariant& value);
    QString DateFormat() const;
    void SetDateFormat(const QString& pattern);
    int SmallChange() const;
    void SetSmallChange(int step);
    int LargeChange() const;
    void SetLargeChange(int step);
    bool Nullable() const;
    void SetNullable(bool nullable);
    bool CalendarButton() const;
    void SetCalendarButton(bool show);
    QDateTime MinDate() const;
    void SetMinDate(const QDateTime& date);
    QDateTime MaxDate() const;
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
    void AlignmentChanged();
    void LockedChanged();
    // Also when the user changed the value (with the Change event).
    void ValueChanged();
    void DateFormatChanged();
    void SmallChangeChanged();
    void LargeChangeChanged();
    void NullableChanged();
    void CalendarButtonChanged();
    void MinDateChanged();
    void MaxDateChanged();
    void KeyDown(int KeyCode, int Shift);
    void KeyPress(int KeyAscii);
    void KeyUp(int KeyCode, int Shift);
    void Change();
    void MouseDown(int Button, int Shift, float X, float Y);
    void MouseUp(int Button, int Shift, float X, float Y);
    void MouseMove(int Button, int Shift, float X, float Y);

protected:
    void emitTypedEvent(int number, const QVariantList& args) override;

private:
    void setUp();

    QString notifiedText_;  // the field as the last ValueChanged left it
};

}  // namespace kelvarin::qt

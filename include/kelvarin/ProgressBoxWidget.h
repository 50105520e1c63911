// SPDX-License-Identifier: MIT
// The gradient progress bar as a Qt widget. Its properties carry the names
// of the type library (setProperty("Value", 40), Designer's property sheet)
// and go through dispatch like any host's; its events are signals in the
// order of the event interface.
//
// Colours are OLE colours as unsigned numbers (0x00BBGGRR, or 0x80000000 + n
// for system colour n), so a colour set as a system colour reads back as one.
#pragma once

#include <QFont>
#include <QPixmap>
#include <QString>

#include <kelvarin/ControlWidget.h>
#include <kelvarin/Export.h>

namespace kelvarin::qt {

class KELVARIN_WIDGETS_API ProgressBoxWidget : public ControlWidget {
    Q_OBJECT
    Q_PROPERTY(uint BackColor READ BackColor WRITE SetBackColor)
    Q_PROPERTY(uint ForeColor READ ForeColor WRITE SetForeColor)
    Q_PROPERTY(bool Enabled READ Enabled WRITE SetEnabled)
    Q_PROPERTY(QFont Font READ Font WRITE SetFont)
    Q_PROPERTY(ControlWidget::BorderStyleKind BorderStyle READ BorderStyle WRITE SetBorderStyle)
    Q_PROPERTY(ControlWidget::AppearanceKind Appearance READ Appearance WRITE SetAppearance)
    Q_PROPERTY(int hWnd READ hWnd DESIGNABLE false)
    Q_PROPERTY(QPixmap MouseIcon READ MouseIcon WRITE SetMouseIcon)
    Q_PROPERTY(int MousePointer READ MousePointer WRITE SetMousePointer)
    Q_PROPERTY(uint StartColor READ StartColor WRITE SetStartColor)
    Q_PROPERTY(uint FinishColor READ FinishColor WRITE SetFinishColor)
    Q_PROPERTY(double Value READ Value WRITE SetValue)
    Q_PROPERTY(QString Text READ Text WRITE SetText)
    Q_PROPERTY(bool ShowPercentual READ ShowPercentual WRITE SetShowPercentual)
    Q_PROPERTY(ControlWidget::AlignmentText Alignment READ Alignment WRITE SetAlignment)
    Q_PROPERTY(double MinValue READ MinValue WRITE SetMinValue)
    Q_PROPERTY(double MaxValue READ MaxValue WRITE SetMaxValue)
    Q_PROPERTY(double Percentual READ Percentual WRITE SetPercentual)
    Q_PROPERTY(GradientStyleKind GradientStyle READ GradientStyle WRITE SetGradientStyle)
    Q_PROPERTY(uint PivotColor READ PivotColor WRITE SetPivotColor)
    Q_PROPERTY(int TimerChangedInterval READ TimerChangedInterval WRITE SetTimerChangedInterval)

public:
    // eGradientStyle (the names in the type library have blanks).
    enum GradientStyleKind { Linear = 0, Gaussian = 1, GaussianSquared = 2 };
    Q_ENUM(GradientStyleKind)

    // A new control.
    explicit ProgressBoxWidget(QWidget* parent = nullptr);
    // A control of a form (see ControlWidget).
    ProgressBoxWidget(host::FormControl& entry, const QString& place, QWidget* parent = nullptr);

    uint StartColor();
    void SetStartColor(uint color);
    uint FinishColor();
    void SetFinishColor(uint color);
    double Value();
    void SetValue(double value);
    QString Text();
    void SetText(const QString& text);
    bool ShowPercentual();
    void SetShowPercentual(bool show);
    AlignmentText Alignment();
    void SetAlignment(AlignmentText alignment);
    double MinValue();
    void SetMinValue(double value);
    double MaxValue();
    void SetMaxValue(double value);
    double Percentual();
    void SetPercentual(double percentual);
    GradientStyleKind GradientStyle();
    void SetGradientStyle(GradientStyleKind style);
    uint PivotColor();
    void SetPivotColor(uint color);
    int TimerChangedInterval();
    void SetTimerChangedInterval(int milliseconds);

    // The caption as the bar draws it (text, a blank, the rounded percentage).
    QString caption() const;

signals:
    void Click();
    void DblClick();
    void KeyDown(int KeyCode, int Shift);
    void KeyPress(int KeyAscii);
    void KeyUp(int KeyCode, int Shift);
    void MouseDown(int Button, int Shift, float X, float Y);
    void MouseMove(int Button, int Shift, float X, float Y);
    void MouseUp(int Button, int Shift, float X, float Y);
    void Change();
    // Milliseconds since the run started, and the estimated length of the
    // whole run (-1 while there is no estimate yet).
    void TimerChange(int TimeElapsed, int TimeEstimated);

protected:
    void emitTypedEvent(int number, const QVariantList& args) override;
};

}  // namespace kelvarin::qt

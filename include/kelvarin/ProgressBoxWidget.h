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
    Q_PROPERTY(ControlWidget::BorderStyleKind BorderStyle READ BorderStyle WRITE SetBorderStyle
                   NOTIFY BorderStyleChanged)
    Q_PROPERTY(ControlWidget::AppearanceKind Appearance READ Appearance WRITE SetAppearance NOTIFY
                   AppearanceChanged)
    Q_PROPERTY(int hWnd READ hWnd CONSTANT DESIGNABLE false)
    Q_PROPERTY(QPixmap MouseIcon READ MouseIcon WRITE SetMouseIcon NOTIFY MouseIconChanged)
    Q_PROPERTY(int MousePointer READ MousePointer WRITE SetMousePointer NOTIFY MousePointerChanged)
    Q_PROPERTY(uint StartColor READ StartColor WRITE SetStartColor NOTIFY StartColorChanged
                   DESIGNABLE false)
    Q_PROPERTY(QColor startColor READ startColor WRITE setStartColor RESET resetStartColor NOTIFY
                   StartColorChanged)
    Q_PROPERTY(uint FinishColor READ FinishColor WRITE SetFinishColor NOTIFY FinishColorChanged
                   DESIGNABLE false)
    Q_PROPERTY(QColor finishColor READ finishColor WRITE setFinishColor RESET resetFinishColor
                   NOTIFY FinishColorChanged)
    Q_PROPERTY(double Value READ Value WRITE SetValue NOTIFY ValueChanged)
    Q_PROPERTY(QString Text READ Text WRITE SetText NOTIFY TextChanged)
    Q_PROPERTY(bool ShowPercentual READ ShowPercentual WRITE SetShowPercentual NOTIFY
                   ShowPercentualChanged)
    Q_PROPERTY(ControlWidget::AlignmentText Alignment READ Alignment WRITE SetAlignment NOTIFY
                   AlignmentChanged)
    Q_PROPERTY(double MinValue READ MinValue WRITE SetMinValue NOTIFY MinValueChanged)
    Q_PROPERTY(double MaxValue READ MaxValue WRITE SetMaxValue NOTIFY MaxValueChanged)
    Q_PROPERTY(double Percentual READ Percentual WRITE SetPercentual NOTIFY PercentualChanged)
    Q_PROPERTY(GradientStyleKind GradientStyle READ GradientStyle WRITE SetGradientStyle NOTIFY
                   GradientStyleChanged)
    Q_PROPERTY(uint PivotColor READ PivotColor WRITE SetPivotColor NOTIFY PivotColorChanged
                   DESIGNABLE false)
    Q_PROPERTY(QColor pivotColor READ pivotColor WRITE setPivotColor RESET resetPivotColor NOTIFY
                   PivotColorChanged)
    Q_PROPERTY(int TimerChangedInterval READ TimerChangedInterval WRITE SetTimerChangedInterval
                   NOTIFY TimerChangedIntervalChanged)

public:
    // eGradientStyle (the names in the type library have blanks).
    enum GradientStyleKind { Linear = 0, Gaussian = 1, GaussianSquared = 2 };
    Q_ENUM(GradientStyleKind)

    // A new control.
    explicit ProgressBoxWidget(QWidget* parent = nullptr);
    // A control of a form (see ControlWidget).
    ProgressBoxWidget(host::FormControl& entry, const QString& place, QWidget* parent = nullptr);

    QColor startColor() const { return qColorMember("StartColor"); }
    void setStartColor(const QColor& c) { letMember(QStringLiteral("StartColor"), c); }
    void resetStartColor() { resetMember("StartColor"); }
    QColor finishColor() const { return qColorMember("FinishColor"); }
    void setFinishColor(const QColor& c) { letMember(QStringLiteral("FinishColor"), c); }
    void resetFinishColor() { resetMember("FinishColor"); }
    QColor pivotColor() const { return qColorMember("PivotColor"); }
    void setPivotColor(const QColor& c) { letMember(QStringLiteral("PivotColor"), c); }
    void resetPivotColor() { resetMember("PivotColor"); }
    uint StartColor() const;
    void SetStartColor(uint color);
    uint FinishColor() const;
    void SetFinishColor(uint color);
    double Value() const;
    void SetValue(double value);
    QString Text() const;
    void SetText(const QString& text);
    bool ShowPercentual() const;
    void SetShowPercentual(bool show);
    AlignmentText Alignment() const;
    void SetAlignment(AlignmentText alignment);
    double MinValue() const;
    void SetMinValue(double value);
    double MaxValue() const;
    void SetMaxValue(double value);
    double Percentual() const;
    void SetPercentual(double percentual);
    GradientStyleKind GradientStyle() const;
    void SetGradientStyle(GradientStyleKind style);
    uint PivotColor() const;
    void SetPivotColor(uint color);
    int TimerChangedInterval() const;
    void SetTimerChangedInterval(int milliseconds);

    // The caption as the bar draws it (text, a blank, the rounded percentage).
    QString caption() const;

signals:
    void StartColorChanged();
    void FinishColorChanged();
    void ValueChanged();
    void TextChanged();
    void ShowPercentualChanged();
    void AlignmentChanged();
    void MinValueChanged();
    void MaxValueChanged();
    void PercentualChanged();
    void GradientStyleChanged();
    void PivotColorChanged();
    void TimerChangedIntervalChanged();
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

private:
    void beLikeAProgressBar();
};

}  // namespace kelvarin::qt

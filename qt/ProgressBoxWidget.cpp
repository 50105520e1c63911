// SPDX-License-Identifier: MIT
#include <kelvarin/ProgressBoxWidget.h>

#include "controls/progressbox/ProgressBox.h"
#include "library/ClassFactory.h"
#include "qt/Accessibility.h"

namespace kelvarin::qt {

ProgressBoxWidget::ProgressBoxWidget(QWidget* parent)
    : ControlWidget(library::ClassRegistry::Instance().Create("ProgressBox"), parent) {
    beLikeAProgressBar();
}

ProgressBoxWidget::ProgressBoxWidget(host::FormControl& entry, const QString& place,
                                     QWidget* parent)
    : ControlWidget(library::ClassRegistry::Instance().Create("ProgressBox"), entry, place,
                    parent) {
    beLikeAProgressBar();
}

// Laid out as QProgressBar is. A click gives it the keys (its key events
// reach the application), but Tab passes it by unless the application sets
// a policy with Tab focus.
void ProgressBoxWidget::beLikeAProgressBar() {
    setSizePolicy(QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed));
    setFocusPolicy(Qt::ClickFocus);
    connect(this, &ProgressBoxWidget::ValueChanged, this, [this] { AnnounceValue(this, Value()); });
}

QString ProgressBoxWidget::caption() const {
    const auto* box = dynamic_cast<const controls::ProgressBox*>(control());
    return box ? QString::fromStdString(box->Caption()) : QString();
}

uint ProgressBoxWidget::StartColor() const { return colorMember("StartColor"); }
void ProgressBoxWidget::SetStartColor(uint c) { letMember(QStringLiteral("StartColor"), c); }
uint ProgressBoxWidget::FinishColor() const { return colorMember("FinishColor"); }
void ProgressBoxWidget::SetFinishColor(uint c) { letMember(QStringLiteral("FinishColor"), c); }
double ProgressBoxWidget::Value() const { return getMember(QStringLiteral("Value")).toDouble(); }
void ProgressBoxWidget::SetValue(double v) { letMember(QStringLiteral("Value"), v); }
QString ProgressBoxWidget::Text() const { return getMember(QStringLiteral("Text")).toString(); }
void ProgressBoxWidget::SetText(const QString& t) { letMember(QStringLiteral("Text"), t); }
bool ProgressBoxWidget::ShowPercentual() const {
    return getMember(QStringLiteral("ShowPercentual")).toBool();
}
void ProgressBoxWidget::SetShowPercentual(bool s) {
    letMember(QStringLiteral("ShowPercentual"), s);
}

ProgressBoxWidget::AlignmentText ProgressBoxWidget::Alignment() const {
    return static_cast<AlignmentText>(intMember("Alignment"));
}
void ProgressBoxWidget::SetAlignment(AlignmentText a) {
    letMember(QStringLiteral("Alignment"), static_cast<int>(a));
}

double ProgressBoxWidget::MinValue() const {
    return getMember(QStringLiteral("MinValue")).toDouble();
}
void ProgressBoxWidget::SetMinValue(double v) { letMember(QStringLiteral("MinValue"), v); }
double ProgressBoxWidget::MaxValue() const {
    return getMember(QStringLiteral("MaxValue")).toDouble();
}
void ProgressBoxWidget::SetMaxValue(double v) { letMember(QStringLiteral("MaxValue"), v); }
double ProgressBoxWidget::Percentual() const {
    return getMember(QStringLiteral("Percentual")).toDouble();
}
void ProgressBoxWidget::SetPercentual(double p) { letMember(QStringLiteral("Percentual"), p); }

ProgressBoxWidget::GradientStyleKind ProgressBoxWidget::GradientStyle() const {
    return static_cast<GradientStyleKind>(intMember("GradientStyle"));
}
void ProgressBoxWidget::SetGradientStyle(GradientStyleKind s) {
    letMember(QStringLiteral("GradientStyle"), static_cast<int>(s));
}
uint ProgressBoxWidget::PivotColor() const { return colorMember("PivotColor"); }
void ProgressBoxWidget::SetPivotColor(uint c) { letMember(QStringLiteral("PivotColor"), c); }
int ProgressBoxWidget::TimerChangedInterval() const { return intMember("TimerChangedInterval"); }
void ProgressBoxWidget::SetTimerChangedInterval(int ms) {
    letMember(QStringLiteral("TimerChangedInterval"), ms);
}

void ProgressBoxWidget::emitTypedEvent(int number, const QVariantList& a) {
    using controls::ProgressBox;
    const auto i = [&](int k) { return k < a.size() ? a[k].toInt() : 0; };
    const auto f = [&](int k) { return k < a.size() ? a[k].toFloat() : 0.0f; };
    switch (number) {
        case ProgressBox::kClick: emit Click(); break;
        case ProgressBox::kDblClick: emit DblClick(); break;
        case ProgressBox::kKeyDown: emit KeyDown(i(0), i(1)); break;
        case ProgressBox::kKeyPress: emit KeyPress(i(0)); break;
        case ProgressBox::kKeyUp: emit KeyUp(i(0), i(1)); break;
        case ProgressBox::kMouseDown: emit MouseDown(i(0), i(1), f(2), f(3)); break;
        case ProgressBox::kMouseMove: emit MouseMove(i(0), i(1), f(2), f(3)); break;
        case ProgressBox::kMouseUp: emit MouseUp(i(0), i(1), f(2), f(3)); break;
        case ProgressBox::kChange: emit Change(); break;
        case ProgressBox::kTimerChange: emit TimerChange(i(0), i(1)); break;
        default: break;
    }
}

}  // namespace kelvarin::qt

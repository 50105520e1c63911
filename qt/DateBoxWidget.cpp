// SPDX-License-Identifier: MIT
#include <kelvarin/DateBoxWidget.h>

#include "controls/datebox/DateBox.h"
#include "library/ClassFactory.h"
#include "qt/Accessibility.h"

namespace kelvarin::qt {

namespace {

// A single-line input, as QLineEdit and QDateEdit are laid out: as wide as
// the layout gives, never taller than it asks for.
const QSizePolicy kLineEditPolicy(QSizePolicy::Expanding, QSizePolicy::Fixed,
                                  QSizePolicy::LineEdit);

QDateTime EmptyDate() { return QDateTime(QDate(1899, 12, 30), QTime(0, 0), Qt::UTC); }

}  // namespace

DateBoxWidget::DateBoxWidget(QWidget* parent)
    : ControlWidget(library::ClassRegistry::Instance().Create("DateBox"), parent) {
    setUp();
}

DateBoxWidget::DateBoxWidget(host::FormControl& entry, const QString& place, QWidget* parent)
    : ControlWidget(library::ClassRegistry::Instance().Create("DateBox"), entry, place, parent) {
    setUp();
}

void DateBoxWidget::setUp() {
    setSizePolicy(kLineEditPolicy);
    // Compared by what the field shows: reading Value mid-typing would
    // complete a half-typed field.
    notifiedText_ = displayText();
    connect(this, &DateBoxWidget::ValueChanged, this, [this] { notifiedText_ = displayText(); });
}

QString DateBoxWidget::displayText() const {
    const auto* box = dynamic_cast<const controls::DateBox*>(control());
    return box ? QString::fromStdString(box->ShownText()) : QString();
}

DateBoxWidget::AlignmentKind DateBoxWidget::Alignment() const {
    return static_cast<AlignmentKind>(intMember("Alignment"));
}
void DateBoxWidget::SetAlignment(AlignmentKind a) {
    letMember(QStringLiteral("Alignment"), static_cast<int>(a));
}
bool DateBoxWidget::Locked() const { return getMember(QStringLiteral("Locked")).toBool(); }
void DateBoxWidget::SetLocked(bool l) { letMember(QStringLiteral("Locked"), l); }

// The control's empty date is day 0 of its calendar; Qt's is the null
// QDateTime, which is what Qt code tests for and Designer shows as blank.
QDateTime DateBoxWidget::Value() const {
    const QDateTime value = getMember(QStringLiteral("Value")).toDateTime();
    return value == EmptyDate() ? QDateTime() : value;
}
void DateBoxWidget::SetValue(const QDateTime& v) {
    letMember(QStringLiteral("Value"), v.isNull() ? EmptyDate() : v);
}
QVariant DateBoxWidget::ValueDB() const { return getMember(QStringLiteral("ValueDB")); }
void DateBoxWidget::SetValueDB(const QVariant& v) { letMember(QStringLiteral("ValueDB"), v); }
QString DateBoxWidget::DateFormat() const {
    return getMember(QStringLiteral("DateFormat")).toString();
}
void DateBoxWidget::SetDateFormat(const QString& p) { letMember(QStringLiteral("DateFormat"), p); }
int DateBoxWidget::SmallChange() const { return intMember("SmallChange"); }
void DateBoxWidget::SetSmallChange(int s) { letMember(QStringLiteral("SmallChange"), s); }
int DateBoxWidget::LargeChange() const { return intMember("LargeChange"); }
void DateBoxWidget::SetLargeChange(int s) { letMember(QStringLiteral("LargeChange"), s); }
bool DateBoxWidget::Nullable() const { return getMember(QStringLiteral("Nullable")).toBool(); }
void DateBoxWidget::SetNullable(bool n) { letMember(QStringLiteral("Nullable"), n); }
bool DateBoxWidget::CalendarButton() const {
    return getMember(QStringLiteral("CalendarButton")).toBool();
}
void DateBoxWidget::SetCalendarButton(bool s) { letMember(QStringLiteral("CalendarButton"), s); }
QDateTime DateBoxWidget::MinDate() const {
    return getMember(QStringLiteral("MinDate")).toDateTime();
}
void DateBoxWidget::SetMinDate(const QDateTime& d) { letMember(QStringLiteral("MinDate"), d); }
QDateTime DateBoxWidget::MaxDate() const {
    return getMember(QStringLiteral("MaxDate")).toDateTime();
}
void DateBoxWidget::SetMaxDate(const QDateTime& d) { letMember(QStringLiteral("MaxDate"), d); }

int DateBoxWidget::TextLeft() { return callMember(QStringLiteral("TextLeft")).toInt(); }
int DateBoxWidget::TextTop() { return callMember(QStringLiteral("TextTop")).toInt(); }
int DateBoxWidget::TextWidth() { return callMember(QStringLiteral("TextWidth")).toInt(); }
int DateBoxWidget::TextHeight() { return callMember(QStringLiteral("TextHeight")).toInt(); }

void DateBoxWidget::emitTypedEvent(int number, const QVariantList& a) {
    using controls::DateBox;
    const auto i = [&](int k) { return k < a.size() ? a[k].toInt() : 0; };
    const auto f = [&](int k) { return k < a.size() ? a[k].toFloat() : 0.0f; };
    switch (number) {
        case DateBox::kKeyDown: emit KeyDown(i(0), i(1)); break;
        case DateBox::kKeyPress: emit KeyPress(i(0)); break;
        case DateBox::kKeyUp: emit KeyUp(i(0), i(1)); break;
        case DateBox::kChange:
            emit Change();
            // Typing and the calendar change the value without a
            // property-changed notification; a write had one already.
            if (displayText() != notifiedText_) emit ValueChanged();
            AnnounceValue(this, displayText());
            break;
        case DateBox::kMouseDown: emit MouseDown(i(0), i(1), f(2), f(3)); break;
        case DateBox::kMouseUp: emit MouseUp(i(0), i(1), f(2), f(3)); break;
        case DateBox::kMouseMove: emit MouseMove(i(0), i(1), f(2), f(3)); break;
        default: break;
    }
}

}  // namespace kelvarin::qt

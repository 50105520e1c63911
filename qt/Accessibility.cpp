#include "qt/Accessibility.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QApplication>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLocale>

#include <kelvarin/CommandBoxWidget.h>
#include <kelvarin/DateBoxWidget.h>
#include <kelvarin/ProgressBoxWidget.h>
#include "common/DateTime.h"
#include "controls/datebox/DateBox.h"
#include "qt/PopupWindow.h"

namespace kelvarin::qt {

QString WithoutAccessKeyMarks(const QString& caption) {
    QString out;
    out.reserve(caption.size());
    for (qsizetype i = 0; i < caption.size(); ++i) {
        if (caption[i] == u'&' && i + 1 < caption.size()) ++i;  // "&x" is x, "&&" is "&"
        else if (caption[i] == u'&') continue;                  // a trailing "&" shows nothing
        out += caption[i];
    }
    return out;
}

QString CalendarDateText(const host::Popup& calendar) {
    if (calendar.ShownMonth() == 0) return {};
    const DateParts d = SplitDate(calendar.CurrentDate());
    return QLocale().toString(QDate(d.year, d.month, d.day), QLocale::LongFormat);
}

namespace {

// A key typed at the widget, press and release, as the user would type it:
// the control hears it through its own keyboard handling.
void Stroke(QWidget* widget, Qt::Key key) {
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
    QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier);
    QCoreApplication::sendEvent(widget, &press);
    QCoreApplication::sendEvent(widget, &release);
}

// Name and description: the application's first, else what Qt finds (a
// label's buddy, the tool tip); `fallback` gives the control's own name.
//
// A popup the control has open (the month calendar) is its last child:
// Qt leaves popup windows out of the application's children, so this is
// how a screen reader finds it in the tree.
class ControlAccessible : public QAccessibleWidget {
public:
    ControlAccessible(QWidget* widget, QAccessible::Role role) : QAccessibleWidget(widget, role) {}

    int childCount() const override {
        return QAccessibleWidget::childCount() + (openPopup() ? 1 : 0);
    }

    QAccessibleInterface* child(int index) const override {
        if (QWidget* popup = openPopup(); popup && index == QAccessibleWidget::childCount())
            return QAccessible::queryAccessibleInterface(popup);
        return QAccessibleWidget::child(index);
    }

    int indexOfChild(const QAccessibleInterface* child) const override {
        if (QWidget* popup = openPopup(); popup && child && child->object() == popup)
            return QAccessibleWidget::childCount();
        return QAccessibleWidget::indexOfChild(child);
    }

protected:
    QString nameOr(QAccessible::Text t, const QString& fallback) const {
        const QString own = QAccessibleWidget::text(t);
        return own.isEmpty() ? fallback : own;
    }

private:
    QWidget* openPopup() const {
        auto* popup = widget()->findChild<PopupWindow*>(QString(), Qt::FindDirectChildrenOnly);
        return popup && popup->isVisible() ? popup : nullptr;
    }
};

// ---- DateBox --------------------------------------------------------------------------

class DateBoxAccessible : public ControlAccessible, public QAccessibleTextInterface {
public:
    explicit DateBoxAccessible(QWidget* widget)
        : ControlAccessible(widget, QAccessible::EditableText) {
        addControllingSignal(QStringLiteral("Change()"));
    }

    void* interface_cast(QAccessible::InterfaceType t) override {
        if (t == QAccessible::TextInterface) return static_cast<QAccessibleTextInterface*>(this);
        return QAccessibleWidget::interface_cast(t);
    }

    QAccessible::State state() const override {
        QAccessible::State s = QAccessibleWidget::state();
        const bool locked = box()->Locked();
        s.editable = !locked;
        s.readOnly = locked;
        return s;
    }

    QString text(QAccessible::Text t) const override {
        if (t == QAccessible::Value) return box()->displayText();
        return QAccessibleWidget::text(t);
    }

    // Increase and decrease step the focused field, as Up and Down do.
    QStringList actionNames() const override {
        return QAccessibleWidget::actionNames() << increaseAction() << decreaseAction();
    }
    void doAction(const QString& action) override {
        if (action != increaseAction() && action != decreaseAction())
            return QAccessibleWidget::doAction(action);
        if (!box()->hasFocus()) box()->setFocus(Qt::OtherFocusReason);
        Stroke(box(), action == increaseAction() ? Qt::Key_Up : Qt::Key_Down);
    }

    // ---- Text: the shown date; the caret and selection are the focused field's.
    QString text(int start, int end) const override {
        return box()->displayText().mid(start, end - start);
    }
    int characterCount() const override { return static_cast<int>(box()->displayText().size()); }
    int cursorPosition() const override {
        const auto f = field();
        return f.offset < 0 ? 0 : f.offset + f.selStart + f.selLength;
    }
    void setCursorPosition(int) override {}  // fields are chosen by the keyboard or a click
    int selectionCount() const override {
        const auto f = field();
        return f.offset >= 0 && f.selLength > 0 ? 1 : 0;
    }
    void selection(int index, int* start, int* end) const override {
        *start = *end = 0;
        const auto f = field();
        if (index != 0 || f.offset < 0 || f.selLength == 0) return;
        *start = f.offset + f.selStart;
        *end = *start + f.selLength;
    }
    void addSelection(int, int) override {}
    void removeSelection(int) override {}
    void setSelection(int, int, int) override {}
    QRect characterRect(int) const override { return rect(); }
    int offsetAtPoint(const QPoint&) const override { return -1; }
    void scrollToSubstring(int, int) override {}
    QString attributes(int offset, int* start, int* end) const override {
        *start = *end = offset;
        return {};
    }

private:
    DateBoxWidget* box() const { return static_cast<DateBoxWidget*>(widget()); }
    controls::DateBox::FieldFocus field() const {
        const auto* control = dynamic_cast<const controls::DateBox*>(box()->control());
        return control ? control->FocusedField() : controls::DateBox::FieldFocus{};
    }
};

// ---- ProgressBox ----------------------------------------------------------------------

class ProgressBoxAccessible : public ControlAccessible, public QAccessibleValueInterface {
public:
    explicit ProgressBoxAccessible(QWidget* widget)
        : ControlAccessible(widget, QAccessible::ProgressBar) {}

    void* interface_cast(QAccessible::InterfaceType t) override {
        if (t == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(t);
    }

    QString text(QAccessible::Text t) const override {
        if (t == QAccessible::Value) return bar()->caption();
        return QAccessibleWidget::text(t);
    }

    QVariant currentValue() const override { return bar()->Value(); }
    void setCurrentValue(const QVariant&) override {}  // the application's, as for QProgressBar
    QVariant maximumValue() const override { return bar()->MaxValue(); }
    QVariant minimumValue() const override { return bar()->MinValue(); }
    QVariant minimumStepSize() const override { return 0; }

private:
    ProgressBoxWidget* bar() const { return static_cast<ProgressBoxWidget*>(widget()); }
};

// ---- CommandBox -----------------------------------------------------------------------

class CommandBoxAccessible : public ControlAccessible {
public:
    explicit CommandBoxAccessible(QWidget* widget)
        : ControlAccessible(widget, QAccessible::Button) {
        addControllingSignal(QStringLiteral("Click()"));
    }

    QString text(QAccessible::Text t) const override {
        if (t == QAccessible::Name) return nameOr(t, WithoutAccessKeyMarks(button()->Text()));
        if (t == QAccessible::Accelerator) return shortcut();
        return QAccessibleWidget::text(t);
    }

    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& action) override {
        if (action == pressAction() && button()->isEnabled()) Stroke(button(), Qt::Key_Space);
    }
    QStringList keyBindingsForAction(const QString& action) const override {
        const QString key = shortcut();
        if (action != pressAction() || key.isEmpty()) return {};
        return {key};
    }

private:
    CommandBoxWidget* button() const { return static_cast<CommandBoxWidget*>(widget()); }
    // Alt and the access key, in Qt's portable text ("Alt+S").
    QString shortcut() const {
        const host::Control* control = button()->control();
        if (!control || control->SurfaceState().accessKeys.empty()) return {};
        const QString key = QString::fromStdString(control->SurfaceState().accessKeys).toUpper();
        return QKeySequence(QStringLiteral("Alt+") + key).toString(QKeySequence::PortableText);
    }
};

// ---- The calendar popup -------------------------------------------------------------------

// Named by its current date, which is what a screen reader reads as the
// user moves through the days (the name changes with it).
class CalendarAccessible : public QAccessibleWidget {
public:
    explicit CalendarAccessible(QWidget* widget) : QAccessibleWidget(widget, QAccessible::Table) {}

    // The control that opened it, not the application.
    QAccessibleInterface* parent() const override {
        if (QWidget* owner = widget()->parentWidget())
            return QAccessible::queryAccessibleInterface(owner);
        return QAccessibleWidget::parent();
    }

    QString text(QAccessible::Text t) const override {
        const QString current = CalendarDateText(static_cast<PopupWindow*>(widget())->popup());
        switch (t) {
            case QAccessible::Name: {
                const QString own = QAccessibleWidget::text(t);
                return own.isEmpty() ? current : own;
            }
            case QAccessible::Value: return current;
            default: return QAccessibleWidget::text(t);
        }
    }
};

QAccessibleInterface* Factory(const QString& className, QObject* object) {
    if (!object || !object->isWidgetType()) return nullptr;
    auto* widget = static_cast<QWidget*>(object);
    if (className == QLatin1String(DateBoxWidget::staticMetaObject.className()))
        return new DateBoxAccessible(widget);
    if (className == QLatin1String(ProgressBoxWidget::staticMetaObject.className()))
        return new ProgressBoxAccessible(widget);
    if (className == QLatin1String(CommandBoxWidget::staticMetaObject.className()))
        return new CommandBoxAccessible(widget);
    if (className == QLatin1String(PopupWindow::staticMetaObject.className()))
        return new CalendarAccessible(widget);
    return nullptr;
}

}  // namespace

void AnnounceValue(QWidget* widget, const QVariant& value) {
    if (!QAccessible::isActive()) return;
    QAccessibleValueChangeEvent event(widget, value);
    QAccessible::updateAccessibility(&event);
}

void AnnounceName(QWidget* widget) {
    QAccessibleEvent event(widget, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&event);
}

void InstallAccessibility() {
    static bool installed = false;
    if (installed) return;
    installed = true;
    QAccessible::installFactory(Factory);
}

}  // namespace kelvarin::qt

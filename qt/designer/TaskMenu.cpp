// SPDX-License-Identifier: MIT
#include "qt/designer/TaskMenu.h"

#include <memory>

#include <QAction>
#include <QPointer>
#include <QUndoStack>
#include <QtDesigner/QDesignerFormEditorInterface>
#include <QtDesigner/QDesignerFormWindowCursorInterface>
#include <QtDesigner/QDesignerFormWindowInterface>
#include <QtDesigner/QDesignerPropertyEditorInterface>
#include <QtDesigner/QExtensionManager>

#include <kelvarin/ControlWidget.h>
#include "common/HostError.h"
#include "library/Dispatch.h"
#include "pages/general/General.h"
#include "qt/GeneralDialog.h"
#include "qt/Guard.h"

namespace kelvarin::qt {

namespace {

QDesignerFormWindowInterface* FormOf(host::Control& control, ControlWidget** widget) {
    *widget = ControlWidget::Of(control);
    return *widget ? QDesignerFormWindowInterface::findFormWindow(*widget) : nullptr;
}

// A property write of the page, made as the property sheet makes one: a
// command on the form's undo stack that the sheet shows. A control outside
// a form is written through dispatch.
void LetThroughCursor(host::Control& control, std::string_view property, const Variant& value) {
    ControlWidget* widget = nullptr;
    QDesignerFormWindowInterface* form = FormOf(control, &widget);
    if (!form) return library::Let(control, property, value);
    const library::MemberInfo* member = library::ClassOf(control).FindMember(property);
    if (!member) RaiseHostError(HostErrorCode::ObjectDoesNotSupport);
    // Converted by the property's own type, as dispatch converts: the sheet
    // would read the text by Qt's rules, not the host's locale.
    const QVariant converted = ControlWidget::FromVariant(host::ConvertTo(member->type, value));
    // The widget reports its control's errors rather than raising them; one
    // raised by this write ends the apply as it would through dispatch.
    Failure raised;
    const QMetaObject::Connection watch = QObject::connect(
        widget, &ControlWidget::hostError, widget, [&raised](int number, const QString& text) {
            if (!raised) raised = {true, number, text};
        });
    form->cursor()->setWidgetProperty(
        widget, QString::fromUtf8(member->name.data(), static_cast<qsizetype>(member->name.size())),
        converted);
    QObject::disconnect(watch);
    if (raised) throw HostError(raised.number, raised.text.toStdString());
}

}  // namespace

GeneralTaskMenu::GeneralTaskMenu(ControlWidget* widget, QObject* parent)
    : QObject(parent), widget_(widget), edit_(new QAction(QStringLiteral("Edit General…"), this)) {
    edit_->setObjectName(QStringLiteral("editGeneral"));
    connect(edit_, &QAction::triggered, this, &GeneralTaskMenu::edit);
}

void GeneralTaskMenu::edit() {
    QDesignerFormWindowInterface* form = QDesignerFormWindowInterface::findFormWindow(widget_);
    auto page = std::make_unique<pages::General>(pages::PropertyAccess{
        [](host::Control& c, std::string_view p) { return library::Get(c, p); }, LetThroughCursor});
    auto* dialog = new GeneralDialog(std::move(page), {widget_}, form ? form : widget_->window());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    if (form) {
        const QPointer<QDesignerFormWindowInterface> guarded(form);
        connect(dialog, &GeneralDialog::applyStarted, this, [guarded] {
            if (guarded) guarded->commandHistory()->beginMacro(QStringLiteral("Edit General"));
        });
        connect(dialog, &GeneralDialog::applyFinished, this, [guarded, w = QPointer(widget_)] {
            if (!guarded) return;
            guarded->commandHistory()->endMacro();
            // The writes couple properties the sheet did not write (Value
            // with Percentual): it reads them all again.
            QDesignerPropertyEditorInterface* sheet = guarded->core()->propertyEditor();
            if (sheet && w && sheet->object() == w) sheet->setObject(w);
        });
    }
    dialog->open();
}

GeneralTaskMenuFactory::GeneralTaskMenuFactory(QExtensionManager* parent)
    : QExtensionFactory(parent) {}

void GeneralTaskMenuFactory::Register(QDesignerFormEditorInterface* core) {
    QExtensionManager* manager = core ? core->extensionManager() : nullptr;
    if (!manager || manager->findChild<GeneralTaskMenuFactory*>()) return;
    manager->registerExtensions(new GeneralTaskMenuFactory(manager),
                                Q_TYPEID(QDesignerTaskMenuExtension));
}

QObject* GeneralTaskMenuFactory::createExtension(QObject* object, const QString& iid,
                                                 QObject* parent) const {
    if (iid != Q_TYPEID(QDesignerTaskMenuExtension)) return nullptr;
    auto* widget = qobject_cast<ControlWidget*>(object);
    if (!widget || !GeneralDialog::Edits(*widget)) return nullptr;
    return new GeneralTaskMenu(widget, parent);
}

}  // namespace kelvarin::qt

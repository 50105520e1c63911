// SPDX-License-Identifier: MIT
#include "qt/GeneralDialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

#include <kelvarin/ControlWidget.h>
#include "library/ClassFactory.h"
#include "pages/general/General.h"
#include "qt/Guard.h"

namespace kelvarin::qt {

using pages::FieldKind;
using pages::Group;

namespace {

QString Q(std::string_view s) {
    return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}

std::unique_ptr<pages::General> RegistryPage() {
    std::unique_ptr<host::Control> made = library::ClassRegistry::Instance().Create("General");
    return std::unique_ptr<pages::General>(static_cast<pages::General*>(made.release()));
}

// The character code a key press types, as the page's key filter sees it:
// Backspace is 8 and Ctrl with a letter its control character (Ctrl+C is
// 3); -1 for keys that type nothing into a field (arrows, Delete, and
// Enter, Escape and Tab, which the dialog takes).
int TypedCharacter(const QKeyEvent& key) {
    if (key.key() == Qt::Key_Backspace) return 8;
    const Qt::KeyboardModifiers mods = key.modifiers();
    if ((mods & Qt::ControlModifier) && !(mods & Qt::AltModifier) && key.key() >= Qt::Key_A &&
        key.key() <= Qt::Key_Z)
        return key.key() - Qt::Key_A + 1;
    const QString text = key.text();
    if (text.isEmpty() || text.at(0).unicode() < 32 || text.at(0).unicode() == 127) return -1;
    return static_cast<int>(text.at(0).unicode());  // beyond Latin-1: no numeric field keeps it
}

}  // namespace

// ---- Creation -------------------------------------------------------------------------

GeneralDialog::GeneralDialog(const QList<ControlWidget*>& selected, QWidget* parent)
    : GeneralDialog(RegistryPage(), selected, parent) {}

GeneralDialog::GeneralDialog(std::unique_ptr<pages::General> page,
                             const QList<ControlWidget*>& selected, QWidget* parent)
    : QDialog(parent), page_(std::move(page)) {
    setObjectName(QStringLiteral("generalDialog"));
    std::vector<host::Control*> controls;
    for (ControlWidget* w : selected) {
        host::Control* c = w ? w->control() : nullptr;
        if (!c) continue;
        controls.push_back(c);
        // A control that goes while the dialog is open is no longer written.
        connect(w, &QObject::destroyed, this, [this, c] { page_->Forget(*c); });
    }
    const Failure failure = Guard([&] { page_->SelectionChanged(controls); });
    const QString name =
        selected.isEmpty() || !selected.front() ? QString() : selected.front()->objectName();
    setWindowTitle(name.isEmpty() ? QStringLiteral("Property Pages")
                                  : QStringLiteral("%1 Property Pages").arg(name));
    build();
    if (failure) showError(QStringLiteral("reading"), failure.number, failure.text);
}

GeneralDialog::~GeneralDialog() = default;

bool GeneralDialog::Edits(const ControlWidget& widget) {
    const QString name = widget.className();
    return name == QLatin1String("ProgressBox") || name == QLatin1String("CommandBox");
}

GeneralDialog* GeneralDialog::Open(const QList<ControlWidget*>& selected, QWidget* parent) {
    auto* dialog = new GeneralDialog(selected, parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
    return dialog;
}

void GeneralDialog::build() {
    auto* outer = new QVBoxLayout(this);
    auto* tabs = new QTabWidget(this);
    auto* sheet = new QWidget(tabs);
    tabs->addTab(sheet, QStringLiteral("General"));
    outer->addWidget(tabs, 1);

    auto* body = new QVBoxLayout(sheet);
    body->setContentsMargins(16, 16, 16, 16);
    if (page_->Shown() == Group::None) {
        auto* none = new QLabel(
            QStringLiteral("This page has no properties for the selected control."), sheet);
        none->setObjectName(QStringLiteral("noGroup"));
        body->addWidget(none);
    } else {
        // Text fields beside their labels, check boxes below them; each in the page's order.
        auto* form = new QFormLayout;
        form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
        form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
        auto* checks = new QVBoxLayout;
        checks->setSpacing(6);
        for (const pages::Field& f : page_->Fields()) {
            if (f.group != page_->Shown()) continue;
            QWidget* w = fieldWidget(f);
            if (f.kind == FieldKind::Check) checks->addWidget(w);
            else if (f.label.empty()) form->addRow(w);
            else form->addRow(Q(f.label), w);
        }
        body->addLayout(form);
        body->addSpacing(8);
        body->addLayout(checks);
    }
    body->addStretch(1);

    buttons_ = new QDialogButtonBox(
        QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Apply, this);
    applyButton_ = buttons_->button(QDialogButtonBox::Apply);
    outer->addWidget(buttons_);
    connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(buttons_, &QDialogButtonBox::accepted, this, [this] {
        if (!page_->Changed() || apply()) accept();
    });
    connect(applyButton_, &QPushButton::clicked, this, [this] { apply(); });
    followChanged();
    setMinimumWidth(380);
}

QWidget* GeneralDialog::fieldWidget(const pages::Field& f) {
    const QString name = Q(f.name);
    const std::string key(f.name);
    if (f.kind == FieldKind::Check) {
        auto* box = new QCheckBox(Q(f.property));
        box->setObjectName(name);
        box->setChecked(f.checked);
        connect(box, &QCheckBox::clicked, this, [this, key](bool on) {
            page_->SetChecked(key, on);
            followChanged();
        });
        return box;
    }
    auto* edit = new QLineEdit(QString::fromStdString(f.text));
    edit->setObjectName(name);
    edit->setMinimumWidth(200);
    if (f.label.empty()) edit->setPlaceholderText(Q(f.property));
    if (f.kind != FieldKind::Text) {
        edit->installEventFilter(this);
        // Composed text would pass by the key filter.
        edit->setAttribute(Qt::WA_InputMethodEnabled, false);
    }
    connect(edit, &QLineEdit::textEdited, this, [this, key](const QString& text) {
        page_->SetText(key, text.toStdString());
        followChanged();
    });
    return edit;
}

void GeneralDialog::followChanged() { applyButton_->setEnabled(page_->Changed()); }

// ---- Applying -----------------------------------------------------------------------------

bool GeneralDialog::apply() {
    emit applyStarted();
    const Failure failure = Guard([&] { page_->Apply(); });
    emit applyFinished();
    followChanged();
    if (failure) showError(QStringLiteral("applying"), failure.number, failure.text);
    return !failure;
}

// Window-modal and not waited for, so the dialog's own event loop goes on.
void GeneralDialog::showError(const QString& where, int number, const QString& text) {
    auto* box = new QMessageBox(
        QMessageBox::Warning, windowTitle(),
        number ? QStringLiteral("Error %1 %2 the properties: %3").arg(number).arg(where, text)
               : QStringLiteral("Error %1 the properties: %2").arg(where, text),
        QMessageBox::Ok, this);
    box->setObjectName(QStringLiteral("pageError"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

// ---- Qt events --------------------------------------------------------------------------------

bool GeneralDialog::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QDialog::eventFilter(watched, event);
    const int ascii = TypedCharacter(*static_cast<QKeyEvent*>(event));
    if (ascii < 0) return false;
    const pages::Field& f = page_->Find(watched->objectName().toStdString());
    return !pages::General::KeepsCharacter(f.kind, ascii);
}

}  // namespace kelvarin::qt

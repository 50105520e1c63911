// SPDX-License-Identifier: MIT
#include <kelvarin/Forms.h>

#include <kelvarin/CommandBoxWidget.h>
#include <kelvarin/DateBoxWidget.h>
#include <kelvarin/ProgressBoxWidget.h>
#include "common/Text.h"
#include "host/FormFile.h"
#include "library/ClassFactory.h"
#include "qt/Guard.h"

namespace kelvarin::qt {

namespace {

// The class of a form entry or a name, as the registry knows it; null for
// one it does not know.
const library::ClassInfo* ClassNamed(const QString& className) {
    return library::ClassRegistry::Instance().Find(className.toStdString());
}

}  // namespace

ControlWidget* CreateControlWidget(const QString& className, QWidget* parent) {
    const library::ClassInfo* info = ClassNamed(className);
    if (!info) return nullptr;
    if (EqualsIgnoreCase(info->name, "ProgressBox")) return new ProgressBoxWidget(parent);
    if (EqualsIgnoreCase(info->name, "DateBox")) return new DateBoxWidget(parent);
    if (EqualsIgnoreCase(info->name, "CommandBox")) return new CommandBoxWidget(parent);
    auto control = library::ClassRegistry::Instance().Create(info->name);
    if (!control) return nullptr;
    return new ControlWidget(std::move(control), parent);
}

ControlWidget* LoadControlWidget(host::FormControl& entry, const QString& place, QWidget* parent) {
    const library::ClassInfo* info = ClassNamed(QString::fromStdString(entry.className));
    if (!info) return nullptr;
    if (EqualsIgnoreCase(info->name, "ProgressBox"))
        return new ProgressBoxWidget(entry, place, parent);
    if (EqualsIgnoreCase(info->name, "DateBox")) return new DateBoxWidget(entry, place, parent);
    if (EqualsIgnoreCase(info->name, "CommandBox"))
        return new CommandBoxWidget(entry, place, parent);
    auto control = library::ClassRegistry::Instance().Create(info->name);
    if (!control) return nullptr;
    return new ControlWidget(std::move(control), entry, place, parent);
}

QString SaveForm(const QString& path, const QList<ControlWidget*>& widgets) {
    const Failure failure = Guard([&] {
        host::Form form;
        for (ControlWidget* w : widgets) {
            if (!w || !w->control()) continue;
            form.controls.push_back(w->toFormControl());
        }
        host::SaveFormFile(path.toStdString(), form);
    });
    return failure.text;
}

LoadedForm LoadForm(const QString& path, QWidget* parent) {
    LoadedForm loaded;
    host::Form form;
    const Failure failure = Guard([&] {
        auto& registry = library::ClassRegistry::Instance();
        form = host::LoadFormFile(path.toStdString(),
                                  [&](std::string_view c) { return registry.Find(c) != nullptr; });
    });
    if (failure) {
        loaded.error = failure.text;
        return loaded;
    }
    for (host::FormControl& entry : form.controls) {
        const QString place =
            QStringLiteral("%1: %2.properties").arg(path, QString::fromStdString(entry.name));
        ControlWidget* w = LoadControlWidget(entry, place, parent);
        if (!w) {  // known but not creatable (the property page): nothing is kept
            qDeleteAll(loaded.widgets);
            loaded.widgets.clear();
            loaded.error = QStringLiteral("%1: cannot create a control of class %2")
                               .arg(path, QString::fromStdString(entry.className));
            return loaded;
        }
        if (w->hasReportedError() && loaded.error.isEmpty())
            loaded.error = QStringLiteral("%1: %2: error %3 %4")
                               .arg(path, QString::fromStdString(entry.name))
                               .arg(w->lastErrorNumber())
                               .arg(w->lastErrorText());
        loaded.widgets.append(w);
    }
    return loaded;
}

}  // namespace kelvarin::qt

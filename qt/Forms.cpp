#include "qt/Forms.h"

#include <exception>

#include "common/Text.h"
#include "host/FormFile.h"
#include "library/ClassFactory.h"
#include "qt/DateBoxWidget.h"
#include "qt/ProgressBoxWidget.h"

namespace kelvarin::qt {

ControlWidget* CreateControlWidget(const QString& className, QWidget* parent) {
    const library::ClassInfo* info =
        library::ClassRegistry::Instance().Find(className.toStdString());
    if (!info) return nullptr;
    if (EqualsIgnoreCase(info->name, "ProgressBox")) return new ProgressBoxWidget(parent);
    if (EqualsIgnoreCase(info->name, "DateBox")) return new DateBoxWidget(parent);
    auto control = library::ClassRegistry::Instance().Create(info->name);
    if (!control) return nullptr;
    return new ControlWidget(std::move(control), parent);
}

QString SaveForm(const QString& path, const QList<ControlWidget*>& widgets) {
    try {
        host::Form form;
        for (ControlWidget* w : widgets) {
            if (!w || !w->control()) continue;
            form.controls.push_back(w->toFormControl());
        }
        host::SaveFormFile(path.toStdString(), form);
        return {};
    } catch (const std::exception& e) {
        return QString::fromUtf8(e.what());
    }
}

LoadedForm LoadForm(const QString& path, QWidget* parent) {
    LoadedForm loaded;
    host::Form form;
    try {
        auto& registry = library::ClassRegistry::Instance();
        form = host::LoadFormFile(path.toStdString(),
                                  [&](std::string_view c) { return registry.Find(c) != nullptr; });
    } catch (const std::exception& e) {
        loaded.error = QString::fromUtf8(e.what());
        return loaded;
    }
    for (host::FormControl& entry : form.controls) {
        ControlWidget* w = CreateControlWidget(QString::fromStdString(entry.className), parent);
        if (!w) {  // known but not creatable (the property page): nothing is kept
            qDeleteAll(loaded.widgets);
            loaded.widgets.clear();
            loaded.error = QStringLiteral("%1: cannot create a control of class %2")
                               .arg(path, QString::fromStdString(entry.className));
            return loaded;
        }
        const QString place =
            QStringLiteral("%1: %2.properties").arg(path, QString::fromStdString(entry.name));
        if (!w->readFormControl(entry, place) && loaded.error.isEmpty())
            loaded.error = QStringLiteral("%1: %2: error %3 %4")
                               .arg(path, QString::fromStdString(entry.name))
                               .arg(w->lastErrorNumber())
                               .arg(w->lastErrorText());
        loaded.widgets.append(w);
    }
    return loaded;
}

}  // namespace kelvarin::qt

// SPDX-License-Identifier: MIT
#include <kelvarin/CommandBoxWidget.h>

#include "common/HostError.h"
#include "controls/commandbox/CommandBox.h"
#include "library/ClassFactory.h"
#include "qt/PictureImage.h"

namespace kelvarin::qt {

namespace {

// Laid out as QPushButton is: its own width at least, its own height.
const QSizePolicy kButtonPolicy(QSizePolicy::Minimum, QSizePolicy::Fixed, QSizePolicy::PushButton);

}  // namespace

CommandBoxWidget::CommandBoxWidget(QWidget* parent)
    : ControlWidget(library::ClassRegistry::Instance().Create("CommandBox"), parent) {
    setSizePolicy(kButtonPolicy);
}

CommandBoxWidget::CommandBoxWidget(host::FormControl& entry, const QString& place, QWidget* parent)
    : ControlWidget(library::ClassRegistry::Instance().Create("CommandBox"), entry, place, parent) {
    setSizePolicy(kButtonPolicy);
}

QPixmap CommandBoxWidget::Picture() const {
    const QImage image = getMember(QStringLiteral("Picture")).value<QImage>();
    return image.isNull() ? QPixmap() : QPixmap::fromImage(image);
}

bool CommandBoxWidget::loadPicture(const QString& path) {
    QString why;
    const QImage image = ReadImageFile(path, &why);
    if (image.isNull()) {
        // The host's LoadPicture error.
        guard("Picture", [&] {
            throw HostError(481, ("Invalid picture: " + path + ": " + why).toStdString());
        });
        return false;
    }
    return setMember(QStringLiteral("Picture"), image);
}

void CommandBoxWidget::emitTypedEvent(int number, const QVariantList& a) {
    using controls::CommandBox;
    const auto i = [&](int k) { return k < a.size() ? a[k].toInt() : 0; };
    const auto f = [&](int k) { return k < a.size() ? a[k].toFloat() : 0.0f; };
    switch (number) {
        case CommandBox::kClick: emit Click(); break;
        case CommandBox::kDblClick: emit DblClick(); break;
        case CommandBox::kKeyDown: emit KeyDown(i(0), i(1)); break;
        case CommandBox::kKeyPress: emit KeyPress(i(0)); break;
        case CommandBox::kKeyUp: emit KeyUp(i(0), i(1)); break;
        case CommandBox::kMouseDown: emit MouseDown(i(0), i(1), f(2), f(3)); break;
        case CommandBox::kMouseMove: emit MouseMove(i(0), i(1), f(2), f(3)); break;
        case CommandBox::kMouseUp: emit MouseUp(i(0), i(1), f(2), f(3)); break;
        default: break;
    }
}

}  // namespace kelvarin::qt

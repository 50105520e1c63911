#include "apps/gallery/Cards.h"

#include <QFrame>
#include <QLabel>
#include <QVBoxLayout>

namespace kelvarin::gallery {

QFrame* Card(QWidget* parent, const QString& title, const QString& subtitle, QVBoxLayout** body) {
    auto* frame = new QFrame(parent);
    frame->setObjectName(QStringLiteral("card"));
    auto* layout = new QVBoxLayout(frame);
    layout->setContentsMargins(18, 14, 18, 16);
    layout->setSpacing(8);
    auto* heading = new QLabel(title, frame);
    heading->setObjectName(QStringLiteral("cardTitle"));
    layout->addWidget(heading);
    auto* sub = new QLabel(subtitle, frame);
    sub->setObjectName(QStringLiteral("cardSubtitle"));
    sub->setWordWrap(true);
    layout->addWidget(sub);
    if (subtitle.isEmpty()) sub->hide();
    layout->addSpacing(4);
    *body = layout;
    return frame;
}

QLabel* Caption(QWidget* parent, const QString& text) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(QStringLiteral("caption"));
    return label;
}

}  // namespace kelvarin::gallery

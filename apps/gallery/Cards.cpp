// SPDX-License-Identifier: MIT
#include "apps/gallery/Cards.h"

#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "qt/GeneralDialog.h"

namespace kelvarin::gallery {

QPushButton* PropertiesButton(QWidget* parent, const char* name, qt::ControlWidget* control) {
    auto* button = new QPushButton(QStringLiteral("Properties\u2026"), parent);
    button->setObjectName(QString::fromLatin1(name));
    QObject::connect(button, &QPushButton::clicked, parent,
                     [parent, control] { qt::GeneralDialog::Open({control}, parent); });
    return button;
}

QGridLayout* CardGrid(QWidget* page) {
    auto* grid = new QGridLayout(page);
    grid->setContentsMargins(0, 8, 0, 0);
    grid->setHorizontalSpacing(16);
    grid->setVerticalSpacing(16);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 1);
    return grid;
}

QFrame* Card(QWidget* parent, const QString& title, const QString& subtitle, QVBoxLayout** body) {
    auto* frame = new QFrame(parent);
    frame->setObjectName(QStringLiteral("card"));
    auto* layout = new QVBoxLayout(frame);
    layout->setContentsMargins(18, 14, 18, 16);
    layout->setSpacing(8);
    layout->addWidget(Styled(frame, "cardTitle", title));
    QLabel* sub = Styled(frame, "cardSubtitle", subtitle, true);
    layout->addWidget(sub);
    if (subtitle.isEmpty()) sub->hide();
    layout->addSpacing(4);
    *body = layout;
    return frame;
}

QVBoxLayout* GridCard(QGridLayout* grid, int row, int column, const QString& title,
                      const QString& subtitle) {
    QVBoxLayout* layout = nullptr;
    QFrame* frame = Card(grid->parentWidget(), title, subtitle, &layout);
    auto* rows = new QVBoxLayout;
    rows->setSpacing(layout->spacing());
    layout->addLayout(rows);
    layout->addStretch(1);
    grid->addWidget(frame, row, column);
    return rows;
}

QLabel* Styled(QWidget* parent, const char* look, const QString& text, bool wrap) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(QString::fromLatin1(look));
    label->setWordWrap(wrap);
    return label;
}

CaptionedRows::CaptionedRows(QVBoxLayout* body, int captionWidth)
    : grid_(new QGridLayout), captionWidth_(captionWidth) {
    grid_->setHorizontalSpacing(12);
    grid_->setVerticalSpacing(10);
    grid_->setColumnStretch(1, 1);
    body->addLayout(grid_);
}

QLabel* CaptionedRows::add(const QString& caption, QWidget* field) {
    QLabel* label = Caption(field->parentWidget(), caption);
    label->setFixedWidth(captionWidth_);
    grid_->addWidget(label, rows_, 0);
    grid_->addWidget(field, rows_, 1);
    ++rows_;
    return label;
}

}  // namespace kelvarin::gallery

// SPDX-License-Identifier: MIT
#include "apps/gallery/Cards.h"

#include <QColor>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QPalette>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include "qt/GeneralDialog.h"

namespace kelvarin::gallery {

namespace {

// `a` moved the fraction `t` of the way to `b`.
QString Mix(const QColor& a, const QColor& b, double t) {
    const auto channel = [t](int x, int y) { return static_cast<int>(x + (y - x) * t + 0.5); };
    return QColor(channel(a.red(), b.red()), channel(a.green(), b.green()),
                  channel(a.blue(), b.blue()))
        .name();
}

}  // namespace

QString EventText(const QString& event, const QVariantList& args) {
    QStringList shown;
    for (const QVariant& a : args) shown << a.toString();
    return event + QLatin1Char('(') + shown.join(QStringLiteral(", ")) + QLatin1Char(')');
}

QString StyleSheetFor(const QPalette& palette) {
    const QColor window = palette.color(QPalette::Window);
    const QColor windowText = palette.color(QPalette::WindowText);
    const QColor text = palette.color(QPalette::Text);
    // A card stands out from the window: in a light theme it is the fields'
    // white, in a dark one a shade lighter than the window, the fields on
    // it darker still.
    const bool dark = window.lightness() < palette.color(QPalette::WindowText).lightness();
    const QColor base =
        dark ? QColor(Mix(window, windowText, 0.07)) : palette.color(QPalette::Base);
    // Titles in the text colour, explanations and captions between it and
    // the background, lines barely off the background.
    return QStringLiteral(R"(
    kelvarin--gallery--GalleryWindow { background: %1; }
    QLabel#title { font-size: 17pt; font-weight: 600; color: %2; }
    QLabel#subtitle, QLabel#status { color: %3; }
    QTabWidget#pages::pane { border: none; }
    QTabBar::tab { padding: 6px 16px; color: %4; background: transparent; border: none;
                   border-bottom: 2px solid transparent; }
    QTabBar::tab:selected { color: %2; font-weight: 600; border-bottom: 2px solid %5; }
    QScrollArea#pageScroll { background: transparent; border: none; }
    QFrame#card { background: %6; border: 1px solid %7; border-radius: 10px; }
    QLabel#cardTitle { font-size: 11.5pt; font-weight: 600; color: %8; }
    QLabel#cardSubtitle, QLabel#note { color: %9; }
    QLabel#note { font-size: 8.5pt; }
    QLabel#placementHead { color: %9; font-weight: 600; }
    QLabel#caption { color: %10; }
    QLabel#readout { color: %8; font-family: "DejaVu Sans Mono"; }
    QLabel#eventReadout { color: %8; font-family: "DejaVu Sans Mono"; font-size: 8.5pt;
                          background: %11; border: 1px solid %7; border-radius: 6px;
                          padding: 6px 8px; }
    QPushButton#swatch, QPushButton#commandSwatch {
        border: 1px solid %12; border-radius: 4px;
        min-width: 22px; max-width: 22px; min-height: 22px; max-height: 22px; }
)")
        .arg(window.name(), windowText.name(), Mix(windowText, window, 0.45),
             Mix(windowText, window, 0.3), palette.color(QPalette::Highlight).name(), base.name(),
             Mix(base, text, 0.12), text.name(), Mix(text, base, 0.45), Mix(text, base, 0.3),
             Mix(base, window, 0.5), Mix(base, text, 0.25));
}

QPalette DarkPalette() {
    QPalette p;
    const QColor window(30, 32, 36), base(20, 21, 24), text(229, 231, 235), button(52, 56, 62);
    const QColor muted(128, 132, 140);
    p.setColor(QPalette::Window, window);
    p.setColor(QPalette::WindowText, text);
    p.setColor(QPalette::Base, base);
    p.setColor(QPalette::AlternateBase, window);
    p.setColor(QPalette::Text, text);
    p.setColor(QPalette::Button, button);
    p.setColor(QPalette::ButtonText, text);
    p.setColor(QPalette::BrightText, QColor(255, 255, 255));
    p.setColor(QPalette::Light, QColor(78, 82, 90));
    p.setColor(QPalette::Midlight, QColor(62, 66, 73));
    p.setColor(QPalette::Mid, QColor(40, 42, 47));
    p.setColor(QPalette::Dark, QColor(16, 17, 20));
    p.setColor(QPalette::Shadow, QColor(0, 0, 0));
    p.setColor(QPalette::Highlight, QColor(99, 102, 241));
    p.setColor(QPalette::HighlightedText, QColor(255, 255, 255));
    p.setColor(QPalette::Link, QColor(129, 140, 248));
    p.setColor(QPalette::ToolTipBase, button);
    p.setColor(QPalette::ToolTipText, text);
    p.setColor(QPalette::PlaceholderText, muted);
    for (auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        p.setColor(QPalette::Disabled, role, muted);
    return p;
}

Readout::Readout(QWidget* parent, const char* look, int lines, const QString& text)
    : QLabel(text, parent), lines_(lines) {
    setObjectName(QString::fromLatin1(look));
    setWordWrap(true);
    setAlignment(Qt::AlignLeft | Qt::AlignTop);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void Readout::reserveWidth(const QString& widest) {
    widest_ = widest;
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    updateGeometry();
}

QSize Readout::minimumSizeHint() const {
    ensurePolished();  // the look's font and padding
    const QMargins m = contentsMargins();
    const int edges = 2 * (frameWidth() + margin());
    return {fontMetrics().horizontalAdvance(widest_) + m.left() + m.right() + edges,
            fontMetrics().lineSpacing() * lines_ + m.top() + m.bottom() + edges};
}

QSize Readout::sizeHint() const { return minimumSizeHint(); }

QScrollArea* Scrolled(QWidget* page) {
    auto* scroll = new QScrollArea;
    scroll->setObjectName(QStringLiteral("pageScroll"));
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setWidget(page);
    scroll->viewport()->setAutoFillBackground(false);
    page->setAutoFillBackground(false);
    return scroll;
}

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
    grid->setHorizontalSpacing(14);
    grid->setVerticalSpacing(14);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 1);
    return grid;
}

QFrame* Card(QWidget* parent, const QString& title, const QString& subtitle, QVBoxLayout** body) {
    auto* frame = new QFrame(parent);
    frame->setObjectName(QStringLiteral("card"));
    auto* layout = new QVBoxLayout(frame);
    layout->setContentsMargins(16, 12, 16, 12);
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
